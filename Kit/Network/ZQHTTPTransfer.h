#pragma once

#include "Kit/Files/ZQNewFile.h"
#include "Kit/Network/ZQHTTPChallenge.h"
#include "Kit/Network/ZQHTTPConnections.h"
#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQSentBody.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QNetworkReply;
class QNetworkRequest;

// One request from its first look-up to its end, over as many redirects as that takes. Of the network's thread, which
// deletes it some time after `done` was called.
class ZQHTTPTransfer : public QObject
{
public:
    ZQHTTPTransfer(ZQHTTPRequest request, std::function<void(const ZQHTTPResponse &response)> done);
    ~ZQHTTPTransfer() override;

    void start();
    void cancel();

private:
    void goTo(const QUrl &url);
    void lookUp(const QString &host);
    void tryAddresses(const QList<QHostAddress> &addresses);
    void connectToNext();
    void sendTo(const QUrl &url, const QString &hostHeader);
    void send();
    QNetworkRequest networkRequest(const QByteArray &login) const;
    ZQError problemOfHeaders() const;
    QNetworkReply *sendBody(const QNetworkRequest &request, QString *problem);
    void follow(QNetworkReply *reply);

    bool hasLogin() const;
    QByteArray answerToChallenge();
    bool logIn();

    void limitAnswer();
    void headCame();
    void bytesCame();
    bool keep(const char *data, qint64 size);
    void replyEnded();
    bool redirect();
    ZQError problemOfHead() const;
    ZQError problemOfEnd() const;
    ZQError refusal() const;
    bool isTryingNext();
    void dropReply();
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
    QNetworkReply *m_reply = nullptr; // of the connections' manager
    ZQSentBody *m_body = nullptr;     // of the reply, whose threads may still read it when it is given up
    QUrl m_connectedURL; // as it is connected to: where that was asked about, with an address in place of the name
    QString m_hostHeader;
    QByteArray m_method;
    bool m_sendsBody = true;
    int m_redirects = 0;
    int m_lookup = -1;
    QList<QHostAddress> m_addresses; // still to be tried
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
