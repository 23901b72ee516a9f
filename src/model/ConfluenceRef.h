#pragma once

#include <QString>

/// A link to a Confluence page or blog post on the configured site.
struct ConfluenceRef {
    /// The numeric id, in the digits of the link.
    QString pageId;
    /// The space key in upper case, still percent-encoded as in the link.
    QString spaceKey;
    /// Whether this is a blog post rather than a page.
    bool isBlog = false;
    /// The copied link itself, without white space around it.
    QString url;

    /// What the link template shows as the type: "Blog" or "Page".
    QString typeLabel() const { return isBlog ? QStringLiteral("Blog") : QStringLiteral("Page"); }
};
