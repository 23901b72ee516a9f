#include "stage/Workplace.h"

#include "stage/ClipboardReader.h"
#include "stage/Keyring.h"
#include "stage/WaylandClipboardReader.h"
#include "stage/Windows.h"

using namespace Qt::StringLiterals;

Workplace::Workplace(const DesktopOptions &options)
    : desktop(options),
      keys(desktop),
      isStored(!options.keyring || storeToken(desktop, u"jira-api-token"_s, "jira-secret")) {}

void Workplace::start(const QMap<QString, QString> &settings, const QString &program,
                      const QStringList &arguments) {
    brindle = std::make_unique<BrindleProcess>(desktop, settings, program, arguments);
}

bool Workplace::isUp() {
    return desktop.problem().isEmpty() && isStored && brindle->isUp();
}

bool Workplace::openTarget(const QStringList &arguments, TargetKind kind) {
    target = std::make_unique<PasteTarget>(desktop, kind, arguments);
    return waitFor([this] { return target->hasFocus(); });
}

QList<int> Workplace::hotkey() {
    return {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), keyCode(KEY_V)};
}

void Workplace::press() {
    keys.chord(
        {keyCode(KEY_LEFTCTRL), keyCode(KEY_LEFTALT), keyCode(KEY_LEFTMETA), keyCode(KEY_V)});
}

QString Workplace::textName() const {
    return desktop.kind() == DesktopKind::X11 ? u"UTF8_STRING"_s : u"text/plain;charset=utf-8"_s;
}

QByteArray Workplace::clipboardData(const QString &name) const {
    const auto data = hasDataControl(desktop.kind())
                          ? WaylandClipboardReader(desktop.waylandSocket()).data(name)
                          : ClipboardReader(desktop.display()).data(name);
    return data.value_or("(nothing)");
}

QString Workplace::clipboard(const QString &name) const {
    return QString::fromUtf8(clipboardData(name.isEmpty() ? textName() : name));
}

bool Workplace::clipboardBecomes(const QString &text) const {
    return waitFor([&] { return clipboard() == text; });
}

bool Workplace::shows(const QString &title) const {
    return waitFor([&] { return windowTitles(desktop.display()).contains(title); });
}
