#pragma once

/// Makes SIGTERM, SIGINT and SIGHUP quit the application as the menu does, and SIGPIPE do nothing.
/// To be called once, on the main thread.
void quitOnSignals();
