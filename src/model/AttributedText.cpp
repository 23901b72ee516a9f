#include "model/AttributedText.h"

namespace {

// 12 points is RTF's own default and that of the common word processors, so that a pasted link
// has the size of the text around it.
constexpr char documentStart[] = "{\\rtf1\\ansi\\ansicpg1252\\deff0"
                                 "{\\fonttbl{\\f0\\fswiss\\fcharset0 Helvetica;}}"
                                 "\\uc1\\pard\\f0\\fs24 ";

bool endsLine(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

bool isControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

/// One UTF-16 unit as an escape with "?" as what older readers show. The number is signed 16-bit.
void appendEscape(QByteArray &rtf, char16_t unit) {
    rtf += "\\u";
    rtf += QByteArray::number(static_cast<qint16>(unit));
    rtf += '?';
}

/// A unit that is neither a line end nor half of a surrogate pair.
void appendUnit(QByteArray &rtf, char16_t unit) {
    if (unit == u'\t') {
        rtf += "\\tab ";
    } else if (unit == u'\\' || unit == u'{' || unit == u'}') {
        rtf += '\\';
        rtf += static_cast<char>(unit);
    } else if (isControl(unit)) {
        return;
    } else if (unit < 0x80) {
        rtf += static_cast<char>(unit);
    } else {
        constexpr char16_t replacementCharacter = u'\uFFFD';
        appendEscape(rtf, QChar::isSurrogate(unit) ? replacementCharacter : unit);
    }
}

void appendText(QByteArray &rtf, QStringView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const char16_t next = i + 1 < text.size() ? text[i + 1].unicode() : u'\0';
        if (QChar::isHighSurrogate(unit) && QChar::isLowSurrogate(next)) {
            appendEscape(rtf, unit);
            appendEscape(rtf, next);
            ++i;
        } else if (endsLine(unit)) {
            rtf += "\\line ";
            if (unit == u'\r' && next == u'\n')
                ++i;
        } else {
            appendUnit(rtf, unit);
        }
    }
}

/// What comes before linked text. An encoded URL is ASCII without quotes, backslashes and braces,
/// so no address can end its field.
QByteArray linkStart(const QUrl &link) {
    return "{\\field{\\*\\fldinst{HYPERLINK \"" + link.toEncoded() + "\"}}{\\fldrslt ";
}

void appendRun(QByteArray &rtf, const AttributedText::Run &run) {
    if (!run.italic && !run.bold) {
        appendText(rtf, run.text);
        return;
    }
    rtf += '{';
    if (run.italic)
        rtf += "\\i";
    if (run.bold)
        rtf += "\\b";
    rtf += ' ';
    appendText(rtf, run.text);
    rtf += '}';
}

} // namespace

void AttributedText::append(const QString &text, bool italic, bool bold) {
    if (text.isEmpty())
        return;
    if (!m_runs.isEmpty() && m_runs.last().italic == italic && m_runs.last().bold == bold)
        m_runs.last().text += text;
    else
        m_runs.append({text, italic, bold});
}

QByteArray AttributedText::toRtf() const {
    const bool linked = m_link.isValid() && !m_runs.isEmpty();
    QByteArray rtf = documentStart;
    if (linked)
        rtf += linkStart(m_link);
    for (const Run &run : m_runs)
        appendRun(rtf, run);
    if (linked)
        rtf += "}}";
    rtf += '}';
    return rtf;
}
