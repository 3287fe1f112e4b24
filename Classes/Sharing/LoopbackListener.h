#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QTcpServer>
#include <QTimer>
#include <QUrlQuery>

#include <chrono>
#include <functional>

class QTcpSocket;

// Waits at an address of this machine for the one answer that a web browser brings after the person allowed, or
// refused, what they were asked there. It takes what carries the words agreed on and nothing else, so that another
// page or program can neither answer in the person's place nor end the waiting. Main thread.
class LoopbackListener
{
public:
    // A null error: `answer` has what the service said, escapes undone.
    using Answered = std::function<void(const QUrlQuery &answer, const ZQError &error)>;
    enum Error { CannotListen = 1, TimedOut };
    static inline const QString errorDomain = QStringLiteral("zelto.sharing.loopback");

    LoopbackListener();
    ~LoopbackListener();
    // Port 0: one that is free. `answered` is called once, unless it is stopped before. False, with an error, and it is
    // never called, when the port is taken.
    bool listen(quint16 port, const QString &state, std::chrono::milliseconds time, Answered answered, ZQError *error);
    void stop();
    QString address() const; // "http://127.0.0.1:PORT/"

private:
    void accept();
    void read(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const QByteArray &request);
    void end(const QUrlQuery &answer, const ZQError &error);

    QTcpServer m_server;
    QTimer m_timer;
    quint16 m_port = 0;
    QString m_state;
    Answered m_answered; // null: it is not waiting
};
