#pragma once

#include "stage/DesktopHome.h"
#include "stage/DesktopOptions.h"
#include "stage/Screen.h"

/// KWin without hardware, with XWayland and a keyboard, as in a Plasma session without the rest of
/// Plasma.
class KWinCompositor : public Screen {
public:
    KWinCompositor(DesktopHome &home, const DesktopOptions &options);
    ~KWinCompositor() override;

    QString display() const override { return m_display; }
    StageProcess *keyboard() const override { return m_keyboard; }

private:
    QString m_display;
    StageProcess *m_kwin = nullptr;
    StageProcess *m_keyboard = nullptr;
};
