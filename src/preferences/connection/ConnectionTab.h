#pragma once

#include <QWidget>

class ResultLine;

/// The tab on which the user enters the site, the account and the two tokens, and tries them. Its
/// content comes without outer margins and may be taller than the window. Main thread only.
class ConnectionTab : public QWidget {
    Q_OBJECT

public:
    explicit ConnectionTab(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    ResultLine *m_keyring; ///< says that nothing here keeps tokens
};
