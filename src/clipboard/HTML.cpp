#include "clipboard/HTML.h"

QString HTML::escape(const QString &text) {
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'&':
            escaped += u"&amp;";
            break;
        case u'<':
            escaped += u"&lt;";
            break;
        case u'>':
            escaped += u"&gt;";
            break;
        case u'"':
            escaped += u"&quot;";
            break;
        case u'\'':
            escaped += u"&#39;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}
