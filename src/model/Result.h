#pragma once

#include <QString>

#include <optional>
#include <utility>

/// What something that can fail has come to: a value, or the reason why there is none.
template <class T>
class Result {
public:
    Result(T value) : m_value(std::move(value)) {}

    static Result failure(const QString &reason) {
        Result result;
        result.m_error = reason;
        return result;
    }

    explicit operator bool() const { return m_value.has_value(); }

    /// Only with a value.
    const T &operator*() const { return *m_value; }
    const T *operator->() const { return &*m_value; }

    /// Empty with a value.
    const QString &error() const { return m_error; }

private:
    Result() = default;

    std::optional<T> m_value;
    QString m_error;
};
