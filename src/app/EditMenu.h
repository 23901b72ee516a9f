#pragma once

#include <QMenu>
#include <QPointer>

/// The "Edit" menu of a window. Its entries act on the field or the selectable text of that window
/// that has the focus; Copy also on a selection left behind elsewhere. They look enabled only when
/// they can act. Main thread only.
class EditMenu : public QMenu {
    Q_OBJECT

public:
    explicit EditMenu(QWidget *window);

private:
    struct Entry;

    void follow(QWidget *focused);
    /// What the entry would act on; null when it can't.
    QWidget *target(const Entry &entry) const;
    void act(const Entry &entry, QAction &action);

    QWidget *m_window;
    QPointer<QWidget> m_focused; ///< the last one that was no menu
};
