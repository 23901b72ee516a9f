#include "preferences/log/LogList.h"

#include "preferences/kit/SlimScrollBar.h"
#include "preferences/kit/Style.h"

#include <QEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocumentFragment>
#include <QTextFrame>

#include <algorithm>
#include <utility>

namespace {

constexpr int horizontalPadding = 16;
constexpr int verticalPadding = 12;
constexpr int rowGap = 2;
constexpr int columnGap = 10;

} // namespace

LogList::LogList(QWidget *parent) : QTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabChangesFocus(true);
    setAccessibleName(QStringLiteral("Activity Log"));
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(1.0);
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant &way) {
        QScrollBar *bar = verticalScrollBar();
        bar->setValue(m_slideFrom + qRound((bar->maximum() - m_slideFrom) * way.toReal()));
    });
    new SlimScrollBar(this);
    startAfresh();
}

void LogList::follow(const QList<LogStore::Entry> &entries) {
    // The log only ever loses its oldest entries or all of them, and gains at the end.
    const auto isFirst = [&](const LogStore::Entry &row) {
        return !entries.isEmpty() && row.id == entries.first().id;
    };
    const auto kept = std::find_if(m_rows.cbegin(), m_rows.cend(), isFirst);
    dropFirst(kept - m_rows.cbegin());
    const bool isNew = m_rows.size() < entries.size();
    // A selection that reaches to the end would grow with the log.
    QTextCursor selection = textCursor();
    selection.setKeepPositionOnInsert(true);
    const bool hadSelection = selection.hasSelection();
    for (qsizetype i = m_rows.size(); i < entries.size(); ++i)
        append(entries.at(i));
    // Without one, the cursor's two ends part as text arrives between them, which selects it.
    if (!hadSelection)
        selection.setPosition(selection.position());
    // Cursors are compared by their positions alone.
    if (selection != textCursor() || selection.anchor() != textCursor().anchor())
        select(selection);
    if (isNew)
        slideToEnd();
}

void LogList::changeEvent(QEvent *event) {
    QTextEdit::changeEvent(event);
    const bool isNewLook =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationFontChange;
    if (isNewLook && !m_isDressing)
        rebuild();
}

void LogList::paintEvent(QPaintEvent *event) {
    QTextEdit::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(viewport());
    Style::paintFocusRing(painter, viewport()->rect(), 0, palette());
}

void LogList::scrollContentsBy(int dx, int dy) {
    QTextEdit::scrollContentsBy(dx, dy);
    viewport()->update(); // the ring stays where it is
}

/// Plain text only: the colours of the rows are no part of what they say.
QMimeData *LogList::createMimeDataFromSelection() const {
    auto *selected = new QMimeData;
    selected->setText(textCursor().selection().toPlainText());
    return selected;
}

void LogList::startAfresh() {
    clear();
    m_isDressing = true;
    setFont(Style::font(Style::TextRole::CodeCaption));
    m_isDressing = false;
    QTextFrameFormat page = document()->rootFrame()->frameFormat();
    page.setLeftMargin(horizontalPadding);
    page.setRightMargin(horizontalPadding);
    page.setTopMargin(verticalPadding);
    page.setBottomMargin(verticalPadding - rowGap);
    document()->rootFrame()->setFrameFormat(page);
}

void LogList::rebuild() {
    const QList<LogStore::Entry> rows = std::exchange(m_rows, {});
    startAfresh();
    for (const LogStore::Entry &row : rows)
        append(row);
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void LogList::dropFirst(qsizetype count) {
    if (count == 0)
        return;
    if (count == m_rows.size()) {
        startAfresh();
    } else {
        QTextCursor cursor(document());
        cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor,
                            static_cast<int>(count));
        cursor.removeSelectedText();
    }
    m_rows.remove(0, count);
}

void LogList::append(const LogStore::Entry &entry) {
    const QString time = LogStore::formattedTime(entry.date);
    const QFontMetricsF metrics(font());
    // Later lines of a message begin below its first, so the time hangs out to the left.
    const qreal timeColumn = metrics.horizontalAdvance(time) + columnGap;
    QTextBlockFormat row;
    row.setLeftMargin(timeColumn);
    row.setTextIndent(-timeColumn);
    row.setTabPositions({QTextOption::Tab(timeColumn, QTextOption::LeftTab)});
    row.setBottomMargin(rowGap);
    QTextCharFormat quiet;
    quiet.setForeground(Style::colour(Style::ColourRole::Secondary, palette()));

    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    if (m_rows.isEmpty())
        cursor.setBlockFormat(row);
    else
        cursor.insertBlock(row);
    cursor.insertText(time, quiet);
    // Rows are counted by their blocks, so each is one whatever it holds.
    cursor.insertText(u'\t' + LogStore::oneLine(entry.message), QTextCharFormat());
    m_rows.append(entry);
}

void LogList::select(const QTextCursor &selection) {
    const int place = verticalScrollBar()->value();
    setTextCursor(selection);
    verticalScrollBar()->setValue(place);
}

void LogList::slideToEnd() {
    m_slide.stop();
    const int duration = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
    if (!isVisible() || duration <= 0) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
        return;
    }
    m_slideFrom = verticalScrollBar()->value();
    m_slide.setDuration(duration);
    m_slide.start();
}
