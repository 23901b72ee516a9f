#include "preferences/SidebarRow.h"

#include "preferences/kit/Style.h"
#include "preferences/kit/TileIcon.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

namespace {
constexpr int iconGap = 11;
constexpr int verticalPadding = 9;
constexpr int horizontalPadding = 10;

/// The row as assistive programs see it: one tab of a list, of which one is selected.
class TabFace : public QAccessibleWidget {
public:
    explicit TabFace(SidebarRow *row) : QAccessibleWidget(row, QAccessible::PageTab) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = row()->isChecked();
        return state;
    }
    QStringList actionNames() const override {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &action) override {
        if (action == pressAction())
            row()->click();
        else
            QAccessibleWidget::doAction(action);
    }

private:
    SidebarRow *row() const { return static_cast<SidebarRow *>(widget()); }
};

bool isReturn(const QKeyEvent &key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

QAccessibleInterface *faceOf(const QString &, QObject *object) {
    auto *row = qobject_cast<SidebarRow *>(object);
    return row ? new TabFace(row) : nullptr;
}

} // namespace

SidebarRow::SidebarRow(PreferencesTab tab, QWidget *parent) : QAbstractButton(parent), m_tab(tab) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(faceOf), true);
    const PreferencesTabs::Face &face = PreferencesTabs::face(tab);
    setText(face.title);
    setAccessibleName(face.title);
    setCheckable(true);
    connect(this, &QAbstractButton::toggled, this, [this] {
        QAccessible::State changed;
        changed.selected = true;
        QAccessibleStateChangeEvent news(this, changed);
        QAccessible::updateAccessibility(&news);
    });
    setAutoExclusive(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    Style::dress(this, Style::TextRole::Body);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(horizontalPadding, 0, horizontalPadding, 0);
    row->addWidget(new TileIcon(face.symbol, face.tile, face.glyph));
    row->addStretch();
}

QSize SidebarRow::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    return {2 * horizontalPadding + TileIcon::side + iconGap + textWidth,
            std::max(TileIcon::side, fontMetrics().height()) + 2 * verticalPadding};
}

bool SidebarRow::event(QEvent *event) {
    if (event->type() == QEvent::ShortcutOverride && m_ring.isVisible() &&
        isReturn(static_cast<QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return QAbstractButton::event(event);
}

void SidebarRow::keyPressEvent(QKeyEvent *event) {
    if (isReturn(*event))
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void SidebarRow::focusInEvent(QFocusEvent *event) {
    m_ring.focusIn(*event);
    QAbstractButton::focusInEvent(event);
}

void SidebarRow::paintEvent(QPaintEvent *) {
    using Style::ColourRole;
    QPainter painter(this);
    QColor textColour = Style::colour(ColourRole::Primary, palette());
    if (isChecked()) {
        textColour = Style::colour(ColourRole::OnAccent, palette());
        Style::paintBox(painter, rect(), Style::boxRadius,
                        Style::colour(ColourRole::AccentFill, palette()));
    } else if (underMouse()) {
        QColor tint = Style::colour(ColourRole::Accent, palette());
        tint.setAlphaF(0.14F);
        Style::paintBox(painter, rect(), Style::boxRadius, tint);
    }
    painter.setPen(textColour);
    painter.drawText(rect().adjusted(horizontalPadding + TileIcon::side + iconGap, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
    if (hasFocus() && m_ring.isVisible())
        Style::paintBox(painter, QRectF(rect()).adjusted(2, 2, -2, -2), Style::boxRadius - 2, {},
                        textColour, 1.5);
}
