#include "Classes/Command/Commands.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/ZeltoKunViewController.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QPointer>

#include <memory>

namespace {

// What became of a capture, once that is known.
struct Capture
{
    bool hasEnded = false;
    ZeltoKunViewController::Outcome outcome = ZeltoKunViewController::Outcome::CalledOff;
    ZQError error;
};

ScreenshotSession::Kind kindOf(SnapKind kind)
{
    switch (kind) {
    case SnapKind::Area:
        return ScreenshotSession::Kind::Area;
    case SnapKind::Window:
        return ScreenshotSession::Kind::Window;
    case SnapKind::FullScreen:
        break;
    }
    return ScreenshotSession::Kind::FullScreen;
}

int statusOf(const Capture &capture, CommandContext &context)
{
    switch (capture.outcome) {
    case ZeltoKunViewController::Outcome::Stored:
        return 0;
    case ZeltoKunViewController::Outcome::Failed:
        return context.fail(capture.error.localizedDescription());
    case ZeltoKunViewController::Outcome::CalledOff:
        break;
    }
    return 1;
}

} // namespace

int zqRunSnap(SnapKind kind, CommandContext &context)
{
    context.delegate->openZeltoKunHelper();
    const QPointer controller(dynamic_cast<ZeltoKunViewController *>(context.delegate->zeltoKunViewController()));
    if (!controller) {
        return context.fail(zqLocalized("this process takes no pictures of the screen"));
    }
    const auto capture = std::make_shared<Capture>();
    controller->snap(kindOf(kind), [capture](ZeltoKunViewController::Outcome outcome, const ZQError &error) {
        *capture = {true, outcome, error};
    });
    // Whoever goes away, as by Ctrl+C, calls it off.
    const auto hasEnded = [capture, controller, isAbandoned = context.isAbandoned] {
        if (!capture->hasEnded && controller && isAbandoned && isAbandoned()) {
            controller->cancel();
        }
        return capture->hasEnded || !controller;
    };
    if (context.mayBeFinishedLater && !capture->hasEnded) {
        context.pending =
            PendingCommand{hasEnded, [capture](CommandContext &finished) { return statusOf(*capture, finished); }, {}};
        return 0;
    }
    zqRunMainLoopUntil(hasEnded);
    if (!context.mayBeFinishedLater) { // nobody else would see to it that the import ends
        ZQOperationQueue &imports = context.delegate->backgroundOperationQueue();
        zqRunMainLoopUntil([&imports] { return imports.operationCount() == 0; });
    }
    return statusOf(*capture, context);
}
