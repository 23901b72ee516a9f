#include "platform/qt/QtUrlSession.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTimer>

namespace {

constexpr int mostRedirects = 10;

UrlResponse failure(const QString &reason) {
    return {std::nullopt, {}, reason};
}

UrlResponse quitting() {
    return failure(QStringLiteral("Brindle is quitting."));
}

bool isHttp(const QUrl &url) {
    return url.scheme() == u"https" || url.scheme() == u"http";
}

QString origin(const QUrl &url) {
    const bool isHttps = url.scheme() == u"https";
    return url.scheme() + u'/' + url.host().toLower() + u'/' +
           QString::number(url.port(isHttps ? 443 : 80));
}

} // namespace

/// One request with its redirects. Lives on the session's thread and deletes itself when done.
class QtUrlSession::Task : public QObject {
public:
    Task(QtUrlSession &session, TaskId id, const UrlRequest &request)
        : QObject(&session.m_context), m_session(session), m_id(id), m_request(request) {
        m_idle.setSingleShot(true);
        m_idle.setInterval(request.idleTimeout);
        m_total.setSingleShot(true);
        m_total.setInterval(request.totalTimeout);
        const auto timedOut = [this] { fail(QStringLiteral("The request timed out.")); };
        connect(&m_idle, &QTimer::timeout, this, timedOut);
        connect(&m_total, &QTimer::timeout, this, timedOut);
        m_total.start();
        send();
    }

    ~Task() override { dropReply(); }

    void fail(const QString &reason) { finish(failure(reason)); }

private:
    void send() {
        m_body.clear();
        m_idle.start();
        m_reply = m_session.manager().get(m_session.networkRequest(m_request));
        connect(m_reply, &QNetworkReply::readyRead, this, &Task::read);
        connect(m_reply, &QNetworkReply::metaDataChanged, &m_idle, qOverload<>(&QTimer::start));
        connect(m_reply, &QNetworkReply::finished, this, &Task::replied);
    }

    void read() {
        m_idle.start();
        m_body += m_reply->readAll();
        if (m_body.size() > largestBody)
            fail(QStringLiteral("The response is too large."));
    }

    void replied() {
        read();
        if (!m_reply) // too large
            return;
        const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (!status.isValid() || isCutShort(status.toInt())) {
            fail(reasonOf(*m_reply));
            return;
        }
        if (followRedirect(status.toInt()))
            return;
        finish({status.toInt(), m_body, {}});
    }

    bool isCutShort(int status) const {
        // Qt calls a status of 400 and above an error too; to us it is a response, and all there is
        // to know.
        if (status >= 400)
            return false;
        if (m_reply->error() != QNetworkReply::NoError || status != 200)
            return m_reply->error() != QNetworkReply::NoError;
        // A stream that the server resets without an error just ends. Of a compressed body Qt gives
        // us the contents, not the length.
        const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
        return length.isValid() && !m_reply->hasRawHeader("Content-Encoding") &&
               m_body.size() < length.toLongLong();
    }

    /// Qt's texts name the URL and the reason; neither holds a credential.
    static QString reasonOf(const QNetworkReply &reply) {
        return reply.error() == QNetworkReply::NoError ? QStringLiteral("The response broke off.")
                                                       : reply.errorString();
    }

    bool followRedirect(int status) {
        static constexpr int redirects[] = {301, 302, 303, 307, 308};
        const QByteArray location = m_reply->rawHeader("Location");
        if (std::find(std::begin(redirects), std::end(redirects), status) == std::end(redirects) ||
            location.isEmpty())
            return false;
        const QUrl target = m_request.url.resolved(QUrl::fromEncoded(location));
        if (!isHttp(target) ||
            (m_request.url.scheme() == u"https" && target.scheme() != u"https")) {
            fail(QStringLiteral("The server redirected to an address that is not secure."));
            return true;
        }
        // Brindle talks to nobody but the hosts it was told to talk to.
        if (target.host().compare(m_request.url.host(), Qt::CaseInsensitive) != 0)
            return false;
        if (++m_redirects > mostRedirects) {
            fail(QStringLiteral("The server redirected too many times."));
            return true;
        }
        if (origin(target) != origin(m_request.url)) {
            m_request.headers.removeIf([](const auto &header) {
                return header.first.compare("Authorization", Qt::CaseInsensitive) == 0;
            });
        }
        m_request.url = target;
        dropReply();
        send();
        return true;
    }

    void dropReply() {
        if (!m_reply)
            return;
        QNetworkReply *reply = std::exchange(m_reply, nullptr);
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }

    void finish(const UrlResponse &response) {
        m_idle.stop();
        m_total.stop();
        dropReply();
        m_session.m_tasks.remove(m_id);
        deleteLater();
        m_session.answer(m_id, response);
    }

    QtUrlSession &m_session;
    TaskId m_id;
    UrlRequest m_request;
    QNetworkReply *m_reply = nullptr;
    QByteArray m_body;
    int m_redirects = 0;
    QTimer m_idle{this};
    QTimer m_total{this};
};

QtUrlSession::QtUrlSession(Adapt adapt) : m_adapt(std::move(adapt)) {
    m_context.moveToThread(&m_thread);
}

QtUrlSession::~QtUrlSession() {
    cancelAll();
    m_thread.wait();
    const std::scoped_lock lock(m_mutex); // as leaveThread() says
}

bool QtUrlSession::onThread(std::function<void()> work) {
    const std::scoped_lock lock(m_mutex);
    return onThreadLocked(std::move(work));
}

bool QtUrlSession::onThreadLocked(std::function<void()> work) {
    if (m_hasEnded)
        return false;
    // Whoever comes first starts the thread; starting a running one does nothing.
    m_thread.start();
    m_context.post(std::move(work));
    return true;
}

QNetworkAccessManager &QtUrlSession::manager() {
    if (!m_manager)
        m_manager = std::make_unique<QNetworkAccessManager>();
    return *m_manager;
}

UrlSession::TaskId QtUrlSession::start(const UrlRequest &request, Completion completion) {
    std::unique_lock lock(m_mutex);
    const TaskId id = ++m_lastTask;
    if (onThreadLocked([this, id, request] { send(id, request); })) {
        m_waiting.insert(id, std::move(completion));
        return id;
    }
    lock.unlock();
    completion(quitting());
    return id;
}

void QtUrlSession::send(TaskId id, const UrlRequest &request) {
    std::unique_lock lock(m_mutex);
    const bool isWanted = m_waiting.contains(id);
    lock.unlock();
    if (!isWanted)
        return;
    if (isHttp(request.url))
        m_tasks.insert(id, new Task(*this, id, request));
    else
        answer(id, failure(QStringLiteral("Only http and https addresses are opened.")));
}

void QtUrlSession::answer(TaskId id, const UrlResponse &response) {
    std::unique_lock lock(m_mutex);
    const Completion completion = m_waiting.take(id);
    lock.unlock();
    if (completion)
        completion(response);
}

void QtUrlSession::cancel(TaskId task) {
    onThread([this, task] {
        if (Task *running = m_tasks.value(task))
            running->fail(QStringLiteral("The request was cancelled."));
    });
}

void QtUrlSession::cancelAll() {
    std::unique_lock lock(m_mutex);
    if (m_thread.isRunning())
        onThreadLocked([this] { leaveThread(); });
    m_hasEnded = true;
    const auto waiting = std::exchange(m_waiting, {});
    lock.unlock();
    // Here and not on the thread, which may be held up by what it asks the system for.
    for (const Completion &completion : waiting)
        completion(quitting());
}

void QtUrlSession::leaveThread() {
    m_tasks.clear();
    const QObjectList tasks = m_context.children();
    qDeleteAll(tasks);
    m_manager.reset();
    m_context.moveToThread(nullptr);
    m_thread.quit();
    // The end of the thread is the toolkit's secret; this is what orders what it did before what
    // follows.
    const std::scoped_lock lock(m_mutex);
}

void QtUrlSession::warmUp() {
    if (m_isWarm.exchange(true))
        return;
    onThread([this] {
        manager();
        QSslSocket::supportsSsl(); // loads the TLS library and its certificates
    });
}

void QtUrlSession::prepareConnection(const QUrl &url) {
    onThread([this, url] {
        const QNetworkRequest request = networkRequest({url, {}, {}});
        // Only with the protocols offered that a request offers does it find this connection.
        QSslConfiguration configuration = request.sslConfiguration();
        configuration.setAllowedNextProtocols(
            {QSslConfiguration::ALPNProtocolHTTP2, QSslConfiguration::NextProtocolHttp1_1});
        manager().connectToHostEncrypted(request.url().host(),
                                         static_cast<quint16>(request.url().port(443)),
                                         configuration, request.peerVerifyName());
    });
}

QNetworkRequest QtUrlSession::networkRequest(const UrlRequest &request) const {
    QNetworkRequest network(request.url);
    for (const auto &[name, value] : request.headers)
        network.setRawHeader(name, value);
    network.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Brindle"));
    network.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    // The credentials are the header's; nothing is remembered between requests.
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        network.setAttribute(attribute, QNetworkRequest::Manual);
    if (m_adapt)
        m_adapt(network);
    return network;
}
