#include "Kit/Network/ZQHTTPTransfer.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQPrivateAddress.h"
#include "Kit/Network/ZQServer.h"
#include "Kit/Network/ZQTransferError.h"

#include <QBuffer>
#include <QHostInfo>
#include <QNetworkProxyFactory>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

constexpr qint64 mostOfRefusal = 64 * 1024;
constexpr qsizetype mostAddresses = 8; // of a host are tried
constexpr int mostLogins = 3;          // with answers that were only too old

// The names of headers whose values are for the server that was asked, and no other.
bool isSecret(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    return lower == "authorization" || lower == "cookie" || lower == "proxy-authorization" || lower == "host";
}

QNetworkProxy proxyFor(const QUrl &url)
{
    if (zqReachOfHostName(url.host()) == ZQAddressReach::Machine) {
        return QNetworkProxy::NoProxy;
    }
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    return proxies.isEmpty() ? QNetworkProxy(QNetworkProxy::NoProxy) : proxies.first();
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
    connect(&m_connectTimer, &QTimer::timeout, this, [this] { fail(ZQTransferError::noAnswer(host())); });
    connect(&m_stallTimer, &QTimer::timeout, this, [this] { giveUp(ZQTransferError::silence(host())); });
    for (const QTimer *timer : {&m_wholeTimer, &m_answerTimer}) {
        connect(timer, &QTimer::timeout, this, [this] { giveUp(ZQTransferError::tookTooLong(host())); });
    }
}

ZQHTTPTransfer::~ZQHTTPTransfer()
{
    if (m_lookup >= 0) {
        QHostInfo::abortHostLookup(m_lookup);
    }
    dropExchange();
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
    fail(ZQTransferError::cancelled());
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
    m_addresses.clear();
    m_connectTimer.start();
    m_proxy = proxyFor(url);
    const QHostAddress literal(url.host());
    if (!literal.isNull()) {
        if (m_request.mayConnectTo && !m_request.mayConnectTo(literal)) {
            fail(ZQTransferError::notAllowed(host()));
        } else {
            send();
        }
    } else if (zqIsDirect(m_proxy)) {
        lookUp(url.host());
    } else {
        send();
    }
}

void ZQHTTPTransfer::lookUp(const QString &host)
{
    m_lookup = QHostInfo::lookupHost(host, this, [this](const QHostInfo &info) {
        m_lookup = -1;
        if (m_done) {
            connectTo(info.addresses());
        }
    });
}

void ZQHTTPTransfer::connectTo(const QList<QHostAddress> &addresses)
{
    m_addresses = addresses;
    m_addresses.removeIf(
        [this](const QHostAddress &each) { return m_request.mayConnectTo && !m_request.mayConnectTo(each); });
    m_addresses = m_addresses.first(std::min(mostAddresses, m_addresses.size()));
    if (addresses.isEmpty()) {
        fail(ZQTransferError::hostNotFound(host()));
    } else if (m_addresses.isEmpty()) {
        fail(ZQTransferError::notAllowed(host()));
    } else {
        send();
    }
}

ZQHTTPHeaders ZQHTTPTransfer::headersToSend(const QByteArray &login) const
{
    ZQHTTPHeaders result;
    const bool isAtFirstServer = zqIsSameServer(m_request.url, m_response.url);
    for (const auto &[name, value] : m_request.headers) {
        const QByteArray lower = name.toLower();
        // A condition on what is written would have what is read instead refused.
        const bool isOfBody =
            lower.startsWith("content-") || (lower == "if-none-match" && m_method != m_request.method);
        const bool isReplaced = lower == "authorization" && !login.isEmpty();
        if ((isAtFirstServer || !isSecret(name)) && (m_sendsBody || !isOfBody) && !isReplaced) {
            result.append({name, value});
        }
    }
    if (!login.isEmpty()) {
        result.append({"Authorization", login});
    }
    return result;
}

// Null, with an empty problem where there is no more to say, when it cannot be read.
std::unique_ptr<ZQSentBody> ZQHTTPTransfer::makeBody(QString *problem) const
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
    return sent;
}

void ZQHTTPTransfer::send(bool isFresh)
{
    ZQHTTPExchange::Order order{.url = m_response.url,
                                .method = m_method,
                                .headers = headersToSend(answerToChallenge()),
                                .body = nullptr,
                                .proxy = m_proxy,
                                .addresses = m_addresses,
                                .mayConnectTo = m_request.mayConnectTo,
                                .connectTime = m_request.connectTime,
                                .isFresh = isFresh};
    QString problem;
    if (hasBody()) {
        order.body = makeBody(&problem);
        if (!order.body) {
            fail(ZQTransferError::cannotRead(problem));
            return;
        }
    }
    m_isConnected = m_hasHead = false;
    m_problem.reset();
    m_connectTimer.start();
    Listener &self = *this;
    m_exchange = std::make_unique<ZQHTTPExchange>(std::move(order), m_connections->loop(), self);
    m_connections->noteUseOf(m_response.url);
    if (!m_exchange->start()) {
        fail(zqNetworkError(ZQNetworkErrorCode::CannotConnect, zqLocalized("There is not enough memory.")));
    }
}

void ZQHTTPTransfer::didConnect()
{
    m_isConnected = true;
    m_connectTimer.stop();
    m_stallTimer.start();
}

void ZQHTTPTransfer::didSend(qint64 sent, qint64 total)
{
    m_stallTimer.start();
    if (sent >= total) {
        limitAnswer();
    }
    if (m_request.didSendBytes && total > 0) {
        m_request.didSendBytes(sent, total);
    }
}

bool ZQHTTPTransfer::hasLogin() const
{
    const QUrl &server = m_request.loginServer.isEmpty() ? m_request.url : m_request.loginServer;
    return !m_user.isEmpty() && zqIsSameServer(server, m_response.url);
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
    dropExchange();
    const QUrl url = m_response.url;
    m_response = {};
    m_response.url = url;
    send();
    return true;
}

void ZQHTTPTransfer::limitAnswer()
{
    if (m_request.answerTime.count() > 0 && !m_answerTimer.isActive()) {
        m_answerTimer.start();
    }
}

bool ZQHTTPTransfer::headCame(int status, const ZQHTTPHeaders &headers)
{
    m_hasHead = true;
    m_stallTimer.start();
    limitAnswer();
    m_response.statusCode = status;
    m_response.headers = headers;
    bool isStated = false;
    const qint64 length = m_response.header("Content-Length").toLongLong(&isStated);
    const bool isPacked = !m_response.header("Content-Encoding").isEmpty();
    m_expected = isStated && !isPacked && m_method != "HEAD" ? length : -1;
    if (const ZQError problem = problemOfHead(); !problem.isNull()) {
        m_problem = problem;
    }
    return !m_problem && !isRedirect(); // whatever else it sends
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

bool ZQHTTPTransfer::bytesCame(const char *data, qint64 size)
{
    m_stallTimer.start();
    if (isSuccess()) {
        return keep(data, size);
    }
    const qint64 room = mostOfRefusal - m_response.body.size();
    m_response.body.append(data, std::min(room, size));
    return size < room; // else it is a page of excuses, perhaps without end
}

bool ZQHTTPTransfer::keep(const char *data, qint64 size)
{
    m_response.size += size;
    if (m_response.size > m_request.maximumSize) {
        m_problem = ZQTransferError::tooLarge(m_request.maximumSize);
        return false;
    }
    ZQError error;
    if (m_request.destination.isEmpty()) {
        m_response.body.append(data, size);
    } else if (!makeFile(&error) || !write(data, size, &error)) {
        m_problem = ZQTransferError::cannotWrite(m_request.destination, error);
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

bool ZQHTTPTransfer::isRedirect() const
{
    static constexpr std::array redirects = {301, 302, 303, 307, 308};
    return std::find(redirects.begin(), redirects.end(), m_response.statusCode) != redirects.end() &&
           !m_response.header("Location").isEmpty();
}

void ZQHTTPTransfer::redirect()
{
    const int status = m_response.statusCode;
    const QUrl from = m_response.url;
    const QUrl to = from.resolved(QUrl(QString::fromUtf8(m_response.header("Location"))));
    if (++m_redirects > m_request.mostRedirects) {
        fail(ZQTransferError::tooManyRedirects(from.host()));
        return;
    }
    if (from.scheme() == u"https" && to.scheme() == u"http" && !m_request.mayLoseEncryption) {
        fail(ZQTransferError::losesEncryption(from.host()));
        return;
    }
    if (status >= 307 && hasBody() && !m_request.mayMoveBody && !zqIsSameServer(m_request.url, to)) {
        fail(ZQTransferError::movesBody(from.host(), to.host()));
        return;
    }
    if (status < 307 && m_method != "HEAD") {
        m_method = "GET";
        m_sendsBody = false;
    }
    dropExchange();
    m_stallTimer.stop();
    m_response = {};
    goTo(to);
}

// A connection that was kept may have been closed before the request came to the other end.
bool ZQHTTPTransfer::mayRepeat(const ZQHTTPEnd &end)
{
    const bool wasRepeatedAlready = end.code == CURLE_SEND_FAIL_REWIND; // by the library, as often as it may be
    return end.isBroken() && !wasRepeatedAlready && end.wasKept && !m_hasHead && !std::exchange(m_wasRepeated, true);
}

void ZQHTTPTransfer::exchangeEnded(const ZQHTTPEnd &end)
{
    if (m_problem) {
        fail(*m_problem);
    } else if (m_hasHead && isRedirect()) {
        redirect();
    } else if (m_hasHead && logIn()) {
        return; // it is sent again
    } else if (mayRepeat(end)) {
        dropExchange();
        send(true);
    } else {
        m_response.error = problemOfEnd(end);
        this->end();
    }
}

ZQError ZQHTTPTransfer::refusal() const
{
    return zqNetworkErrorForStatus(m_response.statusCode, host(), m_response.retryAfter());
}

ZQError ZQHTTPTransfer::problemOfEnd(const ZQHTTPEnd &end) const
{
    if (m_hasHead && !isSuccess()) {
        return refusal();
    }
    const ZQSentBody *const body = m_exchange->body();
    if (body && body->didFail()) {
        return ZQTransferError::cannotRead(body->errorString());
    }
    if (m_hasHead && m_expected > m_response.size) {
        return ZQTransferError::cutOff(host(), m_response.size, m_expected);
    }
    const bool isAnswered = end.code == CURLE_OK && m_hasHead; // a refusal by a proxy is a good end for the library
    return isAnswered ? ZQError() : ZQTransferError::of(end, m_response.url, m_isConnected);
}

// What took too long; a server that had said no before is told as that.
void ZQHTTPTransfer::giveUp(const ZQError &error)
{
    fail(m_hasHead && !isSuccess() ? refusal() : error);
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
    dropExchange();
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

void ZQHTTPTransfer::dropExchange()
{
    m_answerTimer.stop(); // what is sent again has its own
    m_exchange.reset();
}
