#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

/// The form in which an enriched link goes onto the clipboard.
enum class PasteFormat { RichLink, Markdown, PlainText, UrlOnly };

/// Names and lists of the paste formats. Pure, usable from any thread.
namespace PasteFormats {

/// Every format, in declaration order.
inline constexpr std::array allCases{PasteFormat::RichLink, PasteFormat::Markdown,
                                     PasteFormat::PlainText, PasteFormat::UrlOnly};
/// The formats offered for Jira and Confluence links, in display order.
inline constexpr std::array linkFormats{PasteFormat::RichLink, PasteFormat::Markdown,
                                        PasteFormat::PlainText};
/// The formats offered for ID links, in display order.
inline constexpr std::array accountFormats{PasteFormat::UrlOnly, PasteFormat::RichLink,
                                           PasteFormat::Markdown, PasteFormat::PlainText};

/// The name under which the settings and the log know a format.
QString rawValue(PasteFormat format);

/// The name shown to the user.
QString displayName(PasteFormat format);

/// The format of a raw value; nothing for any other text, letter case included.
std::optional<PasteFormat> fromRawValue(QStringView rawValue);

} // namespace PasteFormats
