#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

/// Text as the user sees it: what counts as white space and as one character. Pure functions,
/// usable from any thread. "White space and newlines" is Unicode Z*, U+0009 to U+000D and U+0085.
namespace Text {

/// The part of `text` without white space and newlines at both ends; lives as long as `text`.
QStringView trimmedView(QStringView text);

/// `text` without white space and newlines at both ends.
QString trimmed(QStringView text);

/// `text` without spaces (Unicode Zs) and tabs at both ends; newlines stay.
QString trimmedSpaces(QStringView text);

/// The number of user-perceived characters (grapheme clusters).
qsizetype characterCount(QStringView text);

/// The first `count` user-perceived characters, or the whole text if it has fewer.
QString firstCharacters(QStringView text, qsizetype count);

/// The pieces between white space and newlines, without empty ones; at most the first `atMost`
/// of them when that is not negative (the rest of the text is then not looked at).
QStringList words(QStringView text, qsizetype atMost = -1);

} // namespace Text
