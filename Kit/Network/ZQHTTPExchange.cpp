#include "Kit/Network/ZQHTTPExchange.h"

#include "Kit/Network/ZQServer.h"

#include <QLocale>

#include <openssl/x509.h>

#include <sys/socket.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr long mostSentAtOnce = 256 * 1024;
constexpr long mostReceivedAtOnce = 64 * 1024;
constexpr qsizetype mostLastWords = 64 * 1024;

// Of what describes the body the library takes care itself.
bool isOfTransport(const QByteArray &name)
{
    const QByteArray lower = name.toLower();
    return lower == "content-length" || lower == "transfer-encoding" || lower == "expect";
}

void append(curl_slist **list, const QByteArray &line)
{
    if (curl_slist *const longer = curl_slist_append(*list, line.constData())) {
        *list = longer;
    }
}

void wipe(curl_slist *list)
{
    for (curl_slist *each = list; each; each = each->next) {
        explicit_bzero(each->data, std::strlen(each->data)); // a login may be among them
    }
    curl_slist_free_all(list);
}

QHostAddress literalOf(const QByteArray &text)
{
    return QHostAddress(QString::fromLatin1(text));
}

} // namespace

bool ZQHTTPEnd::isBroken() const
{
    return code == CURLE_SEND_ERROR || code == CURLE_RECV_ERROR || code == CURLE_GOT_NOTHING ||
           code == CURLE_PARTIAL_FILE || code == CURLE_SEND_FAIL_REWIND;
}

ZQHTTPExchange::ZQHTTPExchange(Order order, ZQTransferLoop &loop, Listener &listener)
    : m_order(std::move(order)), m_loop(loop), m_listener(listener), m_handle(curl_easy_init())
{
    m_resuming.setSingleShot(true);
    QObject::connect(&m_resuming, &QTimer::timeout, [this] { curl_easy_pause(m_handle, CURLPAUSE_CONT); });
}

ZQHTTPExchange::~ZQHTTPExchange()
{
    if (m_isAdded) {
        set(CURLOPT_PRIVATE, static_cast<void *>(nullptr)); // there is nobody to tell any more
        m_loop.remove(m_handle);
    }
    if (m_handle) {
        curl_easy_cleanup(m_handle);
    }
    wipe(m_headerLines);
    curl_slist_free_all(m_resolved);
}

template <typename Value>
void ZQHTTPExchange::set(CURLoption option, Value value)
{
    if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, curl_off_t>) {
        curl_easy_setopt(m_handle, option, long(value));
    } else {
        curl_easy_setopt(m_handle, option, value);
    }
}

bool ZQHTTPExchange::start()
{
    if (!m_handle) {
        return false;
    }
    setLimits();
    setRequest();
    setHeaders();
    setWay();
    setTrust();
    setCallbacks();
    m_isAdded = m_loop.add(m_handle);
    return m_isAdded;
}

void ZQHTTPExchange::setLimits()
{
    set(CURLOPT_NOSIGNAL, 1);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    set(CURLOPT_FOLLOWLOCATION, 0);
    set(CURLOPT_PATH_AS_IS, 1);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1);
    set(CURLOPT_QUICK_EXIT, 1); // giving up does not wait for a name that nobody answers for
    // The timer of the transfer, which began earlier, is the limit; the library divides it among the addresses, and
    // would spend all of it on the first that is silent.
    set(CURLOPT_CONNECTTIMEOUT_MS, m_order.connectTime.count());
    set(CURLOPT_UPLOAD_BUFFERSIZE, mostSentAtOnce);
    set(CURLOPT_BUFFERSIZE, mostReceivedAtOnce);
    set(CURLOPT_FRESH_CONNECT, m_order.isFresh);
    set(CURLOPT_ERRORBUFFER, m_reason.data());
    set(CURLOPT_PRIVATE, static_cast<void *>(static_cast<ZQTransferLoop::Mover *>(this)));
}

void ZQHTTPExchange::setRequest()
{
    set(CURLOPT_URL, m_order.url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment).constData());
    const QByteArray &method = m_order.method;
    const bool needsLength = method == "POST" || method == "PUT" || method == "PATCH";
    if (m_order.body || needsLength) {
        set(CURLOPT_UPLOAD, 1);
        set(CURLOPT_INFILESIZE_LARGE, curl_off_t(m_order.body ? m_order.body->size() : 0));
        set(CURLOPT_CUSTOMREQUEST, method.constData());
    } else if (method == "HEAD") {
        set(CURLOPT_NOBODY, 1);
    } else if (method != "GET") {
        set(CURLOPT_CUSTOMREQUEST, method.constData());
    }
}

void ZQHTTPExchange::setHeaders()
{
    bool unpacks = true;
    bool hasAgent = false;
    bool hasLanguage = false;
    for (const auto &[name, value] : m_order.headers) {
        const QByteArray lower = name.toLower();
        unpacks = unpacks && lower != "accept-encoding";
        hasAgent = hasAgent || lower == "user-agent";
        hasLanguage = hasLanguage || lower == "accept-language";
        if (isOfTransport(name)) {
            continue;
        }
        QByteArray line = value.trimmed().isEmpty() ? name + ';' : name + ": " + value;
        append(&m_headerLines, line);
        explicit_bzero(line.data(), std::size_t(line.size()));
    }
    append(&m_headerLines, "Expect:"); // many servers never say to go on, and each upload would wait for it
    if (!hasAgent) {
        append(&m_headerLines, "User-Agent: Mozilla/5.0");
    }
    if (!hasLanguage) {
        append(&m_headerLines, "Accept-Language: " + QLocale().bcp47Name().toLatin1() + ",*");
    }
    set(CURLOPT_HTTPHEADER, m_headerLines);
    if (unpacks) {
        set(CURLOPT_ACCEPT_ENCODING, "");
    }
}

void ZQHTTPExchange::setWay()
{
    setProxy();
    const bool hasScopes = std::any_of(m_order.addresses.begin(), m_order.addresses.end(),
                                       [](const QHostAddress &each) { return !each.scopeId().isEmpty(); });
    if (m_order.addresses.isEmpty() || hasScopes) { // a list has no room for scopes: the name is looked up again
        return;
    }
    QByteArray list =
        m_order.url.host(QUrl::FullyEncoded).toLatin1() + ':' + QByteArray::number(zqPortOf(m_order.url)) + ':';
    for (const QHostAddress &each : m_order.addresses) {
        const QByteArray text = each.toString().toLatin1();
        list += (list.endsWith(':') ? "" : ",") + (text.contains(':') ? '[' + text + ']' : text);
    }
    append(&m_resolved, list);
    set(CURLOPT_RESOLVE, m_resolved);
}

// The variables that the library would read itself were read for the whole desktop before.
void ZQHTTPExchange::setProxy()
{
    set(CURLOPT_NOPROXY, "");
    const QNetworkProxy &proxy = m_order.proxy;
    if (zqIsDirect(proxy)) {
        set(CURLOPT_PROXY, "");
        return;
    }
    const QByteArray host = proxy.hostName().toLatin1();
    set(CURLOPT_PROXY, (host.contains(':') && !host.startsWith('[') ? '[' + host + ']' : host).constData());
    set(CURLOPT_PROXYPORT, proxy.port());
    set(CURLOPT_PROXYTYPE, proxy.type() == QNetworkProxy::Socks5Proxy ? CURLPROXY_SOCKS5_HOSTNAME : CURLPROXY_HTTP);
    if (!proxy.user().isEmpty()) {
        set(CURLOPT_PROXYUSERNAME, proxy.user().toUtf8().constData());
        set(CURLOPT_PROXYPASSWORD, proxy.password().toUtf8().constData());
        set(CURLOPT_PROXYAUTH, CURLAUTH_BASIC | CURLAUTH_DIGEST);
    }
}

// The certificates of the system, or those that the variables name which it has for this.
void ZQHTTPExchange::setTrust()
{
    set(CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    if (const QByteArray file = qgetenv("SSL_CERT_FILE"); !file.isEmpty()) {
        set(CURLOPT_CAINFO, file.constData());
    }
    if (const QByteArray folder = qgetenv("SSL_CERT_DIR"); !folder.isEmpty()) {
        set(CURLOPT_CAPATH, folder.constData());
    }
}

void ZQHTTPExchange::setCallbacks()
{
    void *const self = this;
    set(CURLOPT_HEADERFUNCTION, headerLine);
    set(CURLOPT_HEADERDATA, self);
    set(CURLOPT_WRITEFUNCTION, received);
    set(CURLOPT_WRITEDATA, self);
    set(CURLOPT_READFUNCTION, toSend);
    set(CURLOPT_READDATA, self);
    set(CURLOPT_SEEKFUNCTION, seek);
    set(CURLOPT_SEEKDATA, self);
    set(CURLOPT_XFERINFOFUNCTION, progress);
    set(CURLOPT_XFERINFODATA, self);
    set(CURLOPT_NOPROGRESS, 0);
    set(CURLOPT_PREREQFUNCTION, connected);
    set(CURLOPT_PREREQDATA, self);
    set(CURLOPT_OPENSOCKETFUNCTION, openSocket);
    set(CURLOPT_OPENSOCKETDATA, self);
}

bool ZQHTTPExchange::mayUse(const QHostAddress &address)
{
    const bool may = !m_order.mayConnectTo || !zqIsDirect(m_order.proxy) || m_order.mayConnectTo(address);
    m_wasRefused = m_wasRefused || !may;
    return may;
}

// Whatever a name was taken for on the way here: this is the address.
curl_socket_t ZQHTTPExchange::openSocket(void *self, curlsocktype, curl_sockaddr *address)
{
    if (!static_cast<ZQHTTPExchange *>(self)->mayUse(QHostAddress(&address->addr))) {
        return CURL_SOCKET_BAD;
    }
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

// A connection that was kept may have been made for who may go elsewhere.
int ZQHTTPExchange::connected(void *self, char *address, char *, int, int)
{
    auto *const exchange = static_cast<ZQHTTPExchange *>(self);
    if (!exchange->mayUse(literalOf(address))) {
        return CURL_PREREQFUNC_ABORT;
    }
    exchange->m_isConnected = true;
    exchange->m_listener.didConnect();
    return CURL_PREREQFUNC_OK;
}

std::size_t ZQHTTPExchange::toSend(char *data, std::size_t size, std::size_t count, void *self)
{
    auto *const exchange = static_cast<ZQHTTPExchange *>(self);
    return exchange->m_order.body ? exchange->readBody(data, qint64(size * count)) : 0;
}

// What a server says meanwhile is read first: of one that refuses the rest and closes, sending would only fail.
std::size_t ZQHTTPExchange::readBody(char *data, qint64 size)
{
    qint64 count = std::min<qint64>(size, m_heldBack.size());
    if (count > 0) {
        std::copy_n(m_heldBack.constData(), count, data);
        m_heldBack.remove(0, count);
    } else {
        count = m_order.body->read(data, size);
    }
    if (count > 0 && !m_hasHead && m_looksLeft > 0 && hasSomethingToRead()) {
        --m_looksLeft;
        m_heldBack.prepend(data, count);
        m_resuming.start(0);
        return CURL_READFUNC_PAUSE;
    }
    return count < 0 ? std::size_t(CURL_READFUNC_ABORT) : std::size_t(count);
}

bool ZQHTTPExchange::hasSomethingToRead() const
{
    char first = 0;
    return m_socket != CURL_SOCKET_BAD && ::recv(m_socket, &first, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
}

int ZQHTTPExchange::seek(void *self, curl_off_t offset, int origin)
{
    auto *const exchange = static_cast<ZQHTTPExchange *>(self);
    exchange->m_heldBack.clear();
    ZQSentBody *const body = exchange->m_order.body.get();
    return !body || (origin == SEEK_SET && body->seek(offset)) ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

int ZQHTTPExchange::progress(void *self, curl_off_t, curl_off_t, curl_off_t total, curl_off_t sent)
{
    auto *const exchange = static_cast<ZQHTTPExchange *>(self);
    if (sent != exchange->m_sent && exchange->m_order.body) {
        exchange->m_sent = sent;
        exchange->m_listener.didSend(sent, total);
    }
    return 0;
}

std::size_t ZQHTTPExchange::headerLine(char *data, std::size_t size, std::size_t count, void *self)
{
    const std::size_t bytes = size * count;
    return static_cast<ZQHTTPExchange *>(self)->takeHeaderLine(QByteArray(data, qsizetype(bytes))) ? bytes : 0;
}

// What stands in several lines is one list.
void ZQHTTPExchange::addHeader(const QByteArray &name, const QByteArray &value)
{
    const auto before = std::find_if(m_headers.begin(), m_headers.end(), [&name](const auto &each) {
        return each.first.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (before == m_headers.end()) {
        m_headers.append({name, value});
    } else if (name.toLower() == "location") {
        before->second = value;
    } else {
        before->second += (name.toLower() == "set-cookie" ? "\n" : ", ") + value;
    }
}

bool ZQHTTPExchange::takeHeaderLine(const QByteArray &line)
{
    if (m_hasHead) {
        return true; // of what follows the body
    }
    if (line.startsWith("HTTP/")) {
        m_status = line.simplified().split(' ').value(1).toInt();
        m_headers.clear();
        return true;
    }
    const QByteArray text = line.trimmed();
    if (const qsizetype colon = text.indexOf(':'); colon > 0) {
        addHeader(text.left(colon).trimmed(), text.mid(colon + 1).trimmed());
        return true;
    }
    const bool isOfProxy = m_status == 407 && !zqIsDirect(m_order.proxy);
    if (!text.isEmpty() || m_status < 200 || isOfProxy) {
        return true;
    }
    m_hasHead = true;
    return m_listener.headCame(m_status, m_headers);
}

std::size_t ZQHTTPExchange::received(char *data, std::size_t size, std::size_t count, void *self)
{
    auto *const exchange = static_cast<ZQHTTPExchange *>(self);
    const std::size_t bytes = size * count;
    return !exchange->m_hasHead || exchange->m_listener.bytesCame(data, qint64(bytes)) ? bytes : 0;
}

// The answer may come, and the connection be closed, in the moment between that look and the sending. Of a server
// that is encrypted what it said cannot be read here.
void ZQHTTPExchange::willLeaveSocket(curl_socket_t socket)
{
    if (m_isConnected && !m_hasHead && m_order.body && zqIsDirect(m_order.proxy) && m_order.url.scheme() == u"http") {
        QByteArray words(mostLastWords, '\0');
        const ssize_t count = ::recv(socket, words.data(), std::size_t(words.size()), MSG_PEEK | MSG_DONTWAIT);
        m_lastWords = words.left(qsizetype(std::max<ssize_t>(count, 0)));
    }
    if (m_socket == socket) {
        m_socket = CURL_SOCKET_BAD;
    }
}

void ZQHTTPExchange::readLastWords()
{
    const qsizetype end = m_lastWords.indexOf("\r\n\r\n");
    if (m_hasHead || end < 0 || !m_lastWords.startsWith("HTTP/1.")) {
        return;
    }
    for (const QByteArray &line : m_lastWords.left(end + 2).split('\n')) {
        if (!m_hasHead && !takeHeaderLine(line)) {
            return;
        }
    }
    const bool isPlain = std::none_of(m_headers.begin(), m_headers.end(), [](const auto &each) {
        const QByteArray name = each.first.toLower();
        return name == "transfer-encoding" || name == "content-encoding";
    });
    if (m_hasHead && isPlain) {
        m_listener.bytesCame(m_lastWords.constData() + end + 4, m_lastWords.size() - end - 4);
    }
}

void ZQHTTPExchange::ended(CURLcode code)
{
    ZQHTTPEnd end{.code = code, .reason = QString::fromUtf8(m_reason.data())};
    if (end.isBroken()) {
        readLastWords();
    }
    long number = 0;
    curl_easy_getinfo(m_handle, CURLINFO_SSL_VERIFYRESULT, &number);
    if (code == CURLE_PEER_FAILED_VERIFICATION && number != X509_V_OK) {
        end.reason = QString::fromLatin1(X509_verify_cert_error_string(number));
    } else if (end.reason.isEmpty()) {
        const bool hasNoAnswer = code == CURLE_OK && !m_hasHead; // all that came was a proxy's
        end.reason =
            hasNoAnswer ? QStringLiteral("HTTP %1").arg(m_status) : QString::fromLatin1(curl_easy_strerror(code));
    }
    curl_easy_getinfo(m_handle, CURLINFO_OS_ERRNO, &number);
    end.systemError = int(number);
    end.isProxied = !zqIsDirect(m_order.proxy);
    curl_easy_getinfo(m_handle, CURLINFO_HTTP_CONNECTCODE, &number);
    end.proxyStatus = end.isProxied ? (m_status == 407 ? 407 : number >= 300 ? int(number) : 0) : 0;
    curl_easy_getinfo(m_handle, CURLINFO_NUM_CONNECTS, &number);
    end.wasKept = m_isConnected && number == 0;
    end.wasRefused = m_wasRefused && !m_isConnected;
    m_listener.exchangeEnded(end);
}
