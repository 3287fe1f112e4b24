#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Tests/Classes/Import/ImportFixture.h"
#include "Tests/Support/DamagedStore.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <algorithm>
#include <fcntl.h>
#include <numeric>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class ImportOperationTest : public ImportFixture
{
};

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The children of `item` with what they hold, as "title{...}" and "title[a b]".
QString tree(const ZQSidebarBaseItem &item)
{
    QStringList parts;
    for (const auto &child : item.orderedChildren()) {
        if (child->isFolder()) {
            parts.append(child->title() + u'{' + tree(*child) + u'}');
        } else {
            QStringList titles;
            for (const auto &member : child->pItems()) {
                titles.append(member->item()->title());
            }
            parts.append(child->title() + u'[' + titles.join(u' ') + u']');
        }
    }
    return parts.join(u' ');
}

} // namespace

namespace {
QStringList logged;
} // namespace

TEST_F(ImportOperationTest, AnImageBecomesAnItemWithACopyOfItsFile)
{
    const QString source = writeImage(QStringLiteral("Logo.PNG"), {300, 200}, Qt::white);
    const auto operation = import({source});
    const auto all = items();
    ASSERT_EQ(all.size(), 1);
    const ZQLibraryBaseItem &made = *all.first();
    EXPECT_EQ(made.entity()->name, QStringLiteral("ZQLibraryImage"));
    EXPECT_EQ(made.title(), QStringLiteral("Logo"));
    EXPECT_EQ(made.extension(), QStringLiteral("png"));
    EXPECT_EQ(made.originalExtension(), QStringLiteral("PNG"));
    EXPECT_EQ(made.pixelWidth(), 300);
    EXPECT_EQ(made.pixelHeight(), 200);
    EXPECT_EQ(made.pixelTotal(), 60000);
    EXPECT_EQ(made.SHA1(),
              QString::fromLatin1(QCryptographicHash::hash(contents(source), QCryptographicHash::Sha1).toHex()));
    EXPECT_TRUE(made.managed());
    EXPECT_TRUE(made.active());
    EXPECT_EQ(contents(made.itemURL()), contents(source));
    EXPECT_EQ(tagTitles(made), (QStringList{QStringLiteral("medium"), QStringLiteral("white")}));
    EXPECT_EQ(made.mainColor(), 1000);
    EXPECT_EQ(operation->report().imported(), QStringList{made.bundleID()});
    EXPECT_TRUE(operation->report().dropped().isEmpty());
    EXPECT_EQ(itemDirectories().size(), 1);
}

TEST_F(ImportOperationTest, TagsOfSizeAndColourAreTheFixedOnesAndReachTheFile)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20}, Qt::white)});
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    for (const auto &tag : made->itemTags()) {
        EXPECT_NE(tag->kind(), 0) << tag->title().toStdString();
    }
    const auto fileTags = OpenMeta::getUserTags(made->itemURL()).value_or(QStringList());
    EXPECT_EQ(QSet<QString>(fileTags.begin(), fileTags.end()),
              (QSet<QString>{QStringLiteral("icon"), QStringLiteral("white")}));
}

TEST_F(ImportOperationTest, WithoutAutomaticTaggingThereAreNoSizeAndColourTags)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("UseAutoTagging"));
    import({writeImage(QStringLiteral("a.png"), {20, 20})});
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("UseAutoTagging"));
    ASSERT_TRUE(item(QStringLiteral("a")));
    EXPECT_TRUE(tagTitles(*item(QStringLiteral("a"))).isEmpty());
}

TEST_F(ImportOperationTest, TagsNotesAndOriginComeAlongFromTheFile)
{
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    const QString typed = QStringLiteral("Caf\u00e9"); // files carry it decomposed
    const auto known = addTag(typed);
    if (!OpenMeta::setUserTags(QStringList{QStringLiteral("Client"), typed}, source).isNull()) {
        return skipWithout("extended attributes");
    }
    OpenMeta::setRating(3.5, source);
    OpenMeta::setXAttr(QStringLiteral("abc"), OpenMeta::spotlightKey(OpenMeta::finderCommentKey), source);
    OpenMeta::setXAttr(QStringList{QStringLiteral("http://spotlight")}, OpenMeta::spotlightKey(OpenMeta::whereFromsKey),
                       source);
    OpenMeta::setNSArrayMetaData(QStringList{QStringLiteral("http://image"), QStringLiteral("http://page")},
                                 QStringLiteral("zeltoWhereFroms"), source);
    import({source});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    EXPECT_TRUE(tagTitles(*made).contains(QStringLiteral("Client")));
    EXPECT_TRUE(known->containsItem(made.get()));
    EXPECT_EQ(made->rating(), 4);
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(OpenMeta::getRating(made->itemURL()), 3.5);
    EXPECT_EQ(made->webURL(), QStringLiteral("http://image"));
    EXPECT_EQ(made->webPageURL(), QStringLiteral("http://page"));
    EXPECT_EQ(made->notes(), QStringLiteral("http://page\n abc"));
}

TEST_F(ImportOperationTest, MetadataOfTheRequestIsTheLastWordAndGivesTheNotes)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20})}, nullptr, ZQSidebarBaseItem::appendIndex,
           {{QStringLiteral("webURL"), QStringLiteral("http://u")},
            { QStringLiteral("license"),
              QStringLiteral("free") }});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->notes(), QStringLiteral("http://u"));
    EXPECT_EQ(made->license(), QStringLiteral("free"));
}

TEST_F(ImportOperationTest, OnlyAFileFromTheFutureSortsByItsOwnDate)
{
    const auto withDate = [this](const QString &name, const QDateTime &date) {
        const QString file = writeImage(name, {20, 20});
        QFile open(file);
        EXPECT_TRUE(open.open(QIODevice::ReadWrite) && open.setFileTime(date, QFileDevice::FileModificationTime));
        return file;
    };
    const QDateTime now = QDateTime::currentDateTimeUtc();
    import({withDate(QStringLiteral("old.png"), now.addYears(-1)),
            withDate(QStringLiteral("future.png"), now.addYears(1))});
    const auto old = item(QStringLiteral("old"));
    const auto future = item(QStringLiteral("future"));
    ASSERT_TRUE(old && future);
    EXPECT_EQ(old->sort_date(), old->import_date());
    EXPECT_LT(old->modification_date(), now.addDays(-300));
    EXPECT_EQ(future->sort_date(), future->modification_date());
    EXPECT_GT(future->sort_date(), now.addDays(300));
}

TEST_F(ImportOperationTest, EveryFileThatBecameNoItemIsReportedWithAReason)
{
    const QString good = writeImage(QStringLiteral("good.png"), {20, 20});
    const QString text = writeFile(QStringLiteral("text.txt"), "x");
    const QString empty = writeFile(QStringLiteral("empty.png"), "");
    const QString broken = writeFile(QStringLiteral("broken.pdf"), "not a document");
    const QString archive = writeFile(QStringLiteral("archive.zip"), "PK");
    const QString fifo = path(QStringLiteral("pipe.png"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const auto operation = import({text, empty, good, broken, archive, fifo});
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("good")});
    QStringList dropped = droppedPaths(operation->report());
    dropped.sort();
    EXPECT_EQ(dropped, (QStringList{archive, broken, empty, fifo, text}));
    EXPECT_EQ(itemDirectories(), QStringList{QFileInfo(item(QStringLiteral("good"))->bundleURL()).fileName()});
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_TRUE(
        user.notifications.first().text.startsWith(QStringLiteral("4 files could not be imported. The first is “")))
        << user.notifications.first().text.toStdString();
    EXPECT_EQ(operation->report().notifications(), user.notificationTexts());
}

TEST_F(ImportOperationTest, ImportingNothingUsefulSaysSo)
{
    import({writeFile(QStringLiteral("text.txt"), "x")});
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_EQ(user.notifications.first().text, QStringLiteral("Nothing to import!"));
    EXPECT_EQ(user.notifications.first().position, NotificationPlace::Browser);
    EXPECT_EQ(user.notifications.first().time, std::chrono::seconds(2));
    EXPECT_TRUE(user.systemNotifications.isEmpty());
}

TEST_F(ImportOperationTest, AwkwardNamesAreKept)
{
    QStringList sources;
    for (const QString &name : {QStringLiteral("two\nlines.png"), QStringLiteral("'quoted\".png"),
                                QString(QString(251, u'n') + QStringLiteral(".png")), QStringLiteral("100%@ %d.png"),
                                QStringLiteral("a:b.png")}) {
        sources.append(writeImage(name, {40, 40}));
    }
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("AlwaysMakeThumbsWhileImporting"));
    const auto operation = import(sources);
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("AlwaysMakeThumbsWhileImporting"));
    EXPECT_TRUE(droppedPaths(operation->report()).isEmpty());
    EXPECT_EQ(items().size(), sources.size());
    for (const auto &made : items()) {
        EXPECT_TRUE(QFileInfo(made->itemURL()).isFile()) << made->title().toStdString();
        EXPECT_TRUE(QFileInfo(made->thumbURL()).isFile()) << made->title().toStdString();
    }
}

TEST_F(ImportOperationTest, TemporaryFilesAreMovedOnceTheItemIsSaved)
{
    const QString temporary = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/moved.png"), {20, 20});
    const QString templateFile = writeImage(QStringLiteral("ZeltoTemporaryFolder/a.zttemplate/kept.png"), {20, 20});
    bool stoodWhileSaved = false;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr,
        [&](const ZQNotification &) { stoodWhileSaved = stoodWhileSaved || QFile::exists(temporary); });
    import({temporary, templateFile});
    EXPECT_TRUE(stoodWhileSaved);
    EXPECT_FALSE(QFile::exists(temporary));
    EXPECT_TRUE(QFile::exists(templateFile));
    ASSERT_TRUE(item(QStringLiteral("moved")));
    EXPECT_TRUE(QFileInfo(item(QStringLiteral("moved"))->itemURL()).isFile());
}

TEST_F(ImportOperationTest, ItemsGoIntoAProjectInOrderAndAtTheIndex)
{
    const auto project = addProject(QStringLiteral("P"));
    const auto named = [this](const char *name) {
        return writeImage(QString::fromLatin1(name) + QStringLiteral(".png"), {20, 20});
    };
    import({named("a"), named("b")}, project.get());
    import({named("d"), named("c")}, project.get(), 1);
    QStringList order;
    for (const auto &member : project->pItems()) {
        order.append(member->item()->title() + QString::number(member->order()));
    }
    EXPECT_EQ(order.join(u' '), QStringLiteral("a0 d1 c2 b3"));
}

TEST_F(ImportOperationTest, ItemsImportedIntoATagCarryIt)
{
    const auto tag = addTag(QStringLiteral("Wanted"));
    import({writeImage(QStringLiteral("a.png"), {20, 20})}, tag.get());
    EXPECT_TRUE(tagTitles(*item(QStringLiteral("a"))).contains(QStringLiteral("Wanted")));
}

TEST_F(ImportOperationTest, FoldersBecomeFoldersAndProjects)
{
    writeImage(QStringLiteral("drop/Top/2.png"), {20, 20});
    writeImage(QStringLiteral("drop/Top/10.png"), {20, 20});
    writeImage(QStringLiteral("drop/Top/Sub: one/x.png"), {20, 20});
    writeFile(QStringLiteral("drop/Top/notes.txt"), "x");
    writeFile(QStringLiteral("drop/Top/.hidden.png"), "x");
    writeFile(QStringLiteral("drop/Hidden only/.DS_Store"), "x");
    QFile::link(path(QStringLiteral("drop/Top/2.png")), path(QStringLiteral("drop/Top/link.png")));
    const QString loose = writeImage(QStringLiteral("drop/loose.png"), {20, 20});
    const auto folder = context().insertNewObject<ZQSidebarFolder>();
    folder->setTitle(QStringLiteral("F"));
    projectsLabel()->appendChild(folder.get());
    delegate->saveAction();

    const auto operation =
        import({path(QStringLiteral("drop/Top")), loose, path(QStringLiteral("drop/Hidden only"))}, folder.get());
    EXPECT_EQ(tree(*folder), QStringLiteral("New Project[loose] Top{Top[2 10] Sub/ one[x]}"));
    QStringList dropped = droppedPaths(operation->report());
    dropped.sort();
    EXPECT_EQ(dropped, (QStringList{path(QStringLiteral("drop/Hidden only")), path(QStringLiteral("drop/Top/link.png")),
                                    path(QStringLiteral("drop/Top/notes.txt"))}));
    for (const auto &child : folder->orderedChildren()) {
        EXPECT_TRUE(child->enabled());
    }
    EXPECT_EQ(ZQSortValue(folder->orderedChildren().last()->sortKeys()), ZQSortValue::None);
    EXPECT_EQ(operation->foldersAndArchivesPathOrdered(), QStringList{path(QStringLiteral("drop/Top"))});
}

TEST_F(ImportOperationTest, APictureOfWhichAPartIsThereIsImportedAndToldOnce)
{
    const auto project = addProject(QStringLiteral("P"));
    QImage noise(200, 200, QImage::Format_RGB32);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            noise.setPixel(x, y, quint32(x * 7919 + y * 104729) * 2654435761U);
        }
    }
    QStringList cut;
    for (const char *format : {"png", "jpg", "bmp"}) {
        const QString whole = writeFile(QStringLiteral("whole.") + QLatin1String(format), {});
        ASSERT_TRUE(noise.save(whole));
        const QByteArray bytes = contents(whole);
        cut.append(writeFile(QStringLiteral("part-%1.%1").arg(QLatin1String(format)), bytes.left(bytes.size() / 2)));
    }
    const auto alone = import({cut.first()}, project.get());
    ASSERT_EQ(alone->report().dropped().size(), 1);
    ASSERT_EQ(items().size(), 1) << qPrintable(alone->report().dropped().first().reason);
    ASSERT_EQ(user.notifications.size(), 1);
    EXPECT_EQ(user.notifications.first().text,
              QStringLiteral("“part-png.png” is incomplete: only a part of it can be drawn"));
    EXPECT_EQ(droppedPaths(alone->report()), QStringList{cut.first()});
    EXPECT_TRUE(alone->report().dropped().first().isImportedInPart());
    user.notifications.clear();

    const QString unreadable = writeFile(QStringLiteral("none.png"), "no picture at all");
    logged.clear();
    const auto before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) { logged.append(text); });
    const auto several = import(cut.mid(1) + QStringList{unreadable}, project.get());
    qInstallMessageHandler(before);
    EXPECT_EQ(items().size(), 3);
    EXPECT_EQ(several->report().imported().size(), 2);
    ASSERT_EQ(several->report().dropped().size(), 3);
    for (const DroppedFile &file : several->report().dropped()) {
        EXPECT_EQ(file.isImportedInPart(), file.path != unreadable);
        if (file.path == unreadable) {
            const QStringList lines = logged.filter(QStringLiteral("none.png"));
            EXPECT_EQ(lines.filter(file.reason).size(), 1) << "the log says why: " << lines.join(u'|').toStdString();
        }
    }
    ASSERT_EQ(user.notifications.size(), 1);
    const QString told = user.notifications.first().text;
    EXPECT_TRUE(told.contains(QStringLiteral("“none.png” could not be imported")));
    EXPECT_TRUE(told.contains(QStringLiteral("2 pictures are incomplete")));
    EXPECT_FALSE(told.contains(QStringLiteral("Zelto.")));
}

TEST_F(ImportOperationTest, CancellingRemovesEverythingTheBatchMade)
{
    const auto before = zqFetch<ZQSidebarBaseItem>(context(), QStringLiteral("active == YES"))->size();
    writeImage(QStringLiteral("drop/Top/Sub/a.png"), {20, 20});
    const QString moved = writeImage(QStringLiteral("ZeltoTemporaryFolder/b.png"), {20, 20});
    user.onBeginProgress = [](const std::function<void()> &cancel) { cancel(); };
    const auto operation = import({path(QStringLiteral("drop/Top")), moved}, projectsLabel().get());
    EXPECT_TRUE(items().isEmpty());
    EXPECT_TRUE(itemDirectories().isEmpty());
    EXPECT_EQ(zqFetch<ZQSidebarBaseItem>(context(), QStringLiteral("active == YES"))->size(), before);
    EXPECT_TRUE(QFile::exists(moved));
    EXPECT_EQ(user.notificationTexts(), QStringList{QStringLiteral("Import cancelled")});
    EXPECT_EQ(operation->report().dropped().size(), 2);
}

TEST_F(ImportOperationTest, ALargeBatchKeepsItsOrderAndShowsItsFirstItemsEarly)
{
    const auto project = addProject(QStringLiteral("P"));
    ZQUserDefaults::standardUserDefaults().setObjectForKey(false, QStringLiteral("UseAutoTagging"));
    const QByteArray picture = contents(writeImage(QStringLiteral("one.png"), {4, 4}));
    QStringList sources;
    for (int i = 0; i < 1100; ++i) {
        sources.append(writeFile(QStringLiteral("many/%1.png").arg(i, 5, 10, QLatin1Char('0')), picture));
    }
    std::vector<qsizetype> seen;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        AImportManager::didFinishImportOperation, nullptr,
        [&](const ZQNotification &) { seen.push_back(qsizetype(project->numberOfItems())); });
    const auto operation = import(sources, project.get());
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("UseAutoTagging"));
    EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [](qsizetype count) { return count > 0 && count < 1100; }));
    ASSERT_EQ(operation->report().imported().size(), 1100);
    const auto members = project->pItems();
    ASSERT_EQ(members.size(), 1100);
    for (qsizetype i = 0; i < members.size(); ++i) {
        ASSERT_EQ(members.at(i)->order(), i);
        ASSERT_EQ(members.at(i)->item()->title(), QFileInfo(sources.at(i)).completeBaseName());
    }
}

TEST_F(ImportOperationTest, AnUnreadableFileIsAskedAboutAndTheAnswerDecides)
{
    const QString good = writeImage(QStringLiteral("good.png"), {20, 20});
    const QString gone = path(QStringLiteral("gone.png"));
    // Nobody answers: the import stops.
    auto operation = import({good, gone});
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(operation->report().dropped().size(), 2);

    QList<FileConflict> asked;
    user.answerUnreadableFiles = [&](QList<FileConflict> &conflicts) {
        asked = conflicts;
        return true;
    };
    operation = import({good, gone});
    ASSERT_EQ(asked.size(), 2);
    EXPECT_TRUE(asked.first().isValid);
    EXPECT_FALSE(asked.last().isValid);
    EXPECT_EQ(asked.first().reason, QString());
    EXPECT_EQ(asked.last().reason,
              QStringLiteral("It is not there any more. Look where it went and import it from there."));
    EXPECT_EQ(titles(items()), QStringList{QStringLiteral("good")});
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{gone});
}

TEST_F(ImportOperationTest, TheQueueIsAnnouncedFromTheSecondImportOn)
{
    const QString a = writeImage(QStringLiteral("a.png"), {20, 20});
    const QString b = writeImage(QStringLiteral("b.png"), {20, 21});
    AImportManager &manager = AImportManager::sharedAImportManager();
    manager.importFilesAtPaths({a}, nullptr);
    manager.importFilesAtPaths({a, b}, nullptr);
    ASSERT_FALSE(user.notifications.isEmpty());
    EXPECT_EQ(user.notifications.first().text, QStringLiteral("2 items added to the import queue"));
    EXPECT_EQ(user.notifications.first().time, usualNotificationTime);
    user.answerDuplicates = [](const QList<DuplicatePair> &pairs) {
        return QList<DuplicateChoice>(pairs.size(), DuplicateChoice::Discard);
    };
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(items().size(), 2);
}

TEST_F(ImportOperationTest, TargetsThatTakeNothingAreReported)
{
    const auto recent = ZQSidebarBaseItem::recentProjectInManagedObjectContext(context());
    const QString source = writeImage(QStringLiteral("a.png"), {20, 20});
    const auto operation = import({source}, recent.get());
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(droppedPaths(operation->report()), QStringList{source});
}

TEST_F(ImportOperationTest, TagsOfOneTitleBecomeOneWithAllTheirItems)
{
    import({writeImage(QStringLiteral("a.png"), {20, 20}), writeImage(QStringLiteral("b.png"), {20, 21})});
    const auto first = addTag(QStringLiteral("Red"));
    const auto second = addTag(QStringLiteral("Red"));
    const auto other = addTag(QStringLiteral("red "));
    second->setOrder(first->order() + 1);
    other->setOrder(first->order() + 2);
    item(QStringLiteral("a"))->addTagsObject(first.get());
    item(QStringLiteral("b"))->addTagsObject(second.get());
    delegate->saveAction();
    AImportManager::sharedAImportManager().mergeDuplicatedTagNames({QStringLiteral("Red"), QStringLiteral("red ")});
    delegate->saveAction();
    const auto tags =
        zqFetch<ZQSidebarTag>(context(), QStringLiteral("title = %@ AND active = YES"), {QStringLiteral("Red")});
    ASSERT_EQ(tags->size(), 1);
    EXPECT_EQ(tags->first()->taggedItems().size(), 2);
    EXPECT_TRUE(other->managedObjectContext());
    const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context());
    QList<qint32> orders;
    for (const auto &tag : label->orderedChildren()) {
        orders.append(tag->order());
    }
    QList<qint32> numbers(orders.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    EXPECT_EQ(orders, numbers) << "none is missing where one went";
}

TEST_F(ImportOperationTest, AFailedSaveLosesNoSourceAndLeavesNoDirectory)
{
    const QString moved = writeImage(QStringLiteral("ZeltoTemporaryFolder/t.1/moved.png"), {20, 20});
    const QString copied = writeImage(QStringLiteral("copied.png"), {20, 20});
    std::optional<RefusingStore> refusing;
    user.onBeginProgress = [&](const std::function<void()> &) {
        refusing.emplace(delegate->persistentStoreCoordinator()->path(),
                         QStringList{QStringLiteral("ZQLibraryBaseItem")});
    };
    const auto operation = import({moved, copied});
    refusing.reset();
    EXPECT_TRUE(QFile::exists(moved));
    EXPECT_TRUE(QFile::exists(copied));
    EXPECT_TRUE(items().isEmpty());
    EXPECT_TRUE(itemDirectories().isEmpty());
    EXPECT_TRUE(operation->report().imported().isEmpty());
    EXPECT_EQ(droppedPaths(operation->report()), (QStringList{moved, copied}));
}
