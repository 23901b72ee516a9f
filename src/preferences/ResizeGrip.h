#pragma once

#include <QWidget>

#include <optional>

/// The grip in the corner of a field that can be made higher: dragged, or moved by the Up and Down
/// keys.
class ResizeGrip : public QWidget {
    Q_OBJECT

public:
    explicit ResizeGrip(QWidget *parent = nullptr);

Q_SIGNALS:
    /// The pointer is `distance` below where the drag started.
    void dragged(int distance);
    void dragEnded();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    std::optional<QPoint> m_pressedAt; ///< in global coordinates
    bool m_dragging = false;
};
