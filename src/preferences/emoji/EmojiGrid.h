#pragma once

#include "preferences/emoji/EmojiCatalogue.h"

#include <QListView>
#include <QStandardItemModel>

/// Emoji in rows, of which one is current and one can be picked.
class EmojiGrid : public QListView {
    Q_OBJECT

public:
    static constexpr int columns = 8;

    explicit EmojiGrid(QWidget *parent = nullptr);

    void showEmoji(const QList<Emoji> &emoji);
    /// The side of the square that one emoji takes.
    static int cellSide();
    /// The width that the columns and a scroll bar need.
    static int neededWidth();

Q_SIGNALS:
    void picked(const Emoji &emoji);
    /// The one under the pointer or the keyboard's mark changed.
    void named(const QString &name);
    /// Up was pressed in the first row.
    void leftUpwards();
    /// Down was pressed in the last row.
    void leftDownwards();

protected:
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    void pick(const QModelIndex &index);

    QList<Emoji> m_emoji;
    QStandardItemModel m_model;
};
