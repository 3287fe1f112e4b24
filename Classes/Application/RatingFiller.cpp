#include "Classes/Application/RatingFiller.h"

#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <algorithm>

namespace {
constexpr qsizetype itemsPerSave = 300;
constexpr int savesPerNote = 10;
constexpr int attempts = 3; // a person may rate an item while its file is read
} // namespace

bool RatingFiller::isToDo() const
{
    return m_coordinator->pendingVersions().value_or(QStringList{version}).contains(version);
}

bool RatingFiller::run(const std::function<bool()> &goesOn)
{
    if (!isToDo()) {
        return true;
    }
    ZQManagedObjectContext context(m_coordinator);
    ZQError error;
    auto ids = context.fetchObjectIDs({ZQLibraryBaseItem::entityName()}, &error);
    if (!ids) {
        zqLogFetchError(error);
        return false;
    }
    const QString table = context.model().entity(ZQLibraryBaseItem::entityName())->root->tableName;
    const auto done = m_coordinator->pendingProgress(version);
    const auto last = m_coordinator->lastKeyBeforeMigration(table);
    if (!done || !last) {
        return false;
    }
    ids->removeIf([&](const ZQObjectID &id) { return id.key <= *done || id.key > *last; });
    std::sort(ids->begin(), ids->end(), [](const ZQObjectID &a, const ZQObjectID &b) { return a.key < b.key; });
    const auto telling = context.observeDidSave(m_saved);
    qint64 reached = *done;
    int unnoted = 0;
    for (qsizetype first = 0; first < ids->size(); first += itemsPerSave) {
        const QList<ZQObjectID> batch = ids->mid(first, itemsPerSave);
        const bool isLast = first + itemsPerSave >= ids->size();
        const bool isFilled = fillInAttempts(batch, context, goesOn);
        if (isFilled) {
            reached = batch.last().key;
            ++unnoted;
        }
        const bool isStopping = !isFilled || (!isLast && !goesOn());
        if (unnoted == savesPerNote || (isStopping && unnoted > 0)) {
            unnoted = 0;
            m_coordinator->setPendingProgress(version, reached);
        }
        if (isStopping) {
            return false;
        }
    }
    return m_coordinator->clearPendingVersion(version);
}

bool RatingFiller::fillInAttempts(const QList<ZQObjectID> &batch, ZQManagedObjectContext &context,
                                  const std::function<bool()> &goesOn)
{
    Result result = Result::Failed;
    for (int attempt = 0; attempt < attempts && result == Result::Failed; ++attempt) {
        result = fill(batch, context, goesOn);
    }
    return result == Result::Done;
}

RatingFiller::Result RatingFiller::fill(const QList<ZQObjectID> &batch, ZQManagedObjectContext &context,
                                        const std::function<bool()> &goesOn)
{
    context.reset();
    QList<ZQRef<ZQLibraryBaseItem>> unrated = ZQLibraryBaseItem::itemsWithIDs(batch, context);
    unrated.removeIf([](const ZQRef<ZQLibraryBaseItem> &item) { return item->rating() != 0; });
    ZQLibraryBaseItem::lookForFiles(unrated);
    for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(unrated)) {
        if (!goesOn()) {
            return Result::Stopped;
        }
        const QString path = item->findItemURL();
        const int rating = path.isEmpty() ? 0 : ZQLibraryEnvironment::current().ratingOfFile(path).value_or(0);
        if (rating > 0) {
            item->setRating(static_cast<qint16>(rating));
        }
    }
    ZQError error;
    if (!context.save(&error)) {
        qCInfo(zqLogStore, "ratings not saved: %s", qUtf8Printable(error.localizedDescription()));
        return Result::Failed;
    }
    return Result::Done;
}
