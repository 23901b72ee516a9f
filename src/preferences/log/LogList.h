#pragma once

#include "storage/LogStore.h"

#include <QTextEdit>
#include <QVariantAnimation>

/// The entries of the activity log as text that can be selected and copied, a row an entry, newest
/// at the bottom. Main thread only.
class LogList : public QTextEdit {
    Q_OBJECT

public:
    explicit LogList(QWidget *parent = nullptr);

    /// Brings the rows in line with `entries`, touching only what has changed, and slides to the
    /// newest if that is a new one.
    void follow(const QList<LogStore::Entry> &entries);

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    void startAfresh();
    void rebuild();
    void dropFirst(qsizetype count);
    void append(const LogStore::Entry &entry);
    /// Selects without scrolling there.
    void select(const QTextCursor &selection);
    void slideToEnd();

    QList<LogStore::Entry> m_rows;
    QVariantAnimation m_slide;
    int m_slideFrom = 0;
    bool m_isDressing = false;
};
