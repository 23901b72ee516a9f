#pragma once

#include "platform/Defaults.h"

#include <QSettings>

/// Preferences in org.ostrowind.brindle.conf in the user's configuration folder. A flush replaces
/// the file as a whole. A file that can't be understood is copied aside before the first write, so
/// that nothing in it is lost.
class SettingsFile : public Defaults {
public:
    SettingsFile();
    explicit SettingsFile(const QString &path);
    ~SettingsFile() override;

    std::optional<QString> string(const QString &key) const override;
    std::optional<qint64> integer(const QString &key) const override;
    std::optional<bool> boolean(const QString &key) const override;
    std::optional<double> real(const QString &key) const override;
    std::optional<QByteArray> data(const QString &key) const override;
    void set(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    void flush() override;
    bool isWritable() const override { return m_file.isWritable(); }
    void onProblem(std::function<void(const QString &)> report) override;

private:
    /// Leaves alone when it writes; the toolkit's own would in the next turn of the event loop.
    class File : public QSettings {
    public:
        using QSettings::QSettings;

    protected:
        bool event(QEvent *event) override;
    };

    std::optional<QVariant> scalar(const QString &key) const;
    void load();
    bool keepDamaged();
    void mendTexts();
    void removeNamelessLock() const;
    void report(const QString &problem);

    File m_file;
    bool m_isDirty = false; ///< something is not on disk yet
    QStringList m_unreported;
    std::function<void(const QString &)> m_report;
    bool m_isDamaged = false; ///< the file on disk holds what we could not read
};
