#pragma once

#include <QScrollBar>

class QAbstractScrollArea;

/// A slim bar over the right edge of something that scrolls up and down, instead of the usual one
/// beside it. It shows itself while there is something to scroll.
class SlimScrollBar : public QScrollBar {
    Q_OBJECT

public:
    static constexpr int extent = 10;

    explicit SlimScrollBar(QAbstractScrollArea *area);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void mirror();

    QAbstractScrollArea *m_area;
};
