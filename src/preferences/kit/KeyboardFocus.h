#pragma once

#include <QFocusEvent>

/// Whether a control that also takes the focus by click shows its ring: only when the focus came by
/// keyboard. Pass it each focus-in event.
class KeyboardFocus {
public:
    void focusIn(const QFocusEvent &event) {
        switch (event.reason()) {
        case Qt::ActiveWindowFocusReason: // back where it was before
        case Qt::PopupFocusReason:
            break;
        default:
            m_byKeyboard = event.reason() != Qt::MouseFocusReason;
        }
    }

    bool isVisible() const { return m_byKeyboard; }

private:
    bool m_byKeyboard = false; // a window that opens puts the focus somewhere
};
