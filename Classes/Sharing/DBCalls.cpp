#include "Classes/Sharing/DBCalls.h"

#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"

#include <QJsonDocument>

namespace {

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray forHeader(const QJsonObject &object)
{
    QByteArray escaped;
    const QString plain = QString::fromUtf8(json(object));
    for (const QChar each : plain) {
        if (each.unicode() < 0x7f) {
            escaped += char(each.unicode());
        } else {
            escaped += "\\u" + QByteArray::number(each.unicode(), 16).rightJustified(4, '0');
        }
    }
    return escaped;
}

} // namespace

struct DBCalls::Call
{
    ZQHTTPRequest request;
    ServiceRequests::Answered answered;
    ServiceRequests::Sent sent;
    bool didRenew = false;
};

ZQHTTPRequest DBCalls::request(const QUrl &url, const QJsonObject &argument)
{
    ZQHTTPRequest request;
    request.url = url;
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}};
    request.body = json(argument);
    request.mostRedirects = 0;
    return request;
}

void DBCalls::call(const QString &operation, const QJsonObject &argument, ServiceRequests::Answered answered)
{
    ZQHTTPResponse refusal;
    if (const auto url = DBSession::APIAddress(operation, &refusal.error)) {
        perform(request(*url, argument), std::move(answered), {});
    } else {
        answered(refusal);
    }
}

void DBCalls::sendContent(const QString &operation, const QJsonObject &argument, const ZQHTTPBody &content,
                          ServiceRequests::Answered answered, ServiceRequests::Sent sent)
{
    ZQHTTPResponse refusal;
    const auto url = DBSession::contentAddress(operation, &refusal.error);
    if (!url) {
        answered(refusal);
        return;
    }
    ZQHTTPRequest request;
    request.url = *url;
    request.method = "POST";
    request.headers = {{"Content-Type", "application/octet-stream"}, {"Dropbox-API-Arg", forHeader(argument)}};
    request.makeBody = content.maker();
    request.mostRedirects = 0;
    perform(request, std::move(answered), std::move(sent));
}

void DBCalls::perform(const ZQHTTPRequest &request, ServiceRequests::Answered answered, ServiceRequests::Sent sent)
{
    cancel();
    m_call = std::make_shared<Call>(Call{request, std::move(answered), std::move(sent)});
    send(m_call);
}

void DBCalls::send(const std::shared_ptr<Call> &call)
{
    m_session.accessToken([this, weak = std::weak_ptr(call)](const ZQSecret &token, const ZQError &error) {
        const auto current = weak.lock();
        if (!current) {
            return;
        }
        if (!error.isNull()) {
            ZQHTTPResponse refusal;
            refusal.error = error;
            m_call.reset();
            current->answered(refusal);
            return;
        }
        ZQHTTPRequest request = current->request;
        request.headers.append({"Authorization", "Bearer " + token.UTF8()});
        m_requests.perform(
            request,
            [this, weak](const ZQHTTPResponse &response) {
                const auto answeredCall = weak.lock();
                if (!answeredCall) {
                    return;
                }
                if (response.statusCode == 401 && !std::exchange(answeredCall->didRenew, true)) {
                    m_session.forgetAccessToken();
                    send(answeredCall);
                    return;
                }
                m_call.reset();
                answeredCall->answered(response);
            },
            current->sent);
    });
}

void DBCalls::cancel()
{
    m_call.reset();
    m_requests.cancel();
}

QJsonObject DBCalls::objectOf(const ZQHTTPResponse &response)
{
    return QJsonDocument::fromJson(response.body).object();
}

QString DBCalls::summaryOf(const ZQHTTPResponse &response)
{
    return objectOf(response).value(u"error_summary").toString();
}

ZQError DBCalls::errorOf(const ZQHTTPResponse &response)
{
    if (response.isWhole()) {
        return ZQError::with(DBSession::errorDomain, DBSession::BadAnswer,
                             zqLocalized("The answer of Dropbox cannot be understood."));
    }
    const QString summary = summaryOf(response);
    if (summary.contains(u"insufficient_space")) {
        return UploadProblem::with(zqLocalized("Your Dropbox is full."),
                                   zqLocalized("Make room in it and share the files again."));
    }
    if (summary.startsWith(u"missing_scope")) {
        return UploadProblem::with(zqLocalized("The app key does not allow that."),
                                   zqLocalized("Allow files.content.write, sharing.read and sharing.write for it at "
                                               "dropbox.com/developers/apps, then link your Dropbox again."));
    }
    if (response.statusCode == 401) {
        return DBSession::noLongerLinked();
    }
    if (summary.isEmpty()) {
        return response.error;
    }
    return ZQError::with(DBSession::errorDomain, response.statusCode,
                         zqFormat(zqLocalized("Dropbox says: “%@”."), {zqShortened(summary)}));
}
