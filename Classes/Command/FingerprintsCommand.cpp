#include "Classes/Application/FingerprintFiller.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/WorkBeside.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QJsonObject>

#include <utility>

namespace {

void mergeInMainContext(const ZQContextDidSave &saved)
{
    const auto merge = [saved] {
        if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
            delegate->libraryStore().mergeSaved(saved);
        }
    };
    if (zqIsMainThread()) {
        merge();
    } else {
        zqOnMainThread(merge);
    }
}

// Beside a window it is that window's matter what it shows.
std::function<void(qint64, qint64)> progressFor(const CommandContext &context)
{
    if (context.mayBeFinishedLater) {
        return {};
    }
    struct Shown
    {
        std::shared_ptr<UserProgress> line;
        qint64 done = 0;
    };
    return [shown = std::make_shared<Shown>(), &user = context.delegate->userInteraction()](qint64 done, qint64 total) {
        if (!shown->line) {
            shown->line = user.beginProgress(zqLocalized("Looking at pictures…"), double(total), {});
        }
        shown->line->advanceBy(double(done - std::exchange(shown->done, done)));
    };
}

int answer(const FingerprintFiller::Result &result, CommandContext &context)
{
    if (!result.isComplete) {
        if (!result.error.isNull()) {
            context.fail(result.error.localizedDescription());
        }
        return context.fail(zqLocalized("not all pictures could be looked at; what was found is kept: ask again for "
                                        "the rest"));
    }
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("made"), result.found},
                                      {QStringLiteral("nothing"), result.nothing},
                                      {QStringLiteral("left"), result.left}});
    } else {
        context.print(zqCounted({"1 fingerprint made", "%d fingerprints made"}, result.found));
        if (result.nothing > 0) {
            context.print(
                zqCounted({"1 picture shows nothing, or cannot be read", "%d pictures show nothing, or cannot be read"},
                          result.nothing));
        }
        if (result.left > 0) {
            context.print(zqCounted({"1 picture is not there now; ask again when its disk is back",
                                     "%d pictures are not there now; ask again when their disk is back"},
                                    result.left));
        }
    }
    return result.left > 0 ? 1 : 0;
}

} // namespace

int zqRunFingerprints(CommandContext &context)
{
    const auto fill = [coordinator = context.delegate->persistentStoreCoordinator(),
                       progressed = progressFor(context)](ZQManagedObjectContext &, const std::stop_token &stop) {
        return FingerprintFiller(coordinator)
            .run({.goesOn = [&stop] { return !stop.stop_requested() && !ZQCancellation::isCurrentCancelled(); },
                  .saved = mergeInMainContext,
                  .progressed = progressed});
    };
    return WorkBeside<FingerprintFiller::Result>::run(context, fill, answer);
}
