#include "Classes/Capture/WebPageCapture.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Capture/ChromiumBrowser.h"
#include "Classes/Capture/LayeredPage.h"
#include "Classes/Capture/WebCaptureErrors.h"
#include "Classes/Capture/WebPage.h"
#include "Classes/Export/PSDWriter.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQPNGPicture.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QDir>
#include <QFile>
#include <QUrl>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace {

constexpr double loadedPart = 0.5; // of the progress bar
constexpr double startedPart = 0.1;
constexpr double packingPart = 0.95;
constexpr int wholeAtOnce = 4000; // pixels; a picture that needs no pieces is kept as the browser packed it

// As a name of a file that other systems take, too.
QString fileName(const QString &title, const QString &extension)
{
    constexpr qsizetype longest = 120; // bytes; a title may be a whole paragraph
    const QString name =
        zqSafeName(title, zqLocalized("Web page"), ZQLeadingDots::Dropped, QStringLiteral("\\:*?\"<>|"));
    return zqNumberedName(name + extension, 0, longest);
}

bool writeFile(const QString &path, const QByteArray &bytes, ZQError *error)
{
    const QByteArray name = QFile::encodeName(path);
    ZQFileDescriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    const bool isWritten = file.isOpen() && zqWriteAll(file.get(), bytes.constData(), bytes.size()) && file.close();
    return isWritten || zqFailWithErrno(error, name);
}

ZQError cancelled()
{
    return WebCaptureErrors::with(WebCaptureErrors::Cancelled, zqLocalized("The capture was cancelled."));
}

} // namespace

WebPageCapture::WebPageCapture(WebCaptureRequest request, Progress progress)
    : m_request(std::move(request)), m_progress(std::move(progress))
{
    m_result.error = cancelled(); // of one that never begins
}

void WebPageCapture::tell(double done, const QString &what) const
{
    if (m_progress) {
        m_progress(done, what);
    }
}

void WebPageCapture::main()
{
    ZQError error;
    const QString folder = TemporaryArea::newFolder(&error);
    bool isCaptured = !folder.isEmpty();
    try {
        isCaptured = isCaptured && capture(folder, &error);
    } catch (const PSDException &refused) {
        isCaptured = false;
        error = WebCaptureErrors::with(WebCaptureErrors::CannotWrite, refused.reason());
    }
    if (isCaptured && !isCancelled()) {
        m_result.error = {};
        return;
    }
    if (!folder.isEmpty()) {
        QDir(folder).removeRecursively();
    }
    m_result = {};
    m_result.error = isCancelled() ? cancelled() : error;
}

bool WebPageCapture::capture(const QString &folder, ZQError *error)
{
    const QString url = WebCaptureRequest::addressFor(m_request.url, m_request.mayReadFiles, error);
    if (url.isEmpty()) {
        return false;
    }
    tell(0, zqLocalized("Starting the browser…"));
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    const auto browser = ChromiumBrowser::start(error);
    if (!browser) {
        return false;
    }
    const int width = std::clamp(m_request.width, WebCaptureRequest::leastWidth, WebCaptureRequest::mostWidth);
    const int scale = std::clamp(m_request.scale, 1, 2);
    WebPage page(browser->pipe(), deadline);
    if (m_request.isFromPage) {
        page.setReach(PageReach(zqReachOfHostName(QUrl(url).host()), m_request.lookUp));
    }
    tell(startedPart, zqLocalized("Loading the page…"));
    if (!page.open(url, width, scale, !m_request.visible, WebCaptureRequest::mostHeight / scale, error)) {
        return false;
    }
    if (!page.isLoaded()) {
        m_result.notes.append(zqLocalized("The page did not load in full; this is what was there."));
    }
    m_result.status = page.status();
    if (constexpr int firstError = 400; m_result.status >= firstError) {
        m_result.notes.append(zqFormat(zqLocalized("The server answered with an error (%d); this is the page it sent."),
                                       {m_result.status}));
    }
    m_result.title = page.title();
    m_result.pageURL = page.url();
    if (!page.holdStill(error) || !findRect(page, error)) {
        return false;
    }
    if (m_result.title.isEmpty()) {
        m_result.title = QUrl(m_result.pageURL).host();
    }
    const QString path =
        folder + u'/' + fileName(m_result.title, m_request.layered ? QStringLiteral(".psd") : QStringLiteral(".png"));
    if (!(m_request.layered ? writeLayers(page, path, error) : writePicture(page, path, error))) {
        return false;
    }
    m_result.file = path;
    tell(1, {});
    return true;
}

bool WebPageCapture::findRect(WebPage &page, ZQError *error)
{
    const auto content = page.contentSize(error);
    if (!content) {
        return false;
    }
    const QSize window = page.viewport();
    const int most = WebCaptureRequest::mostHeight / page.scale();
    int height = m_request.visible ? window.height() : std::max(content->height(), 1);
    if (height > most) {
        height = most;
        m_result.notes.append(zqFormat(zqLocalized("The page is longer than %d pixels; what is below was cut off."),
                                       {WebCaptureRequest::mostHeight}));
    }
    m_rect = QRect(0, 0, window.width(), height);
    m_result.size = m_rect.size() * page.scale();
    if (m_request.previewWidth > 0) {
        const double zoom = std::min(1.0, double(m_request.previewWidth) / m_result.size.width());
        const auto png = page.photograph(m_rect, WebPage::Packing::Fast, zoom, error);
        if (!png) {
            return false;
        }
        m_result.preview = zqPictureOfPNG(*png, error);
        if (m_result.preview.isNull()) {
            return false;
        }
    }
    return true;
}

bool WebPageCapture::writePicture(WebPage &page, const QString &path, ZQError *error)
{
    const QString what = zqLocalized("Taking the picture…");
    tell(loadedPart, what);
    if (m_result.size.height() <= wholeAtOnce) {
        const auto png = page.photograph(m_rect, WebPage::Packing::Small, 1, error);
        return png && writeFile(path, *png, error);
    }
    const auto picture =
        page.picture(m_rect, error, [&](double part) { tell(loadedPart + part * (packingPart - loadedPart), what); });
    if (!picture) {
        return false;
    }
    tell(packingPart, zqLocalized("Writing the file…"));
    return ZQImageDestination::writePNG(ZQBitmap(*picture), path, error);
}

bool WebPageCapture::writeLayers(WebPage &page, const QString &path, ZQError *error)
{
    LayeredPage layers(page, m_rect);
    if (!layers.divide(error)) {
        return false;
    }
    PSDWriter writer(m_result.size);
    writer.setShouldUnpremultiplyLayerData(true); // as programs that open documents read the colours of layers
    qsizetype done = 0;
    const auto add = [&](const ZQScreenshotPSDLayer &layer) {
        if (!layer.imageRep.isNull()) {
            writer.addLayerWithCGImage(layer.imageRep, layer.name, 1, layer.offset);
            ++m_result.layers;
        }
        ++done;
        tell(loadedPart + (packingPart - loadedPart) * double(done) / double(layers.count()),
             zqFormat(zqLocalized("Layer %d of %d…"), {done, layers.count()}));
        return !isCancelled();
    };
    if (!layers.photograph(add, error)) {
        return false;
    }
    if (layers.joined() > 0) {
        m_result.notes.append(
            zqFormat(zqLocalized("The page has more elements than layers are useful; %d small ones are "
                                 "on the layers of what they lie in."),
                     {layers.joined()}));
    }
    tell(packingPart, zqLocalized("Writing the file…"));
    return writeFile(path, writer.createPSDData(), error);
}
