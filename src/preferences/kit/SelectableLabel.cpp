#include "preferences/kit/SelectableLabel.h"

#include "preferences/kit/Style.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

SelectableLabel::SelectableLabel(Qt::TextFormat format, QWidget *parent)
    : QLabel(parent), m_ringRadius(Style::chipRadius) {
    constexpr int roomForRing = 3;
    setTextFormat(format);
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::StrongFocus);
    setMargin(roomForRing);
}

void SelectableLabel::copy() {
    press(Qt::Key_C);
}

void SelectableLabel::selectAll() {
    press(Qt::Key_A);
}

/// A label does these, but only when it is asked by a key.
void SelectableLabel::press(Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::ControlModifier);
    keyPressEvent(&event);
}

void SelectableLabel::contextMenuEvent(QContextMenuEvent *event) {
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *copies = menu->addAction(QStringLiteral("&Copy"), this, &SelectableLabel::copy);
    copies->setShortcut(QKeySequence::Copy);
    copies->setEnabled(hasSelectedText());
    menu->addSeparator();
    QAction *selects =
        menu->addAction(QStringLiteral("Select All"), this, &SelectableLabel::selectAll);
    selects->setShortcut(QKeySequence::SelectAll);
    for (QAction *action : {copies, selects})
        action->setShortcutVisibleInContextMenu(true);
    menu->popup(event->globalPos());
    event->accept();
}

void SelectableLabel::focusInEvent(QFocusEvent *event) {
    m_ring.focusIn(*event);
    QLabel::focusInEvent(event);
}

void SelectableLabel::paintEvent(QPaintEvent *event) {
    QLabel::paintEvent(event);
    if (!hasFocus() || !m_ring.isVisible())
        return;
    QPainter painter(this);
    Style::paintFocusRing(painter, rect(), m_ringRadius, palette());
}
