#include "fuzz/RtfReader.h"

namespace {

/// What each group inherits from the one around it.
struct GroupState {
    bool italic = false;
    bool bold = false;
    bool inFontTable = false;
    bool inInstruction = false;
    int fallbackLength = 1;
    QString link;
};

class Reader {
public:
    explicit Reader(const QByteArray &rtf) : m_rtf(rtf) {}

    std::optional<RtfContent> read() {
        if (!m_rtf.startsWith("{\\rtf1\\ansi"))
            return std::nullopt;
        while (m_position < m_rtf.size() && m_ok)
            readToken();
        if (!m_ok || m_states.size() != 1)
            return std::nullopt;
        return m_content;
    }

private:
    void readToken() {
        const char byte = m_rtf[m_position++];
        if (byte == '{')
            m_states.append(m_states.last());
        else if (byte == '}')
            closeGroup();
        else if (byte == '\\')
            readControl();
        else if (static_cast<unsigned char>(byte) >= 0x80)
            m_ok = false;
        else if (byte != '\n' && byte != '\r')
            addText(QChar::fromLatin1(byte));
    }

    void closeGroup() {
        const bool endsInstruction = m_states.takeLast().inInstruction;
        if (m_states.isEmpty() || (m_states.size() == 1 && m_position != m_rtf.size())) {
            m_ok = false;
        } else if (endsInstruction && !m_states.last().inInstruction) {
            const QString start = QStringLiteral("HYPERLINK \"");
            m_ok = m_instruction.startsWith(start) && m_instruction.endsWith(u'"');
            m_states.last().link = m_instruction.mid(start.size()).chopped(1);
            m_instruction.clear();
        }
    }

    void readControl() {
        const char first = m_position < m_rtf.size() ? m_rtf[m_position] : '\0';
        if (first < 'a' || first > 'z') {
            ++m_position;
            if (first == '\\' || first == '{' || first == '}')
                addText(QChar::fromLatin1(first));
            else if (first != '*')
                m_ok = false;
            return;
        }
        QByteArray word;
        while (m_position < m_rtf.size() && m_rtf[m_position] >= 'a' && m_rtf[m_position] <= 'z')
            word += m_rtf[m_position++];
        QByteArray number;
        while (m_position < m_rtf.size() &&
               (m_rtf[m_position] == '-' || (m_rtf[m_position] >= '0' && m_rtf[m_position] <= '9')))
            number += m_rtf[m_position++];
        if (m_position < m_rtf.size() && m_rtf[m_position] == ' ')
            ++m_position;
        obey(word, number);
    }

    void obey(const QByteArray &word, const QByteArray &number) {
        GroupState &state = m_states.last();
        if (word == "i") {
            state.italic = number != "0";
        } else if (word == "b") {
            state.bold = number != "0";
        } else if (word == "fonttbl") {
            state.inFontTable = true;
        } else if (word == "fldinst") {
            state.inInstruction = true;
        } else if (word == "uc") {
            state.fallbackLength = number.toInt();
        } else if (word == "line") {
            addText(u'\n');
        } else if (word == "tab") {
            addText(u'\t');
        } else if (word == "u") {
            const int value = number.toInt();
            m_ok = m_ok && value >= -32768 && value <= 32767;
            addText(QChar(static_cast<char16_t>(value)));
            m_position += state.fallbackLength;
        }
    }

    void addText(QChar character) {
        const GroupState &state = m_states.last();
        if (state.inFontTable)
            return;
        if (state.inInstruction) {
            m_instruction += character;
            return;
        }
        RtfContent::Run run{{}, state.italic, state.bold, state.link};
        if (!m_content.runs.isEmpty())
            run.text = m_content.runs.last().text;
        if (m_content.runs.isEmpty() || run != m_content.runs.last()) {
            run.text.clear();
            m_content.runs.append(run);
        }
        m_content.runs.last().text += character;
    }

    QByteArray m_rtf;
    qsizetype m_position = 0;
    bool m_ok = true;
    QList<GroupState> m_states{GroupState{}};
    QString m_instruction;
    RtfContent m_content;
};

} // namespace

std::optional<RtfContent> readRtf(const QByteArray &rtf) {
    return Reader(rtf).read();
}
