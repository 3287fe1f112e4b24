#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <curl/curl.h>

#include <memory>
#include <unordered_map>

// Has libcurl move the bytes of exchanges within the event loop of the network's thread, where the time limits and the
// look-ups of names already are: a thread that waits in libcurl instead would have to be woken for each of those. Keeps
// the connections of its exchanges for the next ones and closes them when it goes; it goes after them. Of the
// network's thread.
class ZQTransferLoop : public QObject
{
public:
    // What moves; the private pointer of its handle.
    class Mover
    {
    public:
        virtual void ended(CURLcode code) = 0; // not within a call of the library; may remove it
        // Within a call of the library.
        virtual void usesSocket(curl_socket_t socket) = 0;
        virtual void willLeaveSocket(curl_socket_t socket) = 0;

    protected:
        ~Mover() = default;
    };

    ZQTransferLoop();
    ~ZQTransferLoop() override;

    bool add(CURL *handle);
    void remove(CURL *handle);

private:
    struct Watch
    {
        std::unique_ptr<QSocketNotifier> reading;
        std::unique_ptr<QSocketNotifier> writing;
    };
    static int watchSocket(CURL *handle, curl_socket_t socket, int what, void *self, void *);
    static int setTimer(CURLM *, long milliseconds, void *self);
    void watch(std::unique_ptr<QSocketNotifier> &notifier, curl_socket_t socket, QSocketNotifier::Type type, bool isOn);
    void move(curl_socket_t socket);

    CURLM *m_multi;
    QTimer m_timer;
    std::unordered_map<curl_socket_t, Watch> m_watches;
};
