#pragma once

#include <QScrollArea>

/// The view of a window of fixed size, as large as it asks for or as its screen has room for beside
/// the menu bar and the window's frame; scrolled when it needs more. Main thread only.
class FittedView : public QScrollArea {
    Q_OBJECT

public:
    /// Takes the view over.
    explicit FittedView(QWidget *view);

    /// The part of its screen that the window may fill, without its frame.
    static QRect roomFor(const QWidget &window);

    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QSize m_room;
};
