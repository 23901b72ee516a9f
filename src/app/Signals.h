#pragma once

/// Makes SIGTERM, SIGINT and SIGHUP quit the application as the menu does. To be called once, on
/// the main thread.
void quitOnSignals();
