#pragma once

#include "platform/TrayHost.h"
#include "platform/x11/X11Connection.h"

#include <QObject>

/// The two kinds of status areas: a StatusNotifier host on the session bus and an XEmbed tray on
/// the X server. Both may come late, go and come again.
class StatusNotifierTrayHost : public QObject, public TrayHost {
    Q_OBJECT

public:
    explicit StatusNotifierTrayHost(std::shared_ptr<X11Connection> x11);

    std::optional<bool> isAvailable() const override { return m_isAvailable; }
    void onChange(std::function<void()> changed) override;

private:
    void look();
    void askWatcher();
    void found(bool isAvailable);
    bool hasTraySelectionOwner() const;

    std::shared_ptr<X11Connection> m_x11;
    xcb_atom_t m_traySelection = XCB_ATOM_NONE;
    std::function<void()> m_changed;
    std::optional<bool> m_isAvailable;
    int m_looks = 0; ///< only the answer to the last one counts

private Q_SLOTS:
    void somethingChanged() { look(); }
};
