#pragma once

#include <QString>

/// The identity of the program.
namespace AppInfo {

/// The reverse-domain name: settings file, desktop entry, D-Bus name, keyring schema.
inline QString bundleIdentifier() {
    return QStringLiteral("org.ostrowind.brindle");
}
/// The product name shown to the user; title of every notification and alert.
inline QString displayName() {
    return QStringLiteral("Brindle");
}
/// The service attribute of both stored tokens.
inline QString keychainService() {
    return bundleIdentifier();
}
/// The account attribute of the Jira token.
inline QString keychainAccount() {
    return QStringLiteral("jira-api-token");
}
/// The account attribute of the Confluence token.
inline QString keychainAccountConfluence() {
    return QStringLiteral("confluence-api-token");
}

} // namespace AppInfo
