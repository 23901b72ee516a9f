#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

/// The per-user store of preferences. Main thread only. Readers give nothing for a missing key and
/// for a value that is not of the type asked for.
class Defaults {
public:
    virtual ~Defaults() = default;

    virtual std::optional<QString> string(const QString &key) const = 0;
    virtual std::optional<qint64> integer(const QString &key) const = 0;
    virtual std::optional<bool> boolean(const QString &key) const = 0;
    virtual std::optional<double> real(const QString &key) const = 0;
    virtual std::optional<QByteArray> data(const QString &key) const = 0;

    /// Stores a QString, integer, bool, double or QByteArray, at first in memory.
    virtual void set(const QString &key, const QVariant &value) = 0;
    virtual void remove(const QString &key) = 0;

    /// Has on disk what was stored and removed. The end of the store does so as well.
    virtual void flush() = 0;

    /// Whether what is stored can be had on disk at all.
    virtual bool isWritable() const = 0;

    /// Called with a short sentence whenever the store turns out damaged or can't be written; also
    /// at once for trouble met before it was set.
    virtual void onProblem(std::function<void(const QString &)> report) = 0;
};
