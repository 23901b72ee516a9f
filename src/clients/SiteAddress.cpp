#include "clients/SiteAddress.h"

#include <algorithm>
#include <utility>

namespace {

/// The host in `text`, which has one, without user name and port.
QString typedHost(QStringView text) {
    QStringView host = upToAuthority(text);
    host = host.sliced(host.indexOf(u"//") + 2);
    host = host.sliced(host.lastIndexOf(u'@') + 1);
    const qsizetype port = host.indexOf(u':', std::max<qsizetype>(0, host.indexOf(u']')));
    return (port < 0 ? host : host.first(port)).toString();
}

std::optional<SiteAddress> parseAnew(const QString &baseURL) {
    const QString text = SiteAddress::withoutSlashes(baseURL);
    const std::optional<QUrl> url = urlWithHost(text);
    if (!url)
        return std::nullopt;
    return SiteAddress{text, typedHost(text), lowerCasedHost(*url)};
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

QStringView upToAuthority(QStringView text) {
    const qsizetype slashes = text.indexOf(u"//");
    if (slashes < 0)
        return {};
    const auto end = std::find_if(text.begin() + slashes + 2, text.end(), [](QChar unit) {
        return unit == u'/' || unit == u'?' || unit == u'#';
    });
    return {text.begin(), end};
}

QString lowerCasedHost(const QUrl &url) {
    return url.host(QUrl::FullyEncoded).toLower();
}
