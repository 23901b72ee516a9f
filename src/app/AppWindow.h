#pragma once

#include <QMainWindow>
#include <QTimer>

#include <functional>

/// One of the two windows: a view with the main menu above it. Closing hides it; it is made once
/// and kept. Main thread only.
class AppWindow : public QMainWindow {
    Q_OBJECT

public:
    /// What the entries of the application menu do; the edit menu acts on the focused field.
    struct MenuActions {
        std::function<void()> checkForUpdates;
        std::function<void()> hide;
        std::function<void()> quit;
    };

    AppWindow(const QString &title, QWidget *view, const MenuActions &actions);

    /// Not resizable: the size is the one that the view asks for, or what of it the screen has room
    /// for; the view is scrolled when it needs more.
    void fixSize();

    /// Shows the window in front of all others; the first time in the middle of the screen.
    void present();

private:
    void addApplicationMenu(const MenuActions &actions);
    void comeUp();

    QTimer m_lookAgain;
    bool m_wasPlaced = false;
};
