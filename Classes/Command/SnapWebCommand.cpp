#include "Classes/Command/Commands.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/WebPageCapture.h"
#include "Classes/Command/ItemListing.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

#include <memory>
#include <optional>
#include <utility>

namespace {

// One page on its way into Screenshots: captured, then imported. What is not imported leaves nothing. Main thread.
class PageOnItsWay
{
public:
    PageOnItsWay(const WebCaptureRequest &request, CommandContext &context)
        : m_delegate(*context.delegate), m_isAbandoned(context.isAbandoned)
    {
        m_capture = std::make_shared<WebPageCapture>(
            request, [line = m_progress, done = 0.0](double now, const QString &what) mutable {
                if (*line) {
                    (*line)->setText(what);
                    (*line)->advanceBy(now - std::exchange(done, now));
                }
            });
        *m_progress = m_delegate.userInteraction().beginProgress(zqLocalized("Capturing the page…"), 1,
                                                                 [weak = std::weak_ptr(m_capture)] {
                                                                     if (const auto running = weak.lock()) {
                                                                         running->cancel();
                                                                     }
                                                                 });
        m_queue.addOperation(m_capture);
    }

    ~PageOnItsWay()
    {
        if (m_folder && m_import && !m_import->isWhollyFinished()) {
            m_folder->keep(); // the import goes on with it at the next launch
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
        if (!m_hasBegunImport) {
            m_hasBegunImport = true;
            m_progress->reset();
            beginImport();
        }
        return !m_import || m_import->isWhollyFinished();
    }

    int finish(CommandContext &context)
    {
        const WebCaptureResult &result = m_capture->result();
        if (result.file.isEmpty()) {
            return context.fail(result.error.localizedDescription());
        }
        for (const QString &note : result.notes) {
            context.errors += "zelto: " + note.toUtf8() + '\n';
        }
        const QStringList imported = m_import ? m_import->report().imported() : QStringList();
        if (imported.isEmpty()) {
            const QList<DroppedFile> dropped = m_import ? m_import->report().dropped() : QList<DroppedFile>();
            return context.fail(dropped.isEmpty() ? zqLocalized("the page was captured but could not be imported")
                                                  : dropped.front().reason);
        }
        const auto items = zqItemsForReferences(imported, context);
        if (!items) {
            return 2;
        }
        QList<ZQObjectID> ids;
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            ids.append(item->objectID());
        }
        return zqPrintItems(ids, context) ? 0 : 2;
    }

private:
    void beginImport()
    {
        const WebCaptureResult &result = m_capture->result();
        if (result.file.isEmpty()) {
            return;
        }
        m_folder.emplace(QFileInfo(result.file).path());
        const auto screenshots =
            ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*m_delegate.managedObjectContext());
        if (!screenshots) {
            return;
        }
        m_import = AImportManager::sharedAImportManager().startImport(
            {.paths = {result.file},
             .target = screenshots->objectID(),
             .metadata = {{QStringLiteral("webPageURL"), result.pageURL}, {QStringLiteral("title"), result.title}},
             .duplicates = DuplicateChoice::KeepBoth}); // who captures a page again wants it again
    }

    tamberin_AppDelegate &m_delegate;
    const std::function<bool()> m_isAbandoned;
    std::optional<TemporaryFolder> m_folder; // of the capture
    // Written before the capture begins and after it ended; the line is null where none is shown.
    const std::shared_ptr<std::shared_ptr<UserProgress>> m_progress = std::make_shared<std::shared_ptr<UserProgress>>();
    std::shared_ptr<WebPageCapture> m_capture;
    std::shared_ptr<ImportOperation> m_import;
    bool m_hasBegunImport = false;
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
    const auto page = std::make_shared<PageOnItsWay>(capture, context);
    if (context.mayBeFinishedLater) {
        context.pending = PendingCommand{
            [page] { return page->isDone(); }, [page](CommandContext &finished) { return page->finish(finished); }, {}};
        return 0;
    }
    zqRunMainLoopUntil([&page] { return page->isDone(); });
    return page->finish(context);
}
