#include "fuzz/PlainRendering.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString replaced(QString text, const QString &pattern, const QString &by) {
    return text.replace(
        QRegularExpression(pattern, QRegularExpression::DotMatchesEverythingOption |
                                        QRegularExpression::UseUnicodePropertiesOption),
        by);
}

QString italic(const QString &text) {
    return text.isEmpty() ? text : u'\uE000' + text + u'\uE001';
}

} // namespace

QString plainlyRendered(QString text, const Enrichment::TemplateValues &values,
                        const QString &typeEmoji, const QString &commentEmoji) {
    text = replaced(text, u"<c>(.*?)</c>"_s, values.isComment ? u"\\1"_s : QString());
    const QString type = values.type.value_or(QString());
    const QString status = values.status.value_or(QString());
    const std::pair<QString, QString> steps[] = {
        {u"<c>"_s, {}},
        {u"</c>"_s, {}},
        {u"{TYPE}"_s, type.toUpper()},
        {u"{type}"_s, type},
        {u"{STATUS}"_s, status.toUpper()},
        {u"{status}"_s, status},
        {u"{key}"_s, values.key},
        {u"{summary}"_s, values.summary},
        {u"{type-emoji}"_s, typeEmoji},
        {u"{commenttext}"_s, italic(Enrichment::commentSnippet(values.commentText))},
        {u"{commenter-name}"_s, italic(values.commentAuthor.value_or(QString()))},
        {u"{comment-emoji}"_s, values.isComment ? commentEmoji : QString()},
        {u"<i>"_s, u"\uE000"_s},
        {u"</i>"_s, u"\uE001"_s},
        {u"<b>"_s, u"\uE002"_s},
        {u"</b>"_s, u"\uE003"_s},
    };
    for (const auto &[token, value] : steps)
        text.replace(token, value);
    text = replaced(text, u" {2,}"_s, u" "_s);
    text = replaced(text, uR"(\s+-\s+-\s+)"_s, u" - "_s);
    return replaced(text, uR"(\A[\p{Zs}\t]+|[\p{Zs}\t]+\z)"_s, {});
}
