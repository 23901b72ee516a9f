#pragma once

#include "preferences/connection/ConnectionTest.h"

#include <QLabel>
#include <QWidget>

class BorderedField;
class Button;
class ResultLine;

/// One product's part of the Connection tab: its token, the buttons that save and try it, and what
/// came of it. Main thread only.
class TokenBlock : public QWidget {
    Q_OBJECT

public:
    explicit TokenBlock(ConnectionTest::Product product, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refresh();
    void refreshAge();

    ConnectionTest m_test;
    BorderedField *m_token = nullptr;
    QLabel *m_age = nullptr; ///< Jira only
    Button *m_save = nullptr;
    Button *m_try = nullptr;
    ResultLine *m_result = nullptr;
};
