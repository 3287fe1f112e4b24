#include "Classes/Sharing/CustomServiceAdapter.h"

#include "Classes/Sharing/CustomServices.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQMultipartForm.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQPrivateAddress.h"
#include "Kit/Network/ZQServer.h"

namespace {

constexpr int unauthorized = 401;
constexpr int preconditionFailed = 412;

ZQError refused(const QString &format, const QUrl &url)
{
    return zqNetworkError(ZQNetworkErrorCode::RedirectRefused, zqFormat(format, {url.host()}));
}

// Files and secrets go where the person was told that they go.
ZQError refusalOf(const QUrl &url, const QUrl &first, bool hasSecrets)
{
    if (hasSecrets && !zqIsSameServer(url, first)) {
        return refused(zqLocalized("The server sends on to “%@”, for which the passwords are not meant."), url);
    }
    if (zqIsPrivateHostName(url.host()) && !zqIsPrivateHostName(first.host())) {
        return refused(zqLocalized("The server sends on to “%@”, which is not for the public."), url);
    }
    return ServiceAddress::refusalOf(url);
}

bool wantsRedirect(const UploadDescription &description)
{
    return description.linkPlace == UploadDescription::LinkPlace::Header &&
           description.linkAt.compare(u"Location", Qt::CaseInsensitive) == 0;
}

} // namespace

CustomServiceAdapter::CustomServiceAdapter(const QString &fileToUploadURL, const QString &fileToUploadName,
                                           const QString &fileToUploadID, CloudAdapterDelegate *delegate,
                                           const UploadDescription &description)
    : MainThreadAdapter(fileToUploadURL, fileToUploadName, fileToUploadID, delegate), m_description(description)
{
}

void CustomServiceAdapter::begin()
{
    CustomServices::secretsOf(m_description, [this, self = shared_from_this()](const QHash<QString, ZQSecret> &secrets,
                                                                               const ZQError &error) {
        if (isCancelled()) {
            return;
        }
        error.isNull() ? send(secrets) : uploadFailed(error);
    });
}

ZQHTTPRequest CustomServiceAdapter::request() const
{
    ZQHTTPRequest request;
    request.url = m_description.url;
    request.method = m_description.method;
    request.mostRedirects = wantsRedirect(m_description) ? 0 : 5;
    request.mayMoveBody = false;
    request.mayGoTo = [first = m_description.url, hasSecrets = !m_description.secrets().isEmpty()](const QUrl &url) {
        return refusalOf(url, first, hasSecrets);
    };
    return request;
}

bool CustomServiceAdapter::giveBody(ZQHTTPRequest &request, const QHash<QString, ZQSecret> &secrets,
                                    ZQError *error) const
{
    if (m_description.file.isEmpty()) {
        ZQHTTPBody body;
        if (!body.appendFile(fileToUploadURL(), error)) {
            return false;
        }
        request.makeBody = body.maker();
        return true;
    }
    ZQMultipartForm form;
    for (const auto &[name, value] : m_description.fields) {
        form.addField(name, UploadDescription::filledIn(value, secrets));
    }
    if (!form.addFile(m_description.file, fileToUploadURL(), error, nameForUpload())) {
        return false;
    }
    form.giveTo(request);
    request.method = m_description.method;
    return true;
}

void CustomServiceAdapter::send(const QHash<QString, ZQSecret> &secrets)
{
    ZQError error;
    ZQHTTPRequest filled = request();
    if (!giveBody(filled, secrets, &error)) {
        uploadFailed(UploadProblem::of(error));
        return;
    }
    bool hasType = !m_description.file.isEmpty();
    bool hasCondition = filled.method != "PUT";
    for (const auto &[name, value] : m_description.headers) {
        filled.headers.emplaceBack(name.toLatin1(), UploadDescription::filledIn(value, secrets).toUtf8());
        hasType = hasType || name.compare(u"Content-Type", Qt::CaseInsensitive) == 0;
        hasCondition = hasCondition || name.startsWith(u"If-", Qt::CaseInsensitive);
    }
    if (!hasCondition) {
        filled.headers.emplaceBack("If-None-Match", "*"); // nothing that is there is overwritten
    }
    if (!hasType) {
        filled.headers.emplaceBack("Content-Type", "application/octet-stream");
    }
    m_requests.perform(
        filled, [this, self = shared_from_this()](const ZQHTTPResponse &response) { answered(response); },
        [this](qint64 sent, qint64 total) { uploadProgess(double(sent) / double(total)); });
}

ZQError CustomServiceAdapter::refusedLogin() const
{
    const QStringList secrets = m_description.secrets();
    if (secrets.isEmpty()) {
        return UploadProblem::with(
            zqFormat(zqLocalized("“%@” wants a login, of which its description says nothing."), {m_description.name}),
            zqLocalized("Ask whoever runs it for a description with the login."));
    }
    return UploadProblem::with(
        zqFormat(zqLocalized("“%@” does not accept what was entered for %@."),
                 {m_description.name, secrets.join(QStringLiteral(", "))}),
        zqLocalized("Import its description again in the preferences, under Cloud, and enter it anew."));
}

void CustomServiceAdapter::answered(const ZQHTTPResponse &response)
{
    if (response.statusCode == preconditionFailed) {
        uploadFailed(UploadProblem::with(
            zqFormat(zqLocalized("“%@” has a file of that name already, which was left as it is."),
                     {m_description.name}),
            zqLocalized("Ask whoever runs it for a description that gives each file a name of its own.")));
        return;
    }
    if (response.statusCode == unauthorized) {
        uploadFailed(refusedLogin());
        return;
    }
    const bool isRedirect = wantsRedirect(m_description) && response.statusCode / 100 == 3;
    if (!response.isWhole() && !isRedirect) {
        uploadFailed(UploadProblem::of(response));
        return;
    }
    const QString link = m_description.linkIn(response);
    if (link.isEmpty()) {
        uploadFailed(UploadProblem::with(
            zqFormat(zqLocalized("“%@” answered without a link."), {m_description.name}),
            zqLocalized("Check “link” in its description, and import it again in the preferences, under Cloud.")));
    } else {
        uploadSuccessful({{QStringLiteral("url"), link}});
    }
}

void CustomServiceAdapter::abandon()
{
    m_requests.cancel();
}
