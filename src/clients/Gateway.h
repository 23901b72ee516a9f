#pragma once

#include "platform/Platform.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace JiraClient {

/// The value of the Authorization header.
QByteArray basicAuthHeader(const QString &email, const QString &token);

} // namespace JiraClient

/// What every request to the site and through the Atlassian API gateway has in common. Any thread.
namespace Gateway {

/// How long a blocking operation waits for its answer.
constexpr std::chrono::seconds longestWait{15};

/// The gateway's origin.
QString origin();

/// `text` as a URL, read strictly; nothing if it is none, or none that is asked over HTTP.
std::optional<QUrl> url(const QString &text);

/// A request that asks for JSON, without and with the user's credentials.
UrlRequest anonymousRequest(const QUrl &url);
UrlRequest authorizedRequest(const QUrl &url, const QString &email, const QString &token);

/// Why there is no HTTP response, for the user.
QString noResponse(const UrlResponse &response);

/// A body as a JSON object; nothing if it is anything else.
std::optional<QJsonObject> jsonObject(const QByteArray &body);

/// The member `name` of `object` if it is a string.
std::optional<QString> stringMember(const QJsonObject &object, QLatin1StringView name);

/// The string `name` of the object `object`.`member`, if they are such.
std::optional<QString> stringMember(const QJsonObject &object, QLatin1StringView member,
                                    QLatin1StringView name);

/// Sends `request`, lets `read` make a result of the response on the session's thread and waits for
/// it. Nothing when it took too long; the request is then cancelled. Blocks; background threads
/// only.
template <class Result>
std::optional<Result> sendAndWait(const UrlRequest &request,
                                  std::function<Result(const UrlResponse &)> read) {
    // Shared with the completion, which may come after we have stopped waiting.
    const auto cell = std::make_shared<Result>();
    const auto arrived = Platform::current().dispatch->makeSemaphore();
    UrlSession &session = *Platform::current().urlSession;
    const auto task = session.start(
        request, [cell, arrived, read = std::move(read)](const UrlResponse &response) {
            *cell = read(response);
            arrived->signal();
        });
    if (arrived->wait(longestWait))
        return *cell;
    session.cancel(task);
    return std::nullopt;
}

} // namespace Gateway
