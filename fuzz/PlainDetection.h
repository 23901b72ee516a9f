#pragma once

#include "enrichment/ReferenceDetection.h"

/// Detection written down the plain way: every pattern tried on every candidate, no shortcut. What
/// the product finds in fewer steps must be the same.
namespace PlainDetection {

/// Each candidate once, in the order in which they are tried.
QStringList candidates(const QString &plain, const QString &html);

/// What is to be found in the clipboard with the site `site` and the base of record ids `base`.
std::optional<Enrichment::DetectedRef> detect(const QString &plain, const QString &html,
                                              const QString &site, const QString &base);

} // namespace PlainDetection
