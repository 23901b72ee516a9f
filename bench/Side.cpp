#include "bench/Side.h"

#include "bench/Hotkey.h"
#include "bench/Measure.h"

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
    m_desk.start({}, m_name, m_arguments);
    const XConnection x(m_desk.desktop.display());
    require(waitFor([&] { return Hotkey::isTaken(x); }), m_name + " takes no hotkey");
    // Who docks talks with the status area, which is in this thread and soon answers no more.
    if (m_name != BARE_PASTE_PROGRAM)
        require(waitFor([&] { return m_desk.hasIcon(); }), m_name + " docks no icon");
}

void Side::restart() {
    m_desk.brindle.reset();
    require(waitFor([&] { return !m_desk.hasIcon(); }), "the icon of an ended program stays");
    start();
}

double Side::paste(const QByteArray &text, const QByteArray &type, const QByteArray &link,
                   const QList<OwnedFlavour> &more) {
    const ClipboardOwner owner(
        m_desk.desktop,
        QList<OwnedFlavour>{{"text/html", "<p>" + text + "</p>"}, {"UTF8_STRING", text}} + more);
    require(owner.ownsClipboard(), "nothing copied");
    // The program gets to rest after what the copy has set off.
    QThread::msleep(50);
    const double pressed = now();
    require(Hotkey::tap(m_desk.keys), "no keys pressed");
    const auto landed = m_window.waitForPaste();
    require(landed && landed->type == type && landed->text.contains(link), "no link pasted");
    return landed->at - pressed - fixedPause;
}

void Side::waitForRestore(const QByteArray &text) const {
    ClipboardReader reader(m_desk.desktop.display());
    require(waitFor([&] { return reader.data("UTF8_STRING") == text; }),
            "the clipboard is not restored");
}
