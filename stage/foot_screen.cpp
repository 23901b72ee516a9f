// Loaded into foot before its libraries. The screen of a KWin without hardware is -1 mm wide, by
// which foot divides (1.13); here it is told that the size is unknown, which it expects.

#include <wayland-client.h>

#include <cstring>
#include <dlfcn.h>

namespace {

wl_output_listener footsOwn;

void geometry(void *data, wl_output *output, int32_t x, int32_t y, int32_t, int32_t,
              int32_t subpixel, const char *make, const char *model, int32_t transform) {
    footsOwn.geometry(data, output, x, y, 0, 0, subpixel, make, model, transform);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int
wl_proxy_add_listener(wl_proxy *proxy, void (**implementation)(), void *data) {
    static wl_output_listener changed;
    static const auto real = reinterpret_cast<decltype(&wl_proxy_add_listener)>(
        dlsym(RTLD_NEXT, "wl_proxy_add_listener"));
    if (std::strcmp(wl_proxy_get_class(proxy), "wl_output") != 0)
        return real(proxy, implementation, data);
    footsOwn = *reinterpret_cast<const wl_output_listener *>(implementation);
    changed = footsOwn;
    changed.geometry = geometry;
    return real(proxy, reinterpret_cast<void (**)()>(&changed), data);
}
