#include "preferences/LogView.h"

#include "platform/Platform.h"
#include "storage/LogStore.h"

#include <QFontDatabase>
#include <QFrame>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QTimer>

namespace {

QFrame *divider() {
    auto *line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

QFont rowFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(12);
    return font;
}

} // namespace

LogView::LogView() : m_copyAll(QStringLiteral("Copy All")), m_clear(QStringLiteral("Clear")) {
    setWindowTitle(QStringLiteral("Brindle Logs"));
    resize(640, 420);
    auto *title = new QLabel(QStringLiteral("Activity Log"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    m_count.setForegroundRole(QPalette::PlaceholderText);

    auto *header = new QHBoxLayout;
    header->setContentsMargins(16, 10, 16, 10);
    header->setSpacing(10);
    header->addWidget(title);
    header->addWidget(&m_count);
    header->addStretch();
    header->addWidget(&m_copyAll);
    header->addWidget(&m_clear);

    auto *list = new QWidget;
    m_rows = new QVBoxLayout(list);
    m_rows->setContentsMargins(16, 12, 16, 12);
    m_rows->setSpacing(2);
    m_rows->setAlignment(Qt::AlignTop);
    m_scroll.setWidget(list);
    m_scroll.setWidgetResizable(true);
    m_scroll.setFrameShape(QFrame::NoFrame);

    auto *footer =
        new QLabel(QStringLiteral("Tokens are never logged. Safe to share when reporting a bug."));
    footer->setForegroundRole(QPalette::PlaceholderText);
    footer->setContentsMargins(16, 8, 16, 8);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(header);
    column->addWidget(divider());
    column->addWidget(&m_scroll, 1);
    column->addWidget(divider());
    column->addWidget(footer);

    connect(&m_copyAll, &QPushButton::clicked, this, &LogView::copyAll);
    connect(&m_clear, &QPushButton::clicked, this, [] { LogStore::shared().clear(); });
    connect(&LogStore::shared(), &LogStore::changed, this, &LogView::refresh);
    connect(m_scroll.verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int, int maximum) { m_scroll.verticalScrollBar()->setValue(maximum); });
    refresh();
}

void LogView::refresh() {
    const QList<LogStore::Entry> &entries = LogStore::shared().entries();
    m_count.setText(
        QStringLiteral("%1 entries (last %2 kept)").arg(entries.size()).arg(LogStore::maxEntries));
    m_copyAll.setEnabled(!entries.isEmpty());
    m_clear.setEnabled(!entries.isEmpty());
    while (QLayoutItem *row = m_rows->takeAt(0)) {
        delete row->widget();
        delete row;
    }
    for (const LogStore::Entry &entry : entries)
        addRow(LogStore::formattedTime(entry.date), entry.message);
    if (entries.isEmpty()) {
        auto *empty = new QLabel(QStringLiteral(
            "No activity yet. Trigger the hotkey or click Test Connection to see entries here."));
        empty->setForegroundRole(QPalette::PlaceholderText);
        empty->setWordWrap(true);
        m_rows->addWidget(empty);
    }
}

void LogView::addRow(const QString &time, const QString &message) {
    auto *row = new QWidget;
    auto *columns = new QHBoxLayout(row);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(10);
    auto *stamp = new QLabel(time);
    stamp->setFont(rowFont());
    stamp->setForegroundRole(QPalette::PlaceholderText);
    auto *text = new QLabel(message);
    text->setFont(rowFont());
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    columns->addWidget(stamp, 0, Qt::AlignTop);
    columns->addWidget(text, 1, Qt::AlignTop);
    m_rows->addWidget(row);
}

void LogView::copyAll() {
    Platform::current().pasteboard->write(
        {{PasteboardType::String, LogStore::shared().formattedAll().toUtf8()}});
    m_copyAll.setText(QStringLiteral("Copied ✓"));
    constexpr std::chrono::milliseconds shown{1400};
    QTimer::singleShot(shown, this, [this] { m_copyAll.setText(QStringLiteral("Copy All")); });
}
