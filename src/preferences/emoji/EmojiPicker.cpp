#include "preferences/emoji/EmojiPicker.h"

#include "preferences/emoji/EmojiGrid.h"
#include "preferences/kit/BorderedField.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Labels.h"
#include "preferences/kit/Style.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace {
constexpr int margin = 10;
constexpr int visibleRows = 6;
} // namespace

EmojiPicker *EmojiPicker::openFor(BorderedField *field) {
    auto *picker = new EmojiPicker(field);
    const QRect anchor(field->mapToGlobal(QPoint(0, 0)), field->size());
    picker->showAt(anchor);
    picker->m_search->setFocus(Qt::PopupFocusReason);
    return picker;
}

EmojiPicker::EmojiPicker(BorderedField *field)
    : Popover(Qt::Popup, field),
      m_field(field),
      m_search(new BorderedField(QStringLiteral("Search emoji"), this)),
      m_recentTitle(sectionHeader(QStringLiteral("Recent"))),
      m_recent(new EmojiGrid(this)),
      m_all(new EmojiGrid(this)),
      m_name(new Caption({}, this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(QStringLiteral("Emoji picker"));
    build();
    search();
}

void EmojiPicker::build() {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(Style::tightSpacing);
    column->addWidget(m_search);
    column->addWidget(m_recentTitle);
    column->addWidget(m_recent);
    column->addWidget(m_all, 1);
    column->addWidget(m_name);
    m_name->setWordWrap(false);
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    addGrid(m_recent, QStringLiteral("Recent emoji"));
    addGrid(m_all, QStringLiteral("Emoji"));
    connect(m_recent, &EmojiGrid::leftDownwards, m_all,
            [this] { m_all->setFocus(Qt::TabFocusReason); });
    m_recent->showEmoji(EmojiCatalogue::recent());
    const qsizetype recentRows =
        (EmojiCatalogue::recent().size() + EmojiGrid::columns - 1) / EmojiGrid::columns;
    m_recent->setFixedHeight(static_cast<int>(recentRows) * EmojiGrid::cellSide() + 1);
    m_all->setMinimumHeight(visibleRows * EmojiGrid::cellSide());
    setFixedWidth(EmojiGrid::neededWidth() + 2 * margin);
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &EmojiPicker::search);
}

void EmojiPicker::addGrid(EmojiGrid *grid, const QString &name) {
    grid->setAccessibleName(name);
    connect(grid, &EmojiGrid::picked, this, &EmojiPicker::pick);
    connect(grid, &EmojiGrid::named, m_name, &QLabel::setText);
    connect(grid, &EmojiGrid::leftUpwards, this, [this, grid] {
        const bool toRecent = grid == m_all && m_recent->isVisible();
        (toRecent ? static_cast<QWidget *>(m_recent) : m_search)->setFocus(Qt::BacktabFocusReason);
    });
}

void EmojiPicker::search() {
    const bool searching = !m_search->text().trimmed().isEmpty();
    const bool showRecent = !searching && !EmojiCatalogue::recent().isEmpty();
    m_recentTitle->setVisible(showRecent);
    m_recent->setVisible(showRecent);
    const QList<Emoji> found =
        searching ? EmojiCatalogue::matching(m_search->text()) : EmojiCatalogue::all();
    m_all->showEmoji(found);
    if (found.isEmpty())
        m_name->setText(QStringLiteral("No emoji has such a name."));
}

void EmojiPicker::pick(const Emoji &emoji) {
    EmojiCatalogue::remember(emoji);
    BorderedField *field = m_field;
    close();
    field->insert(emoji.text);
    field->setFocus(Qt::PopupFocusReason);
}

bool EmojiPicker::eventFilter(QObject *, QEvent *event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Down:
        (m_recent->isVisible() ? m_recent : m_all)->setFocus(Qt::TabFocusReason);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        const QList<Emoji> found = EmojiCatalogue::matching(m_search->text());
        if (!found.isEmpty())
            pick(found.first());
        return true;
    }
    default:
        return false;
    }
}
