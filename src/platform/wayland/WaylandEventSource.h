#pragma once

#include "platform/wayland/WaylandConnection.h"

#include <memory>

/// A connection that the event loop of the calling thread serves.
std::shared_ptr<WaylandConnection> connectToWayland();
