// A power cut while files are imported: each is where it was or in the library, what was reported is in the library,
// and what was cut off can go on.

#include "Classes/Application/Quit.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/PendingImport.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Power/PowerFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int continueButton = 0;
constexpr int fewChances = 24; // where files are read anew after each cut, by a worker that has to start

class ImportPower : public PowerTest
{
protected:
    struct Source
    {
        QString path;
        QByteArray content;
    };

    void SetUp() override
    {
        PowerTest::SetUp();
        user.answerQuestion = [](const UserQuestion &) { return continueButton; };
        user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
            return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
        };
    }
    QString makeSource(const QString &relative, Picture kind = Picture::Small)
    {
        const QString file = writePicture(relative, ++m_number, kind);
        m_sources.append({file, contentOf(file)});
        return file;
    }
    QString temporary(const QString &name) const
    {
        return QStringLiteral("tmpdir/ZeltoTemporaryFolder/t.power/") + name;
    }
    void waitForImports() const
    {
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
        QCoreApplication::processEvents();
    }
    void import(const QStringList &paths, const ZQRef<ZQSidebarBaseItem> &into)
    {
        const auto operation = AImportManager::sharedAImportManager().startImport(
            {paths, into->objectID(), ZQSidebarBaseItem::appendIndex, {}});
        waitForImports();
        EXPECT_TRUE(operation->report().dropped().isEmpty());
        report();
    }
    void importBefore(const QStringList &paths) const
    {
        const auto label = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context());
        AImportManager::sharedAImportManager().startImport(
            {paths, label->objectID(), ZQSidebarBaseItem::appendIndex, {}});
        waitForImports();
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    }

    // How many items hold this content.
    qsizetype itemsWith(const QByteArray &content) const
    {
        const QString digest = QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha1).toHex());
        return zqCount(context(),
                       {.entityName = ZQLibraryBaseItem::entityName(),
                        .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SHA1 == %@"), {digest})});
    }
    void expectNothingIsLost() const
    {
        for (const Source &source : m_sources) {
            EXPECT_TRUE(contentOf(source.path) == source.content || itemsWith(source.content) > 0)
                << qPrintable(source.path);
            EXPECT_LE(itemsWith(source.content), 1) << qPrintable(source.path);
        }
    }

    QList<Source> m_sources;

private:
    int m_number = 0;
};

} // namespace

TEST_F(ImportPower, EveryFileIsInTheLibraryOrWhereItWas)
{
    ASSERT_NO_FATAL_FAILURE(open());
    const auto project = context().insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("P"));
    ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context())->appendChild(project.get());
    ASSERT_TRUE(context().save());
    const QStringList copied{makeSource(QStringLiteral("in/a.png"), Picture::Large),
                             makeSource(QStringLiteral("in/b.png"))};
    const QStringList moved{makeSource(temporary(QStringLiteral("c.png"))),
                            makeSource(temporary(QStringLiteral("d.png")))};
    makeSource(QStringLiteral("in/Folder/e.png"));
    makeSource(QStringLiteral("in/Folder/f.png"));
    ASSERT_TRUE(OpenMeta::setUserTags(QStringList{QStringLiteral("harbour")}, copied.first()).isNull());
    const QList<qsizetype> inAfter{2, 4, 6}; // sources, by reports
    begin();
    import(copied, project);
    import(moved, project);
    import({path(QStringLiteral("in/Folder"))}, ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context()));

    cutThePower(
        [&](int reports) {
            markStoreUnclean(store());
            ASSERT_NO_FATAL_FAILURE(open());
            delegate->waitForRemovals(); // of what belongs to no item
            expectWholeLibrary();
            expectNothingIsLost();
            for (qsizetype i = 0; i < (reports > 0 ? inAfter.at(reports - 1) : 0); ++i) {
                EXPECT_EQ(itemsWith(m_sources.at(i).content), 1) << qPrintable(m_sources.at(i).path);
            }
            if (reports > 0) {
                const auto tagged =
                    zqFetchFirst<ZQSidebarTag>(context(), QStringLiteral("title == %@"), {QStringLiteral("harbour")});
                EXPECT_TRUE(tagged && tagged->taggedItems().size() == 1);
                const auto in = zqFetchFirst<ZQSidebarProject>(context(), QStringLiteral("title == 'P'"));
                EXPECT_TRUE(in && in->pItems().size() >= inAfter.at(std::min(reports, 2) - 1));
            }
            AImportManager::sharedAImportManager().offerToResumeImports();
            waitForImports();
            expectWholeLibrary();
            expectNothingIsLost();
            EXPECT_EQ(QDir(library() + QStringLiteral("/pending-imports")).entryList(QDir::Files), QStringList());
        },
        fewChances);
}

TEST_F(ImportPower, APurgeLeavesNoItemWithoutItsFile)
{
    ASSERT_NO_FATAL_FAILURE(open());
    const QStringList files{makeSource(QStringLiteral("in/a.png")), makeSource(QStringLiteral("in/b.png")),
                            makeSource(QStringLiteral("in/c.png"))};
    importBefore(files);
    begin();
    const auto deleted = zqFetchFirst<ZQLibraryBaseItem>(context(), QStringLiteral("title == 'b'"));
    ASSERT_TRUE(deleted);
    deleted->deleteSelf();
    ASSERT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    delegate->waitForRemovals();
    close();
    report();
    cutThePower([&](int reports) {
        markStoreUnclean(store());
        ASSERT_NO_FATAL_FAILURE(open());
        delegate->waitForRemovals();
        expectWholeLibrary();
        EXPECT_EQ(itemsWith(m_sources.at(0).content), 1);
        EXPECT_EQ(itemsWith(m_sources.at(2).content), 1);
        EXPECT_TRUE(reports == 0 || itemsWith(m_sources.at(1).content) == 0) << "the purged item came back";
    });
}

TEST_F(ImportPower, WhatALostStoreKnewIsTakenBackWhole)
{
    ASSERT_NO_FATAL_FAILURE(open());
    const QStringList files{makeSource(QStringLiteral("in/a.png"), Picture::Large),
                            makeSource(QStringLiteral("in/b.png"), Picture::Large)};
    importBefore(files);
    close();
    ASSERT_TRUE(QFile::remove(store()));
    QDirIterator thumbs(library(), {QStringLiteral("*_thumb*")}, QDir::Files, QDirIterator::Subdirectories);
    int removed = 0;
    while (thumbs.hasNext()) {
        removed += QFile::remove(thumbs.next()) ? 1 : 0;
    }
    ASSERT_EQ(removed, 2);
    begin();
    ASSERT_NO_FATAL_FAILURE(open());
    report();
    cutThePower(
        [&](int reports) {
            if (storeValue(store(), QStringLiteral("SELECT 1 FROM sqlite_master WHERE name = 'zq_metadata'")).toInt()) {
                markStoreUnclean(store());
            }
            ASSERT_NO_FATAL_FAILURE(open());
            expectWholeLibrary();
            for (const Source &source : std::as_const(m_sources)) {
                EXPECT_EQ(itemsWith(source.content), 1) << reports << qPrintable(source.path);
            }
        },
        fewChances);
}

TEST_F(ImportPower, ADuplicateIsSavedAfterItsFiles)
{
    ASSERT_NO_FATAL_FAILURE(open());
    const QStringList files{makeSource(QStringLiteral("in/a.png"), Picture::Large),
                            makeSource(QStringLiteral("in/b.png"), Picture::Large)};
    importBefore(files);
    begin();
    const auto items = zqFetch<ZQLibraryBaseItem>(context(), QString());
    ASSERT_TRUE(items);
    ASSERT_EQ(ZQLibraryBaseItem::duplicatesOf(*items, [] { return true; }).size(), 2);
    ASSERT_TRUE(context().save());
    report();
    cutThePower([&](int reports) {
        ASSERT_NO_FATAL_FAILURE(open());
        expectWholeLibrary();
        for (const Source &source : std::as_const(m_sources)) {
            EXPECT_GE(itemsWith(source.content), 1 + reports) << qPrintable(source.path);
        }
    });
}

TEST_F(ImportPower, ARequestThatIsDoneNeverComesBackWithoutItsListOfSources)
{
    const QString folder = path(QStringLiteral("pending"));
    constexpr int requests = 10;
    std::vector<std::shared_ptr<PendingImportFile>> files;
    for (int i = 0; i < requests; ++i) {
        PendingImport request;
        request.paths = QStringList{QStringLiteral("/in/%1.png").arg(i)};
        files.push_back(PendingImportFile::create(folder, request, nullptr));
        ASSERT_TRUE(files.back() && files.back()->addSources({{QStringLiteral("item"), request.paths.first(), {}, 0}}));
    }
    begin();
    for (auto &file : files) {
        file->remove();
        file.reset();
        report();
    }
    cutThePower([&](int) {
        const QStringList names = PendingImportFile::cutOff(folder);
        for (const QString &name : names) {
            const auto file = PendingImportFile::open(folder, name);
            ASSERT_TRUE(file);
            EXPECT_EQ(file->sources().value_or(QList<PendingImportFile::Source>()).size(), 1);
        }
    });
}
