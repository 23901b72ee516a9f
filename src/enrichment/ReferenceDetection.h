#pragma once

#include "model/AccountRef.h"
#include "model/ConfluenceRef.h"
#include "model/JiraRef.h"
#include "platform/Pasteboard.h"

#include <QRegularExpression>
#include <QString>
#include <QStringView>

#include <functional>
#include <optional>
#include <variant>

namespace Enrichment {

/// The reference that a run works on.
using DetectedRef = std::variant<JiraRef, ConfluenceRef, AccountRef>;

/// `text` with a replacement character for each half of a surrogate pair that stands alone: the
/// pattern engine refuses such a text as a whole.
QString withoutLoneSurrogates(QString text);

/// Looks at a text; true when it has seen enough.
using CandidateVisitor = std::function<bool(QStringView)>;

/// Shows `visit` group `group` of each match of `pattern` in `text`, in order, until it has seen
/// enough; whether it has.
bool scanMatches(const QRegularExpression &pattern, QStringView text, int group,
                 const CandidateVisitor &visit);

/// Shows `visit` each candidate in the plain text and the HTML of the clipboard, in the order in
/// which they are tried, until it has seen enough; whether it has. A text may come again from
/// another place. Texts without half surrogate pairs only.
bool clipboardURLCandidates(QStringView plain, QStringView html, const CandidateVisitor &visit);

/// The single reference in the texts of `contents`, if any: a Jira or Confluence link in the
/// earliest candidate wins; only without one does a record id count. `recordBase` is the address in
/// front of record ids, empty where they are not linked. Pure.
std::optional<DetectedRef> detectRef(const ClipboardContents &contents, const QString &baseURL,
                                     const QString &recordBase);

} // namespace Enrichment
