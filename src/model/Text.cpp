#include "model/Text.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace Text {

namespace {

bool isSpaceOrTab(QChar character) {
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

/// The end of the first `count` grapheme clusters, or of the whole text if there are fewer.
/// `counted` is how many there really were.
qsizetype endOfCharacters(QStringView text, qsizetype count, qsizetype &counted) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    counted = 0;
    while (counted < count) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0)
            break;
        end = next;
        ++counted;
    }
    return end;
}

} // namespace

QStringView trimmedView(QStringView text) {
    // QChar::isSpace(), by which Qt trims, is exactly this program's white space and newlines.
    return text.trimmed();
}

QString trimmed(QStringView text) {
    return trimmedView(text).toString();
}

QString trimmedSpaces(QStringView text) {
    while (!text.isEmpty() && isSpaceOrTab(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isSpaceOrTab(text.back()))
        text.chop(1);
    return text.toString();
}

qsizetype characterCount(QStringView text) {
    qsizetype counted = 0;
    endOfCharacters(text, text.size(), counted);
    return counted;
}

QString firstCharacters(QStringView text, qsizetype count) {
    qsizetype counted = 0;
    return text.first(endOfCharacters(text, count, counted)).toString();
}

QStringList words(QStringView text, qsizetype atMost) {
    const auto isSpace = [](QChar character) { return character.isSpace(); };
    QStringList found;
    auto start = std::find_if_not(text.begin(), text.end(), isSpace);
    while (start != text.end() && found.size() != atMost) {
        const auto end = std::find_if(start, text.end(), isSpace);
        found.append(QStringView(start, end).toString());
        start = std::find_if_not(end, text.end(), isSpace);
    }
    return found;
}

} // namespace Text
