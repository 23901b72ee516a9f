#pragma once

#include "hardening/Findings.h"

/// Presses the hotkey `count` times in a row, each time with something else copied and in another
/// format: every paste is right and happens once, the clipboard is given back, no key stays down,
/// and memory does not grow.
void soak(Findings &findings, int count);

/// Kills a program that writes settings `count` times at moments drawn from `seed`: the file is
/// whole each time and holds what was written last.
void killWriters(Findings &findings, int count, quint32 seed);

/// Leads the product to a site and a gateway that break off, fall silent, drip, lie about who they
/// are or are not there: each fault is told, changes nothing, and is over with the next press.
void misbehavingNetwork(Findings &findings);
