#pragma once

#include "preferences/emoji/EmojiCatalogue.h"
#include "preferences/kit/Popover.h"

class BorderedField;
class Caption;
class EmojiGrid;
class QLabel;

/// A popup in which one emoji is picked, by mouse or keyboard, with a search by name and the recent
/// choices. It deletes itself when closed.
class EmojiPicker : public Popover {
    Q_OBJECT

public:
    /// Opens one for `field`: what is picked is inserted there as if typed.
    static EmojiPicker *openFor(BorderedField *field);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit EmojiPicker(BorderedField *field);
    void build();
    void search();
    void pick(const Emoji &emoji);
    void addGrid(EmojiGrid *grid, const QString &name);

    BorderedField *m_field;
    BorderedField *m_search;
    QLabel *m_recentTitle;
    EmojiGrid *m_recent;
    EmojiGrid *m_all;
    Caption *m_name;
};
