#include "enrichment/TemplateRendering.h"

#include "model/MarkedText.h"
#include "model/Text.h"
#include "storage/Settings.h"

#include <QRegularExpression>

#include <concepts>

using namespace Qt::StringLiterals;

namespace Enrichment {

namespace {

constexpr qsizetype snippetWords = 7;

const QRegularExpression &multiSpaceRegex() {
    static const QRegularExpression pattern(u"[ ]{2,}"_s);
    return pattern;
}

const QRegularExpression &emptySegmentRegex() {
    static const QRegularExpression pattern(uR"(\s+-\s+-\s+)"_s,
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

/// Replaces every `token` in `text` by what `value` gives, which is asked for only if there is one.
void replaceEach(QString &text, QLatin1StringView token, std::invocable auto value) {
    if (text.contains(token))
        text.replace(token, value());
}

void replaceEach(QString &text, QLatin1StringView token, const QString &value) {
    if (text.contains(token))
        text.replace(token, value);
}

/// Shows or drops the comment-only blocks, each up to the first tag that closes it; the tags of an
/// unpaired one just vanish.
void resolveCommentBlocks(QString &text, bool isComment) {
    constexpr QLatin1StringView opening = "<c>"_L1, closing = "</c>"_L1;
    QString resolved;
    qsizetype done = 0;
    for (;;) {
        const qsizetype open = text.indexOf(opening, done);
        const qsizetype inside = open + opening.size();
        const qsizetype close = open < 0 ? -1 : text.indexOf(closing, inside);
        if (close < 0)
            break;
        resolved += QStringView(text).sliced(done, open - done);
        if (isComment)
            resolved += QStringView(text).sliced(inside, close - inside);
        done = close + closing.size();
    }
    if (done > 0)
        text = resolved.append(QStringView(text).sliced(done));
    replaceEach(text, opening, QString());
    replaceEach(text, closing, QString());
}

/// A value that holds a placeholder further down has it filled in too, so the order is part of the
/// result.
void fillPlaceholders(QString &text, const TemplateValues &values,
                      const QList<TypeEmojiMapping> &typeEmojiMappings,
                      const QString &commentEmoji) {
    const QString type = values.type.value_or(QString());
    const QString status = values.status.value_or(QString());
    replaceEach(text, "{TYPE}"_L1, [&] { return type.toUpper(); });
    replaceEach(text, "{type}"_L1, type);
    replaceEach(text, "{STATUS}"_L1, [&] { return status.toUpper(); });
    replaceEach(text, "{status}"_L1, status);
    replaceEach(text, "{key}"_L1, values.key);
    replaceEach(text, "{summary}"_L1, values.summary);
    replaceEach(text, "{type-emoji}"_L1, [&] { return emojiForType(typeEmojiMappings, type); });
    replaceEach(text, "{commenttext}"_L1,
                [&] { return wrapItalic(commentSnippet(values.commentText)); });
    replaceEach(text, "{commenter-name}"_L1,
                [&] { return wrapItalic(values.commentAuthor.value_or(QString())); });
    replaceEach(text, "{comment-emoji}"_L1, values.isComment ? commentEmoji : QString());
}

void collapseSpaces(QString &text) {
    if (text.contains("  "_L1))
        text.replace(multiSpaceRegex(), u" "_s);
}

/// Whether two hyphens have nothing but white space between them, which is rare, and the heart of
/// what the pattern looks for.
bool mayHaveEmptySegment(QStringView text) {
    qsizetype hyphen = text.indexOf(u'-');
    while (hyphen >= 0) {
        const qsizetype next = text.indexOf(u'-', hyphen + 1);
        if (next < 0)
            return false;
        const QStringView between = text.sliced(hyphen + 1, next - hyphen - 1);
        if (!between.isEmpty() && between.trimmed().isEmpty())
            return true;
        hyphen = next;
    }
    return false;
}

/// Closes the gap that an empty value leaves between two hyphens.
void closeEmptySegments(QString &text) {
    if (mayHaveEmptySegment(text))
        text.replace(emptySegmentRegex(), u" - "_s);
}

} // namespace

QString renderTemplate(const QString &templateText, const TemplateValues &values,
                       const QList<TypeEmojiMapping> &typeEmojiMappings,
                       const QString &commentEmoji) {
    QString text = templateText;
    resolveCommentBlocks(text, values.isComment);
    fillPlaceholders(text, values, typeEmojiMappings, commentEmoji);
    text = applyStyleTags(text);
    collapseSpaces(text);
    closeEmptySegments(text);
    return Text::trimmedSpaces(text);
}

QString renderTemplate(const QString &templateText, const QString &key,
                       const std::optional<QString> &type, const QString &summary,
                       const std::optional<QString> &status, bool isComment,
                       const std::optional<QString> &commentText,
                       const std::optional<QString> &commentAuthor) {
    const Settings &settings = Settings::shared();
    return renderTemplate(templateText,
                          {key, type, summary, status, isComment, commentText, commentAuthor},
                          settings.typeEmojiMappings(), settings.commentEmoji());
}

QString commentSnippet(const std::optional<QString> &commentText) {
    // One word more than is shown tells whether the comment goes on; a comment can be long.
    QStringList words = Text::words(commentText.value_or(QString()), snippetWords + 1);
    if (words.isEmpty())
        return {};
    const bool goesOn = words.size() > snippetWords;
    if (goesOn)
        words.removeLast();
    return u'\u201C' + words.join(u' ') + (goesOn ? u"\u2026"_s : QString()) + u'\u201D';
}

QString renderConfluenceTemplate(const QString &templateText, const QString &title,
                                 const QString &space, const QString &type, const QString &id) {
    QString text = templateText;
    replaceEach(text, "{title}"_L1, title);
    replaceEach(text, "{space}"_L1, space);
    replaceEach(text, "{type}"_L1, type);
    replaceEach(text, "{id}"_L1, id);
    text = applyStyleTags(text);
    collapseSpaces(text);
    return Text::trimmedSpaces(text);
}

} // namespace Enrichment
