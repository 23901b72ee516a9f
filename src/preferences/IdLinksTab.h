#pragma once

#include <QWidget>

class WrappingText;

/// The tab of the links made of record ids. Main thread only.
class IdLinksTab : public QWidget {
    Q_OBJECT

public:
    explicit IdLinksTab(QWidget *parent = nullptr);

private:
    QWidget *baseSection();
    QWidget *formatSection();
    void refresh();

    WrappingText *m_link = nullptr;
    WrappingText *m_pasted = nullptr;
};
