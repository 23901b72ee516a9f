#pragma once

#include "model/TypeEmojiMapping.h"

#include <QList>
#include <QWidget>

class BorderedField;
class Button;
class EmojiField;
class QHBoxLayout;
class QVBoxLayout;

/// The table that gives each issue type its emoji, with the row for comments and the buttons below.
/// Every change stores the whole table at once. Main thread only.
class EmojiTable : public QWidget {
    Q_OBJECT

public:
    explicit EmojiTable(QWidget *parent = nullptr);

private:
    struct Row {
        QUuid id;
        QWidget *widget = nullptr;
        BorderedField *type = nullptr;
        EmojiField *emoji = nullptr;
        Button *picker = nullptr;
        Button *remove = nullptr;
    };

    void addCommentRow(QVBoxLayout &column);
    void addButtons(QVBoxLayout &column);
    void refresh();
    void rebuild(const QList<TypeEmojiMapping> &mappings);
    void orderTabs() const;
    Row makeRow(qsizetype index, const QUuid &id);
    void remove(const QUuid &id);
    void addType();

    QVBoxLayout *m_rowsColumn = nullptr;
    QList<Row> m_rows;
    EmojiField *m_commentEmoji = nullptr;
    Button *m_commentPicker = nullptr;
    Button *m_add = nullptr;
    Button *m_reset = nullptr;
};
