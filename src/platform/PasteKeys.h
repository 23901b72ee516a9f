#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>

/// What each key types without modifiers in the layout in force, by virtual key code (0 to 127, the
/// codes in which hotkeys are stored); 0 where a key types no single character.
using KeyLayout = std::array<char32_t, 128>;

/// A program that presses the paste keys, with its arguments.
struct ScriptedPaste {
    QString program;
    QStringList arguments;
};

/// The combination that pastes: Ctrl, perhaps Shift, and a letter.
struct PasteChord {
    quint16 vKey = 9; ///< virtual key code of the letter
    bool withShift = false;
};

/// Whether keys can be pressed for the user.
struct PasteAccess {
    enum class State {
        Ready,
        NeedsConsent, ///< the desktop asks the user first, see PasteKeys::requestAccess()
        Impossible,
    };

    State state = State::Ready;
    QString reason; ///< empty when ready
    /// The words of a button that has the desktop ask the user, where it can ask: also where it is
    /// Impossible only until the user has said yes.
    QString offer = {};
};

/// Pressing the paste keys in the application in front. Main thread only. No call waits for another
/// program but the display server; answers come through callbacks on the main thread, perhaps
/// before the call returns, and not at all once the port is gone.
class PasteKeys {
public:
    virtual ~PasteKeys() = default;

    /// As far as is known now.
    virtual PasteAccess access() const = 0;

    /// Calls `known` as soon as access() is what the desktop says and no guess.
    virtual void whenAccessKnown(std::function<void()> known) { known(); }

    /// `changed` is called when access() has changed by itself; an empty function ends that.
    virtual void onAccessChange(std::function<void()> changed) { Q_UNUSED(changed) }

    /// Asks the user for the consent that the desktop wants. Only when the user has asked for it.
    virtual void requestAccess(std::function<void(const PasteAccess &)> done) = 0;

    /// The layout in force; nothing when it can't be read or does not matter here.
    virtual std::optional<KeyLayout> layout() = 0;

    /// A paste is certain to come in a moment: opens what would have to be opened first.
    virtual void prepare() {}

    /// Waits until the keys that the user holds would not get into the way of a paste, a second at
    /// most where it can let go of them for the user; at once where held keys do no harm.
    virtual void settle(std::function<void()> done) = 0;

    /// Presses and releases `chord`; false when that was not possible.
    virtual void press(const PasteChord &chord, std::function<void(bool pressed)> done) = 0;

    /// The program to fall back on when keys can't be pressed; nothing where none can do it.
    virtual std::optional<ScriptedPaste> scriptedPaste() const = 0;
};
