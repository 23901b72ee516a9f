#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A Wayland compositor without a screen. While it lives, this program's environment
/// (WAYLAND_DISPLAY, SWAYSOCK and where they lie) leads to it.
class HeadlessCompositor {
public:
    enum class Kind { Sway, KWin };

    /// Up when the constructor returns, or else there is a problem().
    explicit HeadlessCompositor(Kind kind);
    ~HeadlessCompositor();

    QString problem() const { return m_problem; }

    /// Reads its configuration anew.
    void reload();

private:
    QTemporaryDir m_home;
    QProcess m_process;
    QString m_problem;
};
