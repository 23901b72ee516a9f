#pragma once

#include <QString>

/// Addresses that the windows show: what prompts and samples stand on where the user has entered
/// nothing, and where tokens are made.
namespace Addresses {

inline QString exampleSite() {
    return QStringLiteral("https://your-team.atlassian.net");
}
inline QString exampleEmail() {
    return QStringLiteral("you@example.com");
}
inline QString accountSite() {
    return QStringLiteral("id.atlassian.com");
}
inline QString tokenPage() {
    return QStringLiteral("https://id.atlassian.com/manage-profile/security/api-tokens");
}

} // namespace Addresses
