#pragma once

#include <QList>

class Settings;

/// A writer of settings goes round and round; every value tells in which round it was written.
namespace WrittenRounds {

/// Assigns each of the settings once, always in the same order. `round` is 1 or more.
void write(Settings &settings, int round);

/// The rounds that the values are of, in the order of their writing; -1 for a value that was never
/// written.
QList<int> read(const Settings &settings);

} // namespace WrittenRounds
