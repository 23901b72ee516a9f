#pragma once

#include "platform/Workspace.h"

/// The settings programs of the desktops we know, and the desktop's own choice for addresses.
class DesktopWorkspace : public Workspace {
public:
    QString openAccessibilitySettings() override;
    bool openUrl(const QUrl &url) override;
};
