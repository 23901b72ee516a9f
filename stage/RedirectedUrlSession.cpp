#include "stage/RedirectedUrlSession.h"

#include <QSslCertificate>
#include <QSslConfiguration>

namespace {

void lead(QNetworkRequest &network, quint16 port, const QList<QSslCertificate> &trusted) {
    const QString host = network.url().host();
    QUrl url = network.url();
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(port);
    network.setUrl(url);
    network.setRawHeader("Host", host.toUtf8());
    network.setPeerVerifyName(host);
    QSslConfiguration configuration = network.sslConfiguration();
    configuration.setCaCertificates(trusted);
    network.setSslConfiguration(configuration);
}

} // namespace

RedirectedUrlSession::RedirectedUrlSession(quint16 port, const QString &certificate)
    : QtUrlSession([port, trusted = QSslCertificate::fromPath(certificate)](
                       QNetworkRequest &request) { lead(request, port, trusted); }) {}
