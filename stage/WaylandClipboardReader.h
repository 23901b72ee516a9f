#pragma once

#include "stage/CompositorConnection.h"

#include <QStringList>

#include <optional>

struct zwlr_data_control_device_v1;
struct zwlr_data_control_offer_v1;

/// Reads the clipboard of a Wayland desktop as another program would, in front or not, never longer
/// than its deadline. Calls block the thread; an owner in the same thread would not answer.
class WaylandClipboardReader {
public:
    /// By the path of the compositor's socket. Each call gives up after `milliseconds` in all.
    explicit WaylandClipboardReader(const QString &socket, int milliseconds = 5000);
    ~WaylandClipboardReader();

    /// The names on offer, in the owner's order; nothing when there is no owner.
    std::optional<QStringList> targets();
    /// The bytes of one of them; nothing when it is not on offer or the owner does not come to the
    /// end. problem() tells which.
    std::optional<QByteArray> data(const QString &target);
    /// Why the last call gave nothing; empty when it did not.
    QString problem() const { return m_problem; }

private:
    struct Listeners;
    std::optional<QByteArray> readAll(int file);

    CompositorConnection m_compositor;
    int m_milliseconds;
    QString m_problem;
    zwlr_data_control_device_v1 *m_device = nullptr;
    QHash<zwlr_data_control_offer_v1 *, QStringList> m_offers; ///< those that are not gone
    zwlr_data_control_offer_v1 *m_selection = nullptr;
};
