#pragma once

#include <QWidget>

class DesktopHotkey;
class DesktopNotice;
class JiraPreviewSource;
class Switch;
class WrappingText;

/// The tab of the hotkeys, the start at login and the form of what is pasted, and of what the
/// desktop withholds. Main thread only.
class GeneralTab : public QWidget {
    Q_OBJECT

public:
    /// `sample` is the link shown as an example; it must outlive the tab.
    explicit GeneralTab(JiraPreviewSource &sample, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;

private:
    QWidget *hotkeySection();
    QWidget *recorders();
    QWidget *startupSection();
    QWidget *outputSection();
    QWidget *exampleLine();
    QWidget *restoreSwitch();
    void launchAtLoginSwitched(bool on);
    void refreshExample();
    void refreshHotkeys();

    JiraPreviewSource &m_sample;
    DesktopNotice *m_notice = nullptr;
    QWidget *m_hotkeySection = nullptr;
    QWidget *m_recorders = nullptr;           ///< where hotkeys are ours to choose
    DesktopHotkey *m_desktopHotkey = nullptr; ///< where not
    Switch *m_launchAtLogin = nullptr;
    WrappingText *m_example = nullptr;
};
