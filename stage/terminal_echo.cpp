// Runs in a terminal and tells on descriptor 3 what that hands it, in the words of paste_target:
// "paste" and "typed", and "ready" before these.

#include "stage/JsonLines.h"

#include <QByteArray>

#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// The bytes of a terminal that has been asked to mark pastes, and then how it is.
class Echo {
public:
    void take(const QByteArray &bytes) {
        m_pending += bytes;
        while (!m_pending.isEmpty() && step()) {
        }
    }

private:
    static constexpr QByteArrayView pasteBegins = "\033[200~", pasteEnds = "\033[201~",
                                    isWell = "\033[0n";

    // False when more must come first.
    bool step() {
        if (m_pending.startsWith(isWell)) {
            say(u"ready"_s);
            m_pending.remove(0, isWell.size());
            return true;
        }
        if (m_pending.startsWith(pasteBegins)) {
            const qsizetype end = m_pending.indexOf(pasteEnds);
            if (end < 0)
                return false;
            const QByteArray text = m_pending.first(end).sliced(pasteBegins.size());
            say(u"paste"_s, {{u"via"_s, u"the terminal"_s}, {u"text"_s, QString::fromUtf8(text)}});
            m_pending.remove(0, end + pasteEnds.size());
            return true;
        }
        if (m_pending[0] == '\033' && m_pending.size() < pasteBegins.size() &&
            (pasteBegins.startsWith(m_pending) || isWell.startsWith(m_pending)))
            return false;
        say(u"typed"_s, {{u"text"_s, QString::fromLatin1(m_pending.first(1))}});
        m_pending.remove(0, 1);
        return true;
    }

    QByteArray m_pending;
};

} // namespace

int main() {
    const int terminal = dup(STDOUT_FILENO);
    termios raw{};
    if (terminal < 0 || tcgetattr(STDIN_FILENO, &raw) != 0 || dup2(3, STDOUT_FILENO) < 0)
        return 1;
    cfmakeraw(&raw);
    constexpr QByteArrayView asks = "\033[?2004h\033[5n";
    if (tcsetattr(STDIN_FILENO, TCSANOW, &raw) != 0 ||
        write(terminal, asks.data(), static_cast<size_t>(asks.size())) != asks.size())
        return 1;
    Echo echo;
    char buffer[4096];
    for (ssize_t count; (count = read(STDIN_FILENO, buffer, sizeof buffer)) > 0;)
        echo.take(QByteArray(buffer, count));
    return 0;
}
