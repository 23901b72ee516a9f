#pragma once

#include <QString>

/// Turns a process that runs as root into the account "nobody", for good: compositors refuse root,
/// and what belongs to a desktop (its home, its bus, its programs) belongs to one user. Harmless
/// for anybody else. To be called first in main(), before there are threads; what went wrong, empty
/// if nothing did.
QString leaveRoot();
