#pragma once

#include <QByteArray>

/// Programs in which Ctrl+V is a character for the shell and the paste keys are Ctrl+Shift+V.
namespace Terminals {

/// Whether `name`, an application id or one of the names of a WM_CLASS property, is one of them.
/// Case does not matter.
bool isTerminal(const QByteArray &name);

} // namespace Terminals
