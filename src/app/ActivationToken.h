#pragma once

#include <QVariantMap>

/// The right to come to the front, which on Wayland a launcher hands on as a token. The toolkit
/// takes it from the environment when it activates the next window. Main thread only.
class ActivationToken {
public:
    /// That of the call with this platform data; in force as long as the object lives.
    explicit ActivationToken(const QVariantMap &platformData);
    ~ActivationToken();
    ActivationToken(const ActivationToken &) = delete;
    ActivationToken &operator=(const ActivationToken &) = delete;

    /// The platform data that hands on what this process was started with.
    static QVariantMap platformData();

    /// Whether there is one in force.
    static bool isThere();

    /// Drops what this process was started with, which is stale once it is up.
    static void drop();
};
