#include "Classes/Sharing/DBSession.h"

#include "Classes/Sharing/ForgetSecrets.h"
#include "Classes/Sharing/ServiceAddress.h"
#include "Classes/Sharing/UploadProblem.h"
#include "Classes/Sharing/WebBrowser.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Network/ZQNetworkError.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <array>

namespace {

constexpr int usualPort = 47836;
constexpr qint64 secondsInHand = 60; // a token that ends sooner is renewed before it is used
constexpr qint64 usualLife = 3600;

QString appKey()
{
    return ZQUserDefaults::standardUserDefaults().stringForKey(DBSession::appKeyKey).trimmed();
}

quint16 loopbackPort()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const qint64 port =
        defaults.isSet(DBSession::loopbackPortKey) ? defaults.integerForKey(DBSession::loopbackPortKey) : usualPort;
    return port >= 0 && port <= 65535 ? quint16(port) : quint16(usualPort);
}

// 32 bytes of chance in letters that need no escape in an address.
QByteArray drawn()
{
    std::array<quint32, 8> words = {};
    QRandomGenerator::system()->fillRange(words.data(), qsizetype(words.size()));
    return QByteArray(reinterpret_cast<const char *>(words.data()), qsizetype(sizeof words))
        .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray form(const QList<std::pair<QByteArray, QByteArray>> &fields)
{
    QByteArray body;
    for (const auto &[name, value] : fields) {
        body += (body.isEmpty() ? "" : "&") + name + '=' + value.toPercentEncoding();
    }
    return body;
}

ZQHTTPRequest tokenRequest(const QUrl &url, const QList<std::pair<QByteArray, QByteArray>> &fields)
{
    ZQHTTPRequest request;
    request.url = url;
    request.method = "POST";
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}, {"Accept", "application/json"}};
    request.body = form(fields);
    request.mostRedirects = 0; // the secrets in it are for this server only
    return request;
}

ZQError sessionError(DBSession::Error code, const QString &description, const QString &whatToDo = {})
{
    return ZQError::with(DBSession::errorDomain, code, description, whatToDo);
}

} // namespace

DBSession &DBSession::sharedSession()
{
    static DBSession session;
    return session;
}

bool DBSession::isLinked() const
{
    return !SecretStore::shared().accountsOfService(serviceOfSecrets).isEmpty();
}

bool DBSession::hasAppKey()
{
    return !appKey().isEmpty();
}

QString DBSession::howToGetAppKey()
{
    return zqFormat(zqLocalized("At dropbox.com/developers/apps create an app with “Scoped access”, allow it "
                                "files.content.write, sharing.read and sharing.write, and enter %@ among its redirect "
                                "URIs. Its “App key” belongs here."),
                    {QStringLiteral("http://127.0.0.1:%1/").arg(loopbackPort())});
}

ZQError DBSession::noLongerLinked()
{
    return UploadProblem::with(zqLocalized("Dropbox no longer lets Zelto in."),
                               zqLocalized("Link it again in the preferences, under Cloud."));
}

std::optional<QUrl> DBSession::APIAddress(const QString &path, ZQError *error)
{
    const auto base = ServiceAddress::ofDefault(APIHostKey, QStringLiteral("api.dropboxapi.com"), error);
    return base ? std::optional(ServiceAddress::below(*base, path)) : std::nullopt;
}

std::optional<QUrl> DBSession::contentAddress(const QString &path, ZQError *error)
{
    const auto base = ServiceAddress::ofDefault(contentHostKey, QStringLiteral("content.dropboxapi.com"), error);
    return base ? std::optional(ServiceAddress::below(*base, path)) : std::nullopt;
}

void DBSession::link(Done done, std::chrono::milliseconds time)
{
    cancelLink();
    if (!hasAppKey()) {
        done(sessionError(NoAppKey, zqLocalized("Dropbox needs an app key."), howToGetAppKey()));
        return;
    }
    ZQError error;
    const auto page =
        ServiceAddress::ofDefault(authorizeURLKey, QStringLiteral("https://www.dropbox.com/oauth2/authorize"), &error);
    const QString state = QString::fromLatin1(drawn());
    if (!page || !m_listener.listen(
                     loopbackPort(), state, time,
                     [this](const QUrlQuery &answer, const ZQError &problem) {
                         problem.isNull() ? exchange(answer) : endLink(problem);
                     },
                     &error)) {
        done(error);
        return;
    }
    m_linked = std::move(done);
    m_verifier = drawn();
    m_redirectAddress = m_listener.address();
    const QByteArray challenge = QCryptographicHash::hash(m_verifier, QCryptographicHash::Sha256)
                                     .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    QUrl url = *page;
    url.setQuery(QString::fromLatin1(form({{"client_id", appKey().toUtf8()},
                                           {"response_type", "code"},
                                           {"code_challenge", challenge},
                                           {"code_challenge_method", "S256"},
                                           {"token_access_type", "offline"},
                                           {"redirect_uri", m_redirectAddress.toUtf8()},
                                           {"state", state.toUtf8()}})),
                 QUrl::StrictMode);
    if (!WebBrowser::shared().open(url)) {
        endLink(sessionError(NoBrowser, zqLocalized("No web browser could be opened."),
                             zqLocalized("Choose one in the settings of the desktop and try again.")));
    }
}

void DBSession::exchange(const QUrlQuery &answer)
{
    const QString code = answer.queryItemValue(QStringLiteral("code"), QUrl::FullyDecoded);
    if (code.isEmpty()) {
        endLink(sessionError(Refused, zqLocalized("Dropbox was not linked: it was not allowed in the web browser.")));
        return;
    }
    ZQError error;
    const auto url = APIAddress(QStringLiteral("/oauth2/token"), &error);
    if (!url) {
        endLink(error);
        return;
    }
    const ZQHTTPRequest request = tokenRequest(*url, {{"grant_type", "authorization_code"},
                                                      {"code", code.toUtf8()},
                                                      {"redirect_uri", m_redirectAddress.toUtf8()},
                                                      {"client_id", appKey().toUtf8()},
                                                      {"code_verifier", m_verifier}});
    m_linking.perform(request, [this](const ZQHTTPResponse &response) {
        ZQError problem;
        const auto tokens = read(response, &problem);
        if (tokens && !tokens->refresh.isEmpty()) {
            keep(*tokens);
        } else {
            endLink(tokens ? sessionError(BadAnswer, zqLocalized("Dropbox answered without what lets Zelto in."))
                           : problem);
        }
    });
}

void DBSession::keep(const Tokens &tokens)
{
    SecretStore &store = SecretStore::shared();
    const QStringList before = store.accountsOfService(serviceOfSecrets);
    const QString account = tokens.account.isEmpty() ? QStringLiteral("Dropbox") : tokens.account;
    const int attempt = m_attempt;
    store.setPassword(tokens.refresh.UTF8(), serviceOfSecrets, account,
                      [this, before, account, attempt](const ZQError &error) {
                          if (attempt != m_attempt) { // cancelled while the desktop asked the person
                              if (!before.contains(account)) {
                                  forgetSecrets(serviceOfSecrets, {account}, [](const ZQError &) {});
                              }
                              return;
                          }
                          if (!error.isNull()) {
                              endLink(error);
                              return;
                          }
                          QStringList others = before;
                          others.removeAll(account);
                          forgetSecrets(serviceOfSecrets, others, [this, attempt](const ZQError &) {
                              if (attempt == m_attempt) {
                                  endLink({});
                              }
                          });
                      });
}

void DBSession::cancelLink()
{
    if (isLinking()) {
        endLink(sessionError(Cancelled, zqLocalized("Linking was cancelled.")));
    }
}

void DBSession::endLink(const ZQError &error)
{
    ++m_attempt;
    m_listener.stop();
    m_linking.cancel();
    zqWipe(m_verifier);
    if (!error.isNull()) {
        forgetAccessToken();
    }
    if (const Done done = std::exchange(m_linked, nullptr)) {
        done(error);
    }
}

void DBSession::unlink(Done done)
{
    cancelLink();
    endRenewal(noLongerLinked());
    if (const auto url = APIAddress(QStringLiteral("/2/auth/token/revoke")); url && !m_accessToken.isEmpty()) {
        ZQHTTPRequest request;
        request.url = *url;
        request.method = "POST";
        request.headers = {{"Authorization", "Bearer " + m_accessToken.UTF8()}};
        m_leaving.perform(request, [](const ZQHTTPResponse &) {});
    }
    forgetAccessToken();
    giveUpSecrets(serviceOfSecrets, SecretStore::shared().accountsOfService(serviceOfSecrets), done);
}

void DBSession::accessToken(Token told)
{
    if (!m_accessToken.isEmpty() && QDateTime::currentDateTimeUtc().secsTo(m_runsOut) > secondsInHand) {
        told(m_accessToken, {});
        return;
    }
    const QStringList accounts = SecretStore::shared().accountsOfService(serviceOfSecrets);
    if (accounts.isEmpty()) {
        told({}, UploadProblem::with(zqLocalized("No Dropbox is linked."),
                                     zqLocalized("Link one in the preferences, under Cloud.")));
        return;
    }
    m_whoWait.append(std::move(told));
    if (m_whoWait.size() > 1) {
        return;
    }
    SecretStore::shared().password(serviceOfSecrets, accounts.last(),
                                   [this](const std::optional<QByteArray> &token, const ZQError &error) {
                                       if (m_whoWait.isEmpty()) {
                                           return; // unlinked meanwhile
                                       }
                                       if (token && !token->isEmpty()) {
                                           renew(ZQSecret(*token));
                                       } else {
                                           endRenewal(error.isNull() ? noLongerLinked() : UploadProblem::of(error));
                                       }
                                   });
}

void DBSession::renew(const ZQSecret &refreshToken)
{
    ZQError error;
    const auto url = APIAddress(QStringLiteral("/oauth2/token"), &error);
    if (!url) {
        endRenewal(error);
        return;
    }
    const ZQHTTPRequest request = tokenRequest(
        *url,
        {{"grant_type", "refresh_token"}, {"refresh_token", refreshToken.UTF8()}, {"client_id", appKey().toUtf8()}});
    m_renewing.perform(request, [this](const ZQHTTPResponse &response) {
        ZQError problem;
        const bool isRefused = response.statusCode == 400 || response.statusCode == 401;
        const auto tokens = read(response, &problem);
        endRenewal(tokens ? ZQError() : isRefused ? noLongerLinked() : problem);
    });
}

void DBSession::endRenewal(const ZQError &error)
{
    m_renewing.cancel();
    const ZQSecret token = error.isNull() ? m_accessToken : ZQSecret();
    const QList<Token> whoWait = std::exchange(m_whoWait, {});
    for (const Token &told : whoWait) {
        told(token, error);
    }
}

void DBSession::forgetAccessToken()
{
    m_accessToken = {};
}

std::optional<DBSession::Tokens> DBSession::read(const ZQHTTPResponse &response, ZQError *error)
{
    const QJsonObject answer = QJsonDocument::fromJson(response.body).object();
    if (!response.isWhole()) {
        const QString reason = zqShortened(answer.value(u"error_description").toString().simplified());
        const bool isTheirs = response.statusCode >= 400 && !reason.isEmpty();
        zqSetError(error, isTheirs ? sessionError(Refused, zqFormat(zqLocalized("Dropbox says: “%@”."), {reason}))
                                   : response.error);
        return {};
    }
    // A token goes into a header.
    const auto isPlain = [](const QString &token) {
        return std::all_of(token.begin(), token.end(),
                           [](QChar each) { return each.unicode() > 0x20 && each.unicode() < 0x7f; });
    };
    const QString access = answer.value(u"access_token").toString();
    const QString refresh = answer.value(u"refresh_token").toString();
    if (access.isEmpty() || !isPlain(access) || !isPlain(refresh)) {
        zqSetError(error, sessionError(BadAnswer, zqLocalized("The answer of Dropbox cannot be understood. Check the "
                                                              "address that stands in the settings.")));
        return {};
    }
    m_accessToken = ZQSecret(access);
    const qint64 life = answer.value(u"expires_in").toInteger(usualLife);
    m_runsOut = QDateTime::currentDateTimeUtc().addSecs(std::clamp<qint64>(life, 0, 24 * usualLife));
    return Tokens{m_accessToken, ZQSecret(refresh), answer.value(u"account_id").toString()};
}
