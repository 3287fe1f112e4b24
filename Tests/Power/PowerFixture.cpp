#include "Tests/Power/PowerFixture.h"

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Tests/Support/DamagedStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRandomGenerator>

QString PowerTest::world()
{
    static const QTemporaryDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/power-XXXXXX"));
    return folder.path() + QStringLiteral("/world");
}

void PowerTest::SetUp()
{
    zqRemoveTree(QFile::encodeName(world()));
    for (const char *name :
         {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR", "HOME"}) {
        const QString folder = path(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(name, QFile::encodeName(folder));
    }
}

void PowerTest::TearDown()
{
    close();
    m_disk.reset();
    zqRemoveTree(QFile::encodeName(world()));
}

QString PowerTest::writePicture(const QString &relative, int number, Picture kind)
{
    QImage image(kind == Picture::Large ? QSize(360, 300) : QSize(40, 30), QImage::Format_RGB32);
    image.fill(qRgb(number * 17 % 256, 90, 120));
    if (kind == Picture::Large) { // noise, which no encoder makes small
        QRandomGenerator random(static_cast<quint32>(number));
        random.fillRange(reinterpret_cast<quint32 *>(image.bits()), image.width() * image.height());
    }
    image.setText(QStringLiteral("Number"), QString::number(number));
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).path());
    EXPECT_TRUE(image.save(file, "PNG")) << qPrintable(file);
    return file;
}

QByteArray PowerTest::contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void PowerTest::open(const QString &bundle)
{
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    delegate = std::make_unique<tamberin_AppDelegate>(parts);
    delegate->setLibraryBundleDirectory(bundle);
    ZQError error;
    ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
}

void PowerTest::close()
{
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    if (delegate) {
        delegate->waitForRemovals();
    }
    delegate.reset();
    OpenMetaBackup::waitUntilAllWritten();
}

void PowerTest::cutThePower(const std::function<void(int)> &look, int chances)
{
    const QList<SimulatedDisk::Cut> cuts = m_disk->cuts(chances);
    close();
    m_disk.reset();
    int number = 0;
    for (const SimulatedDisk::Cut &cut : cuts) {
        zqRemoveTree(QFile::encodeName(world()));
        cut.image.layOut(QFile::encodeName(world()));
        SCOPED_TRACE(testing::Message() << "cut " << ++number << " of " << cuts.size() << ", " << qPrintable(cut.moment)
                                        << ", after " << cut.reports << " reports");
        look(cut.reports);
        close();
        if (HasFailure()) {
            return;
        }
    }
}

void PowerTest::expectWholeLibrary() const
{
    EXPECT_TRUE(delegate->persistentStoreCoordinator()->checkIntegrity().isEmpty());
    const auto items = zqFetch<ZQLibraryBaseItem>(context(), QString());
    ASSERT_TRUE(items);
    for (const auto &item : *items) {
        const QString file = item->managedItemURL();
        EXPECT_EQ(QString::fromLatin1(zqSHA1OfFile(file)), item->SHA1()) << qPrintable(file);
        EXPECT_TRUE(item->thumbName().isEmpty() || !contentOf(item->thumbURL()).isEmpty()) << qPrintable(item->title());
    }
    for (const char *table : {"ZQLibraryBaseItem", "ZQSidebarBaseItem", "ZQProjectItem"}) {
        const QString name = QString::fromLatin1(table);
        EXPECT_LE(storeValue(store(), QStringLiteral("SELECT max(id) FROM ") + name).toLongLong(),
                  storeValue(store(), QStringLiteral("SELECT last FROM zq_sequence WHERE name = '%1'").arg(name))
                      .toLongLong())
            << table;
    }
}
