#include "Classes/Import/BatchResult.h"

#include "Classes/Import/ImportErrors.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/BatchResumption.h"
#include "Classes/Import/CreatedItems.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QFileInfo>

#include <algorithm>

namespace {

constexpr std::chrono::duration<double> longEnoughToBeElsewhere(20.0);

QString textForDropped(const QList<DroppedFile> &told)
{
    const DroppedFile &first = told.first();
    const QString name = QFileInfo(first.path).fileName();
    if (told.size() == 1) {
        return zqFormat(first.telling == DroppedFile::Telling::InWindowPartly
                            ? zqLocalized("“%@” was imported in part: %@")
                            : zqLocalized("“%@” could not be imported: %@"),
                        {name, first.reason});
    }
    if (std::all_of(told.begin(), told.end(), [&first](const auto &file) { return file.reason == first.reason; })) {
        return zqFormat(zqLocalized("%d files could not be imported: %@"), {told.size(), first.reason});
    }
    return zqFormat(zqLocalized("%d files could not be imported. The first is “%@”: %@"),
                    {told.size(), name, first.reason});
}

QString textForIncomplete(const QList<DroppedFile> &told)
{
    const QString name = QFileInfo(told.first().path).fileName();
    return told.size() == 1
               ? zqFormat(zqLocalized("“%@” is incomplete: only a part of it can be drawn"), {name})
               : zqFormat(
                     zqLocalized("%d pictures are incomplete: only a part of each can be drawn. The first is “%@”"),
                     {told.size(), name});
}

} // namespace

BatchResult::BatchResult(BatchState &batch, const BatchResumption &resumption)
    : m_batch(batch), m_resumption(resumption), m_startDate(std::chrono::steady_clock::now())
{
}

void BatchResult::report(const CreatedItems &items, const QSet<QString> &followedUp, bool wasCancelled)
{
    QStringList imported;
    QSet<QString> importedPaths;
    for (const CreatedItem &created : items.all()) {
        if (!created.isGone) {
            if (!created.isEarlier) {
                imported.append(created.bundleID);
                m_imported.append(created.objectID);
            }
            importedPaths.insert(created.sourcePath);
        }
    }
    m_batch.record.report().setImported(imported);
    const QString refused = m_batch.record.refusal();
    const QString reason = wasCancelled        ? cancelledImportReason()
                           : refused.isEmpty() ? zqLocalized("It was left out. Import it again.")
                                               : refused;
    const QSet<QString> accountedFor = m_resumption.accountedFor();
    for (const QString &path : std::as_const(m_batch.requestedFiles)) {
        if (!importedPaths.contains(path) && !followedUp.contains(path) && !accountedFor.contains(path)) {
            m_batch.record.fileDidDrop(
                {path, reason, wasCancelled ? DroppedFile::Telling::Quietly : DroppedFile::Telling::InWindow});
        }
    }
}

void BatchResult::tell(const End &end)
{
    const bool tookLong = std::chrono::steady_clock::now() - m_startDate > longEnoughToBeElsewhere;
    const bool isWanted = tookLong && !end.wasCancelled && !m_batch.record.report().isUnfinished() &&
                          !(m_batch.hasArchives && m_batch.request.paths.size() == 1);
    const bool gaveNothing = !end.hasFollowUps && !m_batch.isProcessed;
    if (m_batch.record.report().isUnfinished()) {
        notify(m_resumption.textForUnfinished(), std::chrono::seconds(6));
    }
    if (isWanted) {
        const QString title = gaveNothing ? zqLocalized("Import Invalid") : zqLocalized("Import Successful");
        const QString text =
            gaveNothing ? zqLocalized("Nothing to import") : zqLocalized("Import operation successful");
        zqOnMainThread([&user = m_batch.user, title, text] { user.importDidEndLate(title, text); });
    }
    if (!end.wasCancelled) {
        tellOutcome(gaveNothing && !m_batch.record.report().isUnfinished());
    } else if (!end.isKept && !m_batch.record.report().isUnfinished()) {
        tellOfCancel(m_batch.request);
    }
}

bool BatchResult::isTold(const DroppedFile &file) const
{
    return file.telling == DroppedFile::Telling::Quietly ? m_batch.request.paths.contains(file.path)
                                                         : file.telling != DroppedFile::Telling::Decided;
}

ImportOutcome BatchResult::outcome() const
{
    QList<DroppedFile> dropped;
    QList<DroppedFile> incomplete;
    ImportOutcome outcome{.texts = {},
                          .summary = {},
                          .time = std::chrono::seconds(6),
                          .target = m_batch.target,
                          .imported = m_imported,
                          .refused = {},
                          .import = m_batch.request.whole->identifier(),
                          .hasMore = m_batch.request.whole->hasPartsToCome()};
    qsizetype &notImported = outcome.notImported;
    for (const DroppedFile &file : m_batch.record.report().dropped()) {
        if (isTold(file)) {
            outcome.refused.append({file.path, file.reason});
            notImported += file.isImportedInPart() ? 0 : 1;
        }
        if (file.telling == DroppedFile::Telling::InWindowIncomplete) {
            incomplete.append(file);
        } else if (file.telling == DroppedFile::Telling::InWindow ||
                   file.telling == DroppedFile::Telling::InWindowPartly) {
            dropped.append(file);
        }
    }
    if (!dropped.isEmpty()) {
        outcome.texts.append(textForDropped(dropped));
    }
    if (!incomplete.isEmpty()) {
        outcome.texts.append(textForIncomplete(incomplete));
    }
    outcome.summarize();
    return outcome;
}

// The reasons come last: what is said first goes sooner.
void BatchResult::tellOutcome(bool gaveNothing)
{
    ImportOutcome told = outcome();
    if (gaveNothing) {
        constexpr std::chrono::seconds time(2);
        if (told.texts.isEmpty()) {
            if (m_batch.request.origin && told.refused.isEmpty()) {
                told.refused.append({m_batch.request.origin->archivePath,
                                     zqLocalized("The archive holds nothing that can be imported.")});
                told.notImported = 1;
            }
            told.time = time;
            told.saysNothingCame = true;
        } else {
            notify(ImportOutcome::textForNothing(), time);
        }
    }
    if (const QString text = told.text(); !text.isEmpty()) {
        m_batch.record.report().addNotification(text);
    }
    tell(told);
}

void BatchResult::tell(const ImportOutcome &outcome)
{
    zqOnMainThread([outcome] {
        if (tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate()) {
            delegate->userInteraction().importDidEnd(outcome);
        }
    });
}

void BatchResult::tellOfCancel(const BatchRequest &request)
{
    tell(ImportOutcome{.texts = {zqLocalized("Import cancelled")},
                       .summary = {},
                       .time = usualNotificationTime,
                       .target = request.target,
                       .imported = {},
                       .refused = {},
                       .import = request.whole->identifier(),
                       .hasMore = request.whole->hasPartsToCome(),
                       .isCancelled = true});
}

void BatchResult::notify(const QString &text, std::chrono::milliseconds time)
{
    m_batch.record.report().addNotification(text);
    zqOnMainThread(
        [&user = m_batch.user, text, time] { user.showNotificationWithText(text, NotificationPlace::Browser, time); });
}
