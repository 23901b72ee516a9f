#include "clients/Gateway.h"

#include <QJsonDocument>

QByteArray JiraClient::basicAuthHeader(const QString &email, const QString &token) {
    return "Basic " + (email + u':' + token).toUtf8().toBase64();
}

QString Gateway::origin() {
    return QStringLiteral("https://api.atlassian.com");
}

std::optional<QUrl> Gateway::url(const QString &text) {
    const QUrl url(text, QUrl::StrictMode);
    const bool isHttp = url.scheme() == u"https" || url.scheme() == u"http";
    return url.isValid() && isHttp ? std::optional(url) : std::nullopt;
}

UrlRequest Gateway::anonymousRequest(const QUrl &url) {
    return {url, {{"Accept", "application/json"}}};
}

UrlRequest Gateway::authorizedRequest(const QUrl &url, const QString &email, const QString &token) {
    UrlRequest request = anonymousRequest(url);
    request.headers.append({"Authorization", JiraClient::basicAuthHeader(email, token)});
    return request;
}

QString Gateway::noResponse(const UrlResponse &response) {
    return response.transportError.isEmpty()
               ? QStringLiteral("No HTTP response")
               : QStringLiteral("Network error: ") + response.transportError;
}

std::optional<QJsonObject> Gateway::jsonObject(const QByteArray &body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<QString> Gateway::stringMember(const QJsonObject &object, QLatin1StringView name) {
    const QJsonValue value = object.value(name);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QString> Gateway::stringMember(const QJsonObject &object, QLatin1StringView member,
                                             QLatin1StringView name) {
    return stringMember(object.value(member).toObject(), name);
}
