// Item directories that belong to no item of the store: what an ended import left goes, what a lost store knew comes
// back.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Tags/FileTags.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSet>

#include <algorithm>

namespace {

constexpr qsizetype pathsPerRemoval = 1000;
constexpr qsizetype removedWithoutAsking = 20;
constexpr qint64 clockGrain = 1000; // milliseconds; birth times come from a coarser clock
constexpr int takeBackButton = 0;
constexpr int removeButton = 1;

// In small letters: a file system or a program may have changed those of a directory's name.
std::optional<QSet<QString>> bundleIDsOfStore(ZQManagedObjectContext &context)
{
    ZQError error;
    const auto rows =
        context.fetchDictionaries({ZQLibraryBaseItem::entityName()}, {QStringLiteral("bundleID")}, &error);
    if (!rows) {
        zqLogFetchError(error);
        return std::nullopt;
    }
    QSet<QString> known;
    known.reserve(rows->size());
    for (const QVariantMap &row : *rows) {
        known.insert(row.value(QStringLiteral("bundleID")).toString().toLower());
    }
    return known;
}

// Whether an item of this directory was saved once: its file holds the record of what the library last wrote to it. An
// import's file may bring one from elsewhere, so this counts only where no import that was cut off explains it.
bool wasNamedOnce(const QString &directory)
{
    const QFileInfoList files = QDir(directory).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    return std::any_of(files.begin(), files.end(),
                       [](const QFileInfo &file) { return SeenFileTags::ofFile(file.filePath()).has_value(); });
}

// Item directories that no item names, by their names.
struct Unnamed
{
    QStringList lost;          // which a store that is gone may have named
    QStringList leftovers;     // made for items that were never saved, or whose items were removed
    qsizetype unexplained = 0; // of the leftovers, those that no import which was cut off accounts for
    qsizetype directories = 0; // all there are
};

Unnamed unnamedDirectories(const QString &library, const QSet<QString> &known, const QDateTime &launch,
                           const std::optional<QDateTime> &cutOffImport, const QSet<QString> &notedRemovals,
                           const ZQPersistentStoreCoordinator &store)
{
    Unnamed unnamed;
    const QDateTime storeDate = store.creationDate();
    const QFileInfoList entries = QDir(library).entryInfoList({u'*' + ZQLibraryBaseItem::itemDirectoryExtension},
                                                              QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo &entry : entries) {
        ++unnamed.directories;
        const auto dates = zqFileDates(entry.filePath());
        // A directory made since launch belongs to an import that has not saved yet.
        if (known.contains(entry.completeBaseName().toLower()) || !dates || dates->birth > launch.toMSecsSinceEpoch()) {
            continue;
        }
        // A copied library is born with its copy; times that were kept tell how old it is.
        const qint64 since = std::min(dates->birth, dates->modification);
        const bool isExplained = notedRemovals.contains(entry.fileName()) ||
                                 (cutOffImport && dates->birth >= cutOffImport->toMSecsSinceEpoch() - clockGrain);
        const bool mayHaveBeenNamed =
            store.wasRecovered() || !storeDate.isValid() || since <= storeDate.toMSecsSinceEpoch() ||
            (!isExplained && wasNamedOnce(entry.filePath())); // and the store forgot what it had saved
        const bool isLost = mayHaveBeenNamed && !notedRemovals.contains(entry.fileName());
        (isLost ? unnamed.lost : unnamed.leftovers).append(entry.fileName());
        unnamed.unexplained += !isLost && !isExplained ? 1 : 0;
    }
    return unnamed;
}

} // namespace

void tamberin_AppDelegate::checkAndDeleteLibraryLeftovers()
{
    ZQManagedObjectContext *context = managedObjectContext();
    const QString library = libraryDirectory();
    const auto known = context && !library.isEmpty() ? bundleIDsOfStore(*context) : std::nullopt;
    if (!known) {
        return;
    }
    const std::optional<QDateTime> cutOffImport =
        m_parts.importManager ? m_parts.importManager->cutOffImportSince() : std::nullopt;
    const QSet<QString> noted = keepDueRemovals(*known);
    Unnamed unnamed = unnamedDirectories(library, *known, m_launchDate, cutOffImport, noted, *m_coordinator);
    if (known->isEmpty() && !unnamed.leftovers.isEmpty()) {
        // A store without a single item beside filled directories is a lost or restored store, not rubbish.
        qCWarning(zqLogApplication) << "The store lists no items, so" << unnamed.leftovers.size()
                                    << "item directories are left where they are";
        unnamed.leftovers.clear();
        unnamed.unexplained = 0;
    }
    switch (answerAboutLeftovers(unnamed.unexplained, unnamed.directories)) {
    case takeBackButton:
        unnamed.lost.append(unnamed.leftovers);
        break;
    case removeButton:
        for (qsizetype first = 0; first < unnamed.leftovers.size(); first += pathsPerRemoval) {
            deleteFilesAtPaths(unnamed.leftovers.mid(first, pathsPerRemoval), library);
        }
        break;
    default:
        qCWarning(zqLogApplication) << unnamed.leftovers.size() << "item directories of no item are left";
        break;
    }
    takeBack(unnamed.lost);
}

// The directories of purged items, in a file of the bundle from before their items go until they have gone themselves:
// what a killed process leaves of them is no loss.
QString tamberin_AppDelegate::removalsPath()
{
    return libraryBundleDirectory() + QStringLiteral("/pending-removals");
}

void tamberin_AppDelegate::noteRemovals(const QStringList &directories)
{
    ZQError error;
    if (!directories.isEmpty() && !zqWriteFileAtomically(removalsPath(), directories.join(u'\n').toUtf8(), &error)) {
        qCWarning(zqLogApplication).noquote() << error.localizedDescription(); // they may be taken back then
    }
}

// The noted ones that are still to go. One that the store names again is not among them, and not noted any more.
QSet<QString> tamberin_AppDelegate::keepDueRemovals(const QSet<QString> &known)
{
    constexpr qint64 largestNote = qint64(256) << 20;
    const QFileInfo note(removalsPath());
    QFile file(note.filePath());
    if (note.isSymLink() || !note.isFile() || note.size() > largestNote || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList due = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    file.close();
    const QString library = libraryDirectory();
    due.removeIf([&](const QString &name) {
        return known.contains(QFileInfo(name).completeBaseName().toLower()) || name.contains(u'/') ||
               !QFileInfo(library + u'/' + name).isDir();
    });
    if (due.isEmpty()) {
        QFile::remove(note.filePath());
    } else {
        noteRemovals(due);
    }
    return {due.begin(), due.end()};
}

// So many at once are hardly what one import left.
int tamberin_AppDelegate::answerAboutLeftovers(qsizetype count, qsizetype ofAll)
{
    if (count <= removedWithoutAsking || count * 10 <= ofAll) {
        return removeButton;
    }
    return userInteraction().ask(
        {zqFormat(zqLocalized("%d folders of the library belong to no item"), {count}),
         zqLocalized("They may be what is left of imports that were cut off, or belong to items that the library lost. "
                     "Zelto can take them back into the project “Recovered”, where you can look at them, or remove "
                     "them with the files in them."),
         {zqLocalized("Take Back"), zqLocalized("Remove"), zqLocalized("Not Now")},
         {},
         true});
}

void tamberin_AppDelegate::takeBack(const QStringList &directories)
{
    if (directories.isEmpty()) {
        if (m_coordinator->wasRecovered()) {
            m_coordinator->clearRecovered();
        }
        return;
    }
    if (!m_parts.importManager) {
        qCWarning(zqLogApplication) << directories.size() << "item directories of no item are left";
        return;
    }
    m_isTakingBack = true;
    m_parts.importManager->takeBackItemDirectories(directories,
                                                   [delegate = QPointer(this)](qsizetype takenBack, bool isComplete) {
                                                       if (delegate) {
                                                           delegate->didTakeBack(takenBack, isComplete);
                                                       }
                                                   });
}

void tamberin_AppDelegate::didTakeBack(qsizetype takenBack, bool isComplete)
{
    m_isTakingBack = false;
    if (isComplete && m_coordinator && m_coordinator->wasRecovered()) {
        m_coordinator->clearRecovered();
    }
    if (takenBack == 0) {
        return;
    }
    const QString text =
        takenBack == 1
            ? zqLocalized("1 file of the library had lost its entry and was taken back.")
            : zqFormat(zqLocalized("%d files of the library had lost their entries and were taken back."), {takenBack});
    qCWarning(zqLogApplication).noquote() << text;
    userInteraction().ask(
        {text, zqLocalized("Look for them in the project “Recovered”."), {zqLocalized("OK")}, {}, false});
}
