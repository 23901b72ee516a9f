#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

/// A GET request.
struct UrlRequest {
    QUrl url; ///< http or https; anything else ends as a transport error
    QList<std::pair<QByteArray, QByteArray>> headers;
    /// How long nothing may arrive before it counts as failed.
    std::chrono::milliseconds idleTimeout{10000};
    /// The most that it may take in all, however lively the server drips.
    std::chrono::milliseconds totalTimeout{60000};
};

/// How a request ended: with an HTTP response, whatever its status, or with the reason why there is
/// none.
struct UrlResponse {
    std::optional<int> httpStatus;
    QByteArray body;        ///< whole for a status below 400
    QString transportError; ///< a text for the user, empty when there is none
};

/// Loading URLs over one shared session that keeps its connections. Certificates are always
/// checked. A redirect stays on the host it came from, never leads from https to http, and takes
/// the Authorization header along only within one origin. Any thread.
class UrlSession {
public:
    using Completion = std::function<void(const UrlResponse &)>;
    using TaskId = quint64;

    /// A larger body ends as a transport error.
    static constexpr qint64 largestBody = qint64{16} * 1024 * 1024;

    virtual ~UrlSession() = default;

    /// Starts a request; `completion` is called exactly once, on the session's own thread or, from
    /// cancelAll() on, on the thread that calls it or this.
    virtual TaskId start(const UrlRequest &request, Completion completion) = 0;

    /// Ends a request early; its completion gets a transport error. Harmless when it has ended.
    virtual void cancel(TaskId task) = 0;

    /// The end of the program: every request under way ends at once with a transport error, and so
    /// does every later one. Nothing is contacted any more. Waits for nothing.
    virtual void cancelAll() = 0;

    /// Loads what the first request would have to wait for: a request may follow. Contacts nobody
    /// and returns at once.
    virtual void warmUp() = 0;

    /// Opens a connection to the host of `url`, to be ready for a request that is certain to come.
    /// Sends nothing.
    virtual void prepareConnection(const QUrl &url) = 0;
};
