#include "Kit/Files/ZQFileFinder.h"

#include "Kit/Files/ZQFileSearch.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::minutes remembered{1};
// The clock of file systems ticks coarsely: a folder that changed just now may change again without showing it.
constexpr std::chrono::milliseconds coarseTick{50};
constexpr std::chrono::seconds rememberedInBetween{1};
constexpr int foldersUp = 2;

// A folder that is gone is looked for around the nearest one above it that is left.
QByteArray startOf(const ZQFileReference &reference)
{
    QByteArray start = zqFolderOf(reference.path);
    while (start != "/" && !zqLookAtFile(start)) {
        start = zqFolderOf(start);
    }
    return start;
}

// Which file of its folder it is, where `found` is the one of its identity, if there is one.
QByteArray pathInFolder(const ZQFileReference &reference, const QByteArray &found)
{
    if (!found.isEmpty()) {
        const bool isAside = !reference.isFolder && reference.isPutAside(found.mid(found.lastIndexOf('/') + 1));
        const auto newcomer = isAside ? zqLookAtFile(reference.path) : std::nullopt;
        const auto aside = newcomer ? zqLookAtFile(found) : std::nullopt;
        const bool wasReplaced = aside && !newcomer->isFolder &&
                                 (zqAreOfOneSaving(*aside, *newcomer) || reference.isSuccessor(reference.path));
        return wasReplaced ? reference.path : found;
    }
    if (reference.isFolder) {
        return {}; // one that moved is found before another one at its old place is taken for it
    }
    return reference.isSuccessor(reference.path) ? reference.path : QByteArray();
}

} // namespace

ZQFileFinder::ZQFileFinder()
{
    m_thread.setMaxThreadCount(1);
}

ZQFileFinder &ZQFileFinder::shared()
{
    static ZQFileFinder *const instance = new ZQFileFinder; // a search may outlast the other statics
    return *instance;
}

QByteArray ZQFileFinder::find(const QByteArray &data, const ZQFileReference &reference, bool waits, const Moved &moved)
{
    if (reference.isAt(reference.path)) {
        return reference.path;
    }
    if (lookFor({{data, reference, moved}}, waits) > 0) {
        return {};
    }
    const QByteArray path = known(data, stampOf(reference)).value_or(Known()).path;
    tell(data, path, moved);
    return path;
}

qsizetype ZQFileFinder::lookFor(const QList<Wanted> &all, bool waits)
{
    const bool looksAround = waits || m_waits;
    QHash<QByteArray, QList<Wanted>> folders;
    QSet<QByteArray> seen;
    QList<Wanted> missing;
    for (const Wanted &wanted : all) {
        if (seen.contains(wanted.data) || wanted.reference.isAt(wanted.reference.path)) {
            continue;
        }
        seen.insert(wanted.data);
        if (looksAround) {
            waitUntilLookedFor(wanted.data);
        }
        const auto before = known(wanted.data, stampOf(wanted.reference));
        if (!before) {
            folders[zqFolderOf(wanted.reference.path)].append(wanted);
        } else if (before->path.isEmpty() && !before->wasLookedForAround && looksAround) {
            missing.append(wanted);
        }
    }
    for (auto folder = folders.cbegin(); folder != folders.cend(); ++folder) {
        missing += findInFolder(folder.key(), folder.value());
    }
    if (missing.isEmpty()) {
        return 0;
    }
    if (!looksAround) {
        findBeside(missing);
        return missing.size();
    }
    findAround(missing, m_inCallers);
    const ZQLockGuard lock(m_mutex);
    for (const Wanted &wanted : std::as_const(missing)) {
        didLookAround(wanted.data);
    }
    return 0;
}

ZQFileFinder::Stamp ZQFileFinder::stampOf(const ZQFileReference &reference)
{
    const auto folder = zqLookAtFile(zqFolderOf(reference.path));
    return folder ? Stamp{folder->identity.inode, folder->modification, folder->change} : Stamp();
}

std::chrono::nanoseconds ZQFileFinder::uptime() const
{
    const std::chrono::nanoseconds set(m_time);
    return set.count() != 0 ? set : std::chrono::steady_clock::now().time_since_epoch();
}

std::chrono::nanoseconds ZQFileFinder::timeOfDay() const
{
    const std::chrono::nanoseconds set(m_time);
    return set.count() != 0 ? set : std::chrono::system_clock::now().time_since_epoch();
}

void ZQFileFinder::setTime(std::optional<std::chrono::nanoseconds> time)
{
    m_time = time ? time->count() : 0;
}

std::chrono::nanoseconds ZQFileFinder::trustedUntil(const Stamp &folder) const
{
    const std::chrono::nanoseconds changed(std::max(folder.modification, folder.change));
    return uptime() + (timeOfDay() - changed > coarseTick ? remembered : rememberedInBetween);
}

std::optional<ZQFileFinder::Known> ZQFileFinder::known(const QByteArray &data, const Stamp &folder)
{
    std::optional<Known> known;
    {
        const ZQLockGuard lock(m_mutex);
        const auto place = m_known.constFind(data);
        if (place != m_known.constEnd()) {
            known = *place;
        }
    }
    if (known && !known->path.isEmpty()) {
        return zqIsFile(known->path, known->identity) ? known : std::nullopt;
    }
    const bool holds = known && known->folder == folder && uptime() < known->until;
    return holds ? known : std::nullopt;
}

void ZQFileFinder::remember(const QByteArray &data, const Known &known)
{
    const ZQLockGuard lock(m_mutex);
    if (!m_known.contains(data)) {
        m_order.push_back(data);
    }
    m_known.insert(data, known);
    if (m_order.size() > std::size_t(zqMostPersistentURLs)) {
        m_known.remove(m_order.front());
        m_order.pop_front();
    }
}

void ZQFileFinder::didFind(const Wanted &wanted, const QByteArray &path, const Stamp &folder)
{
    const auto found = zqLookAtFile(path);
    if (!found) {
        return; // gone since
    }
    Known known{.until = {},
                .path = path,
                .identity = found->identity,
                .folder = folder,
                .wasLookedForAround = true,
                .isTold = false};
    known.identity.fileSystem = known.identity.birth == 0 ? zqFileSystemOf(path) : 0;
    remember(wanted.data, known);
    tell(wanted.data, path, wanted.moved);
}

void ZQFileFinder::tell(const QByteArray &data, const QByteArray &path, const Moved &moved)
{
    if (path.isEmpty() || !moved) {
        return;
    }
    const ZQLockGuard lock(m_mutex);
    const auto place = m_known.find(data);
    if (place != m_known.end() && !std::exchange(place->isTold, true)) {
        m_tellings.append({path, moved});
        startWork();
    }
}

void ZQFileFinder::tellAgain(const QByteArray &data)
{
    const ZQLockGuard lock(m_mutex);
    if (const auto place = m_known.find(data); place != m_known.end()) {
        place->isTold = false;
    }
}

void ZQFileFinder::waitUntilLookedFor(const QByteArray &data)
{
    const ZQLockGuard lock(m_mutex);
    while (m_lookedFor.contains(data)) {
        m_idle.wait(m_mutex);
    }
}

void ZQFileFinder::didLookAround(const QByteArray &data)
{
    if (const auto place = m_known.find(data); place != m_known.end()) {
        place->wasLookedForAround = true;
    }
}

QList<ZQFileFinder::Wanted> ZQFileFinder::findInFolder(const QByteArray &folder, const QList<Wanted> &wanted)
{
    const Stamp stamp = stampOf(wanted.first().reference); // before it is read: what changes meanwhile is noticed
    QList<const ZQFileReference *> references;
    for (const Wanted &each : wanted) {
        references.append(&each.reference);
    }
    const auto found = ZQFileSearch(references, m_inCallers).run(folder, ZQFileSearch::Reach::Folder);
    QList<Wanted> missing;
    for (const Wanted &each : wanted) {
        const QByteArray path = pathInFolder(each.reference, found.value(&each.reference));
        if (path.isEmpty()) {
            remember(each.data, {.until = trustedUntil(stamp),
                                 .path = {},
                                 .identity = {},
                                 .folder = stamp,
                                 .wasLookedForAround = false,
                                 .isTold = false});
            missing.append(each);
        } else {
            didFind(each, path, stamp);
        }
    }
    return missing;
}

// Those of one folder are looked for in one go: with a folder all its files are gone.
void ZQFileFinder::findAround(const QList<Wanted> &wanted, std::atomic<qint64> &looked)
{
    QHash<QByteArray, QList<const ZQFileReference *>> groups; // by where to begin
    QHash<const ZQFileReference *, const Wanted *> owners;
    for (const Wanted &each : wanted) {
        groups[startOf(each.reference)].append(&each.reference);
        owners.insert(&each.reference, &each);
    }
    const auto lookFrom = [&](const QByteArray &start, QList<const ZQFileReference *> &missing) {
        const auto found = ZQFileSearch(missing, looked).run(start, ZQFileSearch::Reach::Below);
        for (auto place = found.constBegin(); place != found.constEnd(); ++place) {
            const Wanted &owner = *owners.value(place.key());
            didFind(owner, place.value(), stampOf(owner.reference));
            missing.removeOne(place.key());
        }
    };
    QList<const ZQFileReference *> left;
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        QByteArray start = group.key();
        for (int up = 0; up <= foldersUp && start != "/" && !group->isEmpty(); ++up) {
            lookFrom(start, *group);
            start = zqFolderOf(start);
        }
        left += *group;
    }
    QList<QByteArray> roots;
    {
        const ZQLockGuard lock(m_mutex);
        roots = m_roots;
    }
    for (const QByteArray &root : std::as_const(roots)) {
        if (!left.isEmpty() && !zqWouldMount(root)) {
            lookFrom(root, left);
        }
    }
    for (const ZQFileReference *reference : std::as_const(left)) {
        const Wanted &owner = *owners.value(reference);
        if (reference->isFolder && reference->isSuccessor(reference->path)) {
            didFind(owner, reference->path, stampOf(*reference));
        }
    }
}

void ZQFileFinder::findBeside(const QList<Wanted> &wanted)
{
    const ZQLockGuard lock(m_mutex);
    for (const Wanted &each : wanted) {
        m_wanted.append(each);
        m_lookedFor.insert(each.data);
    }
    startWork();
}

void ZQFileFinder::startWork()
{
    if (!std::exchange(m_isWorking, true)) {
        m_thread.start([this] { work(); });
    }
}

void ZQFileFinder::work()
{
    const ZQLockGuard lock(m_mutex);
    while (!m_wanted.isEmpty() || !m_tellings.isEmpty()) {
        const QList<Wanted> wanted = std::exchange(m_wanted, {});
        {
            const ZQUnlockGuard open(m_mutex);
            findAround(wanted, m_beside);
        }
        for (const Wanted &each : wanted) {
            didLookAround(each.data);
            m_lookedFor.remove(each.data);
        }
        for (const Wanted &again : std::as_const(m_wanted)) {
            m_lookedFor.insert(again.data);
        }
        m_idle.notifyAll();
        const QList<Telling> tellings = std::exchange(m_tellings, {});
        const ZQUnlockGuard open(m_mutex);
        for (const Telling &telling : tellings) {
            telling.moved(QFile::decodeName(telling.path));
        }
    }
    m_isWorking = false;
    m_idle.notifyAll();
}

void ZQFileFinder::setRoots(const QList<QByteArray> &roots)
{
    const ZQLockGuard lock(m_mutex);
    m_roots = roots;
    m_known.clear();
    m_order.clear();
}

void ZQFileFinder::forget()
{
    const ZQLockGuard lock(m_mutex);
    m_known.clear();
    m_order.clear();
}

void ZQFileFinder::wait()
{
    const ZQLockGuard lock(m_mutex);
    while (m_isWorking) {
        m_idle.wait(m_mutex);
    }
}
