#include "Classes/Application/TemporaryArea.h"
#include "Classes/Import/ArchiveImportOperation.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/Skip.h"
#include "Tools/samples/SampleArchives.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

namespace {

using SampleArchives::Entry;
using Kind = Entry::Kind;

class ArchiveImportTest : public ImportFixture
{
protected:
    // A picture; each width is another one.
    static QByteArray picture(int width)
    {
        QImage image(width, 20, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QBuffer buffer;
        image.save(&buffer, "PNG");
        return buffer.data();
    }

    QString zip(const QString &name, const QList<Entry> &entries) const
    {
        return writeFile(name, SampleArchives::zipFile(entries));
    }

    // The children of `item` with what they hold, as "title{...}" and "title[a b]".
    static QString tree(const ZQSidebarBaseItem &item)
    {
        QStringList parts;
        for (const auto &child : item.orderedChildren()) {
            QStringList members;
            for (const auto &member : child->pItems()) {
                members.append(member->item()->title());
            }
            parts.append(child->title() +
                         (child->isFolder() ? u'{' + tree(*child) + u'}' : u'[' + members.join(u' ') + u']'));
        }
        return parts.join(u' ');
    }
    QString projects() const { return tree(*projectsLabel()).remove(QStringLiteral("Sample project[] ")); }

    QStringList members(const ZQSidebarBaseItem &project) const
    {
        QStringList titles;
        for (const auto &member : project.pItems()) {
            titles.append(member->item()->title());
        }
        return titles;
    }

    // What a request and those that followed from it left out.
    static QList<DroppedFile> allDropped(const ImportOperation &operation)
    {
        QList<DroppedFile> dropped = operation.report().dropped();
        for (const auto &followUp : operation.followUps()) {
            dropped.append(allDropped(*followUp));
        }
        return dropped;
    }
    void expectNothingLeft() const
    {
        EXPECT_TRUE(items().isEmpty());
        EXPECT_TRUE(itemDirectories().isEmpty());
        EXPECT_TRUE(temporaryFolders().isEmpty());
    }
    static QStringList temporaryFolders()
    {
        return QDir(TemporaryArea::folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

// A preference for as long as a test runs.
class Preference
{
public:
    Preference(const char *key, const QVariant &value) : m_key(QLatin1String(key))
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(value, m_key);
    }
    ~Preference() { ZQUserDefaults::standardUserDefaults().removeObjectForKey(m_key); }
    Preference(const Preference &) = delete;
    Preference &operator=(const Preference &) = delete;

private:
    QString m_key;
};

} // namespace

TEST_F(ArchiveImportTest, AnArchiveInAFolderBecomesAProjectNamedAfterIt)
{
    const QString archive = zip(QStringLiteral("Icons.zip"), {{"b.png", picture(21)}, {"a.png", picture(22)}});
    const auto operation = import({archive}, projectsLabel().get());
    EXPECT_EQ(projects().toStdString(), "Icons[a b]");
    EXPECT_TRUE(allDropped(*operation).isEmpty());
    ASSERT_EQ(operation->followUps().size(), 1);
    EXPECT_EQ(operation->followUps().first()->report().imported().size(), 2);
    EXPECT_TRUE(operation->isWhollyFinished());
    EXPECT_TRUE(QFileInfo::exists(archive));
    EXPECT_TRUE(temporaryFolders().isEmpty());
    EXPECT_TRUE(user.notificationTexts().isEmpty()) << user.notificationTexts().join(u'|').toStdString();
    for (const auto &made : items()) {
        EXPECT_TRUE(QFileInfo(made->itemURL()).isFile());
        EXPECT_TRUE(made->managed());
    }
}

TEST_F(ArchiveImportTest, RarArchivesOfBothVersionsAreTaken)
{
    import({writeFile(QStringLiteral("Old.rar"), SampleArchives::rarFile(
                                                     {{ "a.png",
                                                        picture(21) }})),
            writeFile(QStringLiteral("New.rar"), SampleArchives::rar5File(
                                                     {{ "b.png",
                                                        picture(22) }}))});
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(ArchiveImportTest, OneFolderAtTheTopIsNoLevelOfItsOwn)
{
    struct Case
    {
        const char *what;
        QList<Entry> entries;
        QString expected;
    };
    const Case cases[] = {
        {"one folder", {{"Top/a.png", picture(31)}}, u"Top[a]"_qs},
        {"one folder and what a Mac adds",
         {{"Top/b.png", picture(32)}, {"__MACOSX/Top/._b.png", "x"}, {"Top/.DS_Store", "x"}},
         u"Top[b]"_qs},
        {"a folder and a file", {{"Top/c.png", picture(33)}, {"d.png", picture(34)}}, u"Set{Set[d] Top[c]}"_qs},
        {"two folders", {{"A/e.png", picture(35)}, {"B/f.png", picture(36)}}, u"Set{A[e] B[f]}"_qs},
        {"one folder in one folder", {{"Top/Low/g.png", picture(37)}}, u"Top{Low[g]}"_qs},
        {"one file", {{"h.png", picture(38)}}, u"Set[h]"_qs},
    };
    for (const Case &row : cases) {
        const auto folder = context().insertNewObject<ZQSidebarFolder>();
        folder->setTitle(QLatin1String(row.what));
        projectsLabel()->appendChild(folder.get());
        delegate->saveAction();
        import({zip(QStringLiteral("Set.zip"), row.entries)}, folder.get());
        EXPECT_EQ(tree(*folder), row.expected) << row.what;
    }
}

TEST_F(ArchiveImportTest, ArchivesInArchivesBecomeFoldersBesideThem)
{
    const QByteArray innermost = SampleArchives::zipFile({{"c.png", picture(43)}});
    const QByteArray inner = SampleArchives::rar5File({{"b.png", picture(42)}, {"Innermost.zip", innermost}});
    const auto operation =
        import({zip(QStringLiteral("Set.zip"),
                    {{"a.png", picture(41)}, {"In/Inner.rar", inner}, {"In/Inner/d.png", picture(44)}})},
               projectsLabel().get());
    EXPECT_EQ(projects().toStdString(), "Set{Set[a] In{Inner[d] Inner 1{Inner 1[b] Innermost[c]}}}");
    for (const DroppedFile &file : allDropped(*operation)) {
        ADD_FAILURE() << file.path.toStdString() << ": " << file.reason.toStdString();
    }
    EXPECT_TRUE(temporaryFolders().isEmpty());
}

TEST_F(ArchiveImportTest, APlaceThatTakesNoFoldersGetsTheFilesOfAllFolders)
{
    const QList<Entry> entries{{"Top/b.png", picture(21)},
                               {"Top/Sub/c.png", picture(22)},
                               {"Top/in.zip", SampleArchives::zipFile({{"d.png", picture(23)}})},
                               {"Top/note.txt", "text"}};
    const QString archive = zip(QStringLiteral("Set.zip"), entries);
    const auto project = addProject(QStringLiteral("P"));
    const auto operation = import({writeImage(QStringLiteral("a.png"), {30, 30}), archive}, project.get());
    EXPECT_EQ(members(*project), QString(u"a b d c"_qs).split(u' '));
    const auto dropped = allDropped(*operation);
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.first().path, archive + QStringLiteral("/Top/note.txt")); // not somewhere in the temporary area

    const auto tag = addTag(QStringLiteral("T"));
    import({zip(QStringLiteral("Tagged.zip"), {{ "e.png", picture(24) }})}, tag.get());
    ASSERT_TRUE(item(QStringLiteral("e")));
    EXPECT_TRUE(tagTitles(*item(QStringLiteral("e"))).contains(QStringLiteral("T")));
}

TEST_F(ArchiveImportTest, DocumentsThatAreFoldersComeOutWhole)
{
    const QByteArray info =
        "<plist version=\"1.0\"><dict><key>imageGrabPath</key><string>p.png</string></dict></plist>";
    import({zip(QStringLiteral("Set.sketch.zip"), {{"Doc.sketch/Data", "data"},
                                                   {"Doc.sketch/QuickLook/Preview.png", picture(60)},
                                                   {"Doc.sketch/inside.zip", SampleArchives::zipFile(
                                                                                 {{ "x.png",
                                                                                    picture(61) }})},
                                                   {"Shot.snap/Info.plist", info},
                                                   { "Shot.snap/p.png",
                                                     picture(62) }})},
           projectsLabel().get());
    EXPECT_EQ(projects().toStdString(), "Set sketch[Doc p]");
    const auto document = item(QStringLiteral("Doc"));
    ASSERT_TRUE(document);
    EXPECT_TRUE(QFileInfo(document->itemURL() + QStringLiteral("/inside.zip")).isFile());
}

TEST_F(ArchiveImportTest, FoldersAndArchivesKeepTheOrderOfTheDropAtItsPlace)
{
    addProject(QStringLiteral("First"));
    addProject(QStringLiteral("Last"));
    writeImage(QStringLiteral("Dir/a.png"), {30, 30});
    const QStringList drop{zip(QStringLiteral("Z1.zip"), {{"b.png", picture(21)}}),
                           zip(QStringLiteral("Broken.zip"), {{"x.png", picture(29), Kind::File, true}}),
                           zip(QStringLiteral("Z2.zip"), {{"c.png", picture(22)}})};
    const quint32 first = quint32(projectsLabel()->numberofChilds()) - 1;
    const auto operation = import(drop, projectsLabel().get(), first);
    EXPECT_EQ(operation->originalDropIndex(), first);
    EXPECT_EQ(operation->foldersAndArchivesPathOrdered(), drop);
    EXPECT_EQ(projects().toStdString(), "First[] Z1[b] Last[] Z2[c]"); // the broken one keeps its place
    ASSERT_EQ(operation->followUps().size(), 2);
    EXPECT_EQ(operation->followUps().first()->originalDropIndex(), first);
    EXPECT_EQ(operation->followUps().last()->originalDropIndex(), first + 2);
}

TEST_F(ArchiveImportTest, AnArchiveInADroppedFolderComesIntoThatFolder)
{
    writeImage(QStringLiteral("Dir/a.png"), {30, 30});
    zip(QStringLiteral("Dir/Set.zip"), {{"b.png", picture(21)}});
    const auto operation = import({path(QStringLiteral("Dir"))}, projectsLabel().get(), 0);
    EXPECT_EQ(projects().section(u' ', 0, 1), QStringLiteral("Dir{Dir[a] Set[b]}"));
    EXPECT_EQ(ZQSortValue(projectsLabel()->orderedChildren().first()->sortKeys()), ZQSortValue::None);
    EXPECT_TRUE(allDropped(*operation).isEmpty());
    EXPECT_TRUE(user.notificationTexts().isEmpty());
}

TEST_F(ArchiveImportTest, WhereTheArchiveCameFromIsWhereItsFilesCameFrom)
{
    const QString archive = zip(QStringLiteral("Set.zip"), {{"a.png", picture(21)}});
    if (!OpenMeta::setXAttr(QStringList{QStringLiteral("http://zip"), QStringLiteral("http://page")},
                            OpenMeta::spotlightKey(OpenMeta::whereFromsKey), archive)
             .isNull()) {
        return skipWithout("extended attributes");
    }
    import({archive}, nullptr, ZQSidebarBaseItem::appendIndex, {{ QStringLiteral("license"), QStringLiteral("free") }});
    ASSERT_TRUE(item(QStringLiteral("a")));
    EXPECT_EQ(item(QStringLiteral("a"))->webURL(), QStringLiteral("http://zip"));
    EXPECT_EQ(item(QStringLiteral("a"))->license(), QStringLiteral("free"));
    EXPECT_EQ(item(QStringLiteral("a"))->notes(), QStringLiteral("http://zip"));
}

TEST_F(ArchiveImportTest, AnArchiveThatCannotBeUnpackedGivesNothingAndSaysWhy)
{
    const QByteArray sound = SampleArchives::zipFile({{"a.png", picture(21)}});
    struct Case
    {
        QByteArray archive;
        const char *said;
    };
    const Case cases[] = {
        {sound.left(sound.size() - 30), "damaged"},
        {"no archive", "damaged"},
        {SampleArchives::zipFile({{"a.png", picture(21)}, {"secret.png", picture(22), Kind::File, true}}),
         "secret.png"},
        {SampleArchives::zipFile({}), "holds nothing"},
        {SampleArchives::zipFile({{"__MACOSX/._a.png", "x"}}), "holds nothing"},
        {SampleArchives::zipFile({{"link.png", "/etc/passwd", Kind::Link}}), "link"},
    };
    for (const Case &row : cases) {
        user.notifications.clear();
        const QString archive = writeFile(QStringLiteral("Set.zip"), row.archive);
        const auto operation = import({archive});
        EXPECT_EQ(droppedPaths(operation->report()), QStringList{archive}) << row.said;
        ASSERT_FALSE(operation->report().dropped().isEmpty());
        const QString reason = operation->report().dropped().first().reason;
        EXPECT_TRUE(reason.contains(QLatin1String(row.said))) << reason.toStdString();
        EXPECT_TRUE(user.notificationTexts().contains(QStringLiteral("Nothing to import!"))) << row.said;
        EXPECT_TRUE(user.notificationTexts().last().contains(QStringLiteral("Set.zip")));
        expectNothingLeft();
    }
    // Beside something that was imported there was something to import.
    user.notifications.clear();
    import({writeFile(QStringLiteral("Set.zip"), "no archive"), writeImage(QStringLiteral("b.png"), {30, 30})});
    EXPECT_FALSE(user.notificationTexts().contains(QStringLiteral("Nothing to import!")));
}

TEST_F(ArchiveImportTest, OneBadArchiveInAGoodOneCostsOnlyItself)
{
    const QString archive =
        zip(QStringLiteral("Set.zip"), {{"a.png", picture(21)}, {"bad.zip", "no archive"}, {"../x.png", picture(22)}});
    const auto operation = import({archive});
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("a")});
    const auto dropped = allDropped(*operation);
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.first().path, archive);
    EXPECT_TRUE(dropped.first().reason.contains(QStringLiteral("bad.zip")));
    EXPECT_TRUE(dropped.first().reason.contains(QStringLiteral("../x.png")));
    EXPECT_TRUE(user.notificationTexts().last().contains(QStringLiteral("in part")));
}

TEST_F(ArchiveImportTest, ThePersonsLimitsHold)
{
    const QByteArray inner = SampleArchives::zipFile({{"b.png", picture(22)}});
    const QByteArray outer =
        SampleArchives::zipFile({{"a.png", picture(21)}, {"in.zip", SampleArchives::zipFile({{"in.zip", inner}})}});
    const std::pair<const char *, qint64> limits[] = {
        {"ArchiveMaximumTotalSize", 100}, {"ArchiveMaximumEntryCount", 3}, {"ArchiveMaximumNestingDepth", 1}};
    for (const auto &[key, value] : limits) {
        const Preference preference(key, value);
        const auto operation = import({writeFile(QStringLiteral("Set.zip"), outer)});
        EXPECT_EQ(allDropped(*operation).size(), 1) << key;
        EXPECT_TRUE(operation->report().dropped().first().reason.contains(QStringLiteral("more than"))) << key;
        expectNothingLeft();
    }
    {
        const Preference ratio("ArchiveMaximumRatio", 77);
        const Preference least("ArchiveMaximumEntryCount", 1);
        const Preference none("ArchiveMaximumNestingDepth", 0);
        EXPECT_EQ(ArchiveImportOperation::limits().ratio, 77);
        EXPECT_EQ(ArchiveImportOperation::limits().entryCount, 1);
        EXPECT_EQ(ArchiveImportOperation::limits().nestingDepth, ZQArchiveLimits().nestingDepth);
    }
    const Preference nonsense("ArchiveMaximumTotalSize", -5);
    EXPECT_EQ(ArchiveImportOperation::limits().totalSize, ZQArchiveLimits().totalSize);
    import({writeFile(QStringLiteral("Set.zip"), outer)});
    EXPECT_EQ(items().size(), 2);
}

TEST_F(ArchiveImportTest, ACancelLeavesNothingBehind)
{
    // Before the archive is unpacked, and when what it held is being imported.
    for (const int which : {1, 2}) {
        int begun = 0;
        user.onBeginProgress = [&](const std::function<void()> &cancel) {
            if (++begun == which) {
                cancel();
            }
        };
        const QString archive = zip(QStringLiteral("Set.zip"), {{"a.png", picture(21)}, {"b.png", picture(22)}});
        const auto operation = import({archive}, projectsLabel().get());
        EXPECT_EQ(begun, which);
        EXPECT_TRUE(operation->isAnyCancelled());
        EXPECT_EQ(operation->isCancelled(), which == 1);
        EXPECT_EQ(operation->followUps().size(), which - 1);
        for (const DroppedFile &file : allDropped(*operation)) {
            EXPECT_TRUE(file.path.startsWith(archive)) << file.path.toStdString();
        }
        EXPECT_FALSE(allDropped(*operation).isEmpty());
        EXPECT_EQ(tree(*projectsLabel()), QStringLiteral("Sample project[]"));
        EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("Import cancelled")});
        user.notifications.clear();
        expectNothingLeft();
    }
}

TEST_F(ArchiveImportTest, WhoeverStopsAllImportsStopsWhatWouldFollow)
{
    auto operation = AImportManager::sharedAImportManager().startImport(
        {{zip(QStringLiteral("Set.zip"), {{"a.png", picture(21)}})}, {}, ZQSidebarBaseItem::appendIndex, {}});
    AImportManager::sharedAImportManager().stopAllOperation();
    delegate->backgroundOperationQueue().waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(operation->followUps().isEmpty());
    expectNothingLeft();
}

TEST_F(ArchiveImportTest, DuplicatesInAnArchiveAreAskedAbout)
{
    import({writeFile(QStringLiteral("a.png"), picture(21))});
    int asked = 0;
    user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
        ++asked;
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
    };
    const auto operation = import({zip(QStringLiteral("Set.zip"), {{"b.png", picture(21)}, {"c.png", picture(22)}})});
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(titles(items()), (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
    EXPECT_EQ(allDropped(*operation).size(), 1);
}

TEST_F(ArchiveImportTest, DuplicatesInAnArchiveAreNamedByItAndAnAnswerForAllHoldsForThem)
{
    const QString there = writeFile(QStringLiteral("a.png"), picture(21));
    import({there, writeFile(QStringLiteral("b.png"), picture(22)), writeFile(QStringLiteral("c.png"), picture(23))});
    const QString again = path(QStringLiteral("again.png"));
    ASSERT_TRUE(QFile::copy(there, again));
    const QStringList archives{zip(QStringLiteral("One.zip"), {{"x.png", picture(22)}, {"sub/y.png", picture(30)}}),
                               zip(QStringLiteral("Two.zip"), {{"z.png", picture(23)}})};
    const auto before = items().size();
    for (const bool isForAll : {true, false}) {
        SCOPED_TRACE(isForAll);
        QStringList asked;
        QList<bool> follow;
        user.answerDuplicates = [&](const QList<DuplicatePair> &pairs) {
            for (const DuplicatePair &pair : pairs) {
                asked.append(pair.newPath);
                follow.append(user.archivesFollow);
            }
            return DuplicateAnswers(QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard),
                                    isForAll ? std::optional(DuplicateChoice::Discard) : std::nullopt);
        };
        const auto operation = import(QStringList{again} + archives, projectsLabel().get());
        EXPECT_TRUE(operation->isWhollyFinished());
        if (isForAll) {
            EXPECT_EQ(asked, QStringList{again});
        } else {
            EXPECT_EQ(asked.mid(0, 2), (QStringList{again, archives[0] + QStringLiteral("/x.png")}));
            EXPECT_EQ(asked.last(), archives[1] + QStringLiteral("/z.png"));
        }
        EXPECT_TRUE(follow.first());
        EXPECT_EQ(follow.last(), isForAll) << "nothing comes after the last archive";
        EXPECT_EQ(items().size(), before + 1) << "y, which is a duplicate the second time";
    }
}
