#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <QByteArray>

#include <chrono>

// The way between this process and a browser that it started: messages in JSON, each ended by a zero byte. What goes to
// the browser goes through a socket, since a pipe whose reader has died would end this process, too. One thread; what
// waits ends with the thread's ZQCancellation.
class DevToolsPipe
{
public:
    using Time = std::chrono::steady_clock::time_point;
    enum class Outcome { Done, TimeIsUp, Cancelled, Closed, TooLong };

    static constexpr qsizetype longestMessage = qsizetype(128) << 20;

    DevToolsPipe(ZQFileDescriptor toBrowser, ZQFileDescriptor fromBrowser);

    Outcome send(const QByteArray &message, Time end);
    Outcome receive(QByteArray &message, Time end);

private:
    Outcome wait(int descriptor, short events, Time end) const;

    ZQFileDescriptor m_toBrowser;
    ZQFileDescriptor m_fromBrowser;
    QByteArray m_received;
    qsizetype m_searched = 0; // of it, without an end of a message
};
