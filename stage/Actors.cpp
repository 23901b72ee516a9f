#include "stage/Actors.h"

#include <QJsonArray>
#include <QTemporaryFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QProcessEnvironment environmentOf(const VirtualDesktop &desktop, TargetKind kind) {
    QProcessEnvironment environment = desktop.environment();
    if (kind == TargetKind::XWayland)
        environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    if (kind == TargetKind::Gtk)
        environment.insert(u"GDK_BACKEND"_s, u"wayland"_s);
    return environment;
}

} // namespace

PasteTarget::PasteTarget(const VirtualDesktop &desktop, const QStringList &arguments)
    : PasteTarget(desktop, TargetKind::Qt, arguments) {}

PasteTarget::PasteTarget(const VirtualDesktop &desktop, TargetKind kind,
                         const QStringList &arguments)
    : StageProcess(environmentOf(desktop, kind)), m_kind(kind) {
    switch (kind) {
    case TargetKind::Gtk:
        launch(QStringLiteral(GTK_PASTE_TARGET_PROGRAM), {});
        break;
    case TargetKind::Foot:
        // What runs inside has the terminal for its output, and this one's as descriptor 3.
        launch(u"/bin/sh"_s,
               {u"-c"_s,
                u"LD_PRELOAD=\"$1\" exec foot --log-level=none env -u LD_PRELOAD \"$0\" 3>&1"_s,
                QStringLiteral(TERMINAL_ECHO_PROGRAM), QStringLiteral(FOOT_WIRE_LIBRARY)});
        break;
    case TargetKind::Qt:
    case TargetKind::XWayland:
        launch(QStringLiteral(PASTE_TARGET_PROGRAM), arguments);
        break;
    }
}

bool PasteTarget::hasFocus() const {
    // From the lines, as events may have been forgotten since.
    if (m_kind == TargetKind::Foot && !lines().contains(u"{\"event\":\"ready\"}"_s))
        return false;
    return lines().lastIndexOf(u"{\"event\":\"focused\"}"_s) >
           lines().lastIndexOf(u"{\"event\":\"unfocused\"}"_s);
}

std::optional<Paste> PasteTarget::waitForPaste(qsizetype place, int milliseconds) {
    const QJsonObject event = waitForEvent(u"paste"_s, place, milliseconds);
    if (event.isEmpty())
        return std::nullopt;
    Paste paste{event[u"via"].toString(),
                {},
                event[u"text"].toString(),
                event[u"html"].toString(),
                QByteArray::fromBase64(event[u"rtf"].toString().toLatin1())};
    for (const auto &format : event[u"formats"].toArray())
        paste.formats.append(format.toString());
    return paste;
}

qsizetype PasteTarget::pasteCount() const {
    return events(u"paste"_s).size();
}

QString PasteTarget::typed() const {
    QString text;
    for (const QJsonObject &event : events(u"typed"_s))
        text += event[u"text"].toString();
    return text;
}

bool PasteTarget::command(const QString &line) {
    const qsizetype before = events(u"done"_s).size();
    send(line);
    return waitForEvent(u"done"_s, before)[u"ok"].toBool();
}

ClipboardOwner::ClipboardOwner(const VirtualDesktop &desktop, const QList<OwnedFlavour> &flavours,
                               const QStringList &arguments)
    : StageProcess(desktop.environment()) {
    QStringList all = arguments;
    std::vector<std::unique_ptr<QTemporaryFile>> files; // read before it owns the clipboard
    for (const OwnedFlavour &flavour : flavours) {
        auto &file = files.emplace_back(
            std::make_unique<QTemporaryFile>(desktop.home() + u"/tmp/flavour"_s));
        if (!file->open() || file->write(flavour.data) != flavour.data.size() || !file->flush()) {
            setErrorString(file->errorString());
            return;
        }
        const QString type = flavour.type.isEmpty() ? flavour.name : flavour.type;
        all += {u"--flavour"_s, u"%1>%2=@%3"_s.arg(flavour.name, type, file->fileName())};
    }
    if (launch(hasDataControl(desktop.kind()) ? QStringLiteral(WAYLAND_CLIPBOARD_OWNER_PROGRAM)
                                              : QStringLiteral(CLIPBOARD_OWNER_PROGRAM),
               all))
        waitForEvent(u"owned"_s);
}

bool ClipboardOwner::ownsClipboard() const {
    return state() == QProcess::Running && events(u"owned"_s).size() == 1 &&
           events(u"cleared"_s).isEmpty();
}

DesktopPortal::DesktopPortal(const VirtualDesktop &desktop, const QStringList &arguments)
    : StageProcess(desktop.environment()) {
    launch(DESKTOP_PORTAL_PROGRAM, arguments);
    waitForEvent("ready");
}

QStringList DesktopPortal::done() const {
    QStringList all;
    for (const QJsonObject &event : events("did"))
        all.append(event["what"].toString());
    return all;
}
