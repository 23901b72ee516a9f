#pragma once

#include <QLayout>
#include <QList>

/// Lays its items out in lines, left to right and top to bottom, each at its own ideal size. An
/// item wider than the line gets a line of its own and is not shrunk.
class FlowLayout : public QLayout {
    Q_OBJECT

public:
    explicit FlowLayout(QWidget *parent = nullptr, int hSpacing = 6, int vSpacing = 6);
    ~FlowLayout() override;

    void addItem(QLayoutItem *item) override { m_items.append(item); }
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem *itemAt(int index) const override { return m_items.value(index); }
    QLayoutItem *takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect &rect) override;

private:
    /// Walks the items through lines of `width`; `place` is told each one's place.
    template <class Place>
    QSize walk(int width, const Place &place) const;

    QList<QLayoutItem *> m_items;
    int m_hSpacing;
    int m_vSpacing;
};
