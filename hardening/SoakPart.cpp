#include "hardening/Parts.h"

#include "stage/ClipboardReader.h"
#include "stage/Workplace.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

namespace {

const QString base = "https://app.example.com/records/";

/// What a format makes of a record.
struct Wanted {
    QString format, text, html;
};

Wanted wantedOf(int run, const QString &record) {
    const QString link = base + record;
    const QList<Wanted> all{
        {"richLink", record + " (" + link + ")", "<a href=\"" + link + "\">" + record + "</a>"},
        {"markdown", "[" + record + "](" + link + ")", ""},
        {"plainText", record + " (" + link + ")", ""},
        {"urlOnly", link, ""}};
    return all[run / 3 % all.size()];
}

/// What is copied before a run: from bare text to more than fits into one message.
QList<OwnedFlavour> copiedBefore(int run, const QString &record) {
    const OwnedFlavour text{"UTF8_STRING", record.toUtf8()};
    const QByteArray html = "<p>" + record.toUtf8() + " \xc3\xa9</p>";
    switch (run % 4) {
    case 0:
        return {text};
    case 1:
        return {{"text/html", html}, text};
    case 2:
        return {{"text/rtf", "{\\rtf1 x}"},
                text,
                {"TEXT", "caf\xe9", "STRING"},
                {"text/uri-list", "file:///a\r\n"}};
    default:
        return {{"text/html", html.repeated(20000)}, text};
    }
}

bool isOnTheClipboard(const QString &display, const QList<OwnedFlavour> &flavours) {
    ClipboardReader reader(display);
    return std::all_of(flavours.begin(), flavours.end(), [&](const OwnedFlavour &flavour) {
        return reader.data(flavour.name) == flavour.data &&
               reader.type() == (flavour.type.isEmpty() ? flavour.name : flavour.type);
    });
}

void runOnce(Findings &findings, Workplace &desk, int run) {
    const QString record = "507f1f77bcf86cd7" + QString::number(run, 16).rightJustified(8, '0');
    const QString at = QString("run %1: ").arg(run);
    const Wanted wanted = wantedOf(run, record);
    desk.brindle->forgetEvents();
    desk.brindle->send(wanted.format);
    findings.check(!desk.brindle->waitForEvent("format").isEmpty(), at + "takes no format");
    const QList<OwnedFlavour> flavours = copiedBefore(run, record);
    const ClipboardOwner owner(desk.desktop, flavours);
    findings.check(owner.ownsClipboard(), at + "nothing could be copied");
    desk.target->forgetEvents();
    desk.press();
    const auto paste = desk.target->waitForPaste();
    if (findings.check(paste.has_value(), at + "nothing is pasted"))
        findings.check(paste->text == wanted.text && paste->html == wanted.html,
                       at + "pasted " + paste->text + ' ' + paste->html);
    findings.check(waitFor([&] { return isOnTheClipboard(desk.desktop.display(), flavours); }),
                   at + "the clipboard is not given back");
    findings.check(desk.target->pasteCount() == 1 && desk.target->typed().isEmpty(),
                   at + QString("%1 pastes, typed '%2'")
                            .arg(desk.target->pasteCount())
                            .arg(desk.target->typed()));
    findings.check(heldKeys(desk.desktop.display()).isEmpty() &&
                       modifiersInForce(desk.desktop.display()) == 0,
                   at + "a key stays down");
    findings.check(desk.target->command("clear"), at + "the target cannot be cleared");
}

/// Kilobytes, as the kernel counts them.
int figure(qint64 process, const QByteArray &field) {
    QFile status(QString("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.mid(field.size() + 1).simplified().split(' ').first().toInt();
    }
    return 0;
}

qsizetype openFiles(qint64 process) {
    return QDir(QString("/proc/%1/fd").arg(process))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace

void soak(Findings &findings, int count) {
    Workplace desk;
    desk.start({{"accountBaseURL", base}, {"jiraEmail", "ann@h.example"}},
               BRINDLE_COMMANDED_PROGRAM);
    if (!findings.check(desk.isUp() && desk.openTarget(),
                        "the desktop does not come up: " + desk.desktop.problem()))
        return;
    const qint64 process = desk.brindle->processId();
    const int warmUp = std::min(100, count);
    int memory = 0;
    qsizetype files = 0;
    QElapsedTimer timer;
    timer.start();
    for (int run = 1; run <= count; ++run) {
        runOnce(findings, desk, run);
        if (!findings.check(desk.brindle->state() == QProcess::Running, "Brindle has ended"))
            return;
        if (run == warmUp) {
            memory = figure(process, "VmRSS");
            files = openFiles(process);
        }
        if (run % 100 == 0 || run == count)
            Findings::note(
                QString("run %1: resident %2 kB (of it private %3 kB), %4 files, %5 threads")
                    .arg(run)
                    .arg(figure(process, "VmRSS"))
                    .arg(figure(process, "RssAnon"))
                    .arg(openFiles(process))
                    .arg(figure(process, "Threads")));
    }
    // What the allocator keeps for the next large copy is not growth.
    constexpr int slack = 2048; // kB
    const int growth = figure(process, "VmRSS") - memory;
    findings.check(growth < slack, QString("memory grew by %1 kB").arg(growth));
    findings.check(openFiles(process) <= files, "files are left open");
    Findings::note(QString("%1 ms for a run").arg(timer.elapsed() / count));
}
