#include "preferences/hotkey/HotkeyRecording.h"

#include "desktop/AppDelegate.h"
#include "desktop/HotkeyManager.h"
#include "platform/Platform.h"
#include "platform/wording.h"
#include "storage/LogStore.h"
#include "storage/Settings.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace {

/// The modifiers of a hotkey that are down.
quint32 modifiersOf(const QKeyEvent &key) {
    quint32 flags = 0;
    const Qt::KeyboardModifiers held = key.modifiers();
    if (held & Qt::ControlModifier)
        flags |= HotkeyFormat::controlFlag;
    if (held & Qt::AltModifier)
        flags |= HotkeyFormat::optionFlag;
    if (held & Qt::ShiftModifier)
        flags |= HotkeyFormat::shiftFlag;
    if (held & Qt::MetaModifier)
        flags |= HotkeyFormat::commandFlag;
    return HotkeyFormat::carbonModifiers(flags);
}

/// Whether the key only changes the meaning of others.
bool isModifier(int key) {
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

std::optional<KeyCombo> comboOf(const QKeyEvent &key) {
    const quint32 modifiers = modifiersOf(key);
    if (modifiers == 0 || isModifier(key.key()))
        return std::nullopt;
    const auto code = Platform::current().hotkeys->virtualKey(key.nativeScanCode());
    if (!code)
        return std::nullopt;
    return KeyCombo{*code, modifiers};
}

bool isApplicationActive() {
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

} // namespace

HotkeyRecording &HotkeyRecording::shared() {
    static HotkeyRecording recording;
    return recording;
}

HotkeyRecording::HotkeyRecording() {
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this] {
        if (!isApplicationActive())
            letGo(); // whoever has the keyboard now sees the release
        shareHotkeys();
    });
    connect(qGuiApp, &QCoreApplication::aboutToQuit, this, [this] {
        letGo();
        setCurrent(std::nullopt);
    });
}

void HotkeyRecording::toggle(RecordedHotkey hotkey) {
    setCurrent(m_current == hotkey ? std::nullopt : std::optional(hotkey));
}

void HotkeyRecording::setOnScreen(RecordedHotkey hotkey, bool isOnScreen) {
    m_onScreen[static_cast<size_t>(hotkey)] = isOnScreen;
    shareHotkeys();
}

KeyCombo HotkeyRecording::stored(RecordedHotkey hotkey) {
    const Settings &settings = Settings::shared();
    return hotkey == RecordedHotkey::Primary
               ? KeyCombo{settings.hotkeyKeyCode(), settings.hotkeyModifiers()}
               : KeyCombo{settings.hotkey2KeyCode(), settings.hotkey2Modifiers()};
}

void HotkeyRecording::store(RecordedHotkey hotkey, const KeyCombo &combo) {
    Settings &settings = Settings::shared();
    const bool isPrimary = hotkey == RecordedHotkey::Primary;
    const KeyCombo before = stored(hotkey);
    if (combo.keyCode != before.keyCode)
        (isPrimary ? settings.hotkeyKeyCode : settings.hotkey2KeyCode) = combo.keyCode;
    if (combo.modifiers != before.modifiers)
        (isPrimary ? settings.hotkeyModifiers : settings.hotkey2Modifiers) = combo.modifiers;
    if (combo.modifiers != 0 && !combo.isSet()) // nobody will try to register it
        log(QStringLiteral("hotkey: %1 %2")
                .arg(wording().describeHotkey(combo.keyCode, combo.modifiers),
                     HotkeyManager::shared().problemOf(combo)));
    if (!m_heldKey) { // else they come back once it is let go
        m_hotkeysAreAway = false;
        if (AppDelegate *app = AppDelegate::shared())
            app->reinstallHotkey();
    }
    setCurrent(m_current == hotkey ? std::nullopt : m_current);
}

void HotkeyRecording::setCurrent(std::optional<RecordedHotkey> hotkey) {
    m_current = hotkey;
    shareHotkeys();
    Q_EMIT changed();
}

bool HotkeyRecording::isListening() const {
    return m_current && m_onScreen[static_cast<size_t>(*m_current)];
}

void HotkeyRecording::shareHotkeys() {
    const bool keepsOthersOut = isListening() || m_isStoring || m_heldKey;
    qGuiApp->removeEventFilter(this);
    if (keepsOthersOut)
        qGuiApp->installEventFilter(this);

    AppDelegate *app = AppDelegate::shared();
    const bool wantAway = app && keepsOthersOut && isApplicationActive();
    if (wantAway == m_hotkeysAreAway)
        return;
    m_hotkeysAreAway = wantAway;
    if (wantAway)
        HotkeyManager::shared().uninstall();
    else if (app)
        app->reinstallHotkey();
}

bool HotkeyRecording::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Or a menu's shortcut would get the key, and the press would never come.
        if (!isTaken(static_cast<QKeyEvent &>(*event)))
            break;
        event->accept();
        return true;
    case QEvent::KeyPress:
        return keyPressed(static_cast<QKeyEvent &>(*event));
    case QEvent::KeyRelease:
        keyReleased(static_cast<QKeyEvent &>(*event));
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool HotkeyRecording::isTaken(const QKeyEvent &key) const {
    if (m_heldKey == key.nativeScanCode() || m_isStoring)
        return true;
    return isListening() && comboOf(key);
}

bool HotkeyRecording::keyPressed(const QKeyEvent &key) {
    if (!isTaken(key))
        return false;
    if (m_heldKey == key.nativeScanCode())
        m_release.cancel();
    const auto combo = comboOf(key);
    if (m_isStoring || !isListening() || !combo)
        return true;
    m_isStoring = true;
    // Registered while its key is down, the new hotkey would be pressed by the next repeat.
    if (m_hotkeysAreAway)
        m_heldKey = key.nativeScanCode();
    Platform::current().dispatch->toMain([this, hotkey = *m_current, combo = *combo] {
        m_isStoring = false;
        store(hotkey, combo);
    });
    return true;
}

void HotkeyRecording::keyReleased(const QKeyEvent &key) {
    if (key.isAutoRepeat() || m_heldKey != key.nativeScanCode())
        return;
    // A repeat is a release and a press, and the toolkit knows it as one only if both are there
    // when it looks.
    constexpr std::chrono::milliseconds repeatGap{50};
    m_release.cancel();
    m_release = Platform::current().dispatch->after(repeatGap, [this] {
        letGo();
        shareHotkeys();
    });
}

void HotkeyRecording::letGo() {
    m_release.cancel();
    m_heldKey.reset();
}
