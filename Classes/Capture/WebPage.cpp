#include "Classes/Capture/WebPage.h"

#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPNGPicture.h"

#include <QJsonArray>
#include <QUrl>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr auto answerTime = 20s; // of a server, until something of the page is there
constexpr auto loadTime = 20s;
constexpr auto quietTime = 3s; // for what a page goes on to load by itself
constexpr auto quietFor = 150ms;
constexpr auto scrollTime = 10s;
constexpr int tileHeight = 4000; // pixels; beyond the size of a texture, content would repeat
constexpr qint64 tilePixels = qint64(8) << 20;

// The windows that people have: for other widths as high as a screen of 16:10.
struct Window
{
    int width;
    int height;
};
constexpr std::array windows{Window{320, 568},  Window{768, 1024}, Window{1024, 768},
                             Window{1280, 800}, Window{1440, 900}, Window{1920, 1080}};
constexpr int leastWindowHeight = 480;

int windowHeight(int width)
{
    for (const Window &window : windows) {
        if (window.width == width) {
            return window.height;
        }
    }
    return std::max(leastWindowHeight, width * 10 / 16);
}

// What is only loaded when it comes into view is asked for by walking through the page once.
const QString walkThrough = QStringLiteral(R"((async (most) => {
    const drawn = () => new Promise(done => requestAnimationFrame(() => setTimeout(done, 0)));
    for (const lazy of document.querySelectorAll('img[loading=lazy],iframe[loading=lazy]')) lazy.loading = 'eager';
    const root = document.scrollingElement || document.documentElement;
    const step = Math.max(100, innerHeight);
    for (let y = step; y < Math.min(root.scrollHeight, most); y += step) {
        scrollTo({top: y, behavior: 'instant'});
        await drawn();
    }
    scrollTo({top: 0, behavior: 'instant'});
    await drawn();
    return true;
})(%1))");

const QString fontsAndPictures = QStringLiteral(R"((async () => {
    await document.fonts.ready;
    await Promise.all([...document.images].filter(image => !image.complete && image.loading != 'lazy').map(
        image => new Promise(done => { image.onload = image.onerror = done; })));
    return true;
})())");

const QString stillness = QStringLiteral(R"((() => {
    const still = new CSSStyleSheet();
    still.replaceSync(`:is(#a#b#c#d, *), :is(#a#b#c#d, *)::before, :is(#a#b#c#d, *)::after {
        animation-play-state: paused !important; transition: none !important; caret-color: transparent !important;
        scroll-behavior: auto !important; }`);
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, still];
    for (const media of document.querySelectorAll('video,audio')) media.pause();
    scrollTo({top: 0, left: 0, behavior: 'instant'});
    return true;
})())");

// Texts of the browser for what a person can do something about.
QString reasonFor(const QString &text)
{
    struct Known
    {
        const char *text;
        const char *reason;
    };
    constexpr std::array known{
        Known{"ERR_NAME_NOT_RESOLVED", zqKey("There is no such server: see whether the address is written right.")},
        Known{"ERR_INTERNET_DISCONNECTED", zqKey("There is no connection to the network.")},
        Known{"ERR_CONNECTION_REFUSED", zqKey("The server takes no connections.")},
        Known{"ERR_CONNECTION_RESET", zqKey("The server broke off the connection.")},
        Known{"ERR_EMPTY_RESPONSE", zqKey("The server sent nothing.")},
        Known{"ERR_TOO_MANY_REDIRECTS", zqKey("The page sends its visitors around in a circle.")},
        Known{"ERR_FILE_NOT_FOUND", zqKey("There is no such file.")},
        Known{"ERR_CERT_", zqKey("The server's certificate is not valid, so that nobody can tell whose page it is.")},
        Known{"ERR_TIMED_OUT", zqKey("The server did not answer in time.")},
        Known{"ERR_CONNECTION_TIMED_OUT", zqKey("The server did not answer in time.")},
        Known{"ERR_ADDRESS_UNREACHABLE", zqKey("There is no way to that server: see whether the network is there.")},
        Known{"ERR_NETWORK_CHANGED", zqKey("The network changed meanwhile. Try again.")},
        Known{"ERR_SSL_", zqKey("The server can't be spoken with safely.")},
        Known{"ERR_UNSAFE_PORT", zqKey("Pages are not at that port: see whether the address is written right.")},
        Known{"ERR_INVALID_URL", zqKey("See whether the address is written right.")},
        Known{"ERR_ACCESS_DENIED", zqKey("It can't be read: see who may.")},
        Known{"ERR_HTTP_RESPONSE_CODE_FAILURE", zqKey("The server says that it has no such page.")},
    };
    for (const Known &entry : known) {
        if (text.contains(QLatin1String(entry.text))) {
            return zqLocalized(entry.reason);
        }
    }
    return zqFormat(zqLocalized("The browser can't load it; try again later, or in another browser (%@)."), {text});
}

QJsonObject rectangle(const QRect &rect, double zoom)
{
    return {{QStringLiteral("x"), rect.x()},
            {QStringLiteral("y"), rect.y()},
            {QStringLiteral("width"), rect.width()},
            {QStringLiteral("height"), rect.height()},
            {QStringLiteral("scale"), zoom}};
}

ZQError noMemory()
{
    return WebCaptureErrors::with(WebCaptureErrors::CannotWrite,
                                  zqLocalized("There is not enough memory for a picture of this page. Capture only the "
                                              "visible area, or a smaller width."));
}

} // namespace

bool WebPage::open(const QString &url, int width, int scale, bool isWhole, int mostHeight, ZQError *error)
{
    m_address = url;
    m_scale = scale;
    m_viewport = {width, windowHeight(width)};
    m_devTools.setObserver(
        [this](const QString &method, const QJsonObject &parameters) { observe(method, parameters); });
    if (!m_devTools.attach(error) || !prepare(width, error) || !guard(error) || !navigate(url, error)) {
        return false;
    }
    m_loadEnd = steady_clock::now() + loadTime;
    m_devTools.serveUntil(m_loadEnd, [this] { return m_isLoaded || isOver(); });
    waitUntilQuiet();
    if (isWhole && check(nullptr)) {
        m_devTools.evaluate(walkThrough.arg(mostHeight), steady_clock::now() + scrollTime);
        waitUntilQuiet();
    }
    if (m_isLoaded && check(nullptr)) {
        m_devTools.evaluate(fontsAndPictures, steady_clock::now() + quietTime);
    }
    return check(error);
}

bool WebPage::check(ZQError *error) const
{
    if (!m_devTools.failure().isNull()) {
        zqSetError(error, m_devTools.failure());
        return false;
    }
    if (m_isCrashed) {
        zqSetError(error, WebCaptureErrors::with(WebCaptureErrors::BrowserEnded,
                                                 zqLocalized("The page crashed in the browser. Try again, or capture "
                                                             "only the visible area.")));
        return false;
    }
    if (!m_refusedHost.isEmpty()) {
        zqSetError(error,
                   WebCaptureErrors::with(WebCaptureErrors::LeadsInside,
                                          zqFormat(zqLocalized("“%@” leads to %@, which is on this computer or in its "
                                                               "own network. Type that address to capture it."),
                                                   {m_address, m_refusedHost})));
        return false;
    }
    return true;
}

bool WebPage::prepare(int width, ZQError *error)
{
    const auto version = m_devTools.call(QStringLiteral("Browser.getVersion"), {}, error);
    if (!version) {
        return false;
    }
    // As the same browser with a window: many pages show another face to one without.
    const QString agent = version->value(QStringLiteral("userAgent"))
                              .toString()
                              .replace(QStringLiteral("HeadlessChrome"), QStringLiteral("Chrome"));
    const std::array<std::pair<const char *, QJsonObject>, 7> commands{{
        {"Page.enable", {}},
        {"Network.enable", {}},
        {"Inspector.enable", {}},
        {"Network.setUserAgentOverride", {{QStringLiteral("userAgent"), agent}}},
        {"Browser.setDownloadBehavior", {{QStringLiteral("behavior"), QStringLiteral("deny")}}},
        // What moves in as it is scrolled to would be caught half way.
        {"Emulation.setEmulatedMedia",
         {{QStringLiteral("features"),
           QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("prefers-reduced-motion")},
                                  {QStringLiteral("value"), QStringLiteral("reduce")}}}}}},
        {"Emulation.setDeviceMetricsOverride",
         {{QStringLiteral("width"), width},
          {QStringLiteral("height"), m_viewport.height()},
          {QStringLiteral("deviceScaleFactor"), m_scale},
          {QStringLiteral("mobile"), false}}},
    }};
    return std::all_of(commands.begin(), commands.end(), [&](const auto &command) {
        return m_devTools.call(QString::fromLatin1(command.first), command.second, error).has_value();
    });
}

// The browser follows wherever a page leads, and says so only afterwards: it has to ask before each step.
bool WebPage::guard(ZQError *error)
{
    if (!m_reach) {
        return true;
    }
    const auto tree = m_devTools.call(QStringLiteral("Page.getFrameTree"), {}, error);
    if (!tree) {
        return false;
    }
    m_frame = tree->value(QStringLiteral("frameTree"))[QStringLiteral("frame")][QStringLiteral("id")].toString();
    const QJsonObject all{{QStringLiteral("urlPattern"), QStringLiteral("*")},
                          {QStringLiteral("requestStage"), QStringLiteral("Request")}};
    return m_devTools.callBrowser(QStringLiteral("Fetch.enable"), {{QStringLiteral("patterns"), QJsonArray{all}}},
                                  error);
}

void WebPage::judge(const QJsonObject &parameters)
{
    const QUrl url(parameters[QStringLiteral("request")][QStringLiteral("url")].toString());
    const QJsonValue number = parameters[QStringLiteral("requestId")];
    if (m_reach && !m_reach->allows(url)) {
        const bool isPage = parameters[QStringLiteral("resourceType")] == QStringLiteral("Document");
        if (isPage && parameters[QStringLiteral("frameId")] == m_frame) {
            m_refusedHost = url.host();
        }
        m_devTools.tellBrowser(
            QStringLiteral("Fetch.failRequest"),
            {{QStringLiteral("requestId"), number}, {QStringLiteral("errorReason"), QStringLiteral("Aborted")}});
        return;
    }
    m_devTools.tellBrowser(QStringLiteral("Fetch.continueRequest"), {{QStringLiteral("requestId"), number}});
}

bool WebPage::navigate(const QString &url, ZQError *error)
{
    m_lastTraffic = steady_clock::now();
    ZQError failure;
    const auto answer = m_devTools.call(QStringLiteral("Page.navigate"), {{QStringLiteral("url"), url}},
                                        steady_clock::now() + answerTime, &failure);
    if (!check(error)) {
        return false;
    }
    if (!answer) {
        const bool isLate = failure.code == WebCaptureErrors::TookTooLong;
        zqSetError(error, isLate ? WebCaptureErrors::with(
                                       WebCaptureErrors::NotReached,
                                       zqFormat(zqLocalized("“%@” does not answer. Try again later."), {url}))
                                 : failure);
        return false;
    }
    const QString text = answer->value(QStringLiteral("errorText")).toString();
    if (m_isDownload || answer->value(QStringLiteral("isDownload")).toBool()) {
        zqSetError(error, WebCaptureErrors::with(WebCaptureErrors::NoPage,
                                                 zqFormat(zqLocalized("“%@” is a file to download and no page. Import "
                                                                      "the file instead."),
                                                          {url})));
        return false;
    }
    if (!text.isEmpty()) {
        zqSetError(error,
                   WebCaptureErrors::with(WebCaptureErrors::NotReached,
                                          zqFormat(zqLocalized("“%@” can't be opened."), {url}), reasonFor(text)));
        return false;
    }
    m_frame = answer->value(QStringLiteral("frameId")).toString();
    m_devTools.setFrame(m_frame);
    return true;
}

void WebPage::observe(const QString &method, const QJsonObject &parameters)
{
    if (method == QStringLiteral("Page.loadEventFired")) {
        m_isLoaded = true;
    } else if (method == QStringLiteral("Page.frameNavigated")) {
        const QJsonValue frame = parameters[QStringLiteral("frame")];
        if (!frame[QStringLiteral("parentId")].isString()) { // the page went on to another by itself
            m_isLoaded = false;
            m_requests.clear();
            m_frame = frame[QStringLiteral("id")].toString();
            m_devTools.setFrame(m_frame);
        }
    } else if (method == QStringLiteral("Page.javascriptDialogOpening")) {
        // A page that asks whether it may be left may be; to all else nobody says anything.
        const bool isLeft = parameters[QStringLiteral("type")] == QStringLiteral("beforeunload");
        m_devTools.tell(QStringLiteral("Page.handleJavaScriptDialog"), {{QStringLiteral("accept"), isLeft}});
    } else if (method == QStringLiteral("Page.downloadWillBegin")) {
        m_isDownload = true;
    } else if (method == QStringLiteral("Fetch.requestPaused")) {
        judge(parameters);
    } else if (method == QStringLiteral("Inspector.targetCrashed")) {
        m_isCrashed = true;
    } else if (method.startsWith(QStringLiteral("Network."))) {
        observeNetwork(method, parameters);
    }
}

void WebPage::observeNetwork(const QString &method, const QJsonObject &parameters)
{
    const QString number = parameters[QStringLiteral("requestId")].toString();
    if (method == QStringLiteral("Network.requestWillBeSent")) {
        const QString type = parameters[QStringLiteral("type")].toString();
        const bool isEndless = type == QStringLiteral("EventSource") || type == QStringLiteral("Media") ||
                               type == QStringLiteral("WebSocket") || type == QStringLiteral("Ping");
        if (isEndless) {
            return;
        }
        m_requests.insert(number);
    } else if (method == QStringLiteral("Network.responseReceived")) {
        if (parameters[QStringLiteral("type")] == QStringLiteral("Document")) {
            m_statusOfFrame.insert(parameters[QStringLiteral("frameId")].toString(),
                                   parameters[QStringLiteral("response")][QStringLiteral("status")].toInt());
        }
        return;
    } else if (method == QStringLiteral("Network.loadingFinished") ||
               method == QStringLiteral("Network.loadingFailed")) {
        m_requests.remove(number);
    } else {
        return;
    }
    m_lastTraffic = steady_clock::now();
}

bool WebPage::isQuiet() const
{
    return m_isLoaded && m_requests.isEmpty() && steady_clock::now() - m_lastTraffic >= quietFor;
}

void WebPage::waitUntilQuiet()
{
    // One that goes on to another page is loading again.
    const auto limit = m_isLoaded ? steady_clock::now() + quietTime : m_loadEnd;
    m_devTools.serveUntil(limit, [this] { return isQuiet() || isOver(); });
}

bool WebPage::holdStill(ZQError *error)
{
    // The scripts last: without them nothing of the world of one's own is missing.
    return !m_devTools.evaluate(stillness, error).isUndefined() &&
           m_devTools.call(QStringLiteral("Emulation.setScriptExecutionDisabled"), {{QStringLiteral("value"), true}},
                           error) &&
           check(error);
}

std::optional<QSize> WebPage::contentSize(ZQError *error)
{
    const auto metrics = m_devTools.call(QStringLiteral("Page.getLayoutMetrics"), {}, error);
    if (!metrics) {
        return std::nullopt;
    }
    const QJsonValue size = metrics->value(QStringLiteral("cssContentSize"));
    constexpr double most = 1e7;
    return QSize(int(std::clamp(size[QStringLiteral("width")].toDouble(), 1.0, most)),
                 int(std::clamp(size[QStringLiteral("height")].toDouble(), 1.0, most)));
}

QString WebPage::title()
{
    return m_devTools.evaluate(QStringLiteral("document.title.slice(0, 500)")).toString().simplified();
}

QString WebPage::url()
{
    return m_devTools.evaluate(QStringLiteral("document.URL.slice(0, 8000)")).toString();
}

std::optional<QByteArray> WebPage::photograph(const QRect &rect, Packing packing, double zoom, ZQError *error)
{
    const auto answer = m_devTools.call(QStringLiteral("Page.captureScreenshot"),
                                        {{QStringLiteral("format"), QStringLiteral("png")},
                                         {QStringLiteral("clip"), rectangle(rect, zoom)},
                                         {QStringLiteral("captureBeyondViewport"), true},
                                         {QStringLiteral("optimizeForSpeed"), packing == Packing::Fast}},
                                        error);
    if (!answer || !check(error)) {
        return std::nullopt;
    }
    return QByteArray::fromBase64(answer->value(QStringLiteral("data")).toString().toLatin1());
}

QImage WebPage::decoded(const QByteArray &png, QSize size, ZQError *error)
{
    QImage image = zqPictureOfPNG(png, error);
    if (!image.isNull() && image.size() != size) {
        zqSetError(error, noMemory());
        return {};
    }
    return image.isNull() ? image : std::move(image).convertToFormat(QImage::Format_RGBA8888);
}

std::optional<QImage> WebPage::picture(const QRect &rect, ZQError *error, const std::function<void(double)> &didTake)
{
    const int width = rect.width() * m_scale;
    QImage whole(width, rect.height() * m_scale, QImage::Format_RGBA8888);
    if (whole.isNull()) {
        zqSetError(error, noMemory());
        return std::nullopt;
    }
    const int rows = int(std::clamp<qint64>(tilePixels / width, 1, tileHeight)) / m_scale; // points
    for (int y = 0; y < rect.height(); y += rows) {
        const QRect tile(rect.x(), rect.y() + y, rect.width(), std::min(rows, rect.height() - y));
        const auto png = photograph(tile, Packing::Fast, 1, error);
        if (!png) {
            return std::nullopt;
        }
        const QImage part = decoded(*png, tile.size() * m_scale, error);
        if (part.isNull()) {
            return std::nullopt;
        }
        std::memcpy(whole.scanLine(y * m_scale), part.constBits(), size_t(part.sizeInBytes()));
        if (didTake) {
            didTake(double(y + tile.height()) / rect.height());
        }
    }
    return whole;
}
