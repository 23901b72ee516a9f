#pragma once

#include "preferences/kit/KeyboardFocus.h"

#include <QLabel>

/// A text that wraps and that can be selected and copied, with mouse and keyboard. Main thread
/// only.
class SelectableLabel : public QLabel {
    Q_OBJECT

public:
    explicit SelectableLabel(Qt::TextFormat format, QWidget *parent = nullptr);

public Q_SLOTS:
    /// Puts what is selected on the clipboard, with its emphasis.
    void copy();
    void selectAll();

protected:
    /// The ring around it has corners of this radius.
    void setRingRadius(qreal radius) { m_ringRadius = radius; }

    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void press(Qt::Key key);

    KeyboardFocus m_ring;
    qreal m_ringRadius;
};
