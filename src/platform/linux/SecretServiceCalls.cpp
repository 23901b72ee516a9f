#include "platform/linux/SecretServiceCalls.h"

#include "platform/linux/UnlockPrompt.h"

// GLib's headers use names that Qt defines as macros unless told otherwise; they come alone.
#undef signals
// What is locked can be told from what is absent by the paths of the items only.
#define SECRET_API_SUBJECT_TO_CHANGE
#include <libsecret/secret.h>

#include <memory>

namespace SecretServiceCalls {

namespace {

using Outcome = SecretStore::Outcome;

template <auto release>
struct Release {
    template <class T>
    void operator()(T *pointer) const {
        release(pointer);
    }
};

using Attributes = std::unique_ptr<GHashTable, Release<g_hash_table_unref>>;
using Error = std::unique_ptr<GError, Release<g_error_free>>;
using Paths = std::unique_ptr<gchar *, Release<g_strfreev>>;
using Service = std::unique_ptr<SecretService, Release<g_object_unref>>;
using Value = std::unique_ptr<SecretValue, Release<secret_value_unref>>;

const SecretSchema &schema() {
    static const SecretSchema instance = [] {
        SecretSchema schema{};
        schema.name = "org.ostrowind.brindle";
        schema.flags = SECRET_SCHEMA_NONE;
        schema.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
        schema.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return schema;
    }();
    return instance;
}

Attributes attributes(const Item &item) {
    GHashTable *table = g_hash_table_new_full(g_str_hash, g_str_equal, nullptr, g_free);
    // The keys are literals; the table frees the values.
    g_hash_table_insert(table, const_cast<char *>("service"),
                        g_strdup(item.service.toUtf8().constData()));
    g_hash_table_insert(table, const_cast<char *>("account"),
                        g_strdup(item.account.toUtf8().constData()));
    return Attributes(table);
}

Service connectTo(const Patience &patience) {
    Service service(
        secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, patience.cancellable(), nullptr));
    // By itself the library ends the program together with the bus.
    if (service)
        g_dbus_connection_set_exit_on_close(
            g_dbus_proxy_get_connection(G_DBUS_PROXY(service.get())), false);
    return service;
}

/// What a call that failed means. The reason itself may quote the item and is told to nobody.
Outcome failure(const Error &error) {
    const bool isLocked =
        !error || g_error_matches(error.get(), SECRET_ERROR, SECRET_ERROR_IS_LOCKED);
    return isLocked ? Outcome::Refused : Outcome::Unavailable;
}

/// Has `path` unlocked, by the user if need be. That it was done shows in what is done next.
Outcome unlock(const char *path, Patience &patience) {
    const auto prompt = UnlockPrompt::forUnlocking(path, patience.cancellable());
    if (!prompt)
        return Outcome::Unavailable;
    if (!prompt->isNeeded())
        return Outcome::Done;
    patience.awaitUser();
    return prompt->show(patience.cancellable()) ? Outcome::Done : Outcome::Refused;
}

/// The items that fit, the unlocked ones apart.
struct Found {
    Outcome outcome = Outcome::Unavailable;
    Paths unlocked, locked;
};

Found find(SecretService *service, const Item &item, const Patience &patience) {
    const Attributes keys = attributes(item);
    gchar **unlocked = nullptr;
    gchar **locked = nullptr;
    if (!secret_service_search_for_dbus_paths_sync(
            service, &schema(), keys.get(), patience.cancellable(), &unlocked, &locked, nullptr))
        return {};
    Found found{Outcome::Done, Paths(unlocked), Paths(locked)};
    if (!*unlocked && !*locked)
        found.outcome = Outcome::Absent;
    return found;
}

Outcome removeAt(SecretService *service, const char *path, const Patience &patience) {
    GError *error = nullptr;
    if (secret_service_delete_item_dbus_path_sync(service, path, patience.cancellable(), &error))
        return Outcome::Done;
    return failure(Error(error));
}

} // namespace

Patience::Patience(const Limits &limits, std::function<void()> asksUser)
    : m_limits(limits),
      m_asksUser(std::move(asksUser)),
      m_cancellable(g_cancellable_new()),
      m_end(std::chrono::steady_clock::now() + limits.forService),
      m_watch([this] { watch(); }) {}

Patience::~Patience() {
    {
        const std::scoped_lock lock(m_mutex);
        m_isDone = true;
    }
    m_changed.notify_one();
    m_watch.join();
    g_object_unref(m_cancellable);
}

void Patience::awaitUser() {
    {
        const std::scoped_lock lock(m_mutex);
        m_end = std::chrono::steady_clock::now() + m_limits.forUser;
    }
    m_changed.notify_one();
    m_asksUser();
}

void Patience::end() {
    g_cancellable_cancel(m_cancellable);
}

void Patience::watch() {
    std::unique_lock lock(m_mutex);
    while (!m_isDone) {
        const auto until = m_end;
        if (m_changed.wait_until(lock, until) == std::cv_status::timeout && m_end == until) {
            lock.unlock();
            end();
            return;
        }
    }
}

Outcome add(const Item &item, const QByteArray &secret, Patience &patience) {
    const Service service = connectTo(patience);
    if (!service)
        return Outcome::Unavailable;
    GError *error = nullptr;
    const std::unique_ptr<gchar, Release<g_free>> keyring(secret_service_read_alias_dbus_path_sync(
        service.get(), SECRET_COLLECTION_DEFAULT, patience.cancellable(), &error));
    if (const Error reason(error); reason)
        return failure(reason);
    if (!keyring) // The service makes one, for which it asks the user as well.
        patience.awaitUser();
    else if (const Outcome unlocked = unlock(keyring.get(), patience); unlocked != Outcome::Done)
        return unlocked;
    const Attributes keys = attributes(item);
    const Value value(secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = item.service.toUtf8() + ": " + item.account.toUtf8();
    const bool isStored =
        secret_service_store_sync(service.get(), &schema(), keys.get(), SECRET_COLLECTION_DEFAULT,
                                  label.constData(), value.get(), patience.cancellable(), &error);
    return isStored ? Outcome::Done : failure(Error(error));
}

SecretStore::Answer copy(const Item &item, Patience &patience) {
    const Service service = connectTo(patience);
    if (!service)
        return {};
    const Found found = find(service.get(), item, patience);
    if (found.outcome != Outcome::Done)
        return {found.outcome, {}};
    const bool isUnlocked = *found.unlocked;
    const char *path = isUnlocked ? *found.unlocked : *found.locked;
    if (!isUnlocked) {
        if (const Outcome outcome = unlock(path, patience); outcome != Outcome::Done)
            return {outcome, {}};
    }
    GError *error = nullptr;
    const Value value(secret_service_get_secret_for_dbus_path_sync(service.get(), path,
                                                                   patience.cancellable(), &error));
    if (const Error reason(error); !value)
        return {failure(reason), {}};
    gsize length = 0;
    const gchar *bytes = secret_value_get(value.get(), &length);
    return {Outcome::Done, QByteArray(bytes, static_cast<qsizetype>(length))};
}

Outcome remove(const Item &item, Patience &patience) {
    const Service service = connectTo(patience);
    if (!service)
        return Outcome::Unavailable;
    const Found found = find(service.get(), item, patience);
    Outcome outcome = found.outcome;
    // The locked ones first: if the user would rather not, nothing is gone.
    for (gchar **path = found.locked.get(); path && *path && outcome == Outcome::Done; ++path) {
        outcome = unlock(*path, patience);
        if (outcome == Outcome::Done)
            outcome = removeAt(service.get(), *path, patience);
    }
    for (gchar **path = found.unlocked.get(); path && *path && outcome == Outcome::Done; ++path)
        outcome = removeAt(service.get(), *path, patience);
    return outcome;
}

} // namespace SecretServiceCalls
