#pragma once

#include "platform/Workspace.h"

/// The settings programs of the desktops we know.
class DesktopWorkspace : public Workspace {
public:
    QString openAccessibilitySettings() override;
};
