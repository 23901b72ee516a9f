#include "preferences/emoji/EmojiGrid.h"

#include "preferences/kit/SlimScrollBar.h"
#include "preferences/kit/Style.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace {

/// An emoji on the tint of the pointer or of the keyboard's mark.
class CellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override {
        return {EmojiGrid::cellSide(), EmojiGrid::cellSide()};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override {
        const bool current = option.state.testFlag(QStyle::State_HasFocus);
        QColor tint = option.palette.color(QPalette::WindowText);
        tint.setAlphaF(0.1F);
        if (current || option.state.testFlag(QStyle::State_MouseOver))
            Style::paintBox(*painter, option.rect, Style::chipRadius, tint);
        if (current)
            Style::paintFocusRing(*painter, option.rect, Style::chipRadius, option.palette);
        painter->save();
        painter->setFont(Style::font(Style::TextRole::Emoji));
        painter->setPen(option.palette.color(QPalette::WindowText));
        painter->drawText(option.rect, Qt::AlignCenter, index.data().toString());
        painter->restore();
    }
};

} // namespace

EmojiGrid::EmojiGrid(QWidget *parent) : QListView(parent) {
    setModel(&m_model);
    setItemDelegate(new CellDelegate(this));
    setViewMode(QListView::IconMode);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setUniformItemSizes(true);
    setGridSize({cellSide(), cellSide()});
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    new SlimScrollBar(this);
    connect(this, &QListView::clicked, this, &EmojiGrid::pick);
    connect(this, &QListView::entered, this,
            [this](const QModelIndex &index) { Q_EMIT named(m_emoji.at(index.row()).name); });
}

int EmojiGrid::cellSide() {
    return Style::scaled(34);
}

int EmojiGrid::neededWidth() {
    // One pixel more than the columns, or the view breaks the row before the last of them.
    return columns * cellSide() + SlimScrollBar::extent + 1;
}

void EmojiGrid::showEmoji(const QList<Emoji> &emoji) {
    m_emoji = emoji;
    m_model.clear();
    for (const Emoji &one : emoji) {
        auto *item = new QStandardItem(one.text);
        item->setToolTip(one.name);
        item->setData(one.name, Qt::AccessibleTextRole);
        m_model.appendRow(item);
    }
    if (!emoji.isEmpty())
        setCurrentIndex(m_model.index(0, 0));
}

void EmojiGrid::pick(const QModelIndex &index) {
    if (index.isValid())
        Q_EMIT picked(m_emoji.at(index.row()));
}

void EmojiGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    QListView::currentChanged(current, previous);
    if (current.isValid() && current.row() < m_emoji.size())
        Q_EMIT named(m_emoji.at(current.row()).name);
}

void EmojiGrid::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        pick(currentIndex());
        return;
    case Qt::Key_Up:
        if (currentIndex().row() < columns) {
            Q_EMIT leftUpwards();
            return;
        }
        break;
    case Qt::Key_Down:
        if (currentIndex().row() / columns == (m_model.rowCount() - 1) / columns) {
            Q_EMIT leftDownwards();
            return;
        }
        break;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        // Past the end of a row comes the next one.
        const int row = currentIndex().row() + (event->key() == Qt::Key_Left ? -1 : 1);
        if (row >= 0 && row < m_model.rowCount())
            setCurrentIndex(m_model.index(row, 0));
        return;
    }
    default:
        break;
    }
    QListView::keyPressEvent(event);
}

void EmojiGrid::focusInEvent(QFocusEvent *event) {
    QListView::focusInEvent(event);
    if (currentIndex().isValid())
        Q_EMIT named(m_emoji.at(currentIndex().row()).name);
}
