#include "clients/SiteAddress.h"

#include <utility>

namespace {

std::optional<SiteAddress> parseAnew(const QString &baseURL) {
    const QString text = SiteAddress::withoutSlashes(baseURL);
    const std::optional<QUrl> url = urlWithHost(text);
    if (!url)
        return std::nullopt;
    return SiteAddress{text, lowerCasedHost(*url)};
}

} // namespace

QString SiteAddress::withoutSlashes(QStringView baseURL) {
    while (baseURL.startsWith(u'/'))
        baseURL = baseURL.sliced(1);
    while (baseURL.endsWith(u'/'))
        baseURL.chop(1);
    return baseURL.toString();
}

std::optional<SiteAddress> SiteAddress::parse(const QString &baseURL) {
    // The same setting is asked for once a link, and a page may have a hundred thousand.
    thread_local std::pair<QString, std::optional<SiteAddress>> latest;
    if (latest.first != baseURL)
        latest = {baseURL, parseAnew(baseURL)};
    return latest.second;
}

std::optional<QUrl> urlWithHost(const QString &text) {
    QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return std::nullopt;
    return url;
}

QString lowerCasedHost(const QUrl &url) {
    return url.host(QUrl::FullyEncoded).toLower();
}
