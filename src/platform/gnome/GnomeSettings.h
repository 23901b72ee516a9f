#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct _GSettings;

/// One group of the desktop's settings. What is written is there for others a moment later. Main
/// thread; nothing here waits but flush().
class GnomeSettings {
public:
    /// The group of that schema, at `path` where the schema has no place of its own; nothing where
    /// the schema is not installed.
    static std::optional<GnomeSettings> open(const char *schema, const QString &path = {});

    /// The names of the keys that hold lists of texts.
    QStringList listKeys() const;
    QStringList list(const QString &key) const;
    QString text(const QString &key) const;
    uint number(const QString &key) const;
    /// What the key is for, in words of the desktop; may be empty.
    QString summary(const QString &key) const;

    void setList(const QString &key, const QStringList &values);
    void setText(const QString &key, const QString &value);
    void reset(const QString &key);

    /// Returns when everything written is on its way to the disk.
    static void flush();

private:
    struct Release {
        void operator()(_GSettings *settings) const;
    };
    explicit GnomeSettings(_GSettings *settings) : m_settings(settings) {}

    std::unique_ptr<_GSettings, Release> m_settings;
};
