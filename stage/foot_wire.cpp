// Loaded into foot before its libraries. It tells on descriptor 3 when foot gets and loses the
// focus, which foot itself does not tell a program that asks too late. And the screen of a KWin
// without hardware is -1 mm wide, by which foot divides (1.13); here foot hears that the size is
// unknown, which it expects.

#include <wayland-client.h>

#include <dlfcn.h>
#include <string_view>
#include <unistd.h>

namespace {

using AddListener = int (*)(wl_proxy *, void (**)(), void *);

// foot's own, and what it gets in their place.
wl_output_listener outputOfFoot, output;
wl_keyboard_listener keyboardOfFoot, keyboard;

void tell(std::string_view line) {
    if (write(3, line.data(), line.size()) < 0)
        _exit(1); // nobody listens any more
}

void geometry(void *data, wl_output *object, int32_t x, int32_t y, int32_t, int32_t,
              int32_t subpixel, const char *make, const char *model, int32_t transform) {
    outputOfFoot.geometry(data, object, x, y, 0, 0, subpixel, make, model, transform);
}

void enter(void *data, wl_keyboard *object, uint32_t serial, wl_surface *surface, wl_array *keys) {
    keyboardOfFoot.enter(data, object, serial, surface, keys);
    tell("{\"event\":\"focused\"}\n");
}

void leave(void *data, wl_keyboard *object, uint32_t serial, wl_surface *surface) {
    keyboardOfFoot.leave(data, object, serial, surface);
    tell("{\"event\":\"unfocused\"}\n");
}

} // namespace

extern "C" __attribute__((visibility("default"))) int
wl_proxy_add_listener(wl_proxy *proxy, void (**implementation)(), void *data) {
    static const auto real =
        reinterpret_cast<AddListener>(dlsym(RTLD_NEXT, "wl_proxy_add_listener"));
    const std::string_view name = wl_proxy_get_class(proxy);
    if (name == "wl_output") {
        output = outputOfFoot = *reinterpret_cast<const wl_output_listener *>(implementation);
        output.geometry = geometry;
        return real(proxy, reinterpret_cast<void (**)()>(&output), data);
    }
    if (name == "wl_keyboard") {
        keyboard = keyboardOfFoot = *reinterpret_cast<const wl_keyboard_listener *>(implementation);
        keyboard.enter = enter;
        keyboard.leave = leave;
        return real(proxy, reinterpret_cast<void (**)()>(&keyboard), data);
    }
    return real(proxy, implementation, data);
}
