#include "Classes/Services/InstanceServer.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace {
constexpr qint64 largestRequest = 16 << 20;
constexpr int connectMilliseconds = 2000;
constexpr int retryMilliseconds = 50;
constexpr std::chrono::seconds patience(1);
const QString busName = QStringLiteral("org.zelto.Zelto");
const QString busPath = QStringLiteral("/org/zelto/Zelto");

QByteArray line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}
} // namespace

InstanceServer::InstanceServer(const QString &socketName, Handler handler, QObject *parent)
    : QObject(parent), m_socketName(socketName), m_handler(std::move(handler))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &InstanceServer::accept);
}

InstanceServer::~InstanceServer()
{
    m_server.waitForNewConnection(0); // those that came while nobody served the loop
    accept();
    for (const QPointer<QLocalSocket> &socket : std::as_const(m_connected)) {
        if (socket) {
            socket->write(line({{QStringLiteral("notBegun"), true}}));
            socket->waitForBytesWritten(connectMilliseconds);
            socket->disconnectFromServer();
        }
    }
}

void InstanceServer::accept()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        m_connected.removeIf([](const QPointer<QLocalSocket> &known) { return !known; });
        m_connected.append(socket);
        // Queued: the handler may run the event loop, and the socket may not go while its own signal is out.
        connect(
            socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); }, Qt::QueuedConnection);
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

bool InstanceServer::listen(ZQError *error)
{
    // Whoever holds the library's lock owns the name; what a killed process left is in the way.
    QLocalServer::removeServer(m_socketName);
    if (m_server.listen(m_socketName)) {
        return true;
    }
    zqSetError(error, ZQError::with(errorDomain, NotListening, m_server.errorString()));
    return false;
}

bool InstanceServer::registerOnSessionBus(DesktopActivation::Uses uses)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    auto activation = std::make_unique<DesktopActivation>(std::move(uses), this);
    // Before the name: a bus that started the program for a call delivers it as soon as the name is taken.
    if (!bus.isConnected() || !bus.registerObject(busPath, activation.get(), QDBusConnection::ExportAllSlots)) {
        return false;
    }
    if (!bus.registerService(busName)) {
        bus.unregisterObject(busPath);
        return false;
    }
    activation.release(); // its parent has it
    return true;
}

void InstanceServer::readFrom(QLocalSocket *socket)
{
    if (socket->bytesAvailable() > largestRequest) {
        socket->abort();
        return;
    }
    if (!socket->canReadLine()) {
        return;
    }
    if (m_isReady && !m_isReady()) {
        QTimer::singleShot(retryMilliseconds, socket, [this, socket] { readFrom(socket); });
        return;
    }
    m_connected.removeAll(socket);
    const QJsonObject request = QJsonDocument::fromJson(socket->readLine()).object();
    InstanceRequest parsed;
    for (const QJsonValue &argument : request.value(QStringLiteral("arguments")).toArray()) {
        parsed.arguments.append(argument.toString());
    }
    parsed.workingDirectory = request.value(QStringLiteral("cwd")).toString();
    if (request.value(QStringLiteral("tells")).toBool()) {
        socket->write(line({{QStringLiteral("begun"), true}}));
        socket->flush(); // the work may keep the main loop
    }
    // The handler may run the event loop, in which the other side can go away.
    QPointer<QLocalSocket> alive(socket);
    parsed.isAbandoned = [alive] { return !alive || alive->state() == QLocalSocket::UnconnectedState; };
    parsed.answer = [alive](const InstanceReply &reply) {
        if (!alive) {
            return;
        }
        alive->write(line({{QStringLiteral("status"), reply.exitStatus},
                           {QStringLiteral("output"), QString::fromLatin1(reply.output.toBase64())},
                           {QStringLiteral("errors"), QString::fromLatin1(reply.errors.toBase64())}}));
        alive->flush(); // the main loop may be over: no other would
        alive->disconnectFromServer();
    };
    if (const auto reply = m_handler(parsed)) {
        parsed.answer(*reply);
    }
}

namespace {

// The lines that come back, one after the other.
class Answers
{
public:
    explicit Answers(QLocalSocket &socket, InstanceServer::Patience tellPatience)
        : m_socket(socket), m_tellPatience(std::move(tellPatience))
    {
    }

    // Empty when the connection ends before. Says once that it takes long.
    QJsonObject next()
    {
        while (!m_received.contains('\n')) {
            if (m_socket.bytesAvailable() == 0 && !waitForMore()) {
                return {};
            }
            m_received += m_socket.readAll();
        }
        const qsizetype end = m_received.indexOf('\n');
        const QJsonObject answer = QJsonDocument::fromJson(m_received.left(end)).object();
        m_received.remove(0, end + 1);
        m_hasBegun = m_hasBegun || answer.contains(QStringLiteral("begun"));
        return answer;
    }

private:
    bool waitForMore()
    {
        const auto left = m_tellPatience ? std::max<qint64>(0, m_patienceEnds.remainingTime()) : -1;
        if (m_socket.waitForReadyRead(int(left))) {
            return true;
        }
        if (left < 0 || m_socket.state() != QLocalSocket::ConnectedState) {
            return m_socket.bytesAvailable() > 0;
        }
        std::exchange(m_tellPatience, nullptr)(m_hasBegun);
        return true;
    }

    QLocalSocket &m_socket;
    InstanceServer::Patience m_tellPatience;
    const QDeadlineTimer m_patienceEnds{patience};
    QByteArray m_received;
    bool m_hasBegun = false;
};

} // namespace

std::optional<InstanceReply> InstanceServer::send(const QString &socketName, const InstanceRequest &request,
                                                  ZQError *error, const Patience &tellPatience)
{
    QLocalSocket socket;
    socket.connectToServer(socketName);
    if (!socket.waitForConnected(connectMilliseconds)) {
        zqSetError(error, ZQError::with(errorDomain, NobodyAnswers, socket.errorString()));
        return std::nullopt;
    }
    socket.write(line({{QStringLiteral("arguments"), QJsonArray::fromStringList(request.arguments)},
                       {QStringLiteral("cwd"), request.workingDirectory},
                       {QStringLiteral("tells"), bool(tellPatience)}}));
    socket.flush();
    Answers answers(socket, tellPatience);
    QJsonObject reply = answers.next();
    if (reply.contains(QStringLiteral("begun"))) {
        reply = answers.next();
    }
    if (reply.isEmpty()) {
        zqSetError(error, ZQError::with(errorDomain, EndedMeanwhile,
                                        zqLocalized("The Zelto that has this library open ended before it answered.")));
        return std::nullopt;
    }
    if (reply.value(QStringLiteral("notBegun")).toBool()) {
        zqSetError(error, ZQError::with(errorDomain, NobodyAnswers,
                                        zqLocalized("The Zelto that has this library open is ending.")));
        return std::nullopt;
    }
    const auto bytes = [&](const char *key) {
        return QByteArray::fromBase64(reply.value(QLatin1String(key)).toString().toLatin1());
    };
    return InstanceReply{reply.value(QStringLiteral("status")).toInt(2), bytes("output"), bytes("errors")};
}
