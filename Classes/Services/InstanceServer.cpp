#include "Classes/Services/InstanceServer.h"

#include "Classes/Services/DesktopActivation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDBusConnection>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>

namespace {
constexpr qint64 largestRequest = 16 << 20;
constexpr int connectMilliseconds = 2000;
constexpr int retryMilliseconds = 50;
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

bool InstanceServer::registerOnSessionBus(std::function<void(const QStringList &paths)> open)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerService(busName)) {
        return false;
    }
    auto *activation = new DesktopActivation(std::move(open), this);
    return bus.registerObject(busPath, activation, QDBusConnection::ExportAllSlots);
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
    // The handler may run the event loop, in which the other side can go away.
    QPointer<QLocalSocket> alive(socket);
    parsed.isAbandoned = [alive] { return !alive || alive->state() == QLocalSocket::UnconnectedState; };
    const InstanceReply reply = m_handler(parsed);
    if (!alive) {
        return;
    }
    alive->write(line({{QStringLiteral("status"), reply.exitStatus},
                       {QStringLiteral("output"), QString::fromLatin1(reply.output.toBase64())},
                       {QStringLiteral("errors"), QString::fromLatin1(reply.errors.toBase64())}}));
    alive->flush(); // the main loop may be over: no other would
    alive->disconnectFromServer();
}

std::optional<InstanceReply> InstanceServer::send(const QString &socketName, const InstanceRequest &request,
                                                  ZQError *error)
{
    QLocalSocket socket;
    socket.connectToServer(socketName);
    if (!socket.waitForConnected(connectMilliseconds)) {
        zqSetError(error, ZQError::with(errorDomain, NobodyAnswers, socket.errorString()));
        return std::nullopt;
    }
    socket.write(line({{QStringLiteral("arguments"), QJsonArray::fromStringList(request.arguments)},
                       {QStringLiteral("cwd"), request.workingDirectory}}));
    socket.flush();
    QByteArray received;
    while (!received.endsWith('\n')) {
        if (!socket.bytesAvailable() && !socket.waitForReadyRead(-1)) {
            zqSetError(error,
                       ZQError::with(errorDomain, EndedMeanwhile,
                                     zqLocalized("The Zelto that has this library open ended before it answered.")));
            return std::nullopt;
        }
        received += socket.readAll();
    }
    const QJsonObject reply = QJsonDocument::fromJson(received).object();
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
