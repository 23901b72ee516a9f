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

    bool isAvailable() override;
    void onChange(std::function<void()> changed) override;

private:
    bool hasStatusNotifierHost() const;
    bool hasTraySelectionOwner() const;

    std::shared_ptr<X11Connection> m_x11;
    xcb_atom_t m_traySelection = XCB_ATOM_NONE;
    std::function<void()> m_changed;

private Q_SLOTS:
    void somethingChanged();
};
