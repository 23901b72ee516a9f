#pragma once

#include "enrichment/TemplateRendering.h"

/// The Jira template written down the plain way, a pattern or a replacement a step. What the
/// product does in fewer steps must come to the same.
QString plainlyRendered(QString text, const Enrichment::TemplateValues &values,
                        const QString &typeEmoji, const QString &commentEmoji);
