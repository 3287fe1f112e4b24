#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

class QTcpServer;
class QTcpSocket;

// A web server on 127.0.0.1 that answers as the test says, also as no server should: it lies about lengths and types,
// falls silent, drops connections and sends without end. Each connection gets one answer and is closed, unless the
// answer says that it stays. It has a thread of its own, so that a test may wait for what asks it. Any thread.
class LocalHTTPServer
{
public:
    struct Request
    {
        QByteArray method;
        QString target;                        // path and query, as they came
        QHash<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
    };

    enum class End {
        Whole,   // the connection is closed
        Dropped, // it is reset
        Silence, // it stays open and nothing more comes
    };

    struct Answer
    {
        int status = 200;
        QList<std::pair<QByteArray, QByteArray>> headers = {};
        QByteArray body = {};
        qint64 zeros = 0;                        // bytes that follow the body
        std::optional<qint64> statedLength = {}; // instead of the true one; negative: none is stated
        End end = End::Whole;
        bool endsBeforeHead = false;  // nothing of it is sent
        bool keepsConnection = false; // for the next request, when it was sent whole

        static Answer with(const QByteArray &contentType, const QByteArray &body)
        {
            return {.headers = {{"Content-Type", contentType}}, .body = body};
        }
        static Answer redirect(const QByteArray &location, int status = 302)
        {
            return {.status = status, .headers = {{"Location", location}}};
        }
    };
    // Called on the server's thread.
    using Handler = std::function<Answer(const Request &request)>;

    enum class Scheme { HTTP, HTTPS }; // the certificate of HTTPS is made for the moment, and nobody vouches for it
    explicit LocalHTTPServer(Scheme scheme = Scheme::HTTP);
    ~LocalHTTPServer();
    LocalHTTPServer(const LocalHTTPServer &) = delete;
    LocalHTTPServer &operator=(const LocalHTTPServer &) = delete;

    // What asks for a path (without the query) that nobody set gets a 404.
    void setAnswer(const QString &path, const Answer &answer);
    void setHandler(const QString &path, Handler handler);
    // What asks for the path is answered when so many bytes of its body came, and the rest is not read.
    void setInterruption(const QString &path, qint64 afterBytes, const Answer &answer);

    QString address(const QString &target, const QString &host = QStringLiteral("127.0.0.1")) const;
    QUrl url(const QString &target) const { return QUrl(address(target)); }
    quint16 port() const { return m_port; }
    QByteArray certificate() const { return m_certificate; } // as PEM, for "localhost", for who wants to trust it
    QList<Request> requests() const;
    qsizetype countOfRequestsFor(const QString &path) const;
    qsizetype countOfConnections() const;
    qint64 bytesSent() const; // of all bodies, as far as connections took them

private:
    struct Connection;
    void accept(QTcpSocket *socket);
    void read(const std::shared_ptr<Connection> &connection);
    void send(const std::shared_ptr<Connection> &connection, const Answer &answer);
    void sendZeros(const std::shared_ptr<Connection> &connection);
    static void end(const std::shared_ptr<Connection> &connection);
    void readWhole(const std::shared_ptr<Connection> &connection, const Request &request);
    bool interrupt(const std::shared_ptr<Connection> &connection, const Request &request);
    Answer answerTo(const Request &request);

    const Scheme m_scheme;
    mutable QMutex m_mutex; // for the next five
    QHash<QString, Handler> m_handlers;
    QHash<QString, std::pair<qint64, Answer>> m_interruptions;
    qsizetype m_connections = 0;
    QList<Request> m_requests;
    qint64 m_bytesSent = 0;
    quint16 m_port = 0;
    QByteArray m_certificate;
    QThread m_thread;
    std::unique_ptr<QTcpServer> m_server; // of that thread
};
