#pragma once

#include <QFrame>

/// A small borderless window that hangs below something, or stands above it where there is no room.
class Popover : public QFrame {
    Q_OBJECT

public:
    /// `type` is Qt::ToolTip for one that leaves the keyboard where it is, Qt::Popup for one that
    /// takes it and closes at a click elsewhere.
    Popover(Qt::WindowType type, QWidget *parent);

    /// Shows it at `anchor`, in global coordinates, within the screen; less high than it wants to
    /// be, down to its least size, where there is not the room.
    void showAt(const QRect &anchor);

Q_SIGNALS:
    /// It was on the screen and no longer is.
    void closed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
};
