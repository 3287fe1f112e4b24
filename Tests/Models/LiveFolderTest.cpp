#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Support/ScratchLibrary.h"

#include <QDir>

#include <gtest/gtest.h>

namespace {

// The tree "live" > "live/sub" > "live/sub/deep", with a picture in each.
class LiveFolder : public testing::Test
{
protected:
    void SetUp() override
    {
        ZQSidebarBaseItem *father = nullptr;
        for (const char *name : {"live", "live/sub", "live/sub/deep"}) {
            const QString path = library.path(QLatin1String(name));
            QDir().mkpath(path);
            folders.append(ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, context));
            items.append(library.addReferencedImage(
                library.writeFile(QLatin1String(name) + QStringLiteral("/a.jpg"), "picture")));
            items.last()->setWatchingFolder(folders.last().get());
            father ? father->appendChild(folders.last().get()) : folders.last()->setIs_root(true);
            father = folders.last().get();
        }
    }
    QString activity() const
    {
        QString text;
        for (qsizetype i = 0; i < folders.size(); ++i) {
            text += folders.at(i)->active() ? u'F' : u'f';
            text += folders.at(i)->is_enabled() ? u'E' : u'e';
            text += items.at(i)->active() ? u'I' : u'i';
        }
        return text;
    }

    ScratchLibrary library;
    ZQManagedObjectContext &context = library.context();
    QList<ZQRef<ZQSidebarWatchedFolder>> folders;
    QList<ZQRef<ZQLibraryImage>> items;
};

template <class T>
QStringList titles(const QList<ZQRef<T>> &found)
{
    QStringList all;
    for (const auto &each : found) {
        all.append(each->title());
    }
    all.sort();
    return all;
}

} // namespace

TEST_F(LiveFolder, StandsAsThoseAboveItLetIt)
{
    using enum ZQSidebarWatchedFolder::Standing;
    struct Case
    {
        const char *flags; // of each folder, from the root: enabled, missing, trashed
        ZQSidebarWatchedFolder::Standing sub, deep;
    };
    const Case cases[] = {
        {"E E E", Followed, Followed}, {"E - E", Off, Off},          {"- E E", Off, Off},
        {"M - -", Missing, Missing},   {"T - -", Trashed, Trashed},  {"E M -", Missing, Missing},
        {"T M -", Missing, Missing},   {"MT - -", Missing, Missing}, {"E E -", Followed, Off},
    };
    for (const Case &each : cases) {
        const QStringList flags = QString::fromLatin1(each.flags).split(u' ');
        for (qsizetype i = 0; i < folders.size(); ++i) {
            folders[i]->setIs_enabled(flags[i].contains(u'E'));
            folders[i]->setIs_missing(flags[i].contains(u'M'));
            folders[i]->setIs_trashed(flags[i].contains(u'T'));
        }
        EXPECT_EQ(folders[1]->standing(), each.sub) << each.flags;
        EXPECT_EQ(folders[2]->standing(), each.deep) << each.flags;
    }
}

TEST_F(LiveFolder, IsFoundByWhatItIsAndOnlyWhileItIsActive)
{
    using Folder = ZQSidebarWatchedFolder;
    const QStringList all{QStringLiteral("deep"), QStringLiteral("live"), QStringLiteral("sub")};
    const QString sub = library.path(QStringLiteral("live/sub"));
    EXPECT_EQ(titles(*Folder::watchedFoldersInManagedObjectContext(context)), all);
    EXPECT_EQ(titles(*Folder::rootWatchedFoldersInManagedObjectContext(context)), all.mid(1, 1));
    EXPECT_EQ(titles(*Folder::watchedFoldersWithTitle(all.at(2), context)), all.mid(2));
    EXPECT_EQ(titles(*Folder::watchedFoldersWithPathPrefix(sub, context)), (QStringList{all.at(0), all.at(2)}));
    EXPECT_EQ(Folder::watchedFolderWithPath(sub, context), folders.at(1));
    EXPECT_FALSE(Folder::watchedFolderWithPath(library.path(QStringLiteral("liv")), context));
    for (const auto &folder : folders) {
        folder->setActive(false);
    }
    EXPECT_TRUE(Folder::watchedFoldersInManagedObjectContext(context)->isEmpty());
    EXPECT_TRUE(Folder::rootWatchedFoldersInManagedObjectContext(context)->isEmpty());
    EXPECT_TRUE(Folder::watchedFoldersWithTitle(all.at(2), context)->isEmpty());
    EXPECT_TRUE(Folder::watchedFoldersWithPathPrefix(sub, context)->isEmpty());
    EXPECT_FALSE(Folder::watchedFolderWithPath(sub, context));
}

TEST_F(LiveFolder, ListsEachFolderOnceABranchAtATime)
{
    using Folder = ZQSidebarWatchedFolder;
    const auto project = context.insertNewObject<ZQSidebarProject>();
    folders.at(0)->appendChild(project.get()); // no live folder: left out
    const auto more = library.addReferencedImage(library.writeFile(QStringLiteral("live/sub/b.jpg"), "picture"));
    more->setWatchingFolder(folders.at(1).get());
    const auto listed = Folder::subfolderChildsItemsWithSortDescriptors(
        {{QStringLiteral("title"), false}}, {folders.at(1), folders.at(0), project, folders.at(1)}, context);
    ASSERT_TRUE(listed);
    EXPECT_EQ(listed->projectsCounts, (QList<qint64>{2, 1, 1}));
    EXPECT_EQ(listed->subprojects, (QList<ZQRef<ZQSidebarBaseItem>>{folders.at(1), folders.at(2), folders.at(0)}));
    EXPECT_EQ(listed->sortedResults, (QList<ZQRef<ZQLibraryBaseItem>>{more, items.at(1), items.at(2), items.at(0)}));
    EXPECT_EQ(folders.at(0)->orderedChildrenAndSubChildren(),
              (QList<ZQRef<ZQSidebarWatchedFolder>>{folders.at(1), folders.at(2)}));
    folders.at(2)->setFolderPath(QStringLiteral("/deep"));
    const auto paths = folders.at(1)->pathAndItemDictionary();
    EXPECT_EQ(paths.size(), 3);
    EXPECT_EQ(paths.value(QStringLiteral("/deep")), ZQRef<ZQManagedObject>(folders.at(2).get()));
    EXPECT_EQ(paths.value(library.path(QStringLiteral("live/sub/b.jpg"))), ZQRef<ZQManagedObject>(more.get()));
}

TEST_F(LiveFolder, TakesTheWholeTreeAlong)
{
    EXPECT_EQ(activity(), QStringLiteral("FEIFEIFEI"));
    folders.at(0)->deactivateFolder();
    EXPECT_EQ(activity(), QStringLiteral("FeiFeiFei"));
    folders.at(0)->reActivateFolder();
    EXPECT_EQ(activity(), QStringLiteral("FEIFEIFEI"));
    folders.at(1)->deleteSelf();
    EXPECT_EQ(activity().remove(u'E').remove(u'e'), QStringLiteral("FIfiFi"));
    folders.at(1)->restoreSelf();
    EXPECT_EQ(activity(), QStringLiteral("FEIFEIFEI"));
    folders.at(0)->deleteSelf();
    for (const bool isTrashed : {false, true}) {
        folders.at(0)->setIs_missing(!isTrashed);
        folders.at(0)->setIs_trashed(isTrashed);
        folders.at(0)->restoreSelf();
        EXPECT_EQ(activity().remove(u'E').remove(u'e'), QStringLiteral("FiFiFi")) << "until the folder is back";
        EXPECT_EQ(folders.at(0)->icon(), QStringLiteral("warning"));
    }
    folders.at(0)->setIs_trashed(false);
    EXPECT_EQ(folders.at(0)->icon(), QStringLiteral("live"));
    EXPECT_EQ(folders.at(0)->typeString(), QStringLiteral("Live Folder"));
}

TEST_F(LiveFolder, HoldsWhatSaysSo)
{
    const auto folder = folders.at(0);
    const auto item = library.addImage(QStringLiteral("new"));
    item->setActive(false);
    EXPECT_FALSE(folder->containsItem(item.get()) || folder->containsItem(nullptr));
    EXPECT_FALSE(folder->addItem(nullptr));
    EXPECT_TRUE(folder->addItem(item.get()));
    EXPECT_TRUE(item->active() && folder->containsItem(item.get()));
    EXPECT_FALSE(folder->addItem(item.get())) << "it is there already";
    item->setActive(false);
    EXPECT_TRUE(folder->addItems({item, items.at(1)}));
    EXPECT_TRUE(item->active());
    EXPECT_EQ(items.at(1)->watchingFolder(), folder);
    folder->removeItems({item, items.at(2)});
    EXPECT_FALSE(item->watchingFolder());
    EXPECT_EQ(items.at(2)->watchingFolder(), folders.at(2)) << "it is in another";
    EXPECT_EQ(folder->numberOfItems(), 2);
}

TEST_F(LiveFolder, IsWhereItsPathOrReferenceLeads)
{
    const auto folder = folders.at(0);
    const QString path = library.path(QStringLiteral("live"));
    EXPECT_FALSE(folder->folderURLSecureData().isEmpty());
    EXPECT_EQ(folder->title(), QStringLiteral("live"));
    EXPECT_EQ(folder->folderURL(), path);
    const QString moved = library.path(QStringLiteral("moved"));
    ASSERT_TRUE(QDir().rename(path, moved));
    EXPECT_EQ(folder->folderURL(), moved);
    folder->setFolderURLSecureData({});
    EXPECT_TRUE(folder->folderURL().isEmpty());
    folder->setFolderPath(moved);
    EXPECT_EQ(folder->folderURL(), moved);
    folder->setFolderPath(moved + QStringLiteral("/a.jpg"));
    EXPECT_TRUE(folder->folderURL().isEmpty()) << "a file is no folder";
}
