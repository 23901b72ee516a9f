#pragma once

#include <memory>

/// Calls the function of a protocol that lets an object go.
template <class Object>
struct WaylandDestroy {
    void (*destroy)(Object *) = nullptr;
    void operator()(Object *object) const { destroy(object); }
};

/// An object of a Wayland protocol that is let go with its holder, which must not outlive the
/// connection.
template <class Object>
using WaylandObject = std::unique_ptr<Object, WaylandDestroy<Object>>;

template <class Object>
WaylandObject<Object> holdWayland(Object *object, void (*destroy)(Object *)) {
    return {object, {destroy}};
}
