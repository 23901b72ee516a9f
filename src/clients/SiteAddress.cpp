#include "clients/SiteAddress.h"

std::optional<SiteAddress> SiteAddress::parse(const QString &baseURL) {
    QStringView site(baseURL);
    while (site.startsWith(u'/'))
        site = site.sliced(1);
    while (site.endsWith(u'/'))
        site.chop(1);
    const QString text = site.toString();
    const std::optional<QUrl> url = urlWithHost(text);
    if (!url)
        return std::nullopt;
    return SiteAddress{text, lowerCasedHost(*url)};
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
