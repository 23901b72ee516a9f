#include "app/RunningInstance.h"

#include <gio/gio.h>

#include <unistd.h>

namespace {

constexpr const char *busName = "org.ostrowind.brindle";
constexpr const char *objectPath = "/org/ostrowind/brindle";
constexpr int longestAnswer = 2000; ///< ms
constexpr int longestLook = 10000;  ///< ms
constexpr int longestStart = 15;    ///< s, on a machine that has just come up

void stop(void *loop) {
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
}

/// The right to raise a window, which the running instance has not.
GVariant *platformData() {
    GVariantBuilder data;
    g_variant_builder_init(&data, G_VARIANT_TYPE_VARDICT);
    const char *token = g_getenv("XDG_ACTIVATION_TOKEN");
    if (token && *token)
        g_variant_builder_add(&data, "{sv}", "activation-token", g_variant_new_string(token));
    return g_variant_builder_end(&data);
}

} // namespace

struct RunningInstance::Bus {
    explicit Bus(GDBusConnection *opened) : connection(opened) {}
    ~Bus() { g_object_unref(connection); }
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    GDBusConnection *connection;
};

RunningInstance::RunningInstance() {
    g_autoptr(GError) error = nullptr;
    g_autofree char *address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    GDBusConnection *connection = nullptr;
    if (address) {
        constexpr auto flags =
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        connection =
            g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, &error);
    }
    if (connection)
        m_bus = std::make_unique<Bus>(connection);
    else
        m_problem = std::string("no session bus: ") + error->message;
}

RunningInstance::~RunningInstance() = default;

GVariant *RunningInstance::ask(const char *interface, const char *method, GVariant *arguments,
                               int milliseconds, Answer &answer) {
    answer = Answer::Failed;
    if (!m_bus) {
        g_variant_unref(g_variant_ref_sink(arguments));
        return nullptr;
    }
    g_autoptr(GError) error = nullptr;
    // Not started by the bus, which may not know the display.
    GVariant *reply = g_dbus_connection_call_sync(
        m_bus->connection, busName, objectPath, interface, method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, milliseconds, nullptr, &error);
    if (reply)
        answer = Answer::Done;
    else if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
             g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN))
        answer = Answer::NotRunning;
    else if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT))
        answer = Answer::Silent;
    else
        m_problem = error->message;
    return reply;
}

RunningInstance::Answer RunningInstance::call(const char *action, int milliseconds) {
    Answer answer{};
    g_autoptr(GVariant) reply =
        ask("org.freedesktop.Application", "ActivateAction",
            g_variant_new("(sav@a{sv})", action, nullptr, platformData()), milliseconds, answer);
    return answer;
}

RunningInstance::Answer RunningInstance::examine(bool network, std::string &report, bool &isGood) {
    Answer answer{};
    g_autoptr(GVariant) reply = ask("org.ostrowind.brindle.Doctor", "Examine",
                                    g_variant_new("(b)", network), longestLook, answer);
    if (!reply)
        return answer;
    if (!g_variant_is_of_type(reply, G_VARIANT_TYPE("(bs)"))) {
        m_problem = "the running Brindle is of another version";
        return Answer::Failed;
    }
    gboolean good = FALSE;
    const char *text = nullptr;
    g_variant_get(reply, "(b&s)", &good, &text);
    isGood = good;
    report = text;
    return answer;
}

RunningInstance::Answer RunningInstance::activate(const char *action) {
    return call(action, longestAnswer);
}

/// Returns when the name is taken, or it is clear that it will not be.
void RunningInstance::awaitStart(int processId) {
    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    g_bus_watch_name_on_connection(
        m_bus->connection, busName, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection *, const char *, const char *, void *waiting) { stop(waiting); },
        nullptr, loop, nullptr);
    g_child_watch_add(
        processId, [](GPid, int, void *waiting) { stop(waiting); }, loop);
    g_timeout_add_seconds(
        longestStart,
        [](void *waiting) {
            stop(waiting);
            return G_SOURCE_REMOVE;
        },
        loop);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}

RunningInstance::Answer RunningInstance::startAndActivate(const std::string &program,
                                                          const char *action) {
    if (!m_bus)
        return Answer::Failed;
    std::string path = program;
    char *arguments[] = {path.data(), nullptr};
    // Whoever reads what the caller writes would wait until Brindle ends.
    constexpr auto flags = static_cast<GSpawnFlags>(
        G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    g_autoptr(GError) error = nullptr;
    GPid processId = 0;
    if (!g_spawn_async(
            nullptr, arguments, nullptr, flags, [](void *) { setsid(); }, nullptr, &processId,
            &error)) {
        m_problem = error->message;
        return Answer::Failed;
    }
    awaitStart(processId);
    return call(action, longestStart * 1000);
}
