#pragma once

#include <QString>

#include <optional>

/// A link to a Jira issue on the configured site.
struct JiraRef {
    /// The issue key in upper case, such as "ABC-123".
    QString key;
    /// The link to the issue, rebuilt on the configured site address.
    QString url;
    /// The id of the comment the link points at, in decimal digits; absent if it points at none.
    std::optional<QString> commentId;
};
