#include "bench/Side.h"

#include "bench/Hotkey.h"
#include "bench/Measure.h"

#include "stage/Actors.h"
#include "stage/ClipboardReader.h"

#include <QThread>

namespace {

constexpr double fixedPause = 50; // milliseconds, made by every program

} // namespace

Side::Side(const QMap<QString, QString> &settings, const QString &program,
           const QStringList &arguments)
    : m_desk(settings), m_name(program), m_arguments(arguments) {
    start();
}

void Side::start() {
    require(m_program.launch(m_name, m_arguments), m_program.errorString());
    const XConnection x(m_desk.desktop().display());
    require(waitFor([&] { return Hotkey::isTaken(x); }), m_name + " takes no hotkey");
}

void Side::restart() {
    m_program.stop();
    start();
}

double Side::paste(const QByteArray &text, const QByteArray &type, const QByteArray &link) {
    const ClipboardOwner owner(m_desk.desktop(),
                               {{"text/html", "<p>" + text + "</p>"}, {"UTF8_STRING", text}});
    require(owner.ownsClipboard(), "nothing copied");
    // The program gets to rest after what the copy has set off.
    QThread::msleep(50);
    const double pressed = now();
    require(Hotkey::tap(m_keys), "no keys pressed");
    const auto landed = m_window.waitForPaste();
    require(landed && landed->type == type && landed->text.contains(link), "no link pasted");
    return landed->at - pressed - fixedPause;
}

void Side::waitForRestore(const QByteArray &text) const {
    ClipboardReader reader(m_desk.desktop().display());
    require(waitFor([&] { return reader.data("UTF8_STRING") == text; }),
            "the clipboard is not restored");
}
