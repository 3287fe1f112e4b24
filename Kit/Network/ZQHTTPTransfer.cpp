#include "Kit/Network/ZQHTTPTransfer.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"
#include "Kit/Network/ZQTransferError.h"

#include <QBuffer>
#include <QHostInfo>
#include <QNetworkProxy>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr qint64 bufferSize = qint64(1) << 20;
constexpr qint64 mostOfRefusal = 64 * 1024;
constexpr qsizetype mostAddresses = 4; // of a host are tried
constexpr int mostLogins = 3;          // with answers that were only too old

int portOf(const QUrl &url)
{
    return url.port(url.scheme() == u"https" ? 443 : 80);
}

bool isSameServer(const QUrl &a, const QUrl &b)
{
    return a.scheme() == b.scheme() && a.host() == b.host() && portOf(a) == portOf(b);
}

// The names of headers whose values are for the server that was asked, and no other.
bool isSecret(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    return lower == "authorization" || lower == "cookie" || lower == "proxy-authorization";
}

QNetworkProxy proxyFor(const QUrl &url)
{
    if (zqReachOfHostName(url.host()) == ZQAddressReach::Machine) {
        return QNetworkProxy::NoProxy;
    }
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    return proxies.isEmpty() ? QNetworkProxy(QNetworkProxy::NoProxy) : proxies.first();
}

bool isDirect(const QNetworkProxy &proxy)
{
    return proxy.type() == QNetworkProxy::NoProxy || proxy.type() == QNetworkProxy::DefaultProxy;
}

bool isWanted(const QString &type, const QStringList &accepted)
{
    return accepted.isEmpty() || std::any_of(accepted.begin(), accepted.end(), [&](const QString &each) {
               return each.endsWith(u"/*") ? type.startsWith(each.chopped(1)) : type == each;
           });
}

} // namespace

ZQHTTPTransfer::ZQHTTPTransfer(ZQHTTPRequest request, std::function<void(const ZQHTTPResponse &response)> done)
    : m_request(std::move(request)), m_done(std::move(done)),
      m_connections(m_request.connections ? m_request.connections : ZQHTTPConnections::make()),
      m_method(m_request.method), m_user(m_request.user), m_password(m_request.password)
{
    if (m_user.isEmpty()) {
        m_user = m_request.url.userName(QUrl::FullyDecoded);
        m_password = ZQSecret(m_request.url.password(QUrl::FullyDecoded));
    }
    for (QTimer *timer : {&m_connectTimer, &m_stallTimer, &m_wholeTimer, &m_answerTimer}) {
        timer->setSingleShot(true);
    }
    m_connectTimer.setInterval(m_request.connectTime);
    m_stallTimer.setInterval(m_request.stallTime);
    m_answerTimer.setInterval(m_request.answerTime);
    connect(&m_connectTimer, &QTimer::timeout, this, [this] {
        if (!isTryingNext()) {
            fail(ZQTransferError::noAnswer(host()));
        }
    });
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { fail(ZQTransferError::silence(host())); });
    for (const QTimer *timer : {&m_wholeTimer, &m_answerTimer}) {
        connect(timer, &QTimer::timeout, this, [this] { fail(ZQTransferError::tookTooLong(host())); });
    }
}

ZQHTTPTransfer::~ZQHTTPTransfer()
{
    if (m_lookup >= 0) {
        QHostInfo::abortHostLookup(m_lookup);
    }
    dropReply();
}

void ZQHTTPTransfer::start()
{
    if (m_request.wholeTime.count() > 0) {
        m_wholeTimer.start(m_request.wholeTime);
    }
    if (const ZQError problem = problemOfHeaders(); !problem.isNull()) {
        fail(problem);
    } else {
        goTo(m_request.url);
    }
}

ZQError ZQHTTPTransfer::problemOfHeaders() const
{
    for (const auto &[name, value] : m_request.headers) {
        const bool breaks = value.contains('\r') || value.contains('\n') || value.contains('\0');
        if (breaks || name.isEmpty() || name.contains(':') || name != name.simplified()) {
            return ZQTransferError::badHeader(name);
        }
    }
    return {};
}

void ZQHTTPTransfer::cancel()
{
    fail(zqNetworkError(ZQNetworkErrorCode::Cancelled, zqLocalized("The request was cancelled.")));
}

void ZQHTTPTransfer::goTo(const QUrl &url)
{
    const QString scheme = url.scheme();
    if (!url.isValid() || url.host().isEmpty() || (scheme != u"http" && scheme != u"https")) {
        fail(ZQTransferError::noAddress(url));
        return;
    }
    m_response.url = url.adjusted(QUrl::RemoveUserInfo);
    if (const ZQError refused = m_request.mayGoTo ? m_request.mayGoTo(url) : ZQError(); !refused.isNull()) {
        fail(refused);
        return;
    }
    m_logins = 0;
    m_isConnected = m_hasHead = false;
    m_connectTimer.start();
    const QNetworkProxy proxy = proxyFor(url);
    m_connections->manager().setProxy(proxy);
    if (!m_request.mayConnectTo) {
        sendTo(m_response.url, {});
        return;
    }
    const QHostAddress literal(url.host());
    if (isDirect(proxy)) {
        lookUp(url.host());
    } else if (!literal.isNull() && !m_request.mayConnectTo(literal)) {
        fail(ZQTransferError::notAllowed(host()));
    } else {
        sendTo(m_response.url, {});
    }
}

void ZQHTTPTransfer::lookUp(const QString &host)
{
    if (const QHostAddress literal(host); !literal.isNull()) {
        tryAddresses({literal}); // looking it up would ask for its name
        return;
    }
    m_lookup = QHostInfo::lookupHost(host, this, [this](const QHostInfo &info) {
        m_lookup = -1;
        if (m_done) {
            tryAddresses(info.addresses());
        }
    });
}

void ZQHTTPTransfer::tryAddresses(const QList<QHostAddress> &addresses)
{
    m_addresses = addresses;
    m_addresses.removeIf([this](const QHostAddress &each) { return !m_request.mayConnectTo(each); });
    m_addresses = m_addresses.first(std::min(mostAddresses, m_addresses.size()));
    if (addresses.isEmpty()) {
        fail(ZQTransferError::hostNotFound(host()));
    } else if (m_addresses.isEmpty()) {
        fail(ZQTransferError::notAllowed(host()));
    } else {
        connectToNext();
    }
}

void ZQHTTPTransfer::connectToNext()
{
    QUrl pinned = m_response.url;
    pinned.setHost(m_addresses.takeFirst().toString());
    const QString name = m_response.url.host(QUrl::FullyEncoded);
    const QString bracketed = name.contains(u':') ? u'[' + name + u']' : name;
    const int port = m_response.url.port();
    m_connectTimer.start();
    sendTo(pinned, port < 0 ? bracketed : bracketed + u':' + QString::number(port));
}

bool ZQHTTPTransfer::isTryingNext()
{
    if (m_isConnected || m_addresses.isEmpty()) {
        return false;
    }
    dropReply();
    connectToNext();
    return true;
}

QNetworkRequest ZQHTTPTransfer::networkRequest(const QByteArray &login) const
{
    QNetworkRequest request(m_connectedURL);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // it would name the address, not the host
    request.setDecompressedSafetyCheckThreshold(-1);                     // the maximum size holds for what is unpacked
    const bool isAtFirstServer = isSameServer(m_request.url, m_response.url);
    for (const auto &[name, value] : m_request.headers) {
        const QByteArray lower = name.toLower();
        // A condition on what is written would have what is read instead refused.
        const bool isOfBody =
            lower.startsWith("content-") || (lower == "if-none-match" && m_method != m_request.method);
        if ((isAtFirstServer || !isSecret(name)) && (m_sendsBody || !isOfBody)) {
            request.setRawHeader(name, value);
        }
    }
    if (!login.isEmpty()) {
        request.setRawHeader("Authorization", login);
    }
    if (!m_hostHeader.isEmpty()) {
        request.setRawHeader("Host", m_hostHeader.toLatin1());
        request.setPeerVerifyName(m_response.url.host(QUrl::FullyEncoded));
    }
    return request;
}

QNetworkReply *ZQHTTPTransfer::sendBody(const QNetworkRequest &request, QString *problem)
{
    std::unique_ptr<QIODevice> body;
    if (m_request.makeBody) {
        body = m_request.makeBody();
    } else {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(m_request.body);
        buffer->open(QIODevice::ReadOnly);
        body = std::move(buffer);
    }
    if (!body) {
        return nullptr;
    }
    auto sent = std::make_unique<ZQSentBody>(std::move(body), m_connections->haveBeenUsedFor(m_response.url) ? 1 : 0);
    if (sent->didFail()) {
        *problem = sent->errorString();
        return nullptr;
    }
    QNetworkReply *const reply = m_connections->manager().sendCustomRequest(request, m_method, sent.get());
    m_body = sent.release();
    m_body->setParent(reply);
    return reply;
}

void ZQHTTPTransfer::sendTo(const QUrl &url, const QString &hostHeader)
{
    m_connectedURL = url;
    m_hostHeader = hostHeader;
    send();
}

void ZQHTTPTransfer::send()
{
    const QNetworkRequest request = networkRequest(answerToChallenge());
    const bool hasBody = m_sendsBody && (m_request.makeBody || !m_request.body.isEmpty());
    QString problem;
    QNetworkReply *const reply = hasBody             ? sendBody(request, &problem)
                                 : m_method == "GET" ? m_connections->manager().get(request)
                                                     : m_connections->manager().sendCustomRequest(request, m_method);
    if (reply) {
        m_connections->noteUseOf(m_response.url);
        follow(reply);
    } else {
        fail(ZQTransferError::cannotRead(problem));
    }
}

void ZQHTTPTransfer::follow(QNetworkReply *reply)
{
    m_reply = reply;
    reply->setReadBufferSize(bufferSize);
    connect(reply, &QNetworkReply::requestSent, this, [this] {
        m_isConnected = true;
        m_connectTimer.stop();
        m_stallTimer.start();
    });
    connect(reply, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 total) {
        m_isConnected = true;
        m_connectTimer.stop();
        m_stallTimer.start();
        if (total > 0 && sent >= total) {
            limitAnswer();
        }
        if (m_request.didSendBytes && total > 0) {
            m_request.didSendBytes(sent, total);
        }
    });
    connect(reply, &QNetworkReply::metaDataChanged, this, &ZQHTTPTransfer::headCame);
    connect(reply, &QNetworkReply::readyRead, this, &ZQHTTPTransfer::bytesCame);
    connect(reply, &QNetworkReply::finished, this, &ZQHTTPTransfer::replyEnded);
}

bool ZQHTTPTransfer::hasLogin() const
{
    const QUrl &server = m_request.loginServer.isEmpty() ? m_request.url : m_request.loginServer;
    return !m_user.isEmpty() && isSameServer(server, m_response.url);
}

// Empty until the server asked, now or a request of the same connections before.
QByteArray ZQHTTPTransfer::answerToChallenge()
{
    if (!hasLogin()) {
        return {};
    }
    std::optional<ZQHTTPChallenge> &challenge = m_connections->challengeOf(m_response.url, m_user);
    const QByteArray target =
        m_response.url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    return challenge ? challenge->answer(m_user, m_password, m_method, target.startsWith('/') ? target : '/' + target)
                     : QByteArray();
}

// Sends it again with an answer to what the server asked for. False when the person has to be told of the refusal.
bool ZQHTTPTransfer::logIn()
{
    if (m_response.statusCode != 401 || !hasLogin()) {
        return false;
    }
    std::optional<ZQHTTPChallenge> &challenge = m_connections->challengeOf(m_response.url, m_user);
    challenge = ZQHTTPChallenge::strongestIn(m_response.header("WWW-Authenticate"));
    const bool isNews = challenge && (m_logins == 0 || challenge->isStale());
    if (!isNews || m_logins++ >= mostLogins) { // the same words would be refused again
        challenge.reset();
        return false;
    }
    const bool isUnencrypted = m_response.url.scheme() == u"http" && !zqIsPrivateHostName(host());
    if (isUnencrypted && !m_request.mayLogInUnencrypted && !m_request.user.isEmpty()) {
        challenge.reset();
        fail(ZQTransferError::loginUnencrypted(host()));
        return true;
    }
    dropReply();
    const QUrl url = m_response.url;
    m_response = {};
    m_response.url = url;
    m_hasHead = false;
    send();
    return true;
}

void ZQHTTPTransfer::limitAnswer()
{
    if (m_request.answerTime.count() > 0 && !m_answerTimer.isActive()) {
        m_answerTimer.start();
    }
}

void ZQHTTPTransfer::headCame()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (m_hasHead || status < 200) {
        return;
    }
    m_hasHead = m_isConnected = true;
    m_connectTimer.stop();
    m_stallTimer.start();
    limitAnswer();
    m_response.statusCode = status;
    m_response.headers = {};
    for (const auto &[name, value] : m_reply->rawHeaderPairs()) {
        m_response.headers.append({name, value});
    }
    bool isStated = false;
    const qint64 length = m_response.header("Content-Length").toLongLong(&isStated);
    const bool isPacked = !m_response.header("Content-Encoding").isEmpty();
    m_expected = isStated && !isPacked && m_method != "HEAD" ? length : -1;
    if (const ZQError problem = problemOfHead(); !problem.isNull()) {
        fail(problem);
    } else {
        redirect(); // whatever else it sends
    }
}

ZQError ZQHTTPTransfer::problemOfHead() const
{
    if (!isSuccess()) {
        return {};
    }
    if (!isWanted(m_response.MIMEType(), m_request.acceptedTypes)) {
        return ZQTransferError::unwantedType(host(), m_response.MIMEType());
    }
    return m_expected > m_request.maximumSize ? ZQTransferError::tooLarge(m_request.maximumSize) : ZQError();
}

void ZQHTTPTransfer::bytesCame()
{
    static thread_local std::array<char, 64 * 1024> buffer;
    while (m_reply && m_hasHead) {
        const qint64 size = m_reply->read(buffer.data(), qint64(buffer.size()));
        if (size <= 0) {
            return;
        }
        m_stallTimer.start();
        if (isSuccess()) {
            if (!keep(buffer.data(), size)) {
                return;
            }
            continue;
        }
        const qint64 room = mostOfRefusal - m_response.body.size();
        m_response.body.append(buffer.data(), std::min(room, size));
        if (size >= room) { // a page of excuses, perhaps without end
            if (!logIn()) {
                fail(refusal());
            }
            return;
        }
    }
}

bool ZQHTTPTransfer::keep(const char *data, qint64 size)
{
    m_response.size += size;
    if (m_response.size > m_request.maximumSize) {
        fail(ZQTransferError::tooLarge(m_request.maximumSize));
        return false;
    }
    ZQError error;
    if (m_request.destination.isEmpty()) {
        m_response.body.append(data, size);
    } else if (!makeFile(&error) || !write(data, size, &error)) {
        fail(ZQTransferError::cannotWrite(m_request.destination, error));
        return false;
    }
    if (m_request.didReceiveBytes) {
        m_request.didReceiveBytes(m_response.size, m_expected);
    }
    return true;
}

bool ZQHTTPTransfer::makeFile(ZQError *error)
{
    if (!m_file) {
        if (auto made = ZQNewFile::make(m_request.destination, error)) {
            m_file = std::make_unique<ZQNewFile>(std::move(*made));
        }
    }
    return m_file != nullptr;
}

bool ZQHTTPTransfer::write(const char *data, qint64 size, ZQError *error)
{
    for (qint64 written = 0; written < size;) {
        const ssize_t count = ::write(m_file->descriptor(), data + written, std::size_t(size - written));
        if (count < 0 && errno != EINTR) {
            zqSetError(error, ZQError::posix(errno, m_request.destination));
            return false;
        }
        written += std::max<ssize_t>(count, 0);
    }
    return true;
}

bool ZQHTTPTransfer::redirect()
{
    static constexpr std::array redirects = {301, 302, 303, 307, 308};
    const QByteArray location = m_response.header("Location");
    const int status = m_response.statusCode;
    if (location.isEmpty() || std::find(redirects.begin(), redirects.end(), status) == redirects.end()) {
        return false;
    }
    const QUrl from = m_response.url;
    const QUrl to = from.resolved(QUrl(QString::fromUtf8(location)));
    if (++m_redirects > m_request.mostRedirects) {
        fail(ZQTransferError::tooManyRedirects(from.host()));
        return true;
    }
    if (from.scheme() == u"https" && to.scheme() == u"http" && !m_request.mayLoseEncryption) {
        fail(ZQTransferError::losesEncryption(from.host()));
        return true;
    }
    const bool hasBody = m_sendsBody && (m_request.makeBody || !m_request.body.isEmpty());
    if (status >= 307 && hasBody && !m_request.mayMoveBody && !isSameServer(m_request.url, to)) {
        fail(ZQTransferError::movesBody(from.host(), to.host()));
        return true;
    }
    if (status < 307 && m_method != "HEAD") {
        m_method = "GET";
        m_sendsBody = false;
    }
    dropReply();
    m_stallTimer.stop();
    m_response = {};
    goTo(to);
    return true;
}

void ZQHTTPTransfer::replyEnded()
{
    const QNetworkReply *const sender = m_reply;
    if (!m_hasHead) {
        headCame(); // of an answer without a body it comes with the end
    }
    bytesCame();
    if (!m_reply || m_reply != sender) {
        return; // it failed, or went on to elsewhere
    }
    const auto error = m_reply->error();
    const bool isAboutConnecting = error == QNetworkReply::ConnectionRefusedError ||
                                   error == QNetworkReply::TimeoutError || error == QNetworkReply::UnknownNetworkError;
    if (!m_hasHead && isAboutConnecting && isTryingNext()) {
        return;
    }
    if (m_hasHead && logIn()) {
        return;
    }
    m_response.error = problemOfEnd();
    end();
}

ZQError ZQHTTPTransfer::refusal() const
{
    return zqNetworkErrorForStatus(m_response.statusCode, host(), m_response.retryAfter());
}

ZQError ZQHTTPTransfer::problemOfEnd() const
{
    if (m_hasHead && !isSuccess()) {
        return refusal();
    }
    if (m_body && m_body->didFail()) {
        return ZQTransferError::cannotRead(m_body->errorString());
    }
    if (m_body && m_body->wasAskedTooOften() && !m_hasHead) {
        return ZQTransferError::brokeOff(host());
    }
    if (m_reply->error() != QNetworkReply::NoError) {
        return ZQTransferError::of(*m_reply, host(), m_isConnected);
    }
    return m_expected > m_response.size ? ZQTransferError::cutOff(host(), m_response.size, m_expected) : ZQError();
}

void ZQHTTPTransfer::fail(const ZQError &error)
{
    if (m_done) {
        m_response.error = error;
        end();
    }
}

void ZQHTTPTransfer::end()
{
    for (QTimer *timer : {&m_connectTimer, &m_stallTimer, &m_wholeTimer, &m_answerTimer}) {
        timer->stop();
    }
    const auto done = std::exchange(m_done, nullptr);
    if (m_response.isWhole() && !m_request.destination.isEmpty()) {
        place();
    }
    m_file.reset();
    if (!m_response.isWhole() && isSuccess()) {
        m_response.body.clear();
    }
    dropReply();
    done(m_response);
    deleteLater();
}

// Of nothing a file is made too.
void ZQHTTPTransfer::place()
{
    ZQError error;
    if (makeFile(&error) && m_file->place(&error)) {
        m_response.destination = m_request.destination;
    } else {
        m_response.error = ZQTransferError::cannotWrite(m_request.destination, error);
    }
}

void ZQHTTPTransfer::dropReply()
{
    m_answerTimer.stop(); // what is sent again has its own
    if (QNetworkReply *const reply = std::exchange(m_reply, nullptr)) {
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
    m_body = nullptr;
}
