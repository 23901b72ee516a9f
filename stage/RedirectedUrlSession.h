#pragma once

#include "platform/qt/QtUrlSession.h"

#include <QString>

/// The product's session, led to a LoopbackGateway: every host is looked for at its port, and its
/// certificate is the only one trusted. Host names are checked as ever.
class RedirectedUrlSession : public QtUrlSession {
public:
    RedirectedUrlSession(quint16 port, const QString &certificate);
};
