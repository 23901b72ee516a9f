#pragma once

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

/// The window that shows the activity log as it grows, newest at the bottom. Main thread only.
class LogView : public QWidget {
    Q_OBJECT

public:
    LogView();

private:
    void copyAll();
    void refresh();
    void addRow(const QString &time, const QString &message);

    QLabel m_count;
    QPushButton m_copyAll;
    QPushButton m_clear;
    QScrollArea m_scroll;
    QVBoxLayout *m_rows = nullptr;
};
