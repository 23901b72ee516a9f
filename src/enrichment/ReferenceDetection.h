#pragma once

#include "model/AccountRef.h"
#include "model/ConfluenceRef.h"
#include "model/JiraRef.h"

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringView>

#include <optional>
#include <variant>

namespace Enrichment {

/// The reference that a run works on.
using DetectedRef = std::variant<JiraRef, ConfluenceRef, AccountRef>;

/// What the clipboard offers as candidates. The candidates are views into the texts beside them, so
/// that megabytes of HTML are held once.
struct Candidates {
    QString plain;
    QString html;
    QList<QStringView> texts; ///< non-empty, none twice, in the order in which they are tried
};

/// The matched texts of `group` of every match of `pattern` in `text`, in match order.
QList<QStringView> scanMatches(const QRegularExpression &pattern, QStringView text, int group);

/// Gathers the candidates from the plain text and the HTML of the clipboard. Main thread.
Candidates clipboardURLCandidates();

/// The same from texts already read; an absent flavour is nothing.
Candidates candidatesIn(std::optional<QString> plain, std::optional<QString> html);

/// The single reference the clipboard holds, if any: a Jira or Confluence link in the earliest
/// candidate wins; only without one does a record id count. Main thread.
std::optional<DetectedRef> detectRef(const QString &baseURL);

} // namespace Enrichment
