#pragma once

#include <QWidget>

#include <optional>

/// The grip in the corner of a field that can be made higher: dragged, or moved by the Up and Down
/// keys. To assistive programs it is a slider whose value is the height of the field.
class ResizeGrip : public QWidget {
    Q_OBJECT

public:
    ResizeGrip(int least, int greatest, QWidget *parent = nullptr);

    int least() const { return m_least; }
    int greatest() const { return m_greatest; }
    int fieldHeight() const { return m_fieldHeight; }
    /// Tells it how high the field is now.
    void setFieldHeight(int height);
    /// Asks for a height as a key does.
    void moveTo(int height);

Q_SIGNALS:
    /// The pointer is `distance` below where the drag started.
    void dragged(int distance);
    void dragEnded();
    /// A key or an assistive program wants the field this high; within the limits.
    void moved(int height);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_least;
    int m_greatest;
    int m_fieldHeight;
    std::optional<QPoint> m_pressedAt; ///< in global coordinates
    bool m_dragging = false;
};
