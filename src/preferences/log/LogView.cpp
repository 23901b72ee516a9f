#include "preferences/log/LogView.h"

#include "platform/Platform.h"
#include "preferences/kit/AccessibleRole.h"
#include "preferences/kit/Button.h"
#include "preferences/kit/Caption.h"
#include "preferences/kit/Divider.h"
#include "preferences/kit/Style.h"
#include "preferences/log/LogList.h"
#include "storage/LogStore.h"

#include <QLabel>
#include <QPointer>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
constexpr int horizontalPadding = 16;
}

LogView::LogView(QWidget *parent) : QWidget(parent) {
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(header());
    column->addWidget(new Divider);
    column->addWidget(content(), 1);
    column->addWidget(new Divider);
    column->addWidget(footer());
    connect(&LogStore::shared(), &LogStore::changed, this, [this] {
        if (isVisible())
            refresh();
    });
}

QSize LogView::sizeHint() const {
    return {Style::scaled(640), Style::scaled(420)};
}

QLayout *LogView::header() {
    constexpr int verticalPadding = 10;
    auto *title = new QLabel(u"<b>Activity Log</b>"_s);
    title->setAccessibleName(u"Activity Log"_s);
    setAccessibleRole(title, QAccessible::Heading);
    Style::dress(title, Style::TextRole::Body);
    m_count = new QLabel;
    Style::dress(m_count, Style::TextRole::Caption, Style::ColourRole::Secondary);
    m_copyAll = new Button(u"Copy All"_s);
    m_clear = new Button(u"Clear"_s);
    connect(m_copyAll, &QPushButton::clicked, this, &LogView::copyAll);
    connect(m_clear, &QPushButton::clicked, this, [] { LogStore::shared().clear(); });

    auto *row = new QHBoxLayout;
    row->setContentsMargins(horizontalPadding, verticalPadding, horizontalPadding, verticalPadding);
    row->setSpacing(Style::rowSpacing);
    row->addWidget(title);
    row->addWidget(m_count);
    row->addStretch();
    row->addWidget(m_copyAll);
    row->addWidget(m_clear);
    return row;
}

QWidget *LogView::content() {
    constexpr int verticalPadding = 12;
    m_empty = new Caption(u"No activity yet. Trigger the hotkey or click Test Connection to see "
                          "entries here."_s);
    m_empty->setContentsMargins(horizontalPadding, verticalPadding, horizontalPadding,
                                verticalPadding);
    m_empty->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_empty->setAutoFillBackground(true);
    m_empty->setBackgroundRole(QPalette::Base);
    m_list = new LogList;
    m_content = new QStackedWidget;
    m_content->addWidget(m_empty);
    m_content->addWidget(m_list);
    return m_content;
}

QWidget *LogView::footer() {
    constexpr int verticalPadding = 8;
    auto *footer = new Caption(u"Tokens are never logged. Safe to share when reporting a bug."_s);
    footer->setContentsMargins(horizontalPadding, verticalPadding, horizontalPadding,
                               verticalPadding);
    return footer;
}

void LogView::showEvent(QShowEvent *event) {
    refresh();
    // Not the buttons: a stray press of the space bar would copy the log over the user's clipboard.
    if (!event->spontaneous())
        m_list->setFocus();
    QWidget::showEvent(event);
}

void LogView::refresh() {
    const QList<LogStore::Entry> &entries = LogStore::shared().entries();
    m_count->setText(u"%1 entries (last %2 kept)"_s.arg(entries.size()).arg(LogStore::maxEntries));
    m_copyAll->setEnabled(!entries.isEmpty());
    m_clear->setEnabled(!entries.isEmpty());
    m_list->follow(entries);
    m_content->setCurrentWidget(entries.isEmpty() ? static_cast<QWidget *>(m_empty) : m_list);
}

void LogView::copyAll() {
    Platform::current().pasteboard->write(
        {{PasteboardType::String, LogStore::shared().formattedAll().toUtf8()}}, std::nullopt,
        [](const auto &) {});
    m_copyAll->setText(u"Copied ✓"_s);
    constexpr std::chrono::milliseconds shown{1400};
    Platform::current().dispatch->after(shown, [button = QPointer<QPushButton>(m_copyAll)] {
        if (button)
            button->setText(u"Copy All"_s);
    });
}
