#include "Classes/Import/TakeBackOperation.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImportReport.h"
#include "Classes/Import/ImporterForFile.h"
#include "Classes/Import/ItemInserter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQSidebarProject.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype atATime = 64; // between two saves

// "BASE_thumb.jpg" beside "BASE.png"; a lone one is what the person called so.
bool isThumbnail(const QFileInfo &file, const QFileInfoList &beside)
{
    static const QString ending = QStringLiteral("_thumb");
    const QString name = file.completeBaseName();
    const QString base = name.chopped(std::min(name.size(), ending.size()));
    return name.endsWith(ending) && std::any_of(beside.begin(), beside.end(), [&base](const QFileInfo &other) {
               return other.fileName().startsWith(base + u'.');
           });
}

QString pathOfDirectory(const QString &name)
{
    return ZQLibraryEnvironment::current().libraryDirectory() + u'/' + name;
}

QString bundleIDOf(const QString &name)
{
    return name.chopped(ZQLibraryBaseItem::itemDirectoryExtension.size());
}

// What the file carries is what the item had. What an import would read out of the picture itself may have been taken
// away from the item on purpose.
ImportSettings settingsForTakingBack()
{
    ImportSettings settings = ImportSettings::current();
    settings.importOpenMetaTags = true;
    settings.importIPTCTags = false;
    return settings;
}

} // namespace

TakeBackOperation::TakeBackOperation(const QStringList &names, ImportOwner &owner)
    : m_names(names), m_owner(owner),
      m_coordinator(tamberin_AppDelegate::sharedDelegate()->persistentStoreCoordinator()),
      m_userInteraction(tamberin_AppDelegate::sharedDelegate()->userInteraction())
{
}

QString TakeBackOperation::assetInDirectory(const QString &directory)
{
    const QFileInfoList entries = QDir(directory).entryInfoList(
        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Size | QDir::LocaleAware);
    for (const QFileInfo &entry : entries) { // the largest first
        const ImportKind *kind = importKindForPath(entry.filePath());
        const bool canBeItems = kind && kind->importer != Importer::Archive && kind->importer != Importer::Snap;
        if (canBeItems && !isThumbnail(entry, entries) &&
            entry.fileName() != ZQLibraryBaseItem::representationBitmapName &&
            ImportQueries::fileAtPathIsSupported(entry.filePath())) {
            return entry.filePath();
        }
    }
    return {};
}

void TakeBackOperation::main()
{
    if (!m_coordinator || m_names.isEmpty() || isCancelled()) {
        m_isComplete = m_coordinator && m_names.isEmpty();
        return;
    }
    m_moc = std::make_unique<ZQManagedObjectContext>(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
    const auto merging = m_moc->observeDidSave([this](const ZQContextDidSave &notification) {
        zqOnMainThreadAndWait([this, &notification] { m_owner.mergeChanges(notification); });
    });
    const std::weak_ptr<ZQOperation> operation = weak_from_this();
    m_progress = m_userInteraction.beginProgress(zqLocalized("Taking files of the library back…"),
                                                 double(m_names.size()), [operation] {
                                                     if (const auto running = operation.lock()) {
                                                         running->cancel();
                                                     }
                                                 });
    orderByBirth();
    bool isWell = true;
    for (qsizetype first = 0; isWell && first < m_names.size(); first += atATime) {
        isWell = takeBack(m_names.mid(first, atATime)) && !isCancelled() && !m_isRefused;
        m_moc->reset();
    }
    m_isComplete = isWell;
    m_progress.reset();
    m_moc.reset();
}

// They came into the library when their directories were made, and what is new there still comes first. No two get the
// same date, or their order would be the store's.
void TakeBackOperation::orderByBirth()
{
    const qint64 now = zqNow().toMSecsSinceEpoch();
    QHash<QString, qint64> births;
    for (const QString &name : std::as_const(m_names)) {
        const auto dates = zqFileDates(pathOfDirectory(name));
        births.insert(name, dates ? std::min(dates->birth, now) : now);
    }
    std::sort(m_names.begin(), m_names.end(), [&births](const QString &a, const QString &b) {
        return std::pair(births.value(a), a) < std::pair(births.value(b), b);
    });
    qint64 next = 0;
    for (const QString &name : std::as_const(m_names)) {
        next = std::max(next + 1, births.value(name));
        m_importDates.insert(name, QDateTime::fromMSecsSinceEpoch(next, Qt::UTC));
    }
}

bool TakeBackOperation::takeBack(const QStringList &names)
{
    const auto rest = unnamed(names);
    if (!rest) {
        return false;
    }
    ZQOperationQueue queue(QStringLiteral("Taking back"), 3);
    const auto token = observe([&queue](Key key) {
        if (key == Key::IsCancelled) {
            queue.cancelAllOperations();
        }
    });
    const std::vector<ImportedFile> files = readFiles(*rest, queue);
    if (isCancelled()) {
        return true;
    }
    for (qsizetype i = 0; i < rest->size() && !m_isRefused; ++i) {
        if (files[std::size_t(i)].fileData.isEmpty()) {
            m_namesLeft.append(rest->at(i));
        }
    }
    return insertItems(files);
}

std::optional<QStringList> TakeBackOperation::unnamed(const QStringList &names)
{
    QStringList bundleIDs;
    for (const QString &name : names) {
        bundleIDs.append(bundleIDOf(name));
    }
    ZQError error;
    const auto rows =
        m_moc->fetchDictionaries({ZQLibraryBaseItem::entityName(),
                                  ZQPredicate::predicateWithFormat(QStringLiteral("bundleID in %@"), {bundleIDs})},
                                 {QStringLiteral("bundleID")}, &error);
    if (!rows) {
        qCWarning(zqLogImport).noquote() << "No item directory is taken back:" << error.localizedDescription();
        return std::nullopt;
    }
    QSet<QString> known;
    for (const QVariantMap &row : *rows) {
        known.insert(row.value(QStringLiteral("bundleID")).toString());
    }
    QStringList rest = names;
    rest.removeIf([&known](const QString &name) { return known.contains(bundleIDOf(name)); });
    return rest;
}

std::vector<ImportedFile> TakeBackOperation::readFiles(const QStringList &names, ZQOperationQueue &queue)
{
    std::vector<ImportedFile> files(std::size_t(names.size()));
    std::vector<std::shared_ptr<BaseImportOperation>> operations;
    for (qsizetype i = 0; i < names.size() && !isCancelled(); ++i) {
        const QString directory = pathOfDirectory(names.at(i));
        const QString asset = assetInDirectory(directory);
        const auto operation = asset.isEmpty() ? nullptr : importOperationForFilePath(asset);
        if (!operation) {
            qCInfo(zqLogImport).noquote() << "The item directory" << directory
                                          << "belongs to no item, holds no file of a kind that can be imported, and "
                                             "stays where it is";
            continue;
        }
        operation->setItemDirectory(directory);
        operation->setSettings(settingsForTakingBack());
        operation->setImportDate(m_importDates.value(names.at(i)));
        operation->setImportData(&files[std::size_t(i)]);
        operation->setFatherOperation(this);
        operations.push_back(operation);
        queue.addOperation(operation);
    }
    for (const auto &operation : operations) {
        operation->waitUntilFinished();
    }
    return files;
}

bool TakeBackOperation::insertItems(const std::vector<ImportedFile> &files)
{
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    ItemInserter inserter(*m_moc);
    QList<ZQRef<ZQLibraryBaseItem>> items;
    for (const ImportedFile &file : files) {
        const ItemInserter::Inserted inserted =
            file.fileData.isEmpty() ? ItemInserter::Inserted() : inserter.insert(file.fileData);
        if (!inserted.item) {
            continue;
        }
        if (!file.fileData.contains(QStringLiteral("rating"))) {
            inserted.item->setRating(qint16(environment.ratingOfFile(file.filePath).value_or(0)));
        }
        items.append(inserted.item);
    }
    if (items.isEmpty()) {
        return true;
    }
    if (const ZQRef<ZQSidebarBaseItem> project = recoveredProject()) {
        project->addItems(items);
    }
    ZQError error;
    if (!zqSyncFileSystem(environment.libraryDirectory(), &error) || !m_moc->save(&error)) {
        qCWarning(zqLogImport).noquote() << "Items that were taken back could not be saved:"
                                         << error.localizedDescription();
        return false;
    }
    m_takenBackCount += items.size();
    return true;
}

ZQRef<ZQSidebarBaseItem> TakeBackOperation::recoveredProject()
{
    const ZQRef<ZQSidebarBaseItem> projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*m_moc);
    if (!projects) {
        return {};
    }
    const QString title = zqLocalized("Recovered");
    for (const ZQRef<ZQSidebarBaseItem> &child : projects->orderedChildren()) {
        if (child->isProject() && child->title() == title) {
            return child;
        }
    }
    const auto project = m_moc->insertNewObject<ZQSidebarProject>();
    project->setTitle(title);
    projects->appendChild(project.get());
    return project;
}

void TakeBackOperation::fileDidDrop(const DroppedFile &file)
{
    const char *outcome = file.isImportedInPart() ? "belonged to no item and was taken back in part:"
                                                  : "belongs to no item and was not taken back:";
    qCWarning(zqLogImport).noquote() << "The file" << file.path << outcome << file.reason;
}

void TakeBackOperation::fileDidFinish()
{
    m_progress->advanceBy(1);
}
