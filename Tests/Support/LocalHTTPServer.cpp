#include "Tests/Support/LocalHTTPServer.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <algorithm>

namespace {

constexpr qint64 zerosAtOnce = 256 * 1024;

QByteArray contentsOf(BIO *bio)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return QByteArray(data, size);
}

// For "localhost", signed by itself.
QSslConfiguration selfSignedConfiguration()
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 24 * 3600);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *const name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("localhost"), -1, -1,
                               0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    const std::unique_ptr<BIO, decltype(&BIO_free)> keyText(BIO_new(BIO_s_mem()), BIO_free);
    const std::unique_ptr<BIO, decltype(&BIO_free)> certificateText(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    PEM_write_bio_X509(certificateText.get(), certificate.get());
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(contentsOf(certificateText.get())));
    configuration.setPrivateKey(QSslKey(contentsOf(keyText.get()), QSsl::Ec));
    return configuration;
}

std::unique_ptr<QTcpServer> makeServer(LocalHTTPServer::Scheme scheme, QByteArray *certificate)
{
    if (scheme == LocalHTTPServer::Scheme::HTTP) {
        return std::make_unique<QTcpServer>();
    }
    auto server = std::make_unique<QSslServer>();
    const QSslConfiguration configuration = selfSignedConfiguration();
    server->setSslConfiguration(configuration);
    *certificate = configuration.localCertificate().toPem();
    return server;
}

// Nothing while the head is not there.
std::optional<LocalHTTPServer::Request> requestFrom(const QByteArray &received)
{
    const qsizetype headEnd = received.indexOf("\r\n\r\n");
    if (headEnd < 0) {
        return std::nullopt;
    }
    LocalHTTPServer::Request request;
    const QList<QByteArray> lines = received.left(headEnd).split('\n');
    const QList<QByteArray> words = lines.first().trimmed().split(' ');
    request.method = words.value(0);
    request.target = QString::fromUtf8(words.value(1));
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    request.body = received.mid(headEnd + 4);
    return request;
}

QByteArray headOf(const LocalHTTPServer::Answer &answer)
{
    const qint64 length = answer.statedLength.value_or(answer.body.size() + answer.zeros);
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) +
                      " Said so\r\nConnection: " + (answer.keepsConnection ? "keep-alive" : "close") + "\r\n";
    for (const auto &[name, value] : answer.headers) {
        head += name + ": " + value + "\r\n";
    }
    if (length >= 0) {
        head += "Content-Length: " + QByteArray::number(length) + "\r\n";
    }
    return head + "\r\n";
}

} // namespace

struct LocalHTTPServer::Connection
{
    QTcpSocket *socket = nullptr; // goes when it is closed
    QByteArray received = {};
    qint64 zerosLeft = 0;
    End whenSent = End::Whole;
    bool isAnswered = false;
    bool isKept = false; // after the answer
};

LocalHTTPServer::LocalHTTPServer(Scheme scheme) : m_scheme(scheme)
{
    m_thread.start();
    m_server = makeServer(scheme, &m_certificate);
    m_server->moveToThread(&m_thread);
    QMetaObject::invokeMethod(
        m_server.get(),
        [this] {
            QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
                while (QTcpSocket *const socket = m_server->nextPendingConnection()) {
                    accept(socket);
                }
            });
            m_server->listen(QHostAddress::LocalHost);
            m_port = m_server->serverPort();
        },
        Qt::BlockingQueuedConnection);
}

LocalHTTPServer::~LocalHTTPServer()
{
    QMetaObject::invokeMethod(
        m_server.get(), [this] { m_server.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void LocalHTTPServer::setAnswer(const QString &path, const Answer &answer)
{
    setHandler(path, [answer](const Request &) { return answer; });
}

void LocalHTTPServer::setHandler(const QString &path, Handler handler)
{
    const QMutexLocker lock(&m_mutex);
    m_handlers.insert(path, std::move(handler));
}

QString LocalHTTPServer::address(const QString &target, const QString &host) const
{
    const QString scheme = m_scheme == Scheme::HTTP ? QStringLiteral("http") : QStringLiteral("https");
    return QStringLiteral("%1://%2:%3%4").arg(scheme, host, QString::number(m_port), target);
}

QList<LocalHTTPServer::Request> LocalHTTPServer::requests() const
{
    const QMutexLocker lock(&m_mutex);
    return m_requests;
}

qsizetype LocalHTTPServer::countOfRequestsFor(const QString &path) const
{
    const QList<Request> all = requests();
    return std::count_if(all.begin(), all.end(),
                         [&](const Request &each) { return each.target.section(u'?', 0, 0) == path; });
}

void LocalHTTPServer::setInterruption(const QString &path, qint64 afterBytes, const Answer &answer)
{
    const QMutexLocker lock(&m_mutex);
    m_interruptions.insert(path, {afterBytes, answer});
}

qsizetype LocalHTTPServer::countOfConnections() const
{
    const QMutexLocker lock(&m_mutex);
    return m_connections;
}

qint64 LocalHTTPServer::bytesSent() const
{
    const QMutexLocker lock(&m_mutex);
    return m_bytesSent;
}

void LocalHTTPServer::accept(QTcpSocket *socket)
{
    {
        const QMutexLocker lock(&m_mutex);
        ++m_connections;
    }
    const auto connection = std::make_shared<Connection>(Connection{.socket = socket});
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, connection] { read(connection); });
    QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [this, connection](qint64 bytes) {
        {
            const QMutexLocker lock(&m_mutex);
            m_bytesSent += bytes;
        }
        sendZeros(connection);
    });
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    read(connection);
}

void LocalHTTPServer::read(const std::shared_ptr<Connection> &connection)
{
    if (connection->isAnswered && !connection->isKept) {
        return; // who was interrupted is to notice that nobody takes the rest
    }
    connection->received += connection->socket->readAll();
    const std::optional<Request> request = requestFrom(connection->received);
    if (connection->isAnswered || !request || interrupt(connection, *request)) {
        return;
    }
    if (request->body.size() >= request->headers.value("content-length").toLongLong()) {
        readWhole(connection, *request);
    }
}

void LocalHTTPServer::readWhole(const std::shared_ptr<Connection> &connection, const Request &request)
{
    Request only = request;
    only.body = request.body.left(request.headers.value("content-length").toLongLong());
    connection->received = request.body.mid(only.body.size());
    connection->isAnswered = true;
    send(connection, answerTo(only));
}

bool LocalHTTPServer::interrupt(const std::shared_ptr<Connection> &connection, const Request &request)
{
    std::optional<Answer> answer;
    {
        const QMutexLocker lock(&m_mutex);
        const auto found = m_interruptions.constFind(request.target.section(u'?', 0, 0));
        if (found == m_interruptions.cend() || request.body.size() < found->first) {
            return false;
        }
        m_requests.append(request);
        answer = found->second;
    }
    connection->isAnswered = true;
    connection->socket->setReadBufferSize(1);
    send(connection, *answer);
    return true;
}

LocalHTTPServer::Answer LocalHTTPServer::answerTo(const Request &request)
{
    Handler handler;
    {
        const QMutexLocker lock(&m_mutex);
        m_requests.append(request);
        handler = m_handlers.value(request.target.section(u'?', 0, 0));
    }
    return handler ? handler(request) : Answer{.status = 404, .body = "There is no such page."};
}

void LocalHTTPServer::send(const std::shared_ptr<Connection> &connection, const Answer &answer)
{
    connection->whenSent = answer.end;
    connection->zerosLeft = answer.zeros;
    connection->isKept = answer.keepsConnection;
    if (answer.endsBeforeHead) {
        end(connection);
        return;
    }
    connection->socket->write(headOf(answer) + answer.body);
}

void LocalHTTPServer::sendZeros(const std::shared_ptr<Connection> &connection)
{
    if (connection->socket->bytesToWrite() > 0 || !connection->isAnswered) {
        return;
    }
    if (connection->zerosLeft == 0) {
        if (connection->isKept) {
            connection->isAnswered = false;
            read(connection);
        } else {
            end(connection);
        }
        return;
    }
    static const QByteArray zeros(zerosAtOnce, '\0');
    const qint64 bytes = std::min(connection->zerosLeft, zerosAtOnce);
    connection->zerosLeft -= bytes;
    connection->socket->write(zeros.constData(), bytes);
}

void LocalHTTPServer::end(const std::shared_ptr<Connection> &connection)
{
    switch (connection->whenSent) {
    case End::Whole:
        connection->socket->disconnectFromHost();
        break;
    case End::Dropped:
        connection->socket->abort();
        break;
    case End::Silence:
        break;
    }
}
