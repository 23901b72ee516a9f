#include "preferences/emoji/EmojiTable.h"

#include "platform/wording.h"
#include "preferences/SettingsBinding.h"
#include "preferences/emoji/EmojiField.h"
#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/Style.h"

#include <QHBoxLayout>
#include <QPainter>

namespace {

/// The symbol of a button that is not there: the row of comments stays.
class FaintMinus : public QWidget {
public:
    explicit FaintMinus(const Button *model) : m_model(model) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override { return m_model->sizeHint(); }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const int side = Style::scaled(17);
        QColor colour = Style::colour(Style::ColourRole::Secondary, palette());
        colour.setAlphaF(colour.alphaF() * 0.45F);
        Symbols::paint(painter, Symbol::MinusCircle,
                       QRectF((width() - side) / 2.0, (height() - side) / 2.0, side, side), colour);
    }

private:
    const Button *m_model; ///< beside it, as large as it is
};

Button *pickerButton(EmojiField *field) {
    Button *button = Button::iconOnly(
        Symbol::Smiley, QStringLiteral("Open the emoji picker"),
        QStringLiteral("Open the emoji picker. %1 also works when the field is focused.")
            .arg(wording().emojiPickerKeys));
    QObject::connect(button, &Button::clicked, field, &EmojiField::replaceByPicking);
    return button;
}

QHBoxLayout *rowLayout(QWidget *row) {
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Style::tightSpacing);
    return layout;
}

/// Takes what is typed into one entry.
template <class Change>
void changeEntry(qsizetype index, const Change &change) {
    Settings &settings = Settings::shared();
    QList<TypeEmojiMapping> mappings = settings.typeEmojiMappings();
    if (index >= mappings.size())
        return;
    change(mappings[index]);
    settings.typeEmojiMappings.type(mappings);
}

} // namespace

EmojiTable::EmojiTable(QWidget *parent) : QWidget(parent) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(fieldLabel(QStringLiteral("Type emojis")));
    column->addWidget(new Caption(QStringLiteral(
        "Maps Jira issue types → emoji for the `{type-emoji}` placeholder. Case-insensitive. The "
        "Comment row feeds `{comment-emoji}`.")));
    // A widget of their own keeps them before what follows in the order of reading, being first
    // made before it in that of the Tab key.
    auto *rows = new QWidget;
    m_rowsColumn = new QVBoxLayout(rows);
    m_rowsColumn->setContentsMargins(0, 0, 0, 0);
    m_rowsColumn->setSpacing(Style::tightSpacing);
    column->addWidget(rows);
    rebuild(Settings::shared().typeEmojiMappings());
    addCommentRow(*column);
    addButtons(*column);
    followSettings(this, [this] { refresh(); });
}

void EmojiTable::addCommentRow(QVBoxLayout &column) {
    auto *row = new QWidget;
    auto *layout = rowLayout(row);
    auto *title = new QLabel(QStringLiteral("Comment"));
    title->setContentsMargins(Style::fieldHorizontalPadding, 0, 0, 0);
    Style::dress(title, Style::TextRole::Body);
    m_commentEmoji = new EmojiField(QStringLiteral("Emoji for comments"));
    connect(m_commentEmoji, &QLineEdit::textChanged, this,
            [](const QString &text) { Settings::shared().commentEmoji.type(text); });
    m_commentPicker = pickerButton(m_commentEmoji);
    layout->addWidget(title, 1);
    layout->addWidget(m_commentEmoji);
    layout->addWidget(m_commentPicker);
    layout->addWidget(new FaintMinus(m_commentPicker));
    column.addWidget(row);
}

void EmojiTable::addButtons(QVBoxLayout &column) {
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(Style::rowSpacing);
    m_add = new Button(Symbol::PlusCircle, QStringLiteral("Add type"));
    m_reset = new Button(QStringLiteral("Reset to defaults"));
    m_reset->setToolTip(
        QStringLiteral("Restore the default Bug / Story / Task / Epic / Sub-task mapping."));
    connect(m_add, &Button::clicked, this, &EmojiTable::addType);
    connect(m_reset, &Button::clicked, this,
            [] { Settings::shared().typeEmojiMappings = Settings::defaultTypeEmojiMappings(); });
    buttons->addWidget(m_add);
    buttons->addWidget(m_reset);
    buttons->addStretch();
    column.addLayout(buttons);
}

void EmojiTable::refresh() {
    const QList<TypeEmojiMapping> &mappings = Settings::shared().typeEmojiMappings();
    const bool sameRows = std::equal(
        mappings.begin(), mappings.end(), m_rows.begin(), m_rows.end(),
        [](const TypeEmojiMapping &mapping, const Row &row) { return mapping.id == row.id; });
    if (!sameRows)
        rebuild(mappings);
    for (qsizetype i = 0; i < mappings.size(); ++i) {
        m_rows.at(i).widget->setAccessibleName(mappings.at(i).type);
        m_rows.at(i).type->follow(mappings.at(i).type);
        m_rows.at(i).emoji->follow(mappings.at(i).emoji);
    }
    m_commentEmoji->follow(Settings::shared().commentEmoji());
}

void EmojiTable::rebuild(const QList<TypeEmojiMapping> &mappings) {
    for (const Row &row : std::as_const(m_rows)) {
        row.widget->disconnect();
        for (QLineEdit *field :
             {static_cast<QLineEdit *>(row.type), static_cast<QLineEdit *>(row.emoji)})
            field->disconnect(this);
        row.widget->hide();
        row.widget->deleteLater(); // one of its buttons may be telling of a click right now
        m_rowsColumn->removeWidget(row.widget);
    }
    m_rows.clear();
    for (const TypeEmojiMapping &mapping : mappings) {
        m_rows.append(makeRow(m_rows.size(), mapping.id));
        m_rowsColumn->addWidget(m_rows.last().widget);
        m_rows.last().widget->show(); // now, so that a new row can take the focus
    }
    orderTabs();
}

/// New rows come last in the order of the Tab key, so what stands below them has to follow anew.
void EmojiTable::orderTabs() const {
    QList<QWidget *> order;
    for (const Row &row : m_rows)
        order += {row.type, row.emoji, row.picker, row.remove};
    order += {m_commentEmoji, m_commentPicker, m_add, m_reset};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

EmojiTable::Row EmojiTable::makeRow(qsizetype index, const QUuid &id) {
    Row row;
    row.id = id;
    row.widget = new QWidget;
    setAccessibleRole(row.widget, QAccessible::Grouping);
    row.type = new BorderedField(QStringLiteral("Issue type (e.g., Bug)"));
    row.type->setAccessibleName(QStringLiteral("Issue type"));
    row.emoji = new EmojiField(QStringLiteral("Emoji"));
    row.picker = pickerButton(row.emoji);
    row.remove = Button::iconOnly(Symbol::MinusCircle, QStringLiteral("Remove this mapping"),
                                  QStringLiteral("Remove this mapping."));
    connect(row.type, &QLineEdit::textChanged, this, [index](const QString &text) {
        changeEntry(index, [&](TypeEmojiMapping &entry) { entry.type = text; });
    });
    connect(row.emoji, &QLineEdit::textChanged, this, [index](const QString &text) {
        changeEntry(index, [&](TypeEmojiMapping &entry) { entry.emoji = text; });
    });
    connect(row.remove, &Button::clicked, this, [this, id] { remove(id); });
    auto *layout = rowLayout(row.widget);
    layout->addWidget(row.type, 1);
    layout->addWidget(row.emoji);
    layout->addWidget(row.picker);
    layout->addWidget(row.remove);
    return row;
}

void EmojiTable::remove(const QUuid &id) {
    qsizetype index = 0;
    while (index < m_rows.size() && m_rows.at(index).id != id)
        ++index;
    const bool byKeyboard = index < m_rows.size() && m_rows.at(index).remove->hasFocus();
    QList<TypeEmojiMapping> mappings = Settings::shared().typeEmojiMappings();
    mappings.removeIf([&](const TypeEmojiMapping &mapping) { return mapping.id == id; });
    Settings::shared().typeEmojiMappings = mappings;
    if (!byKeyboard)
        return;
    QWidget *next = m_rows.isEmpty() ? m_add : m_rows.at(std::min(index, m_rows.size() - 1)).remove;
    next->setFocus(Qt::TabFocusReason);
}

void EmojiTable::addType() {
    Settings &settings = Settings::shared();
    settings.typeEmojiMappings = settings.typeEmojiMappings() + QList{TypeEmojiMapping{}};
    m_rows.last().type->setFocus(Qt::OtherFocusReason);
}
