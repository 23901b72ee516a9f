#include "app/EditMenu.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QTextEdit>

#include <algorithm>

namespace {

bool canUndo(const QWidget *widget) {
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->isUndoAvailable();
    const auto *text = qobject_cast<const QTextEdit *>(widget);
    return text && !text->isReadOnly() && text->document()->isUndoAvailable();
}

bool canRedo(const QWidget *widget) {
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->isRedoAvailable();
    const auto *text = qobject_cast<const QTextEdit *>(widget);
    return text && !text->isReadOnly() && text->document()->isRedoAvailable();
}

/// Whether text can be typed there. What is on the clipboard is not asked: its owner may be slow.
bool canPaste(const QWidget *widget) {
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return !field->isReadOnly();
    const auto *text = qobject_cast<const QTextEdit *>(widget);
    return text && !text->isReadOnly();
}

bool canCopy(const QWidget *widget) {
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->hasSelectedText() && field->echoMode() == QLineEdit::Normal;
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->hasSelectedText();
    const auto *text = qobject_cast<const QTextEdit *>(widget);
    return text && text->textCursor().hasSelection();
}

bool canCut(const QWidget *widget) {
    return canCopy(widget) && canPaste(widget);
}

bool canSelectAll(const QWidget *widget) {
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return !field->text().isEmpty();
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->textInteractionFlags() & Qt::TextSelectableByMouse &&
               !label->text().isEmpty();
    const auto *text = qobject_cast<const QTextEdit *>(widget);
    return text && !text->document()->isEmpty();
}

} // namespace

struct EditMenu::Entry {
    const char16_t *title; ///< null for a separator
    const char16_t *shortcut;
    bool (*canAct)(const QWidget *widget);
    const char *slot; ///< as every field names it
};

EditMenu::EditMenu(QWidget *window) : QMenu(QStringLiteral("Edit"), window), m_window(window) {
    static constexpr Entry entries[] = {
        {u"Undo", u"Ctrl+Z", canUndo, "undo"},
        {u"Redo", u"Ctrl+Shift+Z", canRedo, "redo"},
        {nullptr, nullptr, nullptr, nullptr},
        {u"Cut", u"Ctrl+X", canCut, "cut"},
        {u"Copy", u"Ctrl+C", canCopy, "copy"},
        {u"Paste", u"Ctrl+V", canPaste, "paste"},
        {u"Select All", u"Ctrl+A", canSelectAll, "selectAll"},
    };
    for (const Entry &entry : entries) {
        if (!entry.title) {
            addSeparator();
            continue;
        }
        QAction *action = addAction(QString::fromUtf16(entry.title));
        action->setShortcut(QKeySequence(QString::fromUtf16(entry.shortcut)));
        connect(action, &QAction::triggered, this, [this, action, &entry] { act(entry, *action); });
        connect(this, &QMenu::aboutToShow, action,
                [this, action, &entry] { action->setEnabled(target(entry)); });
        // A key finds out by itself.
        connect(this, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
    }
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { follow(now); });
}

void EditMenu::follow(QWidget *focused) {
    // The menu bar has the focus itself while it is used from the keyboard.
    if (focused && focused->window() == m_window && !qobject_cast<QMenuBar *>(focused))
        m_focused = focused;
}

QWidget *EditMenu::target(const Entry &entry) const {
    if (m_focused && entry.canAct(m_focused))
        return m_focused;
    if (entry.canAct != canCopy)
        return nullptr;
    const auto labels = m_window->findChildren<QLabel *>();
    const auto marked = std::find_if(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->hasSelectedText();
    });
    return marked == labels.end() ? nullptr : *marked;
}

void EditMenu::act(const Entry &entry, QAction &action) {
    QWidget *widget = target(entry);
    if (!widget)
        return;
    if (!qobject_cast<QLabel *>(widget)) {
        QMetaObject::invokeMethod(widget, entry.slot);
        return;
    }
    // A label does these, but only when it is asked by a key, which we would take again.
    const QKeyCombination keys = action.shortcut()[0];
    action.setEnabled(false);
    QKeyEvent press(QEvent::KeyPress, keys.key(), keys.keyboardModifiers());
    QApplication::sendEvent(widget, &press);
    action.setEnabled(true);
}
