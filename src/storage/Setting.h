#pragma once

#include "model/PasteFormat.h"
#include "model/TypeEmojiMapping.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

class Defaults;
class Settings;

/// How a value is written to the defaults store; nothing means that the key is removed.
std::optional<QVariant> storedForm(const QString &value);
std::optional<QVariant> storedForm(quint32 value);
std::optional<QVariant> storedForm(bool value);
std::optional<QVariant> storedForm(PasteFormat value);
std::optional<QVariant> storedForm(const QList<TypeEmojiMapping> &value);
std::optional<QVariant> storedForm(const std::optional<QDateTime> &value);

/// One preference: its value in memory, its key in the store and how it is loaded. Reading is a
/// call, `settings.email()`; assigning, `settings.email = text`, stores the value at once and tells
/// the observers of Settings. Main thread only.
template <class T>
class Setting {
public:
    using Load = std::function<T(const Defaults &, const QString &key)>;
    using AfterStore = void (Settings::*)(const T &previous);

    Setting(Settings &owner, const QString &key, const Load &load, AfterStore afterStore = nullptr);
    Setting(const Setting &) = delete;

    const T &operator()() const { return m_value; }
    Setting &operator=(T value);
    Setting &operator=(const Setting &) = delete;

    /// Takes what a field shows while it is being typed in, if that is something new. It is on disk
    /// half a second later at the latest, or with Settings::flush().
    void type(T value);

private:
    friend class Settings;

    /// All of an assignment but that it is on disk.
    void assign(T value);

    Settings &m_owner;
    QString m_key;
    T m_value;
    AfterStore m_afterStore;
};
