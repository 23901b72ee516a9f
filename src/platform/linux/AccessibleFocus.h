#pragma once

#include <QString>

#include <chrono>

/// The object in focus as applications describe it to assistive technology (AT-SPI).
namespace AccessibleFocus {

/// Whether the object in focus is a password field. Asks only a service that is running already:
/// accessibility is never switched on for the user. No answer within `deadline` counts as no.
/// Blocks; background threads only.
bool isPasswordField(std::chrono::milliseconds deadline);

/// What the application with the active window calls itself; empty where none is, or none answers
/// within `deadline`. Else like isPasswordField().
QString activeApplication(std::chrono::milliseconds deadline);

} // namespace AccessibleFocus
