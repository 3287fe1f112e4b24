// What an import that was cut off accounts for, beside what a store has forgotten.

#include "Classes/Import/PendingImport.h"
#include "Classes/Tags/FileTags.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

const QString mirrorKey = QStringLiteral("ImportOpenMetaTags");

class CutOffTraces : public ImportFixture
{
protected:
    void TearDown() override { ZQUserDefaults::standardUserDefaults().removeObjectForKey(mirrorKey); }

    QString folder() const { return path(QStringLiteral("Zelto.ztlibrary/pending-imports")); }
    QString storePath() const { return path(QStringLiteral("Zelto.ztlibrary/storedata")); }
    QString name() const { return PendingImportFile::cutOff(folder()).value(0); }
    PendingImportFile::Traces traces() const
    {
        return PendingImportFile::traces(
            folder(), name(),
            {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("UNLISTED")});
    }
    std::shared_ptr<PendingImportFile> request() const
    {
        return PendingImportFile::create(folder(), {.paths = {path(QStringLiteral("in"))},
                                                    .target = {},
                                                    .index = ImportOperation::appendIndex,
                                                    .metadata = {},
                                                    .archivePath = {},
                                                    .archiveRoot = {},
                                                    .groups = {}});
    }
    static QList<PendingImportFile::Source> source(const QString &bundleID)
    {
        return {{.bundleID = bundleID, .path = QStringLiteral("/a"), .movedPath = {}, .movedModification = 0}};
    }
    void reopen()
    {
        delegate.reset();
        user.questions.clear();
        ImportFixture::SetUp();
        QCoreApplication::processEvents();
    }
    void checkLeftovers()
    {
        delegate->checkAndDeleteLibraryLeftovers();
        zqRunMainLoopUntil([this] { return !delegate->isCheckingLeftovers(); });
        delegate->waitForRemovals();
        QCoreApplication::processEvents();
    }
    void importMany(const QString &title, int count)
    {
        QStringList files;
        for (int i = 0; i < count; ++i) {
            files.append(writeImage(QStringLiteral("in/%1%2.png").arg(title).arg(i), {8, 8}));
        }
        import(files);
    }
    // An import is cut off, a later one comes to its end, and the store of the time between is put back.
    void putOlderStoreBack(int laterItems)
    {
        importMany(QStringLiteral("first"), 5);
        ASSERT_TRUE(request());
        QDir().mkpath(path(QStringLiteral("Zelto.ztlibrary/Library/CUT-OFF.ztlibraryitem")));
        reopen();
        checkLeftovers();
        ASSERT_EQ(itemDirectories().size(), 5) << "what it left goes unasked";
        delegate.reset();
        ASSERT_TRUE(QFile::copy(storePath(), path(QStringLiteral("older"))));
        reopen();
        importMany(QStringLiteral("later"), laterItems);
        delegate.reset();
        QFile::remove(storePath() + QStringLiteral("-wal"));
        QFile older(path(QStringLiteral("older")));
        QFile store(storePath()); // overwritten, as by a copying program: a new file would be younger than the items
        ASSERT_TRUE(older.open(QIODevice::ReadOnly) && store.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(store.write(older.readAll()), older.size());
        store.close();
        reopen();
        ASSERT_FALSE(name().isEmpty());
        checkLeftovers();
    }
};

} // namespace

TEST_F(CutOffTraces, OnlyTheLastSaveOfAListMayHaveFailed)
{
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    {
        const auto file = request();
        ASSERT_TRUE(file);
    }
    const auto began = traces().since;
    ASSERT_TRUE(began && *began > before);
    {
        const auto file = PendingImportFile::open(folder(), name());
        ASSERT_TRUE(file && file->addSources(source(QStringLiteral("1"))));
    }
    EXPECT_TRUE(traces().saved.isEmpty());
    const QString list = folder() + u'/' + name() + QStringLiteral(".sources");
    QFile torn(list);
    ASSERT_TRUE(torn.open(QIODevice::Append) && torn.write("[\"2\", \"HALF") > 0);
    torn.close();
    {
        const auto file = PendingImportFile::open(folder(), name());
        ASSERT_TRUE(file && file->addSources(source(QStringLiteral("3"))));
        EXPECT_EQ(file->sources().value_or(QList<PendingImportFile::Source>()).size(), 2);
    }
    EXPECT_EQ(traces().saved, QSet<QString>{QStringLiteral("1")});
    EXPECT_EQ(traces().since, began);
    {
        const auto file = PendingImportFile::open(folder(), name());
        ASSERT_TRUE(file);
        file->noteGoingOn(); // the process before may have been killed before it saved the last
        ASSERT_TRUE(file->addSources(source(QStringLiteral("2"))));
    }
    EXPECT_EQ(traces().saved, QSet<QString>{QStringLiteral("1")});
    QFile::remove(list);
    ASSERT_TRUE(QFile::link(path(QStringLiteral("elsewhere")), list));
    EXPECT_FALSE(traces().since) << "a list that cannot be read explains nothing";
}

TEST_F(CutOffTraces, SeveralAccountForAllTheySavedSinceTheFirstBegan)
{
    EXPECT_FALSE(AImportManager::sharedAImportManager().cutOffImportSince());
    for (const char *saved : {"1", "2"}) {
        const auto file = request();
        ASSERT_TRUE(file && file->addSources(source(QString::fromLatin1(saved))) && file->addSources(source({})));
    }
    reopen();
    auto &manager = AImportManager::sharedAImportManager();
    const auto first = manager.cutOffImportSince();
    const CutOffImports all = manager.tracesOfCutOffImports()({QStringLiteral("1"), QStringLiteral("2")});
    EXPECT_EQ(all.saved, (QSet<QString>{QStringLiteral("1"), QStringLiteral("2")}));
    ASSERT_TRUE(first && all.since);
    EXPECT_EQ(*all.since, *first);
}

TEST_F(CutOffTraces, WhatWasLookedThroughExplainsNothingUntilItGoesOn)
{
    {
        const auto file = request();
        ASSERT_TRUE(file && file->addSources(source(QStringLiteral("1"))));
    }
    const QDateTime launch = QDateTime::fromMSecsSinceEpoch(QDateTime::currentMSecsSinceEpoch() + 5000, Qt::UTC);
    PendingImportFile::noteLookedThrough(folder(), name(), launch);
    EXPECT_FALSE(traces().since);
    const QString list = folder() + u'/' + name() + QStringLiteral(".sources");
    const qint64 size = QFileInfo(list).size();
    PendingImportFile::noteLookedThrough(folder(), name(), launch.addSecs(60));
    EXPECT_EQ(QFileInfo(list).size(), size) << "every launch looks";
    {
        const auto file = PendingImportFile::open(folder(), name());
        ASSERT_TRUE(file);
        file->noteGoingOn();
        EXPECT_EQ(file->sources().value_or(QList<PendingImportFile::Source>()).size(), 1);
    }
    EXPECT_EQ(traces().since, launch);
}

TEST_F(CutOffTraces, WhatAStoreThatWasPutBackForgotComesBack)
{
    if (!ZQExtendedAttributes::set(path(QString()), QStringLiteral("org.zelto.test"), "x")) {
        return skipWithout("extended attributes");
    }
    putOlderStoreBack(30);
    EXPECT_EQ(items().size(), 35);
    EXPECT_EQ(itemDirectories().size(), 35);
}

TEST_F(CutOffTraces, WithoutRecordsInFilesThePersonIsAsked)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, mirrorKey);
    putOlderStoreBack(30);
    EXPECT_EQ(itemDirectories().size(), 35);
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_EQ(user.questions.first().buttons.size(), 3);
}

TEST_F(CutOffTraces, ARecordOfAnotherLibraryIsNotImported)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, mirrorKey); // or it would write one of its own
    const QString source = writeImage(QStringLiteral("in/a.png"), {8, 8});
    SeenFileTags::write(SeenFileTags::of({}), source, SeenFileTags::Empty::IsWritten);
    if (!SeenFileTags::ofFile(source)) {
        return skipWithout("extended attributes");
    }
    import({source});
    ASSERT_EQ(items().size(), 1);
    EXPECT_FALSE(SeenFileTags::ofFile(items().first()->itemURL()));
    EXPECT_TRUE(SeenFileTags::ofFile(source)) << "a person's file stays as it is";
}
