#pragma once

#include <QWidget>

class Button;
class LogList;
class QLabel;
class QStackedWidget;

/// The activity log as it grows, newest at the bottom, with buttons that copy and clear it. Does
/// nothing while it can't be seen. Main thread only.
class LogView : public QWidget {
    Q_OBJECT

public:
    explicit LogView(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    QLayout *header();
    QWidget *content();
    QWidget *footer();
    void copyAll();
    void refresh();

    QLabel *m_count = nullptr;
    Button *m_copyAll = nullptr;
    Button *m_clear = nullptr;
    QStackedWidget *m_content = nullptr;
    QLabel *m_empty = nullptr;
    LogList *m_list = nullptr;
};
