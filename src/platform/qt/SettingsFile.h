#pragma once

#include "platform/Defaults.h"

#include <QSettings>

/// Preferences in org.ostrowind.brindle.conf in the user's configuration folder. Every assignment
/// is on disk when it returns, the file replaced as a whole. A file that can't be understood is
/// copied aside before the first write, so that nothing in it is lost.
class SettingsFile : public Defaults {
public:
    SettingsFile();
    explicit SettingsFile(const QString &path);

    std::optional<QString> string(const QString &key) const override;
    std::optional<qint64> integer(const QString &key) const override;
    std::optional<bool> boolean(const QString &key) const override;
    std::optional<double> real(const QString &key) const override;
    std::optional<QByteArray> data(const QString &key) const override;
    void set(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    void onProblem(std::function<void(const QString &)> report) override;

private:
    std::optional<QVariant> scalar(const QString &key) const;
    void load();
    void save();
    void removeNamelessLock() const;
    void report(const QString &problem);

    QSettings m_file;
    QStringList m_unreported;
    std::function<void(const QString &)> m_report;
    bool m_keepCopy = false; ///< the file on disk holds what we could not read
};
