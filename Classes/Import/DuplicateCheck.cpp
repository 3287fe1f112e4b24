#include "Classes/Import/DuplicateCheck.h"

#include "Classes/Import/BatchResumption.h"
#include "Classes/Import/CreatedItems.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>

namespace {
constexpr qsizetype digestsInOneQuery = 500;
} // namespace

void DuplicateCheck::run()
{
    const auto found = find();
    if (!found) {
        const QString reason = zqLocalized("It cannot be told whether the library has it already, since the library "
                                           "cannot be read. Import it again once that is mended.");
        m_resumption.postpone(reason);
        m_items.forgetUnsaved(reason);
        return;
    }
    const std::vector<Duplicate> &duplicates = *found;
    if (duplicates.empty()) {
        return;
    }
    ImportWhole &whole = *m_batch.request.whole;
    const auto answer = m_batch.request.duplicates ? m_batch.request.duplicates : whole.duplicates();
    const auto answers = answer ? DuplicateAnswers(QList<DuplicateChoice>(qsizetype(duplicates.size()), *answer))
                                : ask(pairs(duplicates));
    if (!answers) {
        m_batch.operation.cancel();
        return;
    }
    if (answers->forTheRest) {
        whole.setDuplicates(*answers->forTheRest);
    }
    for (std::size_t i = 0; i < duplicates.size(); ++i) {
        resolve(duplicates[i], answers->choices.value(qsizetype(i), DuplicateChoice::KeepBoth));
    }
}

std::optional<DuplicateAnswers> DuplicateCheck::ask(const QList<DuplicatePair> &pairs)
{
    std::optional<DuplicateAnswers> answers;
    ZQOperationQueue::standAside([&] { answers = m_batch.user.resolveDuplicates(pairs, doArchivesFollow()); });
    return answers;
}

std::optional<std::vector<DuplicateCheck::Duplicate>> DuplicateCheck::find()
{
    QHash<QString, std::vector<std::size_t>> createdBySHA1;
    QSet<ZQObjectID> created;
    for (std::size_t i = 0; i < m_items.all().size(); ++i) {
        created.insert(m_items.all()[i].objectID);
        if (!m_items.all()[i].SHA1.isEmpty()) {
            createdBySHA1[m_items.all()[i].SHA1].push_back(i);
        }
    }
    QHash<QString, ZQRef<ZQLibraryBaseItem>> existing;
    const QStringList digests = createdBySHA1.keys();
    for (qsizetype first = 0; first < digests.size(); first += digestsInOneQuery) {
        // Saved rows only: what this batch has not saved yet cannot be there already.
        const auto items = zqFetch<ZQLibraryBaseItem>(
            *m_batch.context,
            ZQFetchRequest{.entityName = ZQLibraryBaseItem::entityName(),
                           .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SHA1 in %@ AND active == YES"),
                                                                         {digests.mid(first, digestsInOneQuery)}),
                           .includesPendingChanges = false});
        if (!items) {
            return std::nullopt;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            if (!created.contains(item->objectID())) {
                existing.insert(item->SHA1(), item);
            }
        }
    }
    std::vector<Duplicate> duplicates;
    for (auto entry = existing.constBegin(); entry != existing.constEnd(); ++entry) {
        duplicates.push_back({entry.value(), createdBySHA1.value(entry.key())});
    }
    std::sort(duplicates.begin(), duplicates.end(),
              [](const Duplicate &a, const Duplicate &b) { return a.created.front() < b.created.front(); });
    return duplicates;
}

QList<DuplicatePair> DuplicateCheck::pairs(const std::vector<Duplicate> &duplicates) const
{
    QList<DuplicatePair> pairs;
    for (const Duplicate &duplicate : duplicates) {
        const CreatedItem &created = m_items.all()[duplicate.created.front()];
        const ZQRef<ZQLibraryBaseItem> &item = duplicate.existing;
        QStringList places;
        for (const ZQRef<ZQSidebarBaseItem> &project : item->projects()) {
            places.append(project->title());
        }
        const QString path = item->itemURL();
        const QFileInfo file(created.filePath);
        pairs.append(
            {.SHA1 = created.SHA1,
             .existingTitle = item->title(),
             .existingPath = path,
             .existingThumbPath = item->thumbURL().isEmpty() ? path : item->thumbURL(),
             .existingPlaces = places,
             .existingImportDate = item->import_date(),
             .newTitle = file.completeBaseName(),
             .newPath = m_batch.record.report().shownPath(created.sourcePath),
             .newThumbPath = created.thumbName.isEmpty() ? created.filePath : file.path() + u'/' + created.thumbName,
             .bytes = file.size(),
             .pixelWidth = item->pixelWidth(),
             .pixelHeight = item->pixelHeight(),
             .newAddress = addressOf(created),
             .goesIntoProject = goesIntoProject(created)});
    }
    return pairs;
}

// The place of a file that was fetched for this import tells a person nothing.
QString DuplicateCheck::addressOf(const CreatedItem &created) const
{
    const ZQRef<ZQLibraryBaseItem> item = m_items.object(created);
    if (!item || m_batch.request.origin || !ImportQueries::fileIsInsideTemporaryDirectory(created.sourcePath)) {
        return {};
    }
    return item->webURL().isEmpty() ? item->webPageURL() : item->webURL();
}

bool DuplicateCheck::goesIntoProject(const CreatedItem &created) const
{
    const ZQRef<ZQLibraryBaseItem> item = m_items.object(created);
    return item && !item->projectsItems().isEmpty();
}

bool DuplicateCheck::doArchivesFollow() const
{
    return m_batch.record.hasUnfoldedArchives() || m_batch.request.whole->hasPartsToCome();
}

void DuplicateCheck::resolve(const Duplicate &duplicate, DuplicateChoice choice)
{
    if (choice == DuplicateChoice::KeepBoth) {
        return;
    }
    const bool relinks = choice == DuplicateChoice::Relink;
    const QString reason =
        zqFormat(relinks ? zqLocalized("The library has it already, as “%@”; that item was put in its place.")
                         : zqLocalized("The library has it already, as “%@”; the new copy was discarded."),
                 {duplicate.existing->title()});
    for (const std::size_t index : duplicate.created) {
        const ZQRef<ZQLibraryBaseItem> item = m_items.object(m_items.all()[index]);
        if (!item) {
            continue;
        }
        if (relinks) {
            relink(*duplicate.existing, *item);
        }
        const QString source = m_items.all()[index].sourcePath;
        m_items.takeOut(index, {source, reason, DroppedFile::Telling::Decided});
        if (!relinks) {
            m_items.discard(source);
        }
    }
}

void DuplicateCheck::relink(ZQLibraryBaseItem &existing, ZQLibraryBaseItem &created)
{
    if (!m_batch.request.target.isNull()) {
        if (const auto tag = zqCast<ZQSidebarTag>(m_batch.context->objectWithID(m_batch.request.target))) {
            tag->addItem(&existing);
        }
    }
    for (const ZQRef<ZQProjectItem> &membership : created.projectsItems()) {
        if (const ZQRef<ZQSidebarBaseItem> project = membership->project()) {
            project->addItem(&existing, quint32(membership->order()), false);
        }
    }
}
