#include "Classes/Editing/KeepOne.h"

#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/FileProblems.h"
#include "Classes/Editing/ItemDeletion.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

using Item = ZQRef<ZQLibraryBaseItem>;
using Items = QList<Item>;
using IDs = QList<ZQObjectID>;

constexpr qsizetype choicesPerBatch = 200;
constexpr int mostWaitingFiles = 10000; // that wait for their tags meanwhile

// What became of one choice.
struct Made
{
    ZQObjectID kept;
    IDs deleted{};
    IDs projects{};    // that the kept one came into
    IDs tags{};        // that it got
    qint16 rating = 0; // so too, 0 for none
    QString notes{};

    bool isForFile() const { return !tags.isEmpty() || rating > 0 || !notes.isEmpty(); }
};
using AllMade = std::shared_ptr<QList<Made>>; // that is not taken back; of one thread at a time

// What the kept one is to get of the others, found out before anything is changed.
struct Gain
{
    QList<std::pair<ZQRef<ZQSidebarBaseItem>, qint32>> places; // with its order there
    QList<ZQRef<ZQSidebarTag>> tags;
    qint16 rating = 0; // where it has none itself: the highest
    QString notes;     // where it has none itself: the first
};

QVariantList variantsOf(const Items &items)
{
    QVariantList ids;
    for (const Item &item : items) {
        ids.append(QVariant::fromValue(item->objectID()));
    }
    return ids;
}

// Nothing after an error: what the others belong to is then not known, and they may not go.
std::optional<Gain> gainOf(const Item &kept, const Items &others, ZQManagedObjectContext &context, ZQError *error)
{
    auto memberships = zqFetch<ZQProjectItem>(
        context,
        ZQFetchRequest{.entityName = ZQProjectItem::entityName(),
                       .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("item IN %@"),
                                                                     {QVariant(variantsOf(others + Items{kept}))})},
        error);
    if (!memberships) {
        return std::nullopt;
    }
    // Of several in one project, the first one's place.
    std::stable_sort(memberships->begin(), memberships->end(),
                     [](const auto &a, const auto &b) { return a->order() < b->order(); });
    QSet<qint64> present;
    for (const auto &membership : *memberships) {
        if (membership->itemKey() == kept->objectID().key) {
            present.insert(membership->projectKey());
        }
    }
    Gain gain;
    for (const auto &membership : *memberships) {
        const auto project = membership->project();
        if (project && project->active() && !present.contains(membership->projectKey())) {
            present.insert(membership->projectKey());
            gain.places.append({project, membership->order()});
        }
    }
    const auto own = kept->itemTags();
    for (const Item &other : others) {
        for (const auto &tag : other->itemTags()) {
            if (tag->isUserTag() && !own.contains(tag) && !gain.tags.contains(tag)) {
                gain.tags.append(tag);
            }
        }
        if (kept->rating() == 0) {
            gain.rating = std::max(gain.rating, other->rating());
        }
        if (kept->notes().isEmpty() && gain.notes.isEmpty()) {
            gain.notes = other->notes();
        }
    }
    return gain;
}

// Files whose items got something that stands in them, too, with whether a rating is of it.
struct Rewrites
{
    Items items;
    QSet<ZQObjectID> rated;

    void add(const Item &item, const Made &made)
    {
        items.append(item);
        if (made.rating > 0) {
            rated.insert(item->objectID());
        }
    }
    void write() const
    {
        for (const Item &item : items) {
            rated.contains(item->objectID()) ? item->writeRatingToDisk() : item->writeOpenMetaToDisk();
        }
    }
};

// Files that get other tags, before the store is saved. To be held until they are handed to the writer.
std::shared_ptr<void> announce(const Items &items)
{
    QStringList bundleIDs;
    for (const Item &item : items) {
        bundleIDs.append(item->bundleID());
    }
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    const bool isForFiles = environment.writesTagsToFiles() && !items.isEmpty();
    return isForFiles ? environment.willWriteTagsOfItems(bundleIDs) : nullptr;
}

ZQError problem(const char *text)
{
    return ZQError::with(QStringLiteral("zelto.editing"), 2, zqLocalized(text));
}

// One way through the choices.
class Keeping
{
public:
    Keeping(EditRun &run, const QList<KeepOne::Choice> &choices, const AllMade &made)
        : m_run(run), m_choices(choices), m_made(made)
    {
        for (const KeepOne::Choice &choice : choices) {
            m_allKept.insert(choice.kept);
        }
    }

    bool apply()
    {
        m_run.inBatches(zqLocalized("Keeping one of each…"), m_choices.size(),
                        [this](qsizetype first, qsizetype size) { return changeBatch(first, size); });
        m_unkept.tell(m_run, zqKey("“%@” cannot be kept in place of the others."),
                      zqKey("%d items cannot be kept in place of the others."));
        m_undeleted.tell(m_run, zqKey("“%@” cannot be deleted."), zqKey("%d items cannot be deleted."));
        return !m_made->isEmpty();
    }

private:
    bool changeBatch(qsizetype first, qsizetype size)
    {
        ZQOwnMoves moves;
        QList<Made> made;
        Rewrites rewrites;
        const auto batch = m_choices.mid(first, size);
        const auto kept = read(batch);
        const bool isWhole = std::all_of(batch.begin(), batch.end(), [&](const KeepOne::Choice &choice) {
            return change(choice, moves, made, rewrites);
        });
        const auto announced = announce(rewrites.items);
        if (!m_run.save()) {
            moves.takeBack();
            return false;
        }
        for (const Made &each : std::as_const(made)) {
            m_run.didBring({each.kept});
        }
        m_made->append(made);
        rewrites.write();
        if (m_run.isQueued()) {
            TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(mostWaitingFiles, m_run.operation().get());
        }
        return isWhole;
    }

    // All of the batch, with their values; to be held meanwhile.
    Items read(const QList<KeepOne::Choice> &batch)
    {
        IDs ids;
        for (const KeepOne::Choice &choice : batch) {
            ids += choice.kept;
            ids += choice.others;
        }
        const Items items = ZQLibraryBaseItem::itemsWithIDs(ids, m_run.context());
        ZQLibraryBaseItem::lookForFiles(items);
        return items;
    }

    Item activeItem(const ZQObjectID &id)
    {
        const auto item = zqCast<ZQLibraryBaseItem>(m_run.context().existingObjectWithID(id));
        return item && item->active() ? item : Item();
    }

    // False when the library cannot be read, which was told.
    bool change(const KeepOne::Choice &choice, ZQOwnMoves &moves, QList<Made> &made, Rewrites &rewrites)
    {
        const Item kept = activeItem(choice.kept);
        if (!kept) {
            return true;
        }
        const QString file = QFileInfo(kept->findItemURL()).canonicalFilePath();
        if (file.isEmpty()) {
            m_unkept.add(kept->title(),
                         problem(zqKey("Its file is missing. Put it back where it was, or keep another one.")));
            return true;
        }
        const Items others = othersOf(choice, file);
        ZQError error;
        const auto gain = gainOf(kept, others, m_run.context(), &error);
        if (!gain) {
            m_run.presentError(error);
            return false;
        }
        Made done;
        done.kept = choice.kept;
        for (const Item &other : others) {
            if (zqDeleteItem(*other, moves, m_undeleted)) {
                done.deleted.append(other->objectID());
            }
        }
        if (done.deleted.isEmpty()) {
            return true;
        }
        give(kept, *gain, done);
        if (done.isForFile()) {
            rewrites.add(kept, done);
        }
        made.append(done);
        return true;
    }

    Items othersOf(const KeepOne::Choice &choice, const QString &file)
    {
        Items others;
        for (const ZQObjectID &id : choice.others) {
            const Item other = m_allKept.contains(id) ? Item() : activeItem(id);
            if (!other || others.contains(other)) {
                continue;
            }
            if (QFileInfo(other->findItemURL()).canonicalFilePath() == file) {
                m_undeleted.add(other->title(), problem(zqKey("It is the very file of the one that is kept.")));
            } else {
                others.append(other);
            }
        }
        return others;
    }

    static void give(const Item &kept, const Gain &gain, Made &done)
    {
        for (const auto &[project, order] : gain.places) {
            if (project->addItem(kept.get(), quint32(order), false)) {
                done.projects.append(project->objectID());
            }
        }
        for (const auto &tag : gain.tags) {
            kept->addTagsObject(tag.get());
            done.tags.append(tag->objectID());
        }
        if (gain.rating > 0) {
            kept->setRating(done.rating = gain.rating);
        }
        if (!gain.notes.isEmpty()) {
            kept->setNotes(done.notes = gain.notes);
        }
    }

    EditRun &m_run;
    const QList<KeepOne::Choice> &m_choices;
    AllMade m_made;
    QSet<ZQObjectID> m_allKept;
    FileProblems m_unkept;
    FileProblems m_undeleted;
};

void takeGain(const Item &kept, const Made &made, ZQManagedObjectContext &context)
{
    for (const ZQObjectID &id : made.projects) {
        const auto project = zqCast<ZQSidebarBaseItem>(context.existingObjectWithID(id));
        if (const auto membership = project ? kept->projectItemForSidebarItem(project.get()) : nullptr) {
            project->removeProjectItem(membership.get());
        }
    }
    for (const ZQObjectID &id : made.tags) {
        if (const auto tag = zqCast<ZQSidebarTag>(context.existingObjectWithID(id))) {
            kept->removeTagsObject(tag.get());
        }
    }
    if (made.rating > 0 && kept->rating() == made.rating) { // else somebody rated it anew since
        kept->setRating(0);
    }
    if (!made.notes.isEmpty() && kept->notes() == made.notes) {
        kept->setNotes({});
    }
}

// The others come back first: what one of them cannot have again, the kept one keeps for it. The kept one, when it does
// not.
Item takeBack(EditRun &run, Made &made, ZQOwnMoves &moves, FileProblems &problems)
{
    const auto others = ZQLibraryBaseItem::itemsWithIDs(made.deleted, run.context());
    bool isWhole = others.size() == made.deleted.size(); // some may have been removed for good
    for (const auto &other : others) {
        const bool isBack = zqRestoreItem(*other, moves, problems);
        isWhole = isWhole && isBack;
        if (isBack) {
            run.didBring({other->objectID()});
        }
    }
    const auto kept = zqCast<ZQLibraryBaseItem>(run.context().existingObjectWithID(made.kept));
    if (!isWhole || !kept) {
        return {};
    }
    takeGain(kept, made, run.context());
    return kept;
}

bool takeAllBack(EditRun &run, const AllMade &all)
{
    FileProblems problems;
    const qsizetype count = run.inBatches(zqLocalized("Restoring items…"), all->size(), [&](qsizetype, qsizetype size) {
        ZQOwnMoves moves;
        Rewrites rewrites;
        auto batch = all->last(size);
        for (Made &made : batch) {
            const auto kept = takeBack(run, made, moves, problems);
            if (kept && made.isForFile()) {
                rewrites.add(kept, made);
            }
        }
        const auto announced = announce(rewrites.items);
        if (!run.save()) {
            moves.takeBack();
            return false;
        }
        all->resize(all->size() - size);
        rewrites.write();
        return true;
    });
    problems.tell(run, zqKey("“%@” cannot be restored."), zqKey("%d items cannot be restored."));
    return count > 0;
}

} // namespace

void KeepOne::keep(const QList<Choice> &choices)
{
    qint64 rows = 0;
    for (const Choice &choice : choices) {
        rows += choice.others.size();
    }
    if (rows == 0) {
        return;
    }
    const auto kept = choices.size() == 1 ? m_edits.libraryItem(choices.first().kept) : nullptr;
    const QString name = kept ? zqFormat(zqLocalized("keep %@"), {kept->title()}) : zqLocalized("keep one of each");
    const auto made = std::make_shared<QList<Made>>();
    zqPushEdit(m_edits, name, {rows, mostAtOnce, choicesPerBatch},
               {[choices, made](EditRun &run) { return Keeping(run, choices, made).apply(); },
                zqLocalized("Keeping one of each…")},
               {[made](EditRun &run) { return takeAllBack(run, made); }, zqLocalized("Restoring items…")});
}
