#pragma once

#include "model/HotkeyFormat.h"
#include "platform/Dispatch.h"

#include <QObject>

#include <array>
#include <optional>

class QKeyEvent;

/// Which of the two hotkeys is recorded.
enum class RecordedHotkey { Primary, Alternate };

/// Recording a hotkey: one at a time, by the first key pressed with a modifier in any window of
/// ours. While keys are listened for, the registered hotkeys are given back to the desktop, or they
/// could not be recorded anew. Main thread only.
class HotkeyRecording : public QObject {
    Q_OBJECT

public:
    static HotkeyRecording &shared();

    /// What is being recorded, if anything.
    std::optional<RecordedHotkey> current() const { return m_current; }

    /// Starts recording `hotkey` (and stops recording the other), or stops if it is recorded.
    void toggle(RecordedHotkey hotkey);

    /// Whether the row of a hotkey is on the screen: keys are listened for only while that of the
    /// recorded one is.
    void setOnScreen(RecordedHotkey hotkey, bool isOnScreen);

    /// The hotkey in the settings.
    static KeyCombo stored(RecordedHotkey hotkey);
    /// Stores a hotkey in the settings and registers it; ends a recording of it.
    void store(RecordedHotkey hotkey, const KeyCombo &combo);

Q_SIGNALS:
    /// current() has changed.
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    HotkeyRecording();

    bool isListening() const;
    bool isTaken(const QKeyEvent &key) const;
    bool keyPressed(const QKeyEvent &key);
    void keyReleased(const QKeyEvent &key);
    void letGo();
    void setCurrent(std::optional<RecordedHotkey> hotkey);
    /// Gives the registered hotkeys back, or takes them again, as the state demands.
    void shareHotkeys();

    std::optional<RecordedHotkey> m_current;
    std::array<bool, 2> m_onScreen{};
    bool m_isStoring = false;         ///< a key was taken and is stored in a moment
    std::optional<quint32> m_heldKey; ///< scan code of the key that was taken, while it is down
    WorkItem m_release;               ///< of that key, not yet certain
    bool m_hotkeysAreAway = false;    ///< the registered ones
};
