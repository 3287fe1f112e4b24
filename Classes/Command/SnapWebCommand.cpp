#include "Classes/Command/Commands.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/WebPageCapture.h"
#include "Classes/Command/CaptureStatus.h"
#include "Classes/Command/ItemListing.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>

#include <memory>
#include <optional>
#include <utility>

namespace {

// One page on its way into Screenshots: captured, then stored as every capture. Main thread.
class PageOnItsWay
{
public:
    PageOnItsWay(const WebCaptureRequest &request, CaptureCommands &controller, CommandContext &context)
        : m_controller(&controller), m_isAbandoned(context.isAbandoned)
    {
        m_capture = std::make_shared<WebPageCapture>(
            request, [line = m_progress, done = 0.0](double now, const QString &what) mutable {
                if (*line) {
                    (*line)->setText(what);
                    (*line)->advanceBy(now - std::exchange(done, now));
                }
            });
        *m_progress = context.delegate->userInteraction().beginProgress(zqLocalized("Capturing the page…"), 1,
                                                                        [weak = std::weak_ptr(m_capture)] {
                                                                            if (const auto running = weak.lock()) {
                                                                                running->cancel();
                                                                            }
                                                                        });
        m_queue.addOperation(m_capture);
    }
    ~PageOnItsWay()
    {
        m_capture->cancel();
        m_capture->waitUntilFinished();
        if (!m_isHandedOver && !m_capture->result().file.isEmpty()) {
            const TemporaryFolder unwanted(QFileInfo(m_capture->result().file).path());
        }
    }
    PageOnItsWay(const PageOnItsWay &) = delete;
    PageOnItsWay &operator=(const PageOnItsWay &) = delete;

    bool isDone()
    {
        if (m_isAbandoned && m_isAbandoned()) {
            m_capture->cancel();
        }
        if (!m_capture->isFinished()) {
            return false;
        }
        m_progress->reset();
        if (!m_isHandedOver && m_controller && !m_capture->result().file.isEmpty()) {
            m_isHandedOver = true;
            const WebCaptureResult &result = m_capture->result();
            m_controller->storeWebCapture(result.file, result.pageURL, result.title,
                                          [end = m_end](const CaptureCommands::End &ended) { *end = ended; });
        }
        return !m_isHandedOver || *m_end || !m_controller;
    }

    int finish(CommandContext &context)
    {
        const WebCaptureResult &result = m_capture->result();
        if (result.file.isEmpty()) {
            return context.fail(result.error.localizedDescription());
        }
        for (const QString &note : result.notes) {
            context.note(note);
        }
        if (const int status = zqStatusOfCapture(*m_end, context); status != 0) {
            return status;
        }
        const auto items = zqItemsForReferences((*m_end)->items, context);
        if (!items) {
            return 2;
        }
        QList<ZQObjectID> ids;
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            ids.append(item->objectID());
        }
        if (!zqPrintItems(ids, context)) {
            return 2;
        }
        if (context.json) {
            addCaptureTo(context);
        }
        return 0;
    }

private:
    void addCaptureTo(CommandContext &context) const
    {
        QJsonArray items = QJsonDocument::fromJson(std::exchange(context.output, {})).array();
        for (QJsonValueRef item : items) {
            QJsonObject object = item.toObject();
            object.insert(QStringLiteral("httpStatus"), m_capture->result().status);
            object.insert(QStringLiteral("captureNotes"), QJsonArray::fromStringList(m_capture->result().notes));
            item = object;
        }
        context.printJSON(items);
    }

    const QPointer<CaptureCommands> m_controller; // null once it has gone
    const std::function<bool()> m_isAbandoned;
    // Written before the capture begins and after it ended; the line is null where none is shown.
    const std::shared_ptr<std::shared_ptr<UserProgress>> m_progress = std::make_shared<std::shared_ptr<UserProgress>>();
    std::shared_ptr<WebPageCapture> m_capture;
    // Of the storing, which may go on without this.
    const std::shared_ptr<std::optional<CaptureCommands::End>> m_end =
        std::make_shared<std::optional<CaptureCommands::End>>();
    bool m_isHandedOver = false;
    ZQOperationQueue m_queue{QStringLiteral("web capture")}; // the last: its end waits for the capture
};

} // namespace

int zqRunSnapWeb(const SnapWebRequest &request, CommandContext &context)
{
    if (request.width < WebCaptureRequest::leastWidth || request.width > WebCaptureRequest::mostWidth) {
        return context.fail(zqFormat(zqLocalized("a page is captured %d to %d pixels wide"),
                                     {WebCaptureRequest::leastWidth, WebCaptureRequest::mostWidth}));
    }
    WebCaptureRequest capture;
    ZQError error;
    capture.url = WebCaptureRequest::addressFor(request.url, true, &error);
    if (capture.url.isEmpty()) {
        return context.fail(error.localizedDescription());
    }
    capture.width = request.width;
    capture.layered = request.layered;
    capture.visible = request.visible;
    capture.mayReadFiles = true; // who writes a command may read them anyway
    context.delegate->openZeltoKunHelper();
    ScreenCaptureControlling *const known = context.delegate->zeltoKunViewController();
    CaptureCommands *const controller = known ? known->captureCommands() : nullptr;
    if (!controller) {
        return context.fail(zqLocalized("this process takes no pictures of pages"));
    }
    const auto page = std::make_shared<PageOnItsWay>(capture, *controller, context);
    if (context.mayBeFinishedLater) {
        context.pending = PendingCommand{
            [page] { return page->isDone(); }, [page](CommandContext &finished) { return page->finish(finished); }, {}};
        return 0;
    }
    zqRunMainLoopUntil([&page] { return page->isDone(); });
    return page->finish(context);
}
