#include "model/MarkedText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Enrichment {

namespace {

bool isMarker(QChar character) {
    return character >= italicOpen && character <= boldClose;
}

/// What stands for each marker in a target form.
struct MarkerTexts {
    QStringView italicOpen;
    QStringView italicClose;
    QStringView boldOpen;
    QStringView boldClose;

    QStringView of(QChar marker) const {
        switch (marker.unicode()) {
        case u'\uE000':
            return italicOpen;
        case u'\uE001':
            return italicClose;
        case u'\uE002':
            return boldOpen;
        default:
            return boldClose;
        }
    }
};

QString withMarkersAs(const QString &text, const MarkerTexts &texts) {
    if (std::none_of(text.begin(), text.end(), isMarker))
        return text;
    QString result;
    result.reserve(text.size());
    for (const QChar character : text) {
        if (isMarker(character))
            result += texts.of(character);
        else
            result += character;
    }
    return result;
}

} // namespace

QString applyStyleTags(const QString &text) {
    if (!text.contains(u'<'))
        return text;
    QString result = text;
    result.replace("<i>"_L1, QString(italicOpen));
    result.replace("</i>"_L1, QString(italicClose));
    result.replace("<b>"_L1, QString(boldOpen));
    result.replace("</b>"_L1, QString(boldClose));
    return result;
}

QString wrapItalic(const QString &text) {
    return text.isEmpty() ? QString() : italicOpen + text + italicClose;
}

QString stripStyleMarkers(const QString &text) {
    return withMarkersAs(text, {});
}

QString markdownStyled(const QString &text) {
    return withMarkersAs(text, {u"*", u"*", u"**", u"**"});
}

QString htmlStyled(const QString &text) {
    return withMarkersAs(text, {u"<i>", u"</i>", u"<b>", u"</b>"});
}

AttributedText attributedFromMarked(QStringView marked) {
    AttributedText result;
    bool italic = false;
    bool bold = false;
    auto start = marked.begin();
    while (true) {
        const auto end = std::find_if(start, marked.end(), isMarker);
        result.append(QStringView(start, end).toString(), italic, bold);
        if (end == marked.end())
            return result;
        if (*end == italicOpen || *end == italicClose)
            italic = *end == italicOpen;
        else
            bold = *end == boldOpen;
        start = end + 1;
    }
}

} // namespace Enrichment
