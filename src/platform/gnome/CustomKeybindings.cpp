#include "platform/gnome/CustomKeybindings.h"

#include "platform/gnome/Accelerators.h"
#include "platform/gnome/GnomeSettings.h"
#include "platform/gnome/KeyHolders.h"
#include "platform/linux/KeyCodes.h"

#include <utility>

namespace {

const QString folder =
    QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/");
const QString listKey = QStringLiteral("custom-keybindings");
const QString objectPath = QStringLiteral("/org/ostrowind/brindle/keys");

/// A held key runs its command again and again, which begins after the delay in the settings.
std::chrono::milliseconds longestRepeatDelay() {
    constexpr std::chrono::milliseconds usual{500};
    constexpr std::chrono::milliseconds forTheCommand{200};
    const auto keyboard = GnomeSettings::open("org.gnome.desktop.peripherals.keyboard");
    const auto delay =
        keyboard ? std::chrono::milliseconds(keyboard->number(QStringLiteral("delay"))) : usual;
    return delay + forTheCommand;
}

/// One of ours.
struct Shortcut {
    QString place;
    QString name;
    QString command;
    QString binding;
};

/// The most hotkeys there can be.
constexpr int mostHotkeys = 2;

QString placeOf(int hotkey) {
    return folder + QStringLiteral("brindle-%1/").arg(hotkey + 1);
}
const QString placeOfProbe = folder + QStringLiteral("brindle-keys-up/");

QStringList ourPlaces() {
    QStringList all{placeOfProbe};
    for (int hotkey = 0; hotkey < mostHotkeys; ++hotkey)
        all.append(placeOf(hotkey));
    return all;
}

void put(const Shortcut &shortcut) {
    if (auto settings = GnomeSettings::open(KeyHolders::customKeybinding, shortcut.place)) {
        settings->setText(QStringLiteral("name"), shortcut.name);
        settings->setText(QStringLiteral("command"), shortcut.command);
        settings->setText(QStringLiteral("binding"), shortcut.binding);
    }
}

/// The list of shortcuts with those of ours that are in `places`, and no others of ours.
void listOurs(const QStringList &places) {
    auto settings = GnomeSettings::open(KeyHolders::mediaKeys);
    if (!settings)
        return;
    const QStringList before = settings->list(listKey);
    QStringList after = before;
    after.removeIf([ours = ourPlaces()](const QString &place) { return ours.contains(place); });
    after += places;
    if (after != before)
        settings->setList(listKey, after);
}

} // namespace

QString CustomKeybindings::problem() {
    if (!GnomeSettings::open(KeyHolders::mediaKeys))
        return QStringLiteral("the settings of GNOME's shortcuts are not installed");
    return {};
}

CustomKeybindings::CustomKeybindings(QString command, const QDBusConnection &bus,
                                     std::shared_ptr<KeyProbe> probe)
    : m_command(std::move(command)),
      m_bus(bus),
      m_probe(std::move(probe)),
      m_hold(longestRepeatDelay()) {
    m_bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
}

CustomKeybindings::~CustomKeybindings() {
    unbind();
    m_bus.unregisterObject(objectPath);
    // A shortcut must not outlive the program.
    GnomeSettings::flush();
}

void CustomKeybindings::bind(const QList<KeyCombo> &all, std::function<void()> pressed,
                             std::function<void()>, Outcome outcome) {
    QList<Refusal> refusals;
    QList<KeyCombo> free;
    for (const KeyCombo &combo : all) {
        const QString holder = KeyHolders::of(combo, ourPlaces());
        if (Accelerators::of(combo).isEmpty())
            refusals.append({combo, QStringLiteral("is on no key of this keyboard")});
        else if (!holder.isEmpty())
            refusals.append({combo, QStringLiteral("is taken by ") + holder});
        else
            free.append(combo);
    }
    unbind();
    m_pressed = std::move(pressed);
    if (!free.isEmpty())
        write(free);
    outcome(refusals);
}

void CustomKeybindings::write(const QList<KeyCombo> &all) {
    QList<Shortcut> shortcuts;
    for (const KeyCombo &combo : all.first(std::min<qsizetype>(all.size(), mostHotkeys)))
        shortcuts.append({placeOf(static_cast<int>(shortcuts.size())),
                          QStringLiteral("Brindle: Enrich & Paste"), m_command,
                          Accelerators::of(combo)});
    if (m_probe->isWanted)
        shortcuts.append({placeOfProbe, QStringLiteral("Brindle: no key is held"),
                          QStringLiteral("gdbus call --session --dest %1 --object-path %2 --method "
                                         "org.ostrowind.brindle.Keys.AreUp")
                              .arg(m_bus.baseService(), objectPath),
                          QString::fromLatin1(KeyProbe::trigger)});
    QStringList places;
    for (const Shortcut &shortcut : std::as_const(shortcuts)) {
        put(shortcut);
        places.append(shortcut.place);
    }
    listOurs(places);
    m_probe->isBound = m_probe->isWanted;
}

void CustomKeybindings::unbind() {
    m_pressed = nullptr;
    m_probe->isBound = false;
    listOurs({});
    for (const QString &place : ourPlaces()) {
        if (auto settings = GnomeSettings::open(KeyHolders::customKeybinding, place)) {
            for (const char *key : {"name", "command", "binding"})
                settings->reset(QString::fromLatin1(key));
        }
    }
}

bool CustomKeybindings::pressedByCommand() {
    if (!m_pressed)
        return false;
    if (m_hold.press()) {
        const auto pressed = m_pressed; // a copy, since it may bind anew
        pressed();
    }
    return true;
}

void CustomKeybindings::AreUp() {
    if (m_probe->fired)
        m_probe->fired();
}

std::optional<quint32> CustomKeybindings::virtualKey(quint32 nativeScanCode) const {
    return KeyCodes::virtualFromX11(nativeScanCode); // the toolkit counts as X does
}
