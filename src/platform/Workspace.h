#pragma once

#include <QString>
#include <QUrl>

/// The desktop's own places. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens the settings page on which the user can let Brindle press keys. Returns what is
    /// missing when there is no such page, else an empty text.
    virtual QString openAccessibilitySettings() = 0;

    /// Opens `url` in whatever handles it; false when nothing does.
    virtual bool openUrl(const QUrl &url) = 0;
};
