#pragma once

#include <QWidget>

class JiraPreviewSource;
class Switch;
class WrappingText;

/// The tab of the hotkeys, the start at login and the form of what is pasted. Main thread only.
class GeneralTab : public QWidget {
    Q_OBJECT

public:
    /// `sample` is the link shown as an example; it must outlive the tab.
    explicit GeneralTab(JiraPreviewSource &sample, QWidget *parent = nullptr);

private:
    QWidget *hotkeySection();
    QWidget *startupSection();
    QWidget *outputSection();
    QWidget *exampleLine();
    QWidget *restoreSwitch();
    void launchAtLoginSwitched(bool on);
    void refreshExample();

    JiraPreviewSource &m_sample;
    Switch *m_launchAtLogin = nullptr;
    WrappingText *m_example = nullptr;
};
