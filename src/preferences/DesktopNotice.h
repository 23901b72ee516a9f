#pragma once

#include "preferences/kit/ResultLine.h"

class Button;

/// One line that says what of the desktop Brindle can't reach, or what waits for the user's
/// consent, with a button that has the desktop ask for it. Hidden when all is well. Main thread
/// only.
class DesktopNotice : public QWidget {
    Q_OBJECT

public:
    explicit DesktopNotice(QWidget *parent = nullptr);

    /// Looks at the desktop anew.
    void refresh();

private:
    void ask();

    ResultLine m_line;
    Button *m_ask;
};
