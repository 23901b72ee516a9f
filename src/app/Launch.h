#pragma once

#include "platform/Platform.h"

/// Names the program to the toolkit; to be called once the QApplication exists.
void nameApplication();

/// Runs Brindle on `platform` until it quits and gives the exit status. Ends at once when another
/// instance is running, which then shows itself. The ports are let go before it returns.
int runBrindle(Platform platform);
