#include "preferences/kit/FlowLayout.h"

#include <QWidget>

#include <limits>

FlowLayout::FlowLayout(QWidget *parent, int hSpacing, int vSpacing)
    : QLayout(parent), m_hSpacing(hSpacing), m_vSpacing(vSpacing) {
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() {
    qDeleteAll(m_items);
}

QLayoutItem *FlowLayout::takeAt(int index) {
    return index >= 0 && index < m_items.size() ? m_items.takeAt(index) : nullptr;
}

template <class Place>
QSize FlowLayout::walk(int width, const Place &place) const {
    int x = 0;
    int y = 0;
    int lineHeight = 0;
    int widest = 0;
    for (QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        if (x > 0 && size.width() > width - x) {
            y += lineHeight + m_vSpacing;
            x = 0;
            lineHeight = 0;
        }
        place(item, QRect(QPoint(x, y), size));
        x += size.width() + m_hSpacing;
        lineHeight = std::max(lineHeight, size.height());
        widest = std::max(widest, x - m_hSpacing);
    }
    return {widest, y + lineHeight};
}

int FlowLayout::heightForWidth(int width) const {
    return walk(width, [](QLayoutItem *, const QRect &) {}).height();
}

QSize FlowLayout::sizeHint() const {
    return walk(std::numeric_limits<int>::max(), [](QLayoutItem *, const QRect &) {});
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem *item : m_items)
        size = size.expandedTo(item->sizeHint());
    return size;
}

void FlowLayout::setGeometry(const QRect &rect) {
    QLayout::setGeometry(rect);
    walk(rect.width(), [&](QLayoutItem *item, const QRect &place) {
        item->setGeometry(place.translated(rect.topLeft()));
    });
}
