// Pages that a real browser draws: what is on the pictures, and what becomes of pages and browsers that misbehave.

#include "Classes/Capture/WebPageCapture.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Capture/ChromiumBrowser.h"
#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Support/LocalHTTPServer.h"
#include "Tests/Support/Skip.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <cmath>
#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr int captured = 0;

class WebPageCaptureTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (ChromiumBrowser::program().isEmpty()) {
            return skipWithout("chromium");
        }
    }
    void TearDown() override
    {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(ChromiumBrowser::programKey);
        // Of browsers nothing stays, however they ended.
        for (const QString &folder : QDir(TemporaryArea::folder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            EXPECT_FALSE(QFile::exists(TemporaryArea::folder() + u'/' + folder + QStringLiteral("/profile")));
        }
    }
    WebCaptureRequest requestFor(const QByteArray &html)
    {
        server.setAnswer(QStringLiteral("/page"), LocalHTTPServer::Answer::with("text/html; charset=utf-8", html));
        return requestForTarget(QStringLiteral("/page"));
    }
    WebCaptureRequest requestForTarget(const QString &target) const
    {
        WebCaptureRequest request;
        request.url = server.address(target);
        request.width = 320;
        return request;
    }
    WebCaptureResult capture(const WebCaptureRequest &request)
    {
        const auto operation = std::make_shared<WebPageCapture>(request);
        ZQOperationQueue queue;
        queue.addOperation(operation);
        operation->waitUntilFinished();
        EXPECT_EQ(operation->result().file.isEmpty(), !operation->result().error.isNull());
        return operation->result();
    }
    QImage pictureOf(const QByteArray &html)
    {
        const WebCaptureResult result = capture(requestFor(html));
        EXPECT_EQ(result.error.code, captured) << qPrintable(result.error.localizedDescription());
        return QImage(result.file);
    }

    UserWorld world{"WebPageCapture"};
    LocalHTTPServer server;
};

// The bottom colours of "RRGGBB" in steps: each row of the ruler says where it is.
QByteArray ruler(int steps)
{
    return "<script>for (let i = 0; i < " + QByteArray::number(steps) +
           "; ++i) { const d = document.createElement('div'); d.style.cssText = `height:100px;background:rgb(${i % "
           "256},${i >> 8},77)`; document.body.append(d); }</script>";
}

double meanDifference(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb first = a.pixel(x, y);
            const QRgb second = b.pixel(x, y);
            sum += std::abs(qRed(first) - qRed(second)) + std::abs(qGreen(first) - qGreen(second)) +
                   std::abs(qBlue(first) - qBlue(second));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

// The names of a document's layers, the bottom one first, as its own records say them.
QList<QByteArray> layerNames(const QByteArray &document)
{
    QList<QByteArray> names;
    constexpr qsizetype record = 82; // of one layer with four channels
    constexpr qsizetype nameSize = 15;
    qsizetype at = document.indexOf("8BIMnorm");
    for (; at >= 0 && document.mid(at, 8) == "8BIMnorm"; at += record) {
        names.append(document.mid(at + 8 + 4 + 4 + 4 + 4 + 1, nameSize).trimmed());
    }
    return names;
}

} // namespace

TEST_F(WebPageCaptureTest, FixedAndStickyElementsAreThereOnceAndWindowHighOnesStayAsHigh)
{
    const QImage picture =
        pictureOf("<!doctype html><body style='margin:0'><div "
                  "style='position:fixed;top:0;width:100%;height:20px;background:rgb(1,2,3)'></div>"
                  "<div style='position:fixed;bottom:0;width:100%;height:20px;background:rgb(4,5,6)'></div>"
                  "<div style='height:100vh;background:rgb(7,8,9)'></div>"
                  "<div style='position:sticky;top:0;height:30px;background:rgb(10,11,12)'></div>"
                  "<div style='height:9000px;background:rgb(13,14,15)'></div>");
    ASSERT_EQ(picture.size(), QSize(320, 568 + 30 + 9000));
    QList<std::pair<QRgb, int>> runs;
    for (int y = 0; y < picture.height(); ++y) {
        if (const QRgb color = picture.pixel(160, y); runs.isEmpty() || runs.back().first != color) {
            runs.append({color, y});
        }
    }
    const QList<std::pair<QRgb, int>> expected{{qRgb(1, 2, 3), 0},
                                               {qRgb(7, 8, 9), 20},
                                               {qRgb(4, 5, 6), 548},
                                               {qRgb(10, 11, 12), 568},
                                               {qRgb(13, 14, 15), 598}};
    EXPECT_EQ(runs, expected);
}

TEST_F(WebPageCaptureTest, ALongPageIsCutAndRepeatsNothing)
{
    const WebCaptureResult result = capture(requestFor("<!doctype html><body style='margin:0'>" + ruler(300)));
    const QImage picture(result.file);
    ASSERT_EQ(picture.size(), QSize(320, WebCaptureRequest::mostHeight));
    EXPECT_EQ(result.notes.size(), 1);
    for (int y = 50; y < picture.height(); y += 100) {
        ASSERT_EQ(picture.pixel(100, y), qRgb(y / 100 % 256, y / 100 / 256, 77)) << y;
    }
}

TEST_F(WebPageCaptureTest, LazyContentIsLoaded)
{
    server.setAnswer(QStringLiteral("/red.svg"),
                     LocalHTTPServer::Answer::with("image/svg+xml", "<svg xmlns='http://www.w3.org/2000/svg' "
                                                                    "width='50' height='50'><rect width='50' "
                                                                    "height='50' fill='rgb(255,0,0)'/></svg>"));
    const QImage picture =
        pictureOf("<!doctype html><body style='margin:0'><div style='height:6000px'></div>"
                  "<img loading=lazy src=red.svg style='display:block'><div id=late style='height:50px'></div>"
                  "<script>new IntersectionObserver(seen => { if (seen[0].isIntersecting) late.style.background = "
                  "'rgb(0,0,255)'; "
                  "}).observe(late)</script>");
    ASSERT_EQ(picture.height(), 6100);
    EXPECT_EQ(picture.pixel(20, 6020), qRgb(255, 0, 0));
    EXPECT_EQ(picture.pixel(20, 6070), qRgb(0, 0, 255));
}

TEST_F(WebPageCaptureTest, TheVisibleAreaAndDoubleResolution)
{
    WebCaptureRequest request =
        requestFor("<!doctype html><title>A: / title</title><body style='margin:0'>" + ruler(20));
    request.visible = true;
    request.scale = 2;
    request.previewWidth = 160;
    const WebCaptureResult result = capture(request);
    EXPECT_EQ(QImage(result.file).size(), QSize(640, 1136));
    EXPECT_EQ(result.preview.width(), 160);
    EXPECT_EQ(result.title, QStringLiteral("A: / title"));
    EXPECT_EQ(result.pageURL, request.url);
    EXPECT_TRUE(result.file.endsWith(QStringLiteral("/A- - title.png"))) << qPrintable(result.file);
}

TEST_F(WebPageCaptureTest, LayersTogetherLookAsThePage)
{
    QByteArray html =
        "<!doctype html><style>body{margin:0;background:#f4f0e8;height:900px}"
        ".card{position:absolute;width:90px;height:50px;background:rgba(200,0,0,.5);border-radius:9px;"
        "box-shadow:0 4px 9px rgba(0,0,0,.4)}</style>"
        "<header id=head style='position:fixed;top:0;left:0;width:100%;height:40px;background:#235;"
        "color:#fff;z-index:9'>Head</header><p style='margin-top:60px'>Text with <b>bold</b></p>"
        "<div id=half style='opacity:.5;transform:rotate(5deg);width:80px;height:40px;background:teal'></div>"
        "<div style='visibility:hidden;background:red;height:9px'>never</div>"
        "<div id=below "
        "style='position:absolute;z-index:-1;left:0;top:50px;width:90px;height:90px;background:gold'></div>";
    for (int i = 0; i < 40; ++i) {
        html += "<div class=card id=c" + QByteArray::number(i) + " style='left:" + QByteArray::number(i % 4 * 75) +
                "px;top:" + QByteArray::number(200 + i / 4 * 60) + "px'></div>";
    }
    WebCaptureRequest request = requestFor(html);
    const QImage page(capture(request).file);
    request.layered = true;
    const WebCaptureResult result = capture(request);
    QFile file(result.file);
    ASSERT_TRUE(file.open(QFile::ReadOnly)) << qPrintable(result.error.localizedDescription());
    const QList<QByteArray> names = layerNames(file.readAll());
    EXPECT_EQ(names.size(), 45);
    EXPECT_EQ(result.layers, 45);
    EXPECT_EQ(names.mid(0, 3), (QList<QByteArray>{"Background", "below", "Text with"}));
    EXPECT_EQ(names.back(), "head");
    const QImage merged = ZQImageSource::bitmapOfFile(result.file).image();
    ASSERT_EQ(merged.size(), page.size());
    EXPECT_LT(meanDifference(page, merged), 0.5);
}

TEST_F(WebPageCaptureTest, PagesThatMisbehave)
{
    using Answer = LocalHTTPServer::Answer;
    server.setAnswer(QStringLiteral("/silent"), Answer{.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    server.setAnswer(QStringLiteral("/dropped"), Answer{.end = LocalHTTPServer::End::Dropped, .endsBeforeHead = true});
    server.setAnswer(QStringLiteral("/hangs"), Answer{.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    server.setAnswer(QStringLiteral("/never"), Answer::with("text/html", "<body>text<img src=/hangs>"));
    server.setAnswer(QStringLiteral("/dialogs"),
                     Answer::with("text/html",
                                  "<title>t</title><script>alert(1);confirm(2);prompt(3);onbeforeunload=()=>1;"
                                  "navigator.geolocation.getCurrentPosition(()=>0);open('/never');"
                                  "</script>text"));
    server.setAnswer(QStringLiteral("/circle"), Answer::redirect("/circle"));
    server.setAnswer(QStringLiteral("/moved"), Answer::redirect("/dialogs"));
    server.setAnswer(QStringLiteral("/file"), Answer{.headers = {{"Content-Type", "application/octet-stream"},
                                                                 {"Content-Disposition", "attachment; filename=a.bin"}},
                                                     .body = "abc"});
    server.setAnswer(
        QStringLiteral("/gone"),
        Answer{.status = 404, .headers = {{"Content-Type", "text/html"}}, .body = "<p>gone<iframe src=/never>"});
    struct Case
    {
        const char *target;
        int code;
        qsizetype notes = 0;
        const char *end = nullptr; // where it leads
    };
    const Case cases[] = {
        {"/silent", WebCaptureErrors::NotReached},
        {"/dropped", WebCaptureErrors::NotReached},
        {"/circle", WebCaptureErrors::NotReached},
        {"/file", WebCaptureErrors::NoPage},
        {"/never", captured, 1},
        {"/gone", captured, 2}, // its status, and the frame in it that does not load
        {"/dialogs", captured},
        {"/moved", captured, 0, "/dialogs"},
    };
    for (const Case &each : cases) {
        const WebCaptureResult result = capture(requestForTarget(QString::fromLatin1(each.target)));
        EXPECT_EQ(result.error.code, each.code) << each.target << qPrintable(result.error.localizedDescription());
        EXPECT_EQ(result.notes.size(), each.notes) << each.target;
        EXPECT_EQ(result.status == 404, each.notes == 2) << each.target;
        if (each.end) {
            EXPECT_EQ(result.pageURL, server.address(QString::fromLatin1(each.end)));
        }
    }
}

TEST_F(WebPageCaptureTest, ABrowserThatIsMissingOrEndsIsAnError)
{
    const auto setBrowser = [this](const char *name, const QByteArray &script) {
        const QString path = world.filePath(QString::fromLatin1(name));
        QFile file(path);
        if (!script.isEmpty() && file.open(QFile::WriteOnly)) {
            file.write(script);
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        ZQUserDefaults::standardUserDefaults().setObjectForKey(path, ChromiumBrowser::programKey);
    };
    const WebCaptureRequest request = requestFor("x");
    setBrowser("missing", {});
    const WebCaptureResult missing = capture(request);
    EXPECT_EQ(missing.error.code, WebCaptureErrors::NoBrowser);
    EXPECT_TRUE(missing.error.localizedDescription().contains(QStringLiteral("chromium")));
    setBrowser("dies", "#!/bin/sh\nhead -c 9 <&3 >/dev/null\nexit 3\n");
    EXPECT_EQ(capture(request).error.code, WebCaptureErrors::BrowserEnded);
    setBrowser("babbles", "#!/bin/sh\ncat /dev/zero | tr '\\0' 'a' >&4\n");
    EXPECT_EQ(capture(request).error.code, WebCaptureErrors::BrowserEnded);
    setBrowser("nonsense", "#!/bin/sh\nprintf 'no JSON\\0{\"id\":true}\\0[]\\0' >&4\n");
    EXPECT_EQ(capture(request).error.code, WebCaptureErrors::BrowserEnded);
}

TEST_F(WebPageCaptureTest, ABrowserThatDiedTakesNoCommandAndNobodyWithIt)
{
    const QString path = world.filePath(QStringLiteral("gone"));
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("#!/bin/sh\nexit 3\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    file.close();
    ZQUserDefaults::standardUserDefaults().setObjectForKey(path, ChromiumBrowser::programKey);
    const auto browser = ChromiumBrowser::start();
    ASSERT_TRUE(browser);
    constexpr qsizetype moreThanIsHeldBack = qsizetype(8) << 20;
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    EXPECT_EQ(browser->pipe().send(QByteArray(moreThanIsHeldBack, ' '), end), DevToolsPipe::Outcome::Closed);
    EXPECT_EQ(browser->pipe().send("{}", end), DevToolsPipe::Outcome::Closed);
}

TEST_F(WebPageCaptureTest, APageThatAPageAskedForLeadsNowhereInside)
{
    const QString browser = world.filePath(QStringLiteral("resolves"));
    QFile file(browser);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("#!/bin/sh\nexec '" + QFile::encodeName(ChromiumBrowser::program()) +
               "' '--host-resolver-rules=MAP *.example 127.0.0.1' \"$@\"\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    file.close();
    ZQUserDefaults::standardUserDefaults().setObjectForKey(browser, ChromiumBrowser::programKey);

    const QByteArray inside = server.address(QStringLiteral("/inside")).toLatin1();
    server.setAnswer(QStringLiteral("/inside"), LocalHTTPServer::Answer::with("text/html", "secret"));
    server.setAnswer(QStringLiteral("/moved"), LocalHTTPServer::Answer::redirect(inside));
    server.setAnswer(QStringLiteral("/twice"), LocalHTTPServer::Answer::redirect("/moved"));
    server.setAnswer(QStringLiteral("/script"),
                     LocalHTTPServer::Answer::with("text/html", "<script>location='" + inside + "'</script>"));
    server.setAnswer(QStringLiteral("/framed"),
                     LocalHTTPServer::Answer::with("text/html", "<iframe src='" + inside + "'></iframe>text"));
    server.setAnswer(QStringLiteral("/inside.png"), LocalHTTPServer::Answer::with("image/png", "secret"));
    const QByteArray picture =
        "<img src='" + server.address(QStringLiteral("/inside.png"), QStringLiteral("inside.example")).toLatin1() +
        "'>";
    server.setAnswer(QStringLiteral("/picture"), LocalHTTPServer::Answer::with("text/html", picture));
    server.setAnswer(
        QStringLiteral("/pictureInFrame"), // of another site, which the browser draws in another process
        LocalHTTPServer::Answer::with(
            "text/html", "<iframe src='" +
                             server.address(QStringLiteral("/picture"), QStringLiteral("other.example")).toLatin1() +
                             "'></iframe>"));
    const auto lookUp = [](const QString &host) {
        const bool isInside = host == QStringLiteral("inside.example");
        return QList<QHostAddress>{QHostAddress(QStringLiteral("198.51.100.1")),
                                   QHostAddress(isInside ? QStringLiteral("10.0.0.7") : QStringLiteral("192.0.2.1"))};
    };
    struct Case
    {
        const char *target;
        bool isFromPage;
        int code;
        qsizetype visits; // of what lies inside, from then on
        const char *host = "page.example";
    };
    const Case cases[] = {
        {"/moved", true, WebCaptureErrors::LeadsInside, 0},
        {"/twice", true, WebCaptureErrors::LeadsInside, 0},
        {"/script", true, WebCaptureErrors::LeadsInside, 0},
        {"/framed", true, captured, 0},
        {"/picture", true, captured, 0},
        {"/pictureInFrame", true, captured, 0},
        {"/inside", true, WebCaptureErrors::LeadsInside, 0, "inside.example"},
        {"/moved", false, captured, 1}, // a person typed it
        {"/picture", false, captured, 1},
    };
    for (const Case &each : cases) {
        WebCaptureRequest request;
        request.url = server.address(QString::fromLatin1(each.target), QString::fromLatin1(each.host));
        request.width = 320;
        request.lookUp = lookUp;
        request.isFromPage = each.isFromPage;
        const auto visits = [this] {
            return server.countOfRequestsFor(QStringLiteral("/inside")) +
                   server.countOfRequestsFor(QStringLiteral("/inside.png"));
        };
        const qsizetype before = visits();
        const WebCaptureResult result = capture(request);
        EXPECT_EQ(result.error.code, each.code) << each.target << qPrintable(result.error.localizedDescription());
        EXPECT_EQ(visits() - before, each.visits) << each.target;
    }
}

TEST_F(WebPageCaptureTest, CancelledItLeavesNothing)
{
    server.setAnswer(QStringLiteral("/silent"),
                     LocalHTTPServer::Answer{.end = LocalHTTPServer::End::Silence, .endsBeforeHead = true});
    const auto operation = std::make_shared<WebPageCapture>(requestForTarget(QStringLiteral("/silent")));
    ZQOperationQueue queue;
    queue.addOperation(operation);
    while (server.countOfRequestsFor(QStringLiteral("/silent")) == 0 && !operation->isFinished()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    operation->cancel();
    operation->waitUntilFinished();
    EXPECT_EQ(operation->result().error.code, WebCaptureErrors::Cancelled);
    EXPECT_EQ(operation->result().file, QString());
    EXPECT_EQ(QDir(TemporaryArea::folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}
