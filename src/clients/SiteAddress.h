#pragma once

#include <QString>
#include <QUrl>

#include <optional>

/// The configured site, as the references compare copied links with it.
struct SiteAddress {
    /// The address as typed, without leading and trailing "/". White space is not trimmed.
    QString text;
    /// Its host as typed.
    QString label;
    /// Its host in lower case, in its ASCII form; never empty.
    QString host;

    /// The site of the setting `baseURL`; nothing if that is no URL with a host.
    static std::optional<SiteAddress> parse(const QString &baseURL);

    /// The setting `baseURL` without leading and trailing "/", whatever else it is.
    static QString withoutSlashes(QStringView baseURL);
};

/// `text` as a URL, read strictly; nothing if it is none, or has no host.
std::optional<QUrl> urlWithHost(const QString &text);

/// `text` from its start to the end of the URL's authority; empty without one. What has no host, or
/// a wrong one, here has the same fault as a whole.
QStringView upToAuthority(QStringView text);

/// The host of `url` in lower case, in its ASCII form.
QString lowerCasedHost(const QUrl &url);
