#pragma once

#include "platform/qt/QtUrlSession.h"

#include <QSslCertificate>
#include <QString>

/// The product's session, led to a LoopbackGateway: every host is looked for at its port, and its
/// certificate is the only one trusted. Host names are checked as ever.
class RedirectedUrlSession : public QtUrlSession {
public:
    RedirectedUrlSession(quint16 port, const QString &certificate);

protected:
    QNetworkRequest networkRequest(const UrlRequest &request) const override;

private:
    quint16 m_port;
    QList<QSslCertificate> m_certificates;
};
