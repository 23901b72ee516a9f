#include "platform/linux/UnlockPrompt.h"

#undef signals
#include <gio/gio.h>

namespace {

constexpr const char *serviceName = "org.freedesktop.secrets";
constexpr const char *promptInterface = "org.freedesktop.Secret.Prompt";
/// In milliseconds; who waits has a deadline of its own.
constexpr int noTimeout = G_MAXINT;

/// A loop for the signals of one prompt, apart from all others.
class Loop {
public:
    Loop() { g_main_context_push_thread_default(m_context); }
    ~Loop() {
        g_main_context_pop_thread_default(m_context);
        g_main_context_unref(m_context);
    }
    Loop(const Loop &) = delete;
    Loop &operator=(const Loop &) = delete;

    /// Until `isDone` or the end of `cancellable`; false for that.
    bool run(const bool &isDone, GCancellable *cancellable) const {
        GSource *end = g_cancellable_source_new(cancellable);
        g_source_set_callback(end, G_SOURCE_FUNC(&goOn), nullptr, nullptr);
        g_source_attach(end, m_context);
        while (!isDone && !g_cancellable_is_cancelled(cancellable))
            g_main_context_iteration(m_context, true);
        g_source_destroy(end);
        g_source_unref(end);
        return isDone;
    }

private:
    /// That it was called ends the wait for events.
    static gboolean goOn(GCancellable *, gpointer) { return G_SOURCE_CONTINUE; }

    GMainContext *m_context = g_main_context_new();
};

struct Completion {
    bool isDone = false;
    bool isDismissed = true;
};

void completed(GDBusConnection *, const gchar *, const gchar *, const gchar *, const gchar *,
               GVariant *parameters, gpointer data) {
    auto *completion = static_cast<Completion *>(data);
    completion->isDone = true;
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(bv)"))) {
        gboolean isDismissed = true;
        g_variant_get(parameters, "(bv)", &isDismissed, nullptr);
        completion->isDismissed = isDismissed;
    }
}

} // namespace

UnlockPrompt::UnlockPrompt(Connection bus, QByteArray path)
    : m_bus(std::move(bus)), m_path(std::move(path)) {}

std::optional<UnlockPrompt> UnlockPrompt::forUnlocking(const char *path,
                                                       GCancellable *cancellable) {
    const Connection bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr), [](auto *given) {
        if (given)
            g_object_unref(given);
    });
    if (!bus)
        return std::nullopt;
    const gchar *paths[] = {path, nullptr};
    GVariant *reply = g_dbus_connection_call_sync(
        bus.get(), serviceName, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service",
        "Unlock", g_variant_new("(^ao)", paths), G_VARIANT_TYPE("(aoo)"), G_DBUS_CALL_FLAGS_NONE,
        noTimeout, cancellable, nullptr);
    if (!reply)
        return std::nullopt;
    const gchar *prompt = nullptr;
    g_variant_get(reply, "(ao&o)", nullptr, &prompt);
    const UnlockPrompt asked(bus, prompt);
    g_variant_unref(reply);
    return asked;
}

bool UnlockPrompt::show(GCancellable *cancellable) const {
    const Loop loop;
    Completion completion;
    const guint subscription = g_dbus_connection_signal_subscribe(
        m_bus.get(), serviceName, promptInterface, "Completed", m_path.constData(), nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, &completed, &completion, nullptr);
    GVariant *reply = g_dbus_connection_call_sync(
        m_bus.get(), serviceName, m_path.constData(), promptInterface, "Prompt",
        g_variant_new("(s)", ""), nullptr, G_DBUS_CALL_FLAGS_NONE, noTimeout, cancellable, nullptr);
    const bool isAnswered = reply && loop.run(completion.isDone, cancellable);
    if (reply)
        g_variant_unref(reply);
    g_dbus_connection_signal_unsubscribe(m_bus.get(), subscription);
    // A prompt that is given up stays on the screen: the keyring of GNOME 42 does not survive being
    // told to dismiss it, and the user may still unlock what will be asked for again.
    return isAnswered && !completion.isDismissed;
}
