#include "Classes/Sharing/CloudAppAdapter.h"

#include "Classes/Sharing/CloudAppAccount.h"
#include "Classes/Sharing/LinedJSON.h"
#include "Classes/Sharing/SecretStore.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQMultipartForm.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

ZQError limitReached()
{
    return ZQError::with(UploadProblem::errorDomain, CloudAppAdapter::LimitReached,
                         zqLocalized("You have exceded your maximum daily upload limit"),
                         zqLocalized("Wait until tomorrow or upgrade your CloudApp account."));
}

// An address that was refused is told of in words of its own.
ZQError problemOf(const ZQHTTPResponse &response)
{
    return response.error.domain == ServiceAddress::errorDomain ? UploadProblem::of(response.error) : response.error;
}

// The names of `parameters` in the order in which the answer has them: a storage may want them in it.
QStringList namesInOrder(const QByteArray &answer, const QVariantMap &parameters)
{
    const std::optional<LinedJSON> ordered = LinedJSON::from(answer);
    const LinedJSON *const given = ordered ? ordered->member(QStringLiteral("params")) : nullptr;
    if (!given) { // what is not strict, as names that appear twice
        return parameters.keys();
    }
    QStringList names;
    for (const auto &[name, value] : given->members) {
        names.append(name);
    }
    return names;
}

// As a field of a form.
QString text(const QVariant &value)
{
    if (const int kind = value.typeId(); kind != QMetaType::QVariantMap && kind != QMetaType::QVariantList) {
        return value.toString();
    }
    return QString::fromUtf8(QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact));
}

} // namespace

CloudAppAdapter::CloudAppAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                                 const QString &fileToUploadID, CloudAdapterDelegate *delegate, const QString &username)
    : MainThreadAdapter(fileToUploadURL, fileToUploadName, fileToUploadID, delegate), m_username(username)
{
}

void CloudAppAdapter::begin()
{
    ZQError noHost;
    const std::optional<QUrl> host = CloudAppAccount::APIHost(&noHost);
    if (!host) {
        uploadFailed(UploadProblem::of(noHost));
        return;
    }
    m_host = *host;
    const auto read = [this, self = shared_from_this()](const std::optional<QByteArray> &password,
                                                        const ZQError &error) {
        if (isCancelled()) {
            return;
        }
        if (!password) {
            uploadFailed(UploadProblem::of(error));
            return;
        }
        m_password = ZQSecret(*password);
        requestSlot();
    };
    SecretStore::shared().password(CloudAppAccount::service, m_username, read);
}

void CloudAppAdapter::abandon()
{
    m_requests.cancel();
    m_password = {};
}

ZQHTTPRequest CloudAppAdapter::request(const QUrl &url) const
{
    ZQHTTPRequest result;
    result.url = url;
    result.headers = {{"Accept", "application/json"}};
    result.user = m_username;
    result.password = m_password;
    result.loginServer = m_host; // the storage must not have it, and may send back
    result.mayGoTo = ServiceAddress::refusalOf;
    return result;
}

// There are no cookies to be removed before: requests neither send nor keep any.
void CloudAppAdapter::requestSlot()
{
    m_requests.perform(request(ServiceAddress::below(m_host, QStringLiteral("/items/new"))),
                       [this, self = shared_from_this()](const ZQHTTPResponse &response) { slotCame(response); });
}

void CloudAppAdapter::slotCame(const ZQHTTPResponse &response)
{
    if (!response.isWhole()) {
        uploadFailed(problemOf(response));
        return;
    }
    const QVariantMap answer = QJsonDocument::fromJson(response.body).object().toVariantMap();
    const auto remaining = answer.constFind(QStringLiteral("uploads_remaining"));
    const QVariant parameters = answer.value(QStringLiteral("params"));
    if ((remaining != answer.cend() && !remaining->isNull() && remaining->toDouble() < 1) ||
        parameters.typeId() != QMetaType::QVariantMap) {
        uploadFailed(limitReached());
        return;
    }
    sendFile(QUrl(answer.value(QStringLiteral("url")).toString()), parameters.toMap(),
             namesInOrder(response.body, parameters.toMap()));
}

void CloudAppAdapter::sendFile(const QUrl &storage, const QVariantMap &parameters, const QStringList &names)
{
    ZQMultipartForm form;
    for (const QString &name : names) {
        form.addField(name, text(parameters.value(name)));
    }
    ZQError error;
    if (!form.addFile(QStringLiteral("file"), fileToUploadURL(), &error)) {
        uploadFailed(UploadProblem::of(error));
        return;
    }
    ZQHTTPRequest post = request(storage);
    form.giveTo(post);
    m_requests.perform(
        post, [this, self = shared_from_this()](const ZQHTTPResponse &response) { fileSent(response); },
        [this](qint64 sent, qint64 total) {
            const double fraction = total > 0 ? double(sent) / double(total) : 0;
            if (fraction > 0 && fraction <= 1) {
                uploadProgess(fraction);
            }
        });
}

void CloudAppAdapter::fileSent(const ZQHTTPResponse &response)
{
    m_password = {};
    if (!response.isWhole()) {
        uploadFailed(problemOf(response));
        return;
    }
    const QJsonDocument answer = QJsonDocument::fromJson(response.body);
    if (answer.isObject()) {
        uploadSuccessful(answer.object().toVariantMap());
    } else {
        uploadFailed({}); // it does not say why
    }
}
