#pragma once

/// The running application as the rooms below it see it: a few things to ask and to tell. Main
/// thread only.
class AppDelegate {
public:
    /// The running application, or null (in tests, before launch).
    static AppDelegate *shared();

    AppDelegate(const AppDelegate &) = delete;
    AppDelegate &operator=(const AppDelegate &) = delete;

    /// Whether a fetch is in flight, or held up by a locked keyring; the status icon is dim then.
    static bool isFetching();

    virtual void openPreferences() = 0;
    virtual void refreshStatusItemImage() = 0;

    /// Registers the hotkeys of the settings anew and shows them in the status menu.
    virtual void reinstallHotkey() = 0;

protected:
    AppDelegate() = default;
    virtual ~AppDelegate();

    /// Makes this the running application.
    void publish();
};
