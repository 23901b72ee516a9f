#include "preferences/template/TemplateField.h"

#include "preferences/kit/Style.h"
#include "preferences/template/AutocompleteList.h"
#include "preferences/template/PlaceholderTextView.h"
#include "preferences/template/ResizeGrip.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace {
constexpr int gripPadding = 4;
}

TemplateField::TemplateField(const QString &name, const QList<TemplatePlaceholder> &placeholders,
                             Grip grip, QWidget *parent)
    : QWidget(parent), m_placeholders(placeholders), m_textView(new PlaceholderTextView(this)) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(Style::fieldHorizontalPadding, Style::fieldVerticalPadding,
                               Style::fieldHorizontalPadding, Style::fieldVerticalPadding);
    column->addWidget(m_textView);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusProxy(m_textView);
    m_textView->setAccessibleName(name);
    m_textView->installEventFilter(this);
    setFieldHeight(leastHeight);
    if (grip == Grip::Resizes)
        addGrip();
    connect(m_textView, &QTextEdit::textChanged, this, &TemplateField::textDidChange);
    connect(m_textView, &PlaceholderTextView::contentHeightChanged, this,
            &TemplateField::growToContent, Qt::QueuedConnection);
}

TemplateField::~TemplateField() {
    closeAutocomplete();
}

QString TemplateField::text() const {
    return m_textView->toPlainText();
}

void TemplateField::setText(const QString &text) {
    if (text == this->text())
        return;
    m_settingText = true;
    m_textView->setPlainText(text);
    m_textView->moveCursor(QTextCursor::End);
    m_settingText = false;
    closeAutocomplete(); // its brace is gone
}

bool TemplateField::braceBefore(int position) const {
    return position >= 1 && m_textView->document()->characterAt(position - 1) == u'{';
}

void TemplateField::textDidChange() {
    if (m_settingText)
        return;
    Q_EMIT textEdited(text());
    if (!braceBefore(m_textView->cursorPosition()))
        closeAutocomplete();
    else if (!m_popover)
        showAutocomplete();
}

AutocompleteList *TemplateField::popover() const {
    return m_popover;
}

void TemplateField::showAutocomplete() {
    m_popover = new AutocompleteList(m_placeholders, this);
    connect(m_popover, &AutocompleteList::selected, this,
            [this](const TemplatePlaceholder &chosen) { insertAtCursor(chosen.token); });
    connect(m_popover, &Popover::closed, this, &TemplateField::closeAutocomplete);
    // Clicks elsewhere are seen only here, since the popover grabs nothing.
    qApp->installEventFilter(this);
    m_popover->showAt(m_textView->unitRect(std::max(m_textView->cursorPosition() - 1, 0)));
}

void TemplateField::closeAutocomplete() {
    if (!m_popover)
        return;
    AutocompleteList *popover = m_popover;
    m_popover = nullptr;
    qApp->removeEventFilter(this);
    popover->disconnect(this);
    popover->hide();
    popover->deleteLater(); // it may be telling of a click right now
}

void TemplateField::insertAtCursor(const QString &token) {
    const int position = m_textView->cursorPosition();
    QTextCursor cursor(m_textView->document());
    cursor.setPosition(braceBefore(position) ? position - 1 : position);
    const int caret = cursor.position() + static_cast<int>(token.size());
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    // The document adds to its last step of undoing only while it counts as modified, so typing
    // before and after the token stays apart from it.
    m_textView->document()->setModified(false);
    cursor.beginEditBlock();
    cursor.insertText(token);
    cursor.endEditBlock();
    m_textView->document()->setModified(false);
    const auto moveCaret = [this, caret] {
        QTextCursor place(m_textView->document());
        place.setPosition(std::min(caret, static_cast<int>(text().size())));
        m_textView->setTextCursor(place);
    };
    moveCaret();
    closeAutocomplete();
    const auto takeFocus = [this, moveCaret] {
        m_textView->setFocus(Qt::OtherFocusReason);
        moveCaret();
    };
    QMetaObject::invokeMethod(this, takeFocus, Qt::QueuedConnection);
}

bool TemplateField::endsAutocomplete(const QObject *watched, const QEvent *event) const {
    switch (event->type()) {
    case QEvent::FocusOut:
        return watched == m_textView;
    case QEvent::MouseButtonPress:
    case QEvent::Wheel: {
        const auto *widget = qobject_cast<const QWidget *>(watched);
        return widget && widget->window() != m_popover;
    }
    case QEvent::WindowDeactivate:
    case QEvent::Move:
        return watched == window();
    case QEvent::Hide:
        return watched == window() || watched == m_textView;
    default:
        return false;
    }
}

bool TemplateField::eventFilter(QObject *watched, QEvent *event) {
    const bool isFocus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (watched == m_textView && isFocus)
        update(); // the ring is painted here
    if (!m_popover)
        return false;
    const bool isKey =
        event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (watched == m_textView && isKey &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        // Accepting the override keeps the key from any shortcut, so that the press comes here too.
        event->accept();
        if (event->type() == QEvent::KeyPress)
            closeAutocomplete();
        return true;
    }
    if (endsAutocomplete(watched, event))
        closeAutocomplete();
    return false;
}

void TemplateField::growToContent() {
    if (!m_dragStart && m_textView->contentHeight() > m_height)
        setFieldHeight(std::min(m_textView->contentHeight(), greatestHeight));
}

void TemplateField::setFieldHeight(int height) {
    m_height = height;
    setFixedHeight(height + 2 * Style::fieldVerticalPadding);
    if (m_grip)
        m_grip->setFieldHeight(height);
}

void TemplateField::addGrip() {
    m_grip = new ResizeGrip(leastHeight, greatestHeight, this);
    connect(m_grip, &ResizeGrip::dragged, this, [this](int distance) {
        if (!m_dragStart)
            m_dragStart = m_height;
        setFieldHeight(std::clamp(*m_dragStart + distance, leastHeight, greatestHeight));
    });
    connect(m_grip, &ResizeGrip::dragEnded, this, [this] { m_dragStart.reset(); });
    connect(m_grip, &ResizeGrip::moved, this, &TemplateField::setFieldHeight);
}

void TemplateField::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    Style::paintField(painter, rect(), palette(), m_textView->hasFocus());
}

void TemplateField::resizeEvent(QResizeEvent *) {
    if (m_grip)
        m_grip->move(width() - m_grip->width() - gripPadding,
                     height() - m_grip->height() - gripPadding);
}
