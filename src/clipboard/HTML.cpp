#include "clipboard/HTML.h"

QString HTML::escape(const QString &text) {
    // The toolkit leaves the apostrophe, which ends an attribute as well.
    return text.toHtmlEscaped().replace(u'\'', QStringLiteral("&#39;"));
}
