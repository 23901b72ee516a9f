#pragma once

#include <QByteArray>

/// Programs in which Ctrl+V is a character for the shell and the paste keys are Ctrl+Shift+V.
namespace Terminals {

/// Whether `wmClass`, a WM_CLASS property (two texts, each ended by NUL), names one of them.
bool isTerminal(const QByteArray &wmClass);

} // namespace Terminals
