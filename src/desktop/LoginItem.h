#pragma once

/// Whether Brindle starts at login. The desktop owns the setting; nothing is kept elsewhere. Main
/// thread only.
namespace LoginItem {

/// Whether it is on, approval pending included. Each look is logged.
bool isEnabled();

/// Switches it on or off; a failure is logged, shown to the user and gives false.
bool setEnabled(bool enabled);

} // namespace LoginItem
