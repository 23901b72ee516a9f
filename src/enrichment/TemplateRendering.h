#pragma once

#include "model/TypeEmojiMapping.h"

#include <QList>
#include <QString>

#include <optional>

/// Link texts from the user's templates. The results are marked text (model/MarkedText.h).
/// Rendering cannot fail: what is absent is empty.
namespace Enrichment {

/// What a Jira template can show of an issue and of the comment a link points at.
struct TemplateValues {
    QString key{};
    std::optional<QString> type{};
    QString summary{};
    std::optional<QString> status{};
    /// Whether the link points at a comment; decides about the comment-only blocks.
    bool isComment = false;
    std::optional<QString> commentText{};
    /// The commenter's first name.
    std::optional<QString> commentAuthor{};
};

/// The link text of a Jira issue. Pure, usable from any thread.
QString renderTemplate(const QString &templateText, const TemplateValues &values,
                       const QList<TypeEmojiMapping> &typeEmojiMappings,
                       const QString &commentEmoji);

/// The same with the emoji table and the comment emoji of the settings. Main thread.
QString renderTemplate(const QString &templateText, const QString &key,
                       const std::optional<QString> &type, const QString &summary,
                       const std::optional<QString> &status, bool isComment,
                       const std::optional<QString> &commentText,
                       const std::optional<QString> &commentAuthor);

/// The first seven words of a comment in curly quotes, with "…" if there are more; empty if there
/// are none. Pure, usable from any thread.
QString commentSnippet(const std::optional<QString> &commentText);

/// The link text of a Confluence page or blog post. Pure, usable from any thread.
QString renderConfluenceTemplate(const QString &templateText, const QString &title,
                                 const QString &space, const QString &type, const QString &id);

} // namespace Enrichment
