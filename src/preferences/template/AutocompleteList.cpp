#include "preferences/template/AutocompleteList.h"

#include "preferences/kit/SlimScrollBar.h"
#include "preferences/kit/Style.h"

#include <QAbstractButton>
#include <QEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

constexpr int listWidth = 260;
constexpr int rowHeight = 28;
constexpr int listMargins = 16;
constexpr int verticalPadding = 6;
constexpr int rowPadding = 12;

/// A token and what it stands for, clickable all over.
class Row : public QAbstractButton {
public:
    explicit Row(const TemplatePlaceholder &placeholder) : m_label(placeholder.label) {
        setText(placeholder.token);
        setAccessibleDescription(placeholder.label);
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_Hover);
        setFixedHeight(Style::scaled(rowHeight));
        Style::dress(this, Style::TextRole::Code);
    }

protected:
    bool event(QEvent *event) override {
        if (event->type() == QEvent::ToolTip) {
            const QFontMetrics metrics(Style::font(Style::TextRole::Caption));
            setToolTip(metrics.horizontalAdvance(m_label) > labelArea().width() ? m_label
                                                                                : QString());
        }
        return QAbstractButton::event(event);
    }

    void paintEvent(QPaintEvent *) override {
        using Style::ColourRole;
        QPainter painter(this);
        const bool lit = underMouse() || isDown();
        if (lit)
            Style::paintBox(painter, QRectF(rect()).adjusted(5, 0, -5, 0), 5,
                            Style::colour(ColourRole::AccentFill, palette()));
        const QRect area = rect().adjusted(rowPadding, 0, -rowPadding, 0);
        painter.setPen(Style::colour(lit ? ColourRole::OnAccent : ColourRole::Primary, palette()));
        painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, text());
        const QRect rest = labelArea();
        painter.setFont(Style::font(Style::TextRole::Caption));
        if (!lit)
            painter.setPen(Style::colour(ColourRole::Secondary, palette()));
        painter.drawText(rest, Qt::AlignRight | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(m_label, Qt::ElideRight, rest.width()));
    }

private:
    QRect labelArea() const {
        const int token = fontMetrics().horizontalAdvance(text());
        return rect().adjusted(rowPadding + token + 8, 0, -rowPadding, 0);
    }

    QString m_label;
};

} // namespace

AutocompleteList::AutocompleteList(const QList<TemplatePlaceholder> &placeholders, QWidget *parent)
    : Popover(Qt::ToolTip, parent) {
    setAccessibleName(QStringLiteral("Placeholders"));
    setAttribute(Qt::WA_AlwaysShowToolTips); // it never is the active window
    auto *list = new QWidget;
    auto *rows = new QVBoxLayout(list);
    rows->setContentsMargins(0, verticalPadding, 0, verticalPadding);
    rows->setSpacing(0);
    rows->setAlignment(Qt::AlignTop);
    for (const TemplatePlaceholder &placeholder : placeholders) {
        auto *row = new Row(placeholder);
        connect(row, &QAbstractButton::clicked, this,
                [this, placeholder] { Q_EMIT selected(placeholder); });
        rows->addWidget(row);
    }
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->viewport()->setAutoFillBackground(false);
    area->setWidget(list);
    list->setAutoFillBackground(false);
    new SlimScrollBar(area);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(area);
    setFixedWidth(Style::scaled(listWidth));
}

QSize AutocompleteList::sizeHint() const {
    const auto rows = static_cast<int>(findChildren<QAbstractButton *>().size());
    return {Style::scaled(listWidth), Style::scaled(rowHeight) * rows + listMargins};
}
