#pragma once

#include "preferences/PreferencesTab.h"
#include "preferences/kit/KeyboardFocus.h"

#include <QAbstractButton>

/// The row of one tab in the sidebar. Rows with the same parent choose one of them, by click or by
/// the arrow keys. Return on a row that shows its ring is
/// the row's and presses no default button.
class SidebarRow : public QAbstractButton {
    Q_OBJECT

public:
    explicit SidebarRow(PreferencesTab tab, QWidget *parent = nullptr);

    PreferencesTab tab() const { return m_tab; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    PreferencesTab m_tab;
    KeyboardFocus m_ring;
};
