#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <chrono>
#include <optional>

/// What each key types without modifiers in the layout in force, by virtual key code (0 to 127, the
/// codes in which hotkeys are stored); 0 where a key types no single character.
using KeyLayout = std::array<char32_t, 128>;

/// A program that presses the paste keys, with its arguments.
struct ScriptedPaste {
    QString program;
    QStringList arguments;
};

/// Faking keys, and what has to be known before.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    /// Whether keys can be posted to other applications at all. Any thread.
    virtual bool isTrusted() = 0;

    /// Whether somebody holds the keyboard for themselves, as password prompts and lock screens do.
    /// Main thread.
    virtual bool isSecureInputActive() = 0;

    /// Whether the object in focus calls itself a password field. No answer within `deadline`
    /// counts as no. Blocks; background threads only.
    virtual bool isPasswordFieldFocused(std::chrono::milliseconds deadline) = 0;

    /// The layout in force, or nothing when it can't be read. Main thread.
    virtual std::optional<KeyLayout> currentLayout() = 0;

    /// Waits until the user has let go of modifiers and hotkeys; after a second lets go for them.
    /// Blocks; background threads only.
    virtual void settleHeldKeys() = 0;

    /// Presses and releases the paste combination with `vKey` (a virtual key code) as its letter.
    /// False when the keys can't be posted. Background threads only.
    virtual bool postPaste(quint16 vKey) = 0;

    /// The program to fall back on when keys can't be posted.
    virtual ScriptedPaste scriptedPaste() const = 0;
};
