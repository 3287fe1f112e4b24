// Item directories that belong to no item of the store.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

void tamberin_AppDelegate::checkAndDeleteLibraryLeftovers()
{
    ZQManagedObjectContext *context = managedObjectContext();
    const QString library = libraryDirectory();
    if (!context || library.isEmpty()) {
        return;
    }
    ZQError error;
    const auto rows =
        context->fetchDictionaries({ZQLibraryBaseItem::entityName()}, {QStringLiteral("bundleID")}, &error);
    if (!rows) {
        qCWarning(zqLogStore).noquote() << zqFormat(QStringLiteral("Error while fetching\n%@"),
                                                     {error.localizedDescription().isEmpty()
                                                          ? QStringLiteral("Unknown Error")
                                                          : error.localizedDescription()});
        return;
    }
    QSet<QString> known;
    known.reserve(rows->size());
    for (const QVariantMap &row : *rows) {
        known.insert(row.value(QStringLiteral("bundleID")).toString());
    }

    QStringList leftovers;
    const QFileInfoList entries = QDir(library).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString name = entry.completeBaseName();
        // A directory made since launch belongs to an import that has not saved yet.
        const auto dates = zqFileDates(entry.filePath());
        const bool isOlder = dates && dates->birth <= m_launchDate.toMSecsSinceEpoch();
        if (!known.contains(name) && isOlder) {
            leftovers.append(name + QStringLiteral(".ztlibraryitem"));
        }
    }
    if (leftovers.isEmpty()) {
        return;
    }
    if (known.isEmpty()) {
        // A store without a single item beside filled directories is a lost or restored store, not rubbish.
        qCWarning(zqLogApplication) << "The store lists no items, so" << leftovers.size()
                                    << "item directories are left where they are";
        return;
    }
    deleteFilesAtPaths(leftovers, library);
}
