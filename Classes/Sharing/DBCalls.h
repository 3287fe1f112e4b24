#pragma once

#include "Classes/Sharing/DBSession.h"
#include "Classes/Sharing/ServiceRequests.h"
#include "Kit/Network/ZQHTTPBody.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>

// Requests in the name of the linked Dropbox, one at a time. A token that Dropbox refuses as too old is renewed once.
// Main thread.
class DBCalls
{
public:
    explicit DBCalls(DBSession &session) : m_session(session) {}

    // An operation of the API ("/2/files/upload"), whose argument is the body. Where the person set an address that is
    // none, that is the answer, at once.
    void call(const QString &operation, const QJsonObject &argument, ServiceRequests::Answered answered);
    // One whose body is contents: the argument goes into a header, what is not ASCII escaped.
    void sendContent(const QString &operation, const QJsonObject &argument, const ZQHTTPBody &content,
                     ServiceRequests::Answered answered, ServiceRequests::Sent sent = {});
    void cancel();

    // As `call` makes it, without the token.
    static ZQHTTPRequest request(const QUrl &url, const QJsonObject &argument);
    // What an answer says; empty where it is no object.
    static QJsonObject objectOf(const ZQHTTPResponse &response);

    // What an answer that says no means. What the person can do something about is told word for word.
    static ZQError errorOf(const ZQHTTPResponse &response);
    // "incorrect_offset/..": the words by which Dropbox names its errors. Empty: there are none.
    static QString summaryOf(const ZQHTTPResponse &response);

private:
    struct Call;
    void perform(const ZQHTTPRequest &request, ServiceRequests::Answered answered, ServiceRequests::Sent sent);
    void send(const std::shared_ptr<Call> &call);

    DBSession &m_session;
    std::shared_ptr<Call> m_call; // null: none
    ServiceRequests m_requests;
};
