#pragma once

#include "platform/x11/X11Connection.h"

#include <memory>

/// A connection that the event loop of the calling thread serves; null when there is no X server.
std::shared_ptr<X11Connection> connectToX11();
