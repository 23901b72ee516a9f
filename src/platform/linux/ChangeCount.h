#pragma once

#include "platform/Pasteboard.h"

#include <functional>
#include <optional>

/// Counts the changes of a clipboard for its server.
class ChangeCount {
public:
    qint64 value() const { return m_value; }

    void changedByOthers() { ++m_value; }

    /// We have taken the clipboard with `contents`. Returns the count of that.
    qint64 changedByUs(const PasteboardItem &contents);

    /// We have tried to, in vain.
    void failedToChange() { m_written.reset(); }

    /// Decides whether foreign changes since our last write count: a clipboard manager that took
    /// over what we wrote has changed nothing. One look decides (`readText` reads the plain text),
    /// and the next foreign change counts again.
    void settle(const std::function<std::optional<QString>()> &readText);

private:
    struct Written {
        qint64 count;
        QByteArray text;
    };

    qint64 m_value = 0;
    std::optional<Written> m_written; ///< our last write, until a foreign change is certain
};
