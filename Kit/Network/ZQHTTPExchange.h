#pragma once

#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQSentBody.h"
#include "Kit/Network/ZQTransferLoop.h"

#include <QNetworkProxy>
#include <QTimer>

#include <array>

// Whether requests go to their servers themselves.
inline bool zqIsDirect(const QNetworkProxy &proxy)
{
    return proxy.type() == QNetworkProxy::NoProxy || proxy.type() == QNetworkProxy::DefaultProxy;
}

// How an exchange ended, as the library that made it says.
struct ZQHTTPEnd
{
    CURLcode code = CURLE_OK;
    QString reason = {};     // in its words
    int systemError = 0;     // errno of the last connection that was tried
    bool isProxied = false;  // what went wrong may be about the proxy
    int proxyStatus = 0;     // with which a proxy refused; 0: it did not
    bool wasKept = false;    // the connection was there before
    bool wasRefused = false; // no address was one that may be connected to

    // The other end closed the connection before all was sent and came.
    bool isBroken() const;
};

// One request to one server and what it answers, without following where that leads. Of the network's thread.
class ZQHTTPExchange final : private ZQTransferLoop::Mover
{
public:
    struct Order
    {
        QUrl url;
        QByteArray method;
        ZQHTTPHeaders headers;
        std::unique_ptr<ZQSentBody> body; // null: none
        QNetworkProxy proxy = {QNetworkProxy::NoProxy};
        QList<QHostAddress> addresses = {}; // that the name has and that may be connected to; empty: it is an address
        std::function<bool(const QHostAddress &address)> mayConnectTo = {};
        std::chrono::milliseconds connectTime{0};
        bool isFresh = false; // over no connection that was kept
    };

    // What is told of it: that it is connected first, the head before what follows it, the end last. Of what is sent it
    // may be told before and after the head, which a server may send when it likes. Only at the end it may be deleted;
    // what returns false has it end soon.
    class Listener
    {
    public:
        virtual void didConnect() = 0;
        virtual void didSend(qint64 sent, qint64 total) = 0;
        virtual bool headCame(int status, const ZQHTTPHeaders &headers) = 0;
        virtual bool bytesCame(const char *data, qint64 size) = 0;
        virtual void exchangeEnded(const ZQHTTPEnd &end) = 0; // may delete it

    protected:
        ~Listener() = default;
    };

    // `loop` outlives it.
    ZQHTTPExchange(Order order, ZQTransferLoop &loop, Listener &listener);
    ~ZQHTTPExchange();
    ZQHTTPExchange(const ZQHTTPExchange &) = delete;
    ZQHTTPExchange &operator=(const ZQHTTPExchange &) = delete;

    bool start(); // false: there is no memory for it
    const ZQSentBody *body() const { return m_order.body.get(); }

private:
    template <typename Value>
    void set(CURLoption option, Value value);
    void setLimits();
    void setRequest();
    void setHeaders();
    void setWay();
    void setProxy();
    void setTrust();
    void setCallbacks();
    bool mayUse(const QHostAddress &address);
    void addHeader(const QByteArray &name, const QByteArray &value);
    bool takeHeaderLine(const QByteArray &line);
    void readLastWords();

    void ended(CURLcode code) override;
    void usesSocket(curl_socket_t socket) override { m_socket = socket; }
    void willLeaveSocket(curl_socket_t socket) override;
    std::size_t readBody(char *data, qint64 size);
    bool hasSomethingToRead() const;

    static std::size_t headerLine(char *data, std::size_t size, std::size_t count, void *self);
    static std::size_t received(char *data, std::size_t size, std::size_t count, void *self);
    static std::size_t toSend(char *data, std::size_t size, std::size_t count, void *self);
    static int seek(void *self, curl_off_t offset, int origin);
    static int progress(void *self, curl_off_t, curl_off_t, curl_off_t total, curl_off_t sent);
    static int connected(void *self, char *address, char *, int, int);
    static curl_socket_t openSocket(void *self, curlsocktype, curl_sockaddr *address);

    Order m_order;
    ZQTransferLoop &m_loop;
    Listener &m_listener;
    CURL *const m_handle;
    curl_slist *m_headerLines = nullptr;
    curl_slist *m_resolved = nullptr;
    std::array<char, CURL_ERROR_SIZE> m_reason = {};
    curl_socket_t m_socket = CURL_SOCKET_BAD; // unknown, or the last one
    QTimer m_resuming;
    QByteArray m_heldBack; // of the body
    int m_looksLeft = 100; // that hold it back: whatever there is to read, it must not be for ever
    bool m_isAdded = false;
    bool m_isConnected = false;
    bool m_wasRefused = false;
    bool m_hasHead = false;
    qint64 m_sent = 0;
    int m_status = 0; // of the head that is coming
    ZQHTTPHeaders m_headers;
    QByteArray m_lastWords; // that were not read when the connection was given up
};
