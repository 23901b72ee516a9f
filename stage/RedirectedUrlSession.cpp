#include "stage/RedirectedUrlSession.h"

#include <QSslConfiguration>

RedirectedUrlSession::RedirectedUrlSession(quint16 port, const QString &certificate)
    : m_port(port), m_certificates(QSslCertificate::fromPath(certificate)) {}

QNetworkRequest RedirectedUrlSession::networkRequest(const UrlRequest &request) const {
    QNetworkRequest network = QtUrlSession::networkRequest(request);
    const QString host = network.url().host();
    QUrl url = network.url();
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(m_port);
    network.setUrl(url);
    network.setRawHeader("Host", host.toUtf8());
    network.setPeerVerifyName(host);
    QSslConfiguration configuration = network.sslConfiguration();
    configuration.setCaCertificates(m_certificates);
    network.setSslConfiguration(configuration);
    return network;
}
