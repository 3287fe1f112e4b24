#include "Tests/Classes/Import/ImportFixture.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Import/ImageDownloads.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

ImportFixture::ImportFixture()
    : m_folder(QCoreApplication::applicationDirPath() + QStringLiteral("/import-test-XXXXXX"))
{
    for (const char *name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        const QString folder = path(QString::fromLatin1(name));
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(name, QFile::encodeName(folder));
    }
}

ImportFixture::~ImportFixture()
{
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    delegate.reset();
}

void ImportFixture::SetUp()
{
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    parts.imageDownloading = &ImageDownloads::sharedImageDownloads();
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(path(QStringLiteral("Zelto.ztlibrary")));
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << error.localizedDescription().toStdString();
}

QString ImportFixture::writeImage(const QString &relative, QSize size, const QColor &color) const
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    static int number = 0;
    image.setText(QStringLiteral("Number"), QString::number(++number)); // no two files are the same
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).path());
    EXPECT_TRUE(image.save(file)) << file.toStdString();
    return file;
}

QString ImportFixture::writeFile(const QString &relative, const QByteArray &contents) const
{
    QFile file(path(relative));
    QDir().mkpath(QFileInfo(file).path());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
    return file.fileName();
}

std::shared_ptr<ImportOperation> ImportFixture::import(const QStringList &paths, const ZQSidebarBaseItem *into,
                                                       quint32 atIndex, const QVariantMap &metadata)
{
    auto operation = AImportManager::sharedAImportManager().startImport(
        {paths, into ? into->objectID() : ZQObjectID(), atIndex, metadata});
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    QCoreApplication::processEvents(); // the notifications of the end
    return operation;
}

QList<ZQRef<ZQLibraryBaseItem>> ImportFixture::items() const
{
    return zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("active == YES"), {},
                                      {{.keyPath = QStringLiteral("title")}})
        .value_or(QList<ZQRef<ZQLibraryBaseItem>>());
}

ZQRef<ZQLibraryBaseItem> ImportFixture::item(const QString &title) const
{
    return zqFetchFirst<ZQLibraryBaseItem>(context(), QStringLiteral("title == %@"), {title});
}

QStringList ImportFixture::tagTitles(const ZQLibraryBaseItem &item)
{
    QStringList titles;
    for (const auto &tag : item.itemTags()) {
        titles.append(tag->title());
    }
    titles.sort();
    return titles;
}

QStringList ImportFixture::titles(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QStringList titles;
    for (const auto &item : items) {
        titles.append(item->title());
    }
    return titles;
}

ZQRef<ZQSidebarProject> ImportFixture::addProject(const QString &title) const
{
    auto project = context().insertNewObject<ZQSidebarProject>();
    project->setTitle(title);
    projectsLabel()->appendChild(project.get());
    delegate->saveAction();
    return project;
}

ZQRef<ZQSidebarTag> ImportFixture::addTag(const QString &title) const
{
    auto tag = ZQSidebarTag::addNewTagWithName(title, context());
    delegate->saveAction();
    return tag;
}

ZQRef<ZQSidebarBaseItem> ImportFixture::projectsLabel() const
{
    return ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context());
}

QStringList ImportFixture::itemDirectories() const
{
    return QDir(delegate->libraryDirectory()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

QStringList ImportFixture::droppedPaths(const ImportReport &report)
{
    QStringList paths;
    for (const DroppedFile &file : report.dropped()) {
        EXPECT_FALSE(file.reason.isEmpty()) << file.path.toStdString();
        paths.append(file.path);
    }
    return paths;
}
