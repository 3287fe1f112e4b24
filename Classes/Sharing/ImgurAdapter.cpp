#include "Classes/Sharing/ImgurAdapter.h"

#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Network/ZQHTTPBody.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace {

const QByteArray boundary = "---------------------------0983745982375409872438752038475287";

QByteArray part(const QByteArray &disposition)
{
    return "--" + boundary + "\r\nContent-Disposition: " + disposition + "\r\n";
}

// What Imgur says went wrong; it has been a text as well as an object with one. Null: nothing did.
QString errorIn(const QJsonObject &answer)
{
    const QJsonValue error = answer.value(QStringLiteral("data")).toObject().value(QStringLiteral("error"));
    if (error.isUndefined() || error.isNull()) {
        return {};
    }
    if (const QString message = error.toObject().value(QStringLiteral("message")).toString(); !message.isEmpty()) {
        return message;
    }
    const QString text =
        error.isObject() || error.isArray()
            ? QString::fromUtf8(QJsonDocument::fromVariant(error.toVariant()).toJson(QJsonDocument::Compact))
            : error.toVariant().toString();
    return text.isNull() ? QStringLiteral("") : text;
}

// What to do about an answer that refuses; empty: there is nothing to say.
QString adviceFor(const ZQHTTPResponse &response)
{
    switch (response.statusCode) {
    case 401:
        return zqLocalized("Imgur does not accept the Client ID. Enter the right one in the preferences, under Cloud.");
    case 403:
        return zqLocalized(
            "Imgur refuses the upload. Look in the preferences, under Cloud, whether the Client ID is the "
            "right one, and whether Imgur takes files of this kind.");
    case 429: {
        const QString wait = response.error.userInfo.value(ZQError::failureReasonKey).toString();
        return zqLocalized("Imgur takes no more uploads with this Client ID for now.") + u' ' +
               (wait.isEmpty() ? zqLocalized("Try again later.") : wait);
    }
    default:
        return {};
    }
}

ZQError tooLarge(const QString &path)
{
    return UploadProblem::with(zqFormat(zqLocalized("“%@” is too large for Imgur, which takes files of up to %d MB."),
                                        {QFileInfo(path).fileName(), ImgurAdapter::largestFile >> 20}),
                               zqLocalized("Share it with another service, or drop a preset on the cloud button that "
                                           "makes it smaller."));
}

} // namespace

ImgurAdapter::ImgurAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                           const QString &fileToUploadID, CloudAdapterDelegate *delegate, Access access)
    : CloudAdapter(fileToUploadURL, fileToUploadName, fileToUploadID, delegate), m_access(std::move(access)),
      m_requests(m_access.connections)
{
}

QString ImgurAdapter::title(const QString &fileToUploadName, const QString &fileToUploadURL)
{
    const QString extension = QFileInfo(fileToUploadURL).suffix();
    return extension.isEmpty() ? fileToUploadName : fileToUploadName + u'.' + extension;
}

ZQHTTPRequest ImgurAdapter::request(const Access &access, const QByteArray &file, const QString &title)
{
    ZQHTTPBody body;
    body.append(part("attachment; name=\"image\"; filename=\".tiff\"") +
                "Content-Type: application/octet-stream\r\n\r\n");
    body.append(file);
    body.append("\r\n");
    if (!title.isEmpty()) {
        body.append(part("form-data; name=\"title\"") + "\r\n" + title.toUtf8() + "\r\n");
    }
    body.append(part("form-data; name=\"description\"") + "\r\n\r\n--" + boundary + "--\r\n");
    ZQHTTPRequest request;
    request.url = access.host;
    request.url.setPath(access.host.path() + QStringLiteral("/3/upload.json"));
    request.method = "POST";
    request.headers = {{"Content-Type", "multipart/form-data; boundary=" + boundary},
                       {"Authorization", "Client-ID " + access.clientID.toLatin1()}};
    request.makeBody = body.maker();
    return request;
}

void ImgurAdapter::start()
{
    if (!m_request && m_readError.isNull() && !isCancelled()) {
        read();
    }
    if (!zqIsMainThread()) {
        zqOnMainThread([this, self = shared_from_this()] { start(); });
    } else if (isCancelled()) {
        finish();
    } else if (!isExecuting() && !isFinished()) {
        setExecuting(true);
        send();
    }
}

void ImgurAdapter::cancel()
{
    CloudAdapter::cancel();
    if (zqIsMainThread()) {
        abandon();
    } else {
        zqOnMainThread([this, self = shared_from_this()] { abandon(); });
    }
}

void ImgurAdapter::abandon()
{
    if (isExecuting() && !isFinished()) {
        m_requests.cancel();
        finish();
    }
}

void ImgurAdapter::read()
{
    ZQError error;
    if (const auto bytes = zqReadRegularFile(fileToUploadURL(), largestFile, &error)) {
        m_request = request(m_access, *bytes, title(fileToUploadName(), fileToUploadURL()));
    } else {
        m_readError =
            QFileInfo(fileToUploadURL()).size() > largestFile ? tooLarge(fileToUploadURL()) : UploadProblem::of(error);
    }
}

void ImgurAdapter::send()
{
    if (!m_request) {
        uploadFailed(m_readError);
        return;
    }
    const ZQHTTPRequest request = *std::exchange(m_request, std::nullopt);
    m_requests.perform(
        request, [this, self = shared_from_this()](const ZQHTTPResponse &response) { came(response); },
        [this](qint64 sent, qint64 total) {
            if (total > 0) {
                uploadProgess(double(sent) / double(total));
            }
        });
}

void ImgurAdapter::refuse(ZQError error, const ZQHTTPResponse &response)
{
    if (const QString advice = adviceFor(response); !advice.isEmpty()) {
        UploadProblem::advise(error, advice);
    }
    uploadFailed(error);
}

void ImgurAdapter::came(const ZQHTTPResponse &response)
{
    const QJsonDocument document = QJsonDocument::fromJson(response.body);
    const QJsonObject answer = document.object();
    if (const QString reason = errorIn(answer); !reason.isNull()) {
        ZQError error{errorDomain, refused, {}};
        error.userInfo.insert(ZQError::failureReasonKey, zqShortened(reason.simplified()));
        refuse(error, response);
        return;
    }
    if (!response.isWhole()) {
        refuse(response.error, response);
        return;
    }
    const QString link =
        ServiceAddress::link(answer.value(QStringLiteral("data")).toObject().value(QStringLiteral("link")).toString());
    if (link.isEmpty()) {
        uploadFailed(UploadProblem::with(
            zqFormat(zqLocalized("%@ did not say where the file is."), {response.url.host()}),
            zqLocalized("Try again later, or look whether the host in the preferences is the right one.")));
        return;
    }
    uploadSuccessful({{QStringLiteral("url"), link}});
}
