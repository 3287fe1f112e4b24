#pragma once

#include "Kit/Files/ZQNewFile.h"
#include "Kit/Network/ZQHTTPRequest.h"
#include "Kit/Network/ZQNetworkError.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QAuthenticator;
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
    void send(const QUrl &url, const QString &hostHeader);
    QNetworkRequest networkRequest(const QUrl &url, const QString &hostHeader) const;
    QNetworkReply *sendBody(const QNetworkRequest &request);
    void follow(QNetworkReply *reply);
    void authenticate(QAuthenticator *authenticator);

    void headCame();
    void bytesCame();
    bool keep(const char *data, qint64 size);
    void replyEnded();
    bool redirect();
    ZQError problemOfHead() const;
    ZQError problemOfEnd() const;
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
    QNetworkAccessManager m_manager;
    QNetworkReply *m_reply = nullptr; // of the manager
    std::unique_ptr<QIODevice> m_body;
    QByteArray m_method;
    bool m_sendsBody = true;
    int m_redirects = 0;
    int m_lookup = -1;
    QList<QHostAddress> m_addresses; // still to be tried
    bool m_isConnected = false;
    bool m_hasHead = false;
    qint64 m_expected = -1; // bytes of the body; negative: unknown
    bool m_didLogIn = false;
    std::unique_ptr<ZQNewFile> m_file; // null: nothing of it came yet
    QTimer m_connectTimer;
    QTimer m_stallTimer;
    QTimer m_wholeTimer;
};
