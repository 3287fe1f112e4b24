#include "Classes/Import/BatchResumption.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

namespace {

constexpr qsizetype namesInOneQuery = 500;

// The deepest folder that all of them lie in.
QString commonFolder(const QStringList &paths)
{
    QString folder = QFileInfo(paths.first()).path();
    for (const QString &path : paths) {
        while (folder.size() > 1 && !path.startsWith(folder + u'/')) {
            folder = QFileInfo(folder).path();
        }
    }
    return folder;
}

} // namespace

BatchResumption::BatchResumption(BatchState &batch, const KeptRequest &kept)
    : m_batch(batch), m_pending(kept.kind == KeptRequest::Kind::UnpacksOf ? nullptr : kept.pending),
      m_requestOfArchive(kept.kind == KeptRequest::Kind::UnpacksOf ? kept.pending : nullptr),
      m_isResumed(kept.kind != KeptRequest::Kind::New),
      m_firstRequest(m_pending ? m_pending->request() : PendingImport())
{
}

void BatchResumption::postpone(const QString &reason)
{
    m_postponement = reason;
    m_batch.record.setRefusal(reason);
}

bool BatchResumption::restoreEarlierItems(const Restore &restore)
{
    const QString reason = zqLocalized("An import cannot go on, since it cannot be told which of its files are in the "
                                       "library. It is kept: go on with it once that is mended, or forget it.");
    ZQError error;
    const auto noted = m_pending->sources(&error);
    if (!noted) {
        qCWarning(zqLogImport).noquote() << error.localizedDescription();
        postpone(reason);
        return false;
    }
    const QList<PendingImportFile::Source> &sources = *noted;
    for (qsizetype first = 0; first < sources.size(); first += namesInOneQuery) {
        QHash<QString, ZQRef<ZQLibraryBaseItem>> items;
        QStringList names;
        for (const PendingImportFile::Source &source : sources.mid(first, namesInOneQuery)) {
            names.append(source.bundleID);
        }
        const auto found = zqFetch<ZQLibraryBaseItem>(*m_batch.context, QStringLiteral("bundleID in %@"), {names});
        if (!found) {
            postpone(reason);
            return false;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *found) {
            items.insert(item->bundleID(), item);
        }
        for (const PendingImportFile::Source &source : sources.mid(first, namesInOneQuery)) {
            const ZQRef<ZQLibraryBaseItem> item = items.value(source.bundleID);
            if (item || source.bundleID.isEmpty()) {
                ++m_earlierPaths[source.path];
            }
            if (item && item->active()) {
                restore(source, *item);
                ++m_earlierItemCount;
            }
        }
    }
    qCInfo(zqLogImport) << "An import goes on behind" << m_earlierItemCount << "items";
    return true;
}

QStringList BatchResumption::remaining(const QStringList &files)
{
    QStringList rest;
    for (const QString &path : files) {
        const auto earlier = m_earlierPaths.find(path);
        if (earlier != m_earlierPaths.end() && *earlier > 0) {
            --*earlier;
        } else if (m_isResumed && !QFileInfo::exists(path)) {
            m_outOfReach.append(path);
        } else {
            rest.append(path);
        }
    }
    return rest;
}

QSet<QString> BatchResumption::accountedFor() const
{
    QSet<QString> paths(m_outOfReach.begin(), m_outOfReach.end());
    for (auto earlier = m_earlierPaths.constBegin(); earlier != m_earlierPaths.constEnd(); ++earlier) {
        paths.insert(earlier.key());
    }
    return paths;
}

bool BatchResumption::rememberGroups(const QList<FileGroup> &groups, ZQError *error)
{
    if (!m_pending) {
        return true;
    }
    const QUuid store = m_batch.coordinator->storeUUID();
    PendingImport request = m_pending->request();
    for (const FileGroup &group : groups) {
        request.groups.append({group.project->objectID().URIRepresentation(store), group.files});
    }
    request.ungrouped = m_outOfReach;
    for (const PendingImport::Group &group : m_firstRequest.groups) {
        request.ungrouped.removeIf([&group](const QString &path) { return group.files.contains(path); });
    }
    return groups.isEmpty() || m_pending->setRequest(request, error);
}

bool BatchResumption::remember(const QList<PendingImportFile::Source> &sources, ZQError *error)
{
    return !m_pending || m_pending->addSources(sources, error);
}

void BatchResumption::end(bool wasCancelled, bool keepsCancelled, qsizetype savedItemCount, bool hasFollowUps)
{
    endPending(wasCancelled, keepsCancelled, savedItemCount);
    endRequestOfArchive(wasCancelled, keepsCancelled, hasFollowUps);
}

void BatchResumption::endPending(bool wasCancelled, bool keepsCancelled, qsizetype savedItemCount)
{
    if (!m_pending) {
        return;
    }
    const bool isKept =
        !m_postponement.isEmpty() || (m_isResumed && (!m_outOfReach.isEmpty() || !m_batch.record.refusal().isEmpty()));
    const bool isPutOff = wasCancelled && keepsCancelled;
    m_isRequestKept = isPutOff || (!wasCancelled && isKept);
    ZQError error;
    if (isPutOff) {
        // What it had made went with it.
        PendingImport request = m_pending->request();
        request.groups = m_firstRequest.groups;
        request.ungrouped = m_firstRequest.ungrouped;
        if (!m_pending->setRequest(request, &error)) {
            qCWarning(zqLogImport).noquote() << error.localizedDescription();
        }
    } else if (m_isRequestKept) {
        keepPending(savedItemCount);
    } else {
        m_pending->remove();
    }
    m_pending.reset();
}

// What an archive's request asks for is found in the archive alone.
void BatchResumption::keepPending(qsizetype savedItemCount)
{
    m_batch.record.report().setUnfinished();
    PendingImport rest = m_pending->request();
    const bool isFlat = rest.groups.isEmpty();
    if (!m_postponement.isEmpty() || !m_batch.record.refusal().isEmpty() || (isFlat && !rest.archiveRoot.isEmpty())) {
        return;
    }
    const QSet<QString> outOfReach(m_outOfReach.begin(), m_outOfReach.end());
    for (PendingImport::Group &group : rest.groups) {
        group.files.removeIf([&outOfReach](const QString &path) { return !outOfReach.contains(path); });
    }
    rest.groups.removeIf([](const PendingImport::Group &group) { return group.files.isEmpty(); });
    rest.ungrouped.removeIf([&outOfReach](const QString &path) { return !outOfReach.contains(path); });
    if (rest.groups.isEmpty()) {
        rest.paths = m_outOfReach;
        rest.ungrouped.clear();
    }
    if (isFlat && rest.index != ZQSidebarBaseItem::appendIndex) {
        rest.index += quint32(savedItemCount);
    }
    ZQError error;
    if (!m_pending->narrow(rest, &error)) {
        qCWarning(zqLogImport).noquote() << error.localizedDescription();
    }
}

void BatchResumption::endRequestOfArchive(bool wasCancelled, bool keepsCancelled, bool hasFollowUps)
{
    if (m_requestOfArchive && wasCancelled && !keepsCancelled) {
        m_requestOfArchive->remove();
    } else if (m_requestOfArchive && !wasCancelled && !hasFollowUps) {
        m_batch.record.report().setUnfinished();
    }
    m_requestOfArchive.reset();
}

QString BatchResumption::textForUnfinished() const
{
    const QString whatToDo = zqLocalized("The import is kept: go on with it once that is mended, or forget it.");
    if (m_batch.request.origin && !m_outOfReach.isEmpty()) {
        return zqFormat(zqLocalized("%d files of “%@” cannot be found. The import is kept: go on with it, or forget "
                                    "it."),
                        {m_outOfReach.size(), m_batch.request.origin->archivePath});
    }
    if (m_outOfReach.isEmpty()) {
        return m_postponement.isEmpty() ? whatToDo : m_postponement;
    }
    if (m_outOfReach.size() == 1) {
        return zqFormat(zqLocalized("“%@” cannot be found. %@"), {m_outOfReach.first(), whatToDo});
    }
    return zqFormat(zqLocalized("%d files or folders cannot be found in “%@”. %@"),
                    {m_outOfReach.size(), commonFolder(m_outOfReach), whatToDo});
}
