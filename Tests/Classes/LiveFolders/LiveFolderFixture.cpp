#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <filesystem>

LiveFolderTest::~LiveFolderTest()
{
    close();
}

void LiveFolderTest::open()
{
    manager = std::make_unique<LiveFolderManager>();
    manager->removalQuestions().setQuietTime(std::chrono::milliseconds(0));
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.liveFolderManager = manager.get();
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(path(QStringLiteral("Test.ztlibrary")));
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
}

void LiveFolderTest::close()
{
    if (manager) {
        wait();
    }
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    AImportManager::sharedAImportManager().thumbsGenerationQueue().waitUntilAllOperationsAreFinished();
    QCoreApplication::processEvents();
    delegate.reset();
    manager.reset();
}

QByteArray LiveFolderTest::pictureBytes()
{
    static int number = 0;
    QImage image(24, 16, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(number % 360, 200, 200));
    image.setText(QStringLiteral("Number"), QString::number(++number));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG"));
    return bytes;
}

QString LiveFolderTest::writePicture(const QString &relative) const
{
    const QString file = path(relative);
    makeFolder(QFileInfo(file).path());
    QFile out(file);
    const QByteArray bytes = pictureBytes();
    EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size()) << qPrintable(file);
    return file;
}

void LiveFolderTest::makeFolder(const QString &path)
{
    EXPECT_TRUE(QDir().mkpath(path)) << qPrintable(path);
}

void LiveFolderTest::move(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(from.toStdString(), to.toStdString(), error);
    EXPECT_FALSE(error) << qPrintable(from) << " to " << qPrintable(to) << ": " << error.message();
}

QByteArray LiveFolderTest::bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void LiveFolderTest::wait()
{
    const auto isIdle = [this] {
        if (manager->syncOperationQueue().operationCount() > 0 || delegate->editQueue().operationCount() > 0) {
            return false;
        }
        const auto roots = ZQSidebarWatchedFolder::watchedFoldersInManagedObjectContext(context());
        return !roots || std::none_of(roots->begin(), roots->end(), [this](const auto &root) {
            return manager->statusOfWatchedFolder(root->objectID()).isSyncing;
        });
    };
    zqRunMainLoopUntil(isIdle, std::chrono::milliseconds(2));
}

ZQObjectID LiveFolderTest::add(const QString &path)
{
    const AddedLiveFolders added = manager->addNewWatchFolderFromPaths({path}, ZQSidebarBaseItem::appendIndex);
    EXPECT_EQ(added.added.size(), 1) << qPrintable(added.refused.isEmpty() ? path : added.refused.first().reason);
    wait();
    return added.added.value(0);
}

void LiveFolderTest::sync(bool isForced)
{
    manager->syncRootWatchedFoldersForceSync(isForced);
    wait();
}

void LiveFolderTest::sync(const ZQObjectID &folder)
{
    manager->syncWatchedFolder(folder, false);
    wait();
}

ZQRef<ZQSidebarWatchedFolder> LiveFolderTest::folder(const ZQObjectID &id) const
{
    return zqCast<ZQSidebarWatchedFolder>(context().existingObjectWithID(id));
}

ZQRef<ZQSidebarWatchedFolder> LiveFolderTest::folderAt(const QString &path) const
{
    return ZQSidebarWatchedFolder::watchedFolderWithPath(path, context());
}

QMap<QString, ZQRef<ZQLibraryBaseItem>> LiveFolderTest::items() const
{
    QMap<QString, ZQRef<ZQLibraryBaseItem>> byPath;
    const auto all = zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("active == YES AND managed == NO"));
    for (const ZQRef<ZQLibraryBaseItem> &item : *all) {
        const QString path = item->findItemURL();
        EXPECT_FALSE(byPath.contains(path)) << "two items of " << qPrintable(path);
        byPath.insert(path, item);
    }
    return byPath;
}

QStringList LiveFolderTest::itemPaths(const QString &below) const
{
    QStringList paths;
    const auto all = items();
    for (auto item = all.constBegin(); item != all.constEnd(); ++item) {
        if (item.key().startsWith(below + u'/')) {
            paths.append(item.key().mid(below.size() + 1));
        }
    }
    return paths;
}

void LiveFolderTest::expectInStep(const QString &root) const
{
    const auto all = items();
    QStringList folders = {root};
    QSet<QString> files;
    for (qsizetype i = 0; i < folders.size(); ++i) {
        const ZQRef<ZQSidebarWatchedFolder> row = folderAt(folders[i]);
        ASSERT_TRUE(row) << qPrintable(folders[i]);
        EXPECT_EQ(row->title(), QFileInfo(folders[i]).fileName());
        const auto entries =
            QDir(folders[i]).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot);
        qsizetype children = 0;
        for (const QFileInfo &entry : entries) {
            if (entry.isDir()) {
                ++children;
                folders.append(entry.filePath());
            } else if (entry.suffix() == u"png" && entry.isReadable()) {
                files.insert(entry.filePath());
                const ZQRef<ZQLibraryBaseItem> item = all.value(entry.filePath());
                ASSERT_TRUE(item) << qPrintable(entry.filePath());
                EXPECT_EQ(item->title(), zqBaseName(entry.filePath()));
                EXPECT_EQ(item->SHA1(), QString::fromLatin1(zqSHA1OfFile(entry.filePath())));
                EXPECT_EQ(item->watchingFolder(), row) << qPrintable(entry.filePath());
            }
        }
        EXPECT_EQ(row->childsItems().size(), children) << qPrintable(folders[i]);
    }
    for (auto item = all.constBegin(); item != all.constEnd(); ++item) {
        EXPECT_TRUE(!item.key().startsWith(root + u'/') || files.contains(item.key())) << qPrintable(item.key());
    }
}

void LiveFolderTest::adorn(ZQManagedObjectContext &context, const ZQRef<ZQLibraryBaseItem> &item,
                           const QString &projectTitle)
{
    ASSERT_TRUE(item);
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->setTitle(projectTitle);
    ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context)->appendChild(project.get());
    ASSERT_TRUE(project->addItem(item.get()));
    item->setRating(4);
    ASSERT_TRUE(context.save());
}

void LiveFolderTest::expectAdorned(const ZQRef<ZQLibraryBaseItem> &item, const QString &projectTitle)
{
    ASSERT_TRUE(item);
    EXPECT_EQ(item->rating(), 4);
    ASSERT_EQ(item->projects().size(), 1);
    EXPECT_EQ(item->projects().first()->title(), projectTitle);
}
