#include "bench/Benches.h"
#include "bench/Desk.h"
#include "bench/Hotkey.h"
#include "bench/PasteWindow.h"

#include "stage/Actors.h"
#include "stage/ClipboardReader.h"

#include <QThread>

namespace {

const QByteArray record = "507f1f77bcf86cd799439011";
const QByteArray recordLink = "https://app.example.com/records/507f1f77bcf86cd799439011";

constexpr int rounds = 40;
constexpr double pause = 50; // milliseconds, made by both programs

/// A user in front of a window, at a desktop where one of the two programs runs.
class Side {
public:
    /// Starts the program and waits until it has the hotkey.
    Side(const QString &recordFormat, const QString &program, const QStringList &arguments)
        : m_desk(recordFormat), m_program(m_desk.desktop().environment()) {
        require(m_program.launch(program, arguments), m_program.errorString());
        const XConnection x(m_desk.desktop().display());
        require(waitFor([&] { return Hotkey::isTaken(x); }), program + " takes no hotkey");
    }

    /// Copies the record id, presses the hotkey and gives the milliseconds until its link is there.
    double paste(const QByteArray &type) {
        const ClipboardOwner owner(
            m_desk.desktop(), {{"text/html", "<p>" + record + "</p>"}, {"UTF8_STRING", record}});
        require(owner.ownsClipboard(), "nothing copied");
        // Both programs get to rest after what the copy has set off.
        QThread::msleep(50);
        const double pressed = now();
        require(Hotkey::tap(m_keys), "no keys pressed");
        const auto landed = m_window.waitForPaste();
        require(landed && landed->type == type && landed->text.contains(recordLink),
                "no link pasted");
        return landed->at - pressed - pause;
    }

    /// Waits until the clipboard holds again what was copied.
    void waitForRestore() {
        ClipboardReader reader(m_desk.desktop().display());
        require(waitFor([&] { return reader.data("UTF8_STRING") == record; }),
                "the clipboard is not restored");
    }

private:
    Desk m_desk;
    PasteWindow m_window{m_desk.desktop().display()};
    VirtualKeyboard m_keys{m_desk.desktop().keyboardDisplay()};
    StageProcess m_program;
};

Row benchFormat(const QString &what, const QString &format, const QByteArray &type) {
    // A desktop each, so that both have the same key, and what one still does after a paste does
    // not meet the other.
    Side ours(format, BRINDLE_PROGRAM, {});
    Side bare(format, BARE_PASTE_PROGRAM, {type});
    QList<double> brindleTimes, floorTimes;
    for (int round = -1; round < rounds; ++round) {
        const double oursTook = ours.paste(type);
        const double bareTook = bare.paste(type);
        ours.waitForRestore();
        if (round < 0) // what happens once only belongs to no press
            continue;
        brindleTimes.append(oursTook);
        floorTimes.append(bareTook);
    }
    return ratioRow(what, median(brindleTimes), median(floorTimes), "ms", "1.25 at most");
}

} // namespace

QList<Row> benchPastes() {
    return {benchFormat("Key press to text, record id, URL only", "urlOnly", "UTF8_STRING"),
            benchFormat("Key press to text, record id, rich link", "richLink", "text/html")};
}
