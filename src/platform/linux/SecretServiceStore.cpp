#include "platform/linux/SecretServiceStore.h"

// GLib's headers use names that Qt defines as macros unless told otherwise; they come alone.
#undef signals
#include <libsecret/secret.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

/// How long an operation may take. An unlocked keyring answers in milliseconds; the rest is the
/// time the user has for the prompt of a locked one.
constexpr guint deadlineSeconds = 30;

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

template <auto release>
struct Release {
    template <class T>
    void operator()(T *pointer) const {
        release(pointer);
    }
};

using Attributes = std::unique_ptr<GHashTable, Release<g_hash_table_unref>>;
using Value = std::unique_ptr<SecretValue, Release<secret_value_unref>>;

Attributes attributes(const QString &service, const QString &account) {
    GHashTable *table = g_hash_table_new_full(g_str_hash, g_str_equal, nullptr, g_free);
    // The keys are literals; the table frees the values.
    g_hash_table_insert(table, const_cast<char *>("service"),
                        g_strdup(service.toUtf8().constData()));
    g_hash_table_insert(table, const_cast<char *>("account"),
                        g_strdup(account.toUtf8().constData()));
    return Attributes(table);
}

/// Cancels an operation that outlives the deadline: the calls below block, on a prompt for as long
/// as nobody answers it.
class Deadline {
public:
    Deadline()
        : m_cancellable(g_cancellable_new()), m_thread([this] {
              std::unique_lock lock(m_mutex);
              const std::chrono::seconds limit(deadlineSeconds);
              if (!m_done.wait_for(lock, limit, [this] { return m_isDone; }))
                  g_cancellable_cancel(m_cancellable);
          }) {}

    ~Deadline() {
        {
            const std::scoped_lock lock(m_mutex);
            m_isDone = true;
        }
        m_done.notify_one();
        m_thread.join();
        g_object_unref(m_cancellable);
    }

    Deadline(const Deadline &) = delete;
    Deadline &operator=(const Deadline &) = delete;

    GCancellable *cancellable() const { return m_cancellable; }

private:
    std::mutex m_mutex;
    std::condition_variable m_done;
    bool m_isDone = false;
    GCancellable *m_cancellable;
    std::thread m_thread;
};

} // namespace

bool SecretServiceStore::add(const QString &service, const QString &account,
                             const QByteArray &secret) {
    const Attributes keys = attributes(service, account);
    const Value value(secret_value_new(secret.constData(), secret.size(), "text/plain"));
    const QByteArray label = service.toUtf8() + ": " + account.toUtf8();
    const Deadline deadline;
    // The reason of a refusal may quote the item; the caller learns that it was refused.
    return secret_password_storev_binary_sync(&schema(), keys.get(), SECRET_COLLECTION_DEFAULT,
                                              label.constData(), value.get(),
                                              deadline.cancellable(), nullptr);
}

std::optional<QByteArray> SecretServiceStore::copy(const QString &service, const QString &account) {
    const Attributes keys = attributes(service, account);
    const Deadline deadline;
    const Value value(secret_password_lookupv_binary_sync(&schema(), keys.get(),
                                                          deadline.cancellable(), nullptr));
    if (!value)
        return std::nullopt;
    gsize length = 0;
    const gchar *bytes = secret_value_get(value.get(), &length);
    return QByteArray(bytes, static_cast<qsizetype>(length));
}

void SecretServiceStore::remove(const QString &service, const QString &account) {
    const Attributes keys = attributes(service, account);
    const Deadline deadline;
    secret_password_clearv_sync(&schema(), keys.get(), deadline.cancellable(), nullptr);
}
