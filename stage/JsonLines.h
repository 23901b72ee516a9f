#pragma once

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

/// Writes one event of a helper program to its output at once: a JSON object on one line, with
/// the name of the event under "event".
inline void say(const QString &event, QJsonObject line = {}) {
    line[QStringLiteral("event")] = event;
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}
