#pragma once

#include "bench/Measure.h"

/// From the press of the hotkey to the text in the window in front, without the pause that both
/// programs make before the paste keys.
QList<Row> benchPastes();

/// The same for growing clipboards: many bytes, many flavours.
QList<Row> benchGrowth();

/// From the press of the hotkey on an issue's link to its title in the window in front, without
/// what a paste takes and what the server takes: the fetch alone.
QList<Row> benchFetch();

/// Rendering a link's text, and reading the text of a long comment.
QList<Row> benchRendering();

/// Looking for a reference in a large clipboard that holds none.
QList<Row> benchDetection();

/// From the start of the program until its icon is docked and its hotkey is registered.
QList<Row> benchStart();

/// From the call over the bus to the first sight of the preferences, in a program just started.
QList<Row> benchWindow();

/// Memory and wake-ups of the program when nothing happens.
QList<Row> benchIdle();
