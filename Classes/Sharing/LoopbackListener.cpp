#include "Classes/Sharing/LoopbackListener.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace {

constexpr qint64 longestRequest = 16 * 1024;
constexpr int mostConnections = 16;
constexpr std::chrono::seconds timeForRequest{10};

QByteArray page(const char *status, const QString &text)
{
    const QByteArray body =
        "<!doctype html><meta charset=\"utf-8\"><title>Zelto</title><p>" + text.toHtmlEscaped().toUtf8() + "</p>\n";
    return QByteArray("HTTP/1.1 ") + status +
           "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nCache-Control: no-store\r\nReferrer-Policy: no-referrer\r\n"
           "Content-Security-Policy: default-src 'none'\r\nConnection: close\r\n\r\n" +
           body;
}

QByteArray headerOf(const QByteArray &request, const QByteArray &name)
{
    const QList<QByteArray> lines = request.split('\n');
    for (const QByteArray &line : lines) {
        if (const qsizetype colon = line.indexOf(':');
            colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.mid(colon + 1).trimmed();
        }
    }
    return {};
}

} // namespace

LoopbackListener::LoopbackListener()
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        end({}, ZQError::with(errorDomain, TimedOut,
                              zqLocalized("No answer came from the web browser. Start again, and allow it there.")));
    });
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_timer, [this] { accept(); });
}

LoopbackListener::~LoopbackListener()
{
    stop();
}

bool LoopbackListener::listen(quint16 port, const QString &state, std::chrono::milliseconds time, Answered answered,
                              ZQError *error)
{
    stop();
    m_server.setMaxPendingConnections(mostConnections);
    if (!m_server.listen(QHostAddress::LocalHost, port)) {
        zqSetError(error, ZQError::with(errorDomain, CannotListen,
                                        zqFormat(zqLocalized("Another program uses port %d of this machine, at which "
                                                             "the web browser is to answer. Close it and try again."),
                                                 {int(port)}),
                                        m_server.errorString()));
        return false;
    }
    m_port = m_server.serverPort();
    m_state = state;
    m_answered = std::move(answered);
    m_timer.start(time);
    return true;
}

void LoopbackListener::stop()
{
    m_timer.stop();
    m_answered = nullptr;
    m_server.close();
}

QString LoopbackListener::address() const
{
    return QStringLiteral("http://127.0.0.1:%1/").arg(m_port);
}

void LoopbackListener::accept()
{
    while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, &m_timer, [this, socket] { read(socket); });
        QTimer::singleShot(timeForRequest, socket, [socket] { socket->abort(); });
        if (m_server.findChildren<QTcpSocket *>().size() > mostConnections) {
            socket->abort();
        }
    }
}

void LoopbackListener::read(QTcpSocket *socket)
{
    const QByteArray request = socket->peek(longestRequest);
    if (request.contains("\r\n\r\n")) {
        socket->readAll();
        QObject::disconnect(socket, &QTcpSocket::readyRead, &m_timer, nullptr);
        answer(socket, request);
    } else if (request.size() >= longestRequest) {
        socket->abort();
    }
}

void LoopbackListener::answer(QTcpSocket *socket, const QByteArray &request)
{
    const QList<QByteArray> words = request.first(request.indexOf("\r\n")).split(' ');
    const QByteArray target = words.value(1);
    const qsizetype question = target.indexOf('?');
    const QUrlQuery query(question < 0 ? QString() : QString::fromUtf8(target.mid(question + 1)).replace(u'+', u' '));
    // A page elsewhere whose name was made to lead here sends that name.
    const bool isForUs = headerOf(request, "Host") == "127.0.0.1:" + QByteArray::number(m_port);
    const bool isAnswer = words.size() == 3 && words.at(0) == "GET" && target.startsWith("/?") && isForUs;
    if (!isAnswer) {
        socket->write(page("404 Not Found", zqLocalized("There is nothing here.")));
    } else if (!m_answered || query.queryItemValue(QStringLiteral("state"), QUrl::FullyDecoded) != m_state) {
        socket->write(page("400 Bad Request", zqLocalized("This is not the answer that Zelto is waiting for.")));
    } else {
        socket->write(page("200 OK", zqLocalized("You can close this tab and go back to Zelto.")));
        socket->flush();
        socket->disconnectFromHost();
        end(query, {});
        return;
    }
    socket->disconnectFromHost();
}

void LoopbackListener::end(const QUrlQuery &answer, const ZQError &error)
{
    const Answered answered = std::exchange(m_answered, nullptr);
    m_timer.stop();
    m_server.close();
    if (answered) {
        answered(answer, error);
    }
}
