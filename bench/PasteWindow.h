#pragma once

#include "stage/XConnection.h"

#include <QByteArray>

#include <optional>

/// A paste as a PasteWindow saw it.
struct Landed {
    QByteArray type; ///< the target it fetched
    QByteArray text;
    double at; ///< when it had the text, by now()
};

/// A window to paste into that does nothing but what every program does on Ctrl+V: it asks what is
/// offered and fetches the best of it. So what is measured is the other side. Calls block the
/// thread; the owner of the clipboard must be another process.
class PasteWindow {
public:
    /// Shows the window on that display and waits until it has the keyboard focus.
    explicit PasteWindow(const QString &display);

    /// Waits for Ctrl+V and for the text; nothing when it does not come in time.
    std::optional<Landed> waitForPaste();

private:
    void convert(const QByteArray &target, xcb_timestamp_t time);
    QByteArray take();

    XConnection m_x;
    xcb_window_t m_window;
};
