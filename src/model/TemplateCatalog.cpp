#include "model/TemplateCatalog.h"

using namespace Qt::StringLiterals;

namespace TemplateCatalog {

namespace {

/// The tags that both templates know.
QList<TemplatePlaceholder> styleTags() {
    return {
        {u"<i>"_s, u"Italic: start"_s},
        {u"</i>"_s, u"Italic: end"_s},
        {u"<b>"_s, u"Bold: start"_s},
        {u"</b>"_s, u"Bold: end"_s},
    };
}

} // namespace

const QList<TemplatePlaceholder> &placeholders() {
    static const QList<TemplatePlaceholder> list =
        QList<TemplatePlaceholder>{
            {u"{key}"_s, u"Issue key"_s},
            {u"{type}"_s, u"Issue type"_s},
            {u"{TYPE}"_s, u"Issue type, UPPER"_s},
            {u"{summary}"_s, u"Summary"_s},
            {u"{status}"_s, u"Status"_s},
            {u"{STATUS}"_s, u"Status, UPPER"_s},
            {u"{type-emoji}"_s, u"Emoji for issue type"_s},
            {u"{commenter-name}"_s, u"Commenter's first name"_s},
            {u"{commenttext}"_s, u"First words of the comment"_s},
            {u"{comment-emoji}"_s, u"Your comment emoji"_s},
            {u"<c>"_s, u"Comment-only block: start"_s},
            {u"</c>"_s, u"Comment-only block: end"_s},
        } +
        styleTags();
    return list;
}

const QList<TemplatePlaceholder> &confluencePlaceholders() {
    static const QList<TemplatePlaceholder> list =
        QList<TemplatePlaceholder>{
            {u"{title}"_s, u"Page title"_s},
            {u"{space}"_s, u"Space key (e.g. ENG)"_s},
            {u"{type}"_s, u"Page or Blog"_s},
            {u"{id}"_s, u"Page id"_s},
        } +
        styleTags();
    return list;
}

} // namespace TemplateCatalog
