#include "Tests/Support/ScratchLibrary.h"

#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/_ZQEntities.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <stdexcept>

ScratchLibrary::ScratchLibrary()
{
    for (const char *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        const QString folder = path(QString::fromLatin1(name));
        QDir().mkpath(folder);
        qputenv(name, QFile::encodeName(folder));
    }
    zqRegisterEntities();
    QDir().mkpath(path(QStringLiteral("Zelto.ztlibrary/Library")));
    ZQError error;
    m_coordinator = ZQPersistentStoreCoordinator::open(zqCurrentModel(),
                                                       path(QStringLiteral("Zelto.ztlibrary/storedata")), {}, &error);
    if (!m_coordinator) {
        throw std::runtime_error("The scratch store cannot be opened: " + error.localizedDescription().toStdString());
    }
    m_context = std::make_unique<ZQManagedObjectContext>(m_coordinator);
    ZQLibraryEnvironment::setCurrent(this);
}

ScratchLibrary::~ScratchLibrary()
{
    ZQLibraryEnvironment::setCurrent(nullptr);
}

void ScratchLibrary::reopenContext()
{
    ZQError error;
    if (!m_context->save(&error)) {
        throw std::runtime_error("The scratch library cannot be saved: " + error.localizedDescription().toStdString());
    }
    m_context = std::make_unique<ZQManagedObjectContext>(m_coordinator);
}

void ScratchLibrary::renameTable(const char *from, const char *to)
{
    const auto connection = m_coordinator->newConnection();
    const QString statement = QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                  .arg(QLatin1StringView(from), QLatin1StringView(to));
    if (!connection->execute(statement)) {
        qFatal("the table %s cannot be renamed", from);
    }
}

QString ScratchLibrary::writeFile(const QString &relative, const QByteArray &contents)
{
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).path());
    QFile output(file);
    if (!output.open(QIODevice::WriteOnly) || output.write(contents) != contents.size()) {
        throw std::runtime_error(file.toStdString() + " cannot be written");
    }
    return file;
}

QByteArray ScratchLibrary::readFile(const QString &file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray();
}

ZQRef<ZQLibraryImage> ScratchLibrary::addImage(const QString &title, const QString &extension,
                                               const QByteArray &contents)
{
    auto item = m_context->insertNewObject<ZQLibraryImage>();
    item->setBundleID(QUuid::createUuid().toString(QUuid::WithoutBraces));
    item->setTitle(title);
    item->setExtension(extension);
    item->setOriginalExtension(extension);
    item->setManaged(true);
    item->setActive(true);
    writeFile(QDir(m_folder.path()).relativeFilePath(item->managedItemURL()), contents);
    item->setItemURLData(zqDataForPersistentURL(item->managedItemURL()));
    return item;
}

ZQRef<ZQLibraryImage> ScratchLibrary::addReferencedImage(const QString &file)
{
    auto item = m_context->insertNewObject<ZQLibraryImage>();
    item->setBundleID(QUuid::createUuid().toString(QUuid::WithoutBraces));
    item->setTitle(zqBaseName(file));
    item->setExtension(zqPathExtension(file));
    item->setOriginalExtension(zqPathExtension(file));
    item->setManaged(false);
    item->setActive(true);
    item->setItemURLData(zqDataForPersistentURL(file));
    return item;
}

QString ScratchLibrary::libraryDirectory()
{
    return path(QStringLiteral("Zelto.ztlibrary/Library"));
}

QString ScratchLibrary::libraryPathForFilePath(const QString &file)
{
    const QString directory = libraryDirectory() + QLatin1Char('/') +
                              QUuid::createUuid().toString(QUuid::WithoutBraces) +
                              ZQLibraryBaseItem::itemDirectoryExtension;
    return QDir().mkpath(directory) ? directory + QLatin1Char('/') + QFileInfo(file).fileName() : QString();
}

void ScratchLibrary::thumbForLibraryItem(ZQLibraryBaseItem *item)
{
    thumbRequests.append(item);
}

std::optional<QStringList> ScratchLibrary::userTagsOfFile(const QString &file)
{
    const auto found = fileTags.constFind(file);
    return found == fileTags.constEnd() ? std::nullopt : std::make_optional(found->tags);
}

std::optional<QString> ScratchLibrary::commentOfFile(const QString &file)
{
    const auto found = fileTags.constFind(file);
    return found == fileTags.constEnd() ? std::nullopt : std::make_optional(found->comment);
}

std::optional<int> ScratchLibrary::ratingOfFile(const QString &file)
{
    const auto found = fileTags.constFind(file);
    return found == fileTags.constEnd() ? std::nullopt : std::make_optional(found->rating);
}

std::shared_ptr<void> ScratchLibrary::willWriteTagsOfItems(const QStringList &bundleIDs)
{
    didAnnounce(bundleIDs);
    return {nullptr, [this](void *) { didEndAnnouncement(); }};
}

void ScratchLibrary::writeTagsToFile(const QString &file, const ZQFileTags &tags)
{
    written.append({file, tags.tags, tags.comment, tags.rating});
}

void ScratchLibrary::takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        filesToTakeIn.append(item->title());
    }
}
