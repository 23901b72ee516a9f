#pragma once

#include "preferences/PreferencesTab.h"
#include "preferences/kit/KeyboardFocus.h"

#include <QAbstractButton>

/// The row of one tab in the sidebar. Rows with the same parent choose one of them, by click or by
/// the arrow keys.
class SidebarRow : public QAbstractButton {
    Q_OBJECT

public:
    explicit SidebarRow(PreferencesTab tab, QWidget *parent = nullptr);

    PreferencesTab tab() const { return m_tab; }
    QSize sizeHint() const override;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    PreferencesTab m_tab;
    KeyboardFocus m_ring;
};
