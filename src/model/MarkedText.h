#pragma once

#include "model/AttributedText.h"

#include <QChar>
#include <QString>
#include <QStringView>

/// Marked text: ordinary text in which four private-use characters switch italic and bold on and
/// off. It may be unbalanced or nested in any order. Pure functions, usable from any thread.
namespace Enrichment {

/// Starts italic; "<i>" in a template.
inline constexpr QChar italicOpen{u'\uE000'};
/// Ends italic; "</i>" in a template.
inline constexpr QChar italicClose{u'\uE001'};
/// Starts bold; "<b>" in a template.
inline constexpr QChar boldOpen{u'\uE002'};
/// Ends bold; "</b>" in a template.
inline constexpr QChar boldClose{u'\uE003'};

/// `text` with the four style tags turned into markers; tags in upper case are no tags.
QString applyStyleTags(const QString &text);

/// `text` between the italic markers; empty text stays empty.
QString wrapItalic(const QString &text);

/// `text` without its markers.
QString stripStyleMarkers(const QString &text);

/// `text` with "*" for the italic markers and "**" for the bold ones. Nothing is escaped.
QString markdownStyled(const QString &text);

/// `text` with the markers as HTML tags. Nothing is escaped: that comes first, by the caller.
QString htmlStyled(const QString &text);

/// The runs that the markers make. A marker is a switch, not a counter: the first closing marker
/// ends a style however often it was opened. There is no link.
AttributedText attributedFromMarked(QStringView marked);

} // namespace Enrichment
