#pragma once

#include "Classes/Services/DesktopActivation.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QLocalServer>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <optional>

class QLocalSocket;

struct InstanceReply
{
    int exitStatus = 0;
    QByteArray output;
    QByteArray errors;
};

// What a second process asks of the one that has the library open: to run a command, or to open files in its window.
struct InstanceRequest
{
    QStringList arguments; // as on the command line, without the program's name
    QString workingDirectory;
    std::function<bool()> isAbandoned;                      // on the serving side: nobody waits for the reply any more
    std::function<void(const InstanceReply &)> answer = {}; // on the serving side: for a reply that comes later; once
};

// Lets processes of the same user hand their work to the one that holds a library: a local socket named after the
// bundle, and the desktop's activation interface (org.freedesktop.Application) on the session bus. Main thread.
//
// One request a connection: a line of JSON {"arguments", "cwd", "tells"}, answered by a line {"status", "output",
// "errors"}, or by {"notBegun"} when the process ends before it comes to it. With "tells", a line {"begun"} comes
// before that, once its turn has come.
class InstanceServer : public QObject
{
    Q_OBJECT
public:
    // Nothing: the request's `answer` is called later. Without that, the asking side hears that this process ended.
    using Handler = std::function<std::optional<InstanceReply>(const InstanceRequest &)>;

    InstanceServer(const QString &socketName, Handler handler, QObject *parent = nullptr);
    ~InstanceServer() override; // what still waits is told that nothing of it was done

    bool listen(ZQError *error = nullptr);
    // While this says no, as during the launch, requests wait. Some event loops deliver them whatever they are told.
    void setIsReady(std::function<bool()> isReady) { m_isReady = std::move(isReady); }
    // Offers the desktop's activation; false when there is no session bus or another Zelto offers it.
    bool registerOnSessionBus(DesktopActivation::Uses uses);

    enum Error { NotListening = 1, NobodyAnswers, EndedMeanwhile };
    static inline const QString errorDomain = QStringLiteral("zelto.instance");
    // What the asking side hears when there is no answer after a second: whether the request waits for other work, or
    // is being done.
    using Patience = std::function<void(bool hasBegun)>;
    // The other side: nothing, with an error, when nobody answers on that socket, or who did ends before it begins
    // (`NobodyAnswers`: nothing was done) or in the midst of it. Waits for the reply as long as the work takes.
    static std::optional<InstanceReply> send(const QString &socketName, const InstanceRequest &request,
                                             ZQError *error = nullptr, const Patience &tellPatience = {});

private:
    void accept();
    void readFrom(QLocalSocket *socket);

    QString m_socketName;
    Handler m_handler;
    std::function<bool()> m_isReady; // null: always
    QLocalServer m_server;
    QList<QPointer<QLocalSocket>> m_connected; // whose requests were not begun
};
