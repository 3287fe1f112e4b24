#include "Classes/Command/CaptureStatus.h"
#include "Classes/Command/Commands.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QPointer>

#include <memory>
#include <optional>

namespace {

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

} // namespace

int zqStatusOfCapture(const std::optional<CaptureCommands::End> &end, CommandContext &context)
{
    if (!end) {
        return context.fail(
            zqLocalized("Zelto quit before the picture was in the library; where it was being imported, "
                        "the import goes on when Zelto opens the library the next time"));
    }
    switch (end->outcome) {
    case CaptureCommands::Outcome::Stored:
        return 0;
    case CaptureCommands::Outcome::Failed:
        return context.fail(end->error.localizedDescription());
    case CaptureCommands::Outcome::CalledOff:
        break;
    }
    return 1;
}

int zqRunSnap(SnapKind kind, CommandContext &context)
{
    context.delegate->openZeltoKunHelper();
    ScreenCaptureControlling *const capture = context.delegate->zeltoKunViewController();
    const QPointer controller(capture ? capture->captureCommands() : nullptr);
    if (!controller) {
        return context.fail(zqLocalized("this process takes no pictures of the screen"));
    }
    const auto end = std::make_shared<std::optional<CaptureCommands::End>>();
    const quint64 number = controller->snap(kindOf(kind), [end](const CaptureCommands::End &ended) { *end = ended; });
    // Whoever goes away, as by Ctrl+C, calls it off.
    const auto hasEnded = [end, number, controller, isAbandoned = context.isAbandoned] {
        if (!*end && controller && isAbandoned && isAbandoned()) {
            controller->cancel(number);
        }
        return *end || !controller;
    };
    if (context.mayBeFinishedLater && !*end) {
        context.pending =
            PendingCommand{hasEnded, [end](CommandContext &finished) { return zqStatusOfCapture(*end, finished); }, {}};
        return 0;
    }
    zqRunMainLoopUntil(hasEnded);
    return zqStatusOfCapture(*end, context);
}
