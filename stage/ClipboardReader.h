#pragma once

#include "stage/XConnection.h"

#include <QStringList>

/// Reads the CLIPBOARD of a display as another program would, never longer than its deadline.
/// Calls block the thread; an owner in the same thread would not answer.
class ClipboardReader {
public:
    /// Each call gives up after `milliseconds` in all.
    explicit ClipboardReader(const QString &display, int milliseconds = 5000);

    /// The window that owns the clipboard; XCB_NONE when nobody does.
    xcb_window_t owner() const;
    /// The names on offer, in the owner's order; nothing when there is no answer.
    std::optional<QStringList> targets();
    /// The bytes of one target, in one piece or through INCR; nothing when it is refused, the
    /// owner does not answer or the transfer does not come to its end. problem() tells which.
    std::optional<QByteArray> data(const QString &target);
    /// The type that the last data came as.
    QString type() const { return m_type; }
    /// Why the last call gave nothing; empty when it did not.
    QString problem() const { return m_problem; }

private:
    class Request;
    std::optional<QByteArray> read(const QByteArray &target);
    QByteArray contentOf(xcb_get_property_reply_t &piece);

    XConnection m_x;
    int m_milliseconds;
    QString m_type, m_problem;
};
