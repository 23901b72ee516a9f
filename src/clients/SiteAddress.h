#pragma once

#include <QString>
#include <QUrl>

#include <optional>

/// The configured site, as the references compare copied links with it.
struct SiteAddress {
    /// The address as typed, without leading and trailing "/". White space is not trimmed.
    QString text;
    /// Its host in lower case; never empty.
    QString host;

    /// The site of the setting `baseURL`; nothing if that is no URL with a host.
    static std::optional<SiteAddress> parse(const QString &baseURL);

    /// The setting `baseURL` without leading and trailing "/", whatever else it is.
    static QString withoutSlashes(QStringView baseURL);
};

/// `text` as a URL, read strictly; nothing if it is none, or has no host.
std::optional<QUrl> urlWithHost(const QString &text);

/// The host of `url` in lower case, in its ASCII form.
QString lowerCasedHost(const QUrl &url);
