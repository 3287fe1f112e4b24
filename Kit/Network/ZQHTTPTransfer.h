#pragma once

#include "Kit/Files/ZQNewFile.h"
#include "Kit/Network/ZQHTTPChallenge.h"
#include "Kit/Network/ZQHTTPConnections.h"
#include "Kit/Network/ZQHTTPExchange.h"
#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQNetworkError.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

// One request from its first look-up to its end, over as many redirects as that takes. Of the network's thread, which
// deletes it some time after `done` was called.
class ZQHTTPTransfer : public QObject, private ZQHTTPExchange::Listener
{
public:
    ZQHTTPTransfer(ZQHTTPRequest request, std::function<void(const ZQHTTPResponse &response)> done);
    ~ZQHTTPTransfer() override;

    void start();
    void cancel();

private:
    void goTo(const QUrl &url);
    void lookUp(const QString &host);
    void connectTo(const QList<QHostAddress> &addresses);
    void send(bool isFresh = false);
    ZQHTTPHeaders headersToSend(const QByteArray &login) const;
    ZQError problemOfHeaders() const;
    bool hasBody() const { return m_sendsBody && (m_request.makeBody || !m_request.body.isEmpty()); }
    std::unique_ptr<ZQSentBody> makeBody(QString *problem) const;

    void didConnect() override;
    void didSend(qint64 sent, qint64 total) override;
    bool headCame(int status, const ZQHTTPHeaders &headers) override;
    bool bytesCame(const char *data, qint64 size) override;
    void exchangeEnded(const ZQHTTPEnd &end) override;

    bool hasLogin() const;
    QByteArray answerToChallenge();
    bool logIn();

    void limitAnswer();
    bool keep(const char *data, qint64 size);
    bool isRedirect() const;
    void redirect();
    bool mayRepeat(const ZQHTTPEnd &end);
    ZQError problemOfHead() const;
    ZQError problemOfEnd(const ZQHTTPEnd &end) const;
    ZQError refusal() const;
    void giveUp(const ZQError &error);
    void dropExchange();
    void fail(const ZQError &error);
    void end();
    QString host() const { return m_response.url.host(); }
    bool isSuccess() const { return m_response.statusCode >= 200 && m_response.statusCode < 300; }
    bool makeFile(ZQError *error);
    bool write(const char *data, qint64 size, ZQError *error);
    void place();

    const ZQHTTPRequest m_request;
    std::function<void(const ZQHTTPResponse &response)> m_done; // null: it was called
    ZQHTTPResponse m_response;
    const std::shared_ptr<ZQHTTPConnections> m_connections;
    std::unique_ptr<ZQHTTPExchange> m_exchange; // the present one
    QNetworkProxy m_proxy;
    QList<QHostAddress> m_addresses; // that may be connected to; empty: the host is an address, or the proxy's business
    QByteArray m_method;
    bool m_sendsBody = true;
    int m_redirects = 0;
    int m_lookup = -1;
    bool m_wasRepeated = false;       // over a new connection, for one that had been kept and broke
    std::optional<ZQError> m_problem; // found while bytes came; to be told when the library has ended
    bool m_isConnected = false;
    bool m_hasHead = false;
    qint64 m_expected = -1; // bytes of the body; negative: unknown
    QString m_user;
    ZQSecret m_password;
    int m_logins = 0;                  // that were tried at the present address
    std::unique_ptr<ZQNewFile> m_file; // null: nothing of it came yet
    QTimer m_connectTimer;
    QTimer m_stallTimer;
    QTimer m_wholeTimer;
    QTimer m_answerTimer;
};
