#include "Classes/Application/LeftoverSearch.h"

#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/RemovalNote.h"
#include "Classes/Tags/FileTags.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr qsizetype namesInOneQuery = 500;
constexpr int rowsInOneQuery = 1000;
constexpr qint64 clockGrain = 1000; // milliseconds; birth times come from a coarser clock
const QString bundleIDKey = QStringLiteral("bundleID");

struct Observer
{
    ZQMutex mutex;
    std::function<void(qsizetype)> block ZQ_GUARDED_BY(mutex);
};
Observer &observer()
{
    static Observer instance;
    return instance;
}

QString bundleIDOf(const QString &directory)
{
    return directory.left(directory.lastIndexOf(u'.'));
}

// Whether an item of this directory was saved once: its file holds the record of what the library last wrote to it.
bool wasNamedOnce(const QString &directory)
{
    const QFileInfoList files = QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    return std::any_of(files.begin(), files.end(),
                       [](const QFileInfo &file) { return SeenFileTags::ofFile(file.filePath()).has_value(); });
}

bool isItemDirectory(const dirent &entry, int folder)
{
    const QByteArrayView name(entry.d_name);
    const QByteArray ending = ZQLibraryBaseItem::itemDirectoryExtension.toLatin1();
    if (name.startsWith('.') || name.size() <= ending.size() ||
        name.last(ending.size()).compare(ending, Qt::CaseInsensitive) != 0) {
        return false;
    }
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status = {};
    return fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

// A directory whose name the store does not know as it is written.
struct LeftoverSearch::Candidate
{
    QString name;
    qint64 birth = 0; // milliseconds since 1970
    qint64 since = 0; // a copied library is born with its copy; times that were kept tell how old it is
};

LeftoverSearch::LeftoverSearch(Place place)
    : m_place(std::move(place)), m_context(std::make_unique<ZQManagedObjectContext>(m_place.store))
{
}

LeftoverSearch::~LeftoverSearch() = default;

void LeftoverSearch::setObserver(std::function<void(qsizetype namesHeld)> block)
{
    const ZQLockGuard lock(observer().mutex);
    observer().block = std::move(block);
}

void LeftoverSearch::tellObserver(qsizetype namesInBatch) const
{
    std::function<void(qsizetype)> block;
    {
        const ZQLockGuard lock(observer().mutex);
        block = observer().block;
    }
    if (block) {
        block(namesInBatch + m_candidates.size() + m_dueRemovals.size() + m_found.lost.size() +
              m_found.leftovers.size());
    }
}

std::optional<LibraryLeftovers> LeftoverSearch::run(const std::stop_token &stop)
{
    m_found = {};
    m_candidates.clear();
    ZQError error;
    const auto any = m_context->fetchDictionaries({.entityName = ZQLibraryBaseItem::entityName(), .fetchLimit = 1},
                                                  {bundleIDKey}, &error);
    if (!any) {
        zqLogFetchError(error);
        return std::nullopt;
    }
    m_found.storeIsEmpty = any->isEmpty();
    if (!keepDueRemovals(stop) || !readDirectory(stop) || !dropThoseInOtherLetters(stop)) {
        return std::nullopt;
    }
    const QList<Candidate> candidates = std::exchange(m_candidates, {});
    QSet<QString> bundleIDs;
    for (const Candidate &candidate : candidates) {
        bundleIDs.insert(bundleIDOf(candidate.name));
    }
    const CutOffImports imports =
        m_place.cutOffImports && !bundleIDs.isEmpty() ? m_place.cutOffImports(bundleIDs) : CutOffImports();
    for (const Candidate &candidate : candidates) {
        if (stop.stop_requested()) {
            return std::nullopt;
        }
        classify(candidate, imports);
    }
    return std::move(m_found);
}

std::optional<QSet<QString>> LeftoverSearch::namedAmong(const QStringList &bundleIDs)
{
    ZQError error;
    const auto rows = m_context->fetchDictionaries(
        {.entityName = ZQLibraryBaseItem::entityName(),
         .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("bundleID in %@"), {bundleIDs})},
        {bundleIDKey}, &error);
    if (!rows) {
        zqLogFetchError(error);
        return std::nullopt;
    }
    QSet<QString> named;
    named.reserve(rows->size());
    for (const QVariantMap &row : *rows) {
        named.insert(row.value(bundleIDKey).toString());
    }
    return named;
}

std::optional<QStringList> LeftoverSearch::unnamedOf(const QStringList &names, const std::stop_token &stop)
{
    QStringList unnamed;
    for (qsizetype first = 0; first < names.size(); first += namesInOneQuery) {
        const QStringList batch = names.mid(first, namesInOneQuery);
        QStringList bundleIDs;
        for (const QString &name : batch) {
            bundleIDs.append(bundleIDOf(name));
            if (const QString upper = bundleIDs.last().toUpper(); upper != bundleIDs.last()) {
                bundleIDs.append(upper); // as the library names them
            }
        }
        const auto named = namedAmong(bundleIDs);
        if (!named || stop.stop_requested()) {
            return std::nullopt;
        }
        std::copy_if(batch.begin(), batch.end(), std::back_inserter(unnamed), [&named](const QString &name) {
            return !named->contains(bundleIDOf(name)) && !named->contains(bundleIDOf(name).toUpper());
        });
    }
    return unnamed;
}

// The noted removals that are still to go. One that the store names again is not among them, and not noted any more.
bool LeftoverSearch::keepDueRemovals(const std::stop_token &stop)
{
    m_dueRemovals.clear();
    const RemovalNote note(m_place.removalsPath, m_place.library);
    const auto due = unnamedOf(note.present(), stop);
    if (!due || stop.stop_requested()) { // then the note stays as it is
        return false;
    }
    m_dueRemovals = {due->begin(), due->end()};
    if (const QStringList noted = note.names(); *due != noted) {
        note.write(*due);
    }
    return true;
}

bool LeftoverSearch::readDirectory(const std::stop_token &stop)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(QFile::encodeName(m_place.library).constData()),
                                                      closedir);
    QStringList batch;
    while (folder && !stop.stop_requested()) {
        errno = 0;
        const dirent *const entry = readdir(folder.get());
        if (!entry && errno == 0) {
            return judgeBatch(batch);
        }
        if (!entry) {
            break;
        }
        if (isItemDirectory(*entry, dirfd(folder.get()))) {
            batch.append(QFile::decodeName(entry->d_name));
        }
        if (batch.size() == namesInOneQuery) {
            if (!judgeBatch(batch)) {
                return false;
            }
            batch.clear();
        }
    }
    if (!stop.stop_requested()) {
        qCWarning(zqLogApplication).noquote()
            << "The item directories in" << m_place.library << "could not be read:" << std::strerror(errno);
    }
    return false;
}

bool LeftoverSearch::judgeBatch(const QStringList &names)
{
    m_found.directories += names.size();
    const auto unnamed = unnamedOf(names);
    if (!unnamed) {
        return false;
    }
    for (const QString &name : *unnamed) {
        const auto dates = zqFileDates(m_place.library + u'/' + name);
        const bool isOfThisProcess =
            !dates || dates->birth > m_place.launch.toMSecsSinceEpoch() || LibraryBundleManager::didMake(name);
        if (!isOfThisProcess) {
            m_candidates.append({name, dates->birth, std::min(dates->birth, dates->modification)});
        }
    }
    tellObserver(names.size());
    return true;
}

// A file system or a program may have changed the letters of a directory's name. Which ones differ is not known, so the
// store's names are all looked at, but only when there is something to look for.
bool LeftoverSearch::dropThoseInOtherLetters(const std::stop_token &stop)
{
    QSet<QString> inOtherLetters;
    QSet<QString> wanted;
    for (const Candidate &candidate : std::as_const(m_candidates)) {
        wanted.insert(bundleIDOf(candidate.name).toLower());
    }
    QString last = QStringLiteral("");
    bool isAtEnd = wanted.isEmpty();
    while (!isAtEnd) {
        ZQError error;
        const auto rows = m_context->fetchDictionaries(
            {.entityName = ZQLibraryBaseItem::entityName(),
             .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("bundleID > %@"), {last}),
             .sortDescriptors = {{.keyPath = bundleIDKey}},
             .fetchLimit = rowsInOneQuery},
            {bundleIDKey}, &error);
        if (!rows) {
            zqLogFetchError(error);
        }
        if (!rows || stop.stop_requested()) {
            return false;
        }
        for (const QVariantMap &row : *rows) {
            last = row.value(bundleIDKey).toString();
            if (wanted.contains(last.toLower())) {
                inOtherLetters.insert(last.toLower());
            }
        }
        isAtEnd = rows->size() < rowsInOneQuery;
        tellObserver(rows->size());
    }
    m_candidates.removeIf([&inOtherLetters](const Candidate &candidate) {
        return inOtherLetters.contains(bundleIDOf(candidate.name).toLower());
    });
    return true;
}

// When a cut-off import began says little: an older copy of the store that was put back has forgotten what later ones
// brought, too.
void LeftoverSearch::classify(const Candidate &candidate, const CutOffImports &imports)
{
    const QDateTime storeDate = m_place.store->creationDate();
    const bool isNoted = m_dueRemovals.contains(candidate.name);
    const bool isExplained =
        isNoted || (imports.since && candidate.birth >= imports.since->toMSecsSinceEpoch() - clockGrain);
    const bool mayHaveBeenNamed =
        m_place.store->wasRecovered() || !storeDate.isValid() || candidate.since <= storeDate.toMSecsSinceEpoch() ||
        imports.saved.contains(bundleIDOf(candidate.name)) || wasNamedOnce(m_place.library + u'/' + candidate.name);
    const bool isLost = mayHaveBeenNamed && !isNoted;
    (isLost ? m_found.lost : m_found.leftovers).append(candidate.name);
    m_found.unexplained += !isLost && !isExplained ? 1 : 0;
}
