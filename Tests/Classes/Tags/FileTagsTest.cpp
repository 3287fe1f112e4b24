#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Tests/Classes/Tags/TagsFixture.h"

#include <cmath>
#include <future>

namespace {

// A file that the library wrote to once, and what another program and the library did since.
class FileTagsTest : public TagsFixture
{
protected:
    TagFileWriter::Merge request(const FileTags &library)
    {
        TagFileWriter::Merge merge;
        merge.path = path;
        merge.library = library;
        merge.adopt = [this](const FileTagsChange &change) { adopted = change; };
        return merge;
    }
    void send(const TagFileWriter::Merge &merge)
    {
        adopted.reset();
        TagFileWriter::sharedTagFileWriter().mergeWithFile(merge);
        TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    }
    void write(const FileTags &library) { send(request(library)); }
    void theirs(const char *tags) { ASSERT_TRUE(OpenMeta::setUserTags(list(tags), path).isNull()); }
    QStringList sorted() const
    {
        QStringList tags = tagsOf(path);
        tags.sort();
        return tags;
    }
    void forget() { ASSERT_TRUE(ZQExtendedAttributes::remove(path, SeenFileTags::attributeName)); }

    std::optional<FileTagsChange> adopted;
};

} // namespace

TEST_F(FileTagsTest, AdditionsAndRemovalsOfBothSidesCount)
{
    struct Case
    {
        const char *before;
        const char *theirs;
        const char *ours;
        const char *merged;
        const char *added;
        const char *removed;
    };
    const Case cases[] = {
        {"a b", "a b", "a b", "a b", "", ""},     {"a b", "a b x", "a b", "a b x", "x", ""},
        {"a b", "a b", "a b y", "a b y", "", ""}, {"a b", "a x", "a b y", "a x y", "x", "b"},
        {"a b", "a b x", "b", "b x", "x", ""},    {"a b", "", "a b", "", "", "a b"},
        {"a b", "a x", "b x", "x", "", "b"},      {"Logo", "logo x", "Logo", "logo x", "logo x", "Logo"},
        {"", "x", "y", "x y", "x", ""},
    };
    for (const Case &c : cases) {
        path = newFile(
            QStringLiteral("%1-%2-%3").arg(QLatin1String(c.before), QLatin1String(c.theirs), QLatin1String(c.ours)));
        write({list(c.before), {}, 0});
        theirs(c.theirs);
        write({list(c.ours), {}, 0});
        EXPECT_EQ(sorted(), list(c.merged)) << qPrintable(path);
        EXPECT_EQ(adopted ? adopted->added : QStringList(), list(c.added)) << qPrintable(path);
        EXPECT_EQ(adopted ? adopted->removed : QStringList(), list(c.removed)) << qPrintable(path);
    }
}

// A file holds one of them, and the other one is not taken for removed.
TEST_F(FileTagsTest, TagsThatDifferOnlyInCaseAreTwoOfWhichAFileHoldsOne)
{
    write({list("Logo logo"), {}, 0});
    EXPECT_EQ(sorted(), list("Logo"));
    for (const char *order : {"logo Logo", "Logo logo x"}) { // and it stays as it is
        write({list(order), {}, 0});
        EXPECT_FALSE(adopted) << order;
        EXPECT_EQ(sorted().first(), QStringLiteral("Logo")) << order;
    }
    write({list("logo x"), {}, 0});
    EXPECT_FALSE(adopted);
    EXPECT_EQ(sorted(), list("logo x"));

    write({list("Logo logo x"), {}, 0});
    theirs("LOGO x");
    write({list("Logo logo x"), {}, 0});
    ASSERT_TRUE(adopted);
    EXPECT_EQ(adopted->added, list("LOGO"));
    EXPECT_EQ(adopted->removed, list("Logo logo"));
    EXPECT_EQ(sorted(), list("LOGO x"));

    write({list("Caf\u00e9"), {}, 0}); // other forms of one text are no change
    theirs("Cafe\u0301");
    write({list("Caf\u00e9"), {}, 0});
    EXPECT_FALSE(adopted);

    path = newFile(QStringLiteral("unseen"));
    theirs("logo");
    write({list("Logo"), {}, 0});
    ASSERT_TRUE(adopted);
    EXPECT_EQ(adopted->added, list("logo"));
    EXPECT_EQ(sorted(), list("logo"));
}

// Requests made before the library heard of another program's change look like its removal.
TEST_F(FileTagsTest, AChangeStaysForeignUntilTheLibraryConfirmsIt)
{
    write({list("a b"), {}, 0});
    theirs("a x");
    for (const char *stale : {"a b", "a b c"}) {
        write({list(stale), {}, 0});
        ASSERT_TRUE(adopted) << stale;
        EXPECT_EQ(adopted->added, list("x"));
        EXPECT_EQ(adopted->removed, list("b"));
    }
    EXPECT_EQ(sorted(), list("a c x"));
    write({list("a c x"), {}, 0});
    EXPECT_FALSE(adopted);
    write({list("a c"), {}, 0}); // and now the library takes it away
    EXPECT_FALSE(adopted);
    EXPECT_EQ(sorted(), list("a c"));
}

TEST_F(FileTagsTest, NotesOfBothSidesStayAndOneSidesChangeWins)
{
    struct Case
    {
        const char *before;
        const char *theirs;
        const char *ours;
        const char *merged;
    };
    const Case cases[] = {
        {"n", "n", "n", "n"},     {"n", "said", "n", "said"},          {"n", "n", "typed", "typed"},
        {"n", "", "n", ""},       {"n", "", "typed", "typed"},         {"n", "said", "typed", "typed\nsaid"},
        {"", "said", "", "said"}, {"n", "said", "said so", "said so"}, {"n", "typed on", "typed", "typed on"},
    };
    for (const Case &c : cases) {
        path = newFile(
            QStringLiteral("%1-%2-%3").arg(QLatin1String(c.before), QLatin1String(c.theirs), QLatin1String(c.ours)));
        write({list("a"), QLatin1String(c.before), 0});
        ASSERT_TRUE(OpenMeta::setFinderComment(QLatin1String(c.theirs), path).isNull());
        write({list("a"), QLatin1String(c.ours), 0});
        EXPECT_EQ(OpenMeta::getFinderComment(path).value_or(QString()), QLatin1String(c.merged)) << qPrintable(path);
        EXPECT_EQ(adopted && adopted->comment, QLatin1String(c.merged) != QLatin1String(c.ours)) << qPrintable(path);
    }
}

TEST_F(FileTagsTest, ARatingFollowsWhoChangedItAndKeepsItsFraction)
{
    struct Case
    {
        double theirs;
        int ours;
        double merged;
    };
    const Case cases[] = {{3, 3, 3}, {3.4, 3, 3.4}, {5, 3, 5}, {3, 1, 1}, {0, 3, 0}, {3, 0, 0}, {5, 1, 1}};
    for (const Case &c : cases) {
        path = newFile(QStringLiteral("%1-%2").arg(c.theirs).arg(c.ours));
        write({{}, {}, 3});
        ASSERT_TRUE(OpenMeta::setRating(c.theirs, path).isNull());
        write({{}, {}, c.ours});
        EXPECT_DOUBLE_EQ(OpenMeta::getRating(path), c.merged) << qPrintable(path);
    }
}

TEST_F(FileTagsTest, ARatingBeyondTheStarsCountsAsTheNearestAndStays)
{
    struct Case
    {
        double theirs;
        int stars;
    };
    for (const Case &c : {Case{7, 5}, Case{std::nan(""), 0}, Case{-3, 0}, Case{4.5, 5}}) {
        EXPECT_EQ(OpenMeta::starsForRating(c.theirs), c.stars);
        path = newFile(QString::number(c.theirs));
        const QString name = OpenMeta::spotlightKey(OpenMeta::starRatingKey);
        ASSERT_TRUE(OpenMeta::setXAttr(c.theirs, name, path).isNull());
        const auto attribute = raw(path, name);
        write({list("a"), {}, c.stars});
        EXPECT_FALSE(adopted) << c.theirs;
        EXPECT_EQ(raw(path, name), attribute) << c.theirs;
    }
}

// Stores of older versions held no ratings, and an older version left no record.
TEST_F(FileTagsTest, WithoutARecordNothingIsTakenForRemoved)
{
    ASSERT_TRUE(OpenMeta::setRating(4, path).isNull());
    theirs("a x");
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("said"), path).isNull());
    write({list("a b"), QStringLiteral("typed"), 0});
    EXPECT_EQ(sorted(), list("a b x"));
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("typed\nsaid"));
    ASSERT_TRUE(adopted);
    EXPECT_EQ(adopted->rating, 4);

    write({list("a b x"), QStringLiteral("typed\nsaid"), 4});
    OpenMetaBackup::waitUntilAllWritten();
    forget();
    write({list("a b"), QStringLiteral("typed\nsaid"), 0}); // the copy of the tags stands in for the record
    EXPECT_EQ(sorted(), list("a b"));
    EXPECT_EQ(adopted->rating, 4);
    auto rated = request({list("a b"), QStringLiteral("typed\nsaid"), 0});
    rated.ratingIsMeant = true;
    forget();
    send(rated);
    EXPECT_EQ(OpenMeta::getRating(path), 0);
    EXPECT_FALSE(adopted);
}

TEST_F(FileTagsTest, AFileThatLostItsAttributesGetsThemAllBack)
{
    const FileTags values{list("a"), QStringLiteral("noted"), 4};
    write(values);
    for (const QString &name : ZQExtendedAttributes::list(path)) {
        ASSERT_TRUE(ZQExtendedAttributes::remove(path, name));
    }
    write(values);
    EXPECT_FALSE(adopted);
    EXPECT_EQ(tagsOf(path), list("a"));
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("noted"));
    EXPECT_EQ(OpenMeta::getRating(path), 4);
}

TEST_F(FileTagsTest, WhatCannotBeReadIsNeverTakenForNone)
{
    write({list("a"), {}, 3});
    const QString name = OpenMeta::spotlightKey(OpenMeta::userTagsKey);
    ASSERT_TRUE(ZQExtendedAttributes::set(path, name, "bplist00 nonsense"));
    write({list("a b"), {}, 3});
    EXPECT_FALSE(adopted);
    EXPECT_EQ(raw(path, name), QByteArray("bplist00 nonsense"));
    ZQError error;
    const auto read = [&error](const QString &file) {
        return FileTagsMerge::ofFile(file, {list("a"), {}, 0}, FileTagsMerge::Unknown::TakesFile, false, &error);
    };
    EXPECT_FALSE(read(path));
    EXPECT_FALSE(error.isNull());
    EXPECT_FALSE(read(folder.filePath(QStringLiteral("gone"))));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, name, *ZQPropertyList::toBinary(list("a"))));
    ASSERT_TRUE(ZQExtendedAttributes::set(path, OpenMeta::spotlightKey(OpenMeta::starRatingKey), "nonsense"));
    write({list("a"), {}, 3}); // no program can say what this was
    EXPECT_FALSE(adopted);
    EXPECT_EQ(OpenMeta::getRating(path), 3);
}

TEST_F(FileTagsTest, TheRecordIsWrittenAfterTheValuesAndOnlyWhenAllAreInTheFile)
{
    auto merge = request({list("a"), {}, 2});
    int attributesBefore = -1;
    merge.willTouch = [&] { attributesBefore = int(ZQExtendedAttributes::list(path).size()); };
    send(merge);
    EXPECT_EQ(attributesBefore, 0); // the journal comes before everything
    const auto record = raw(path, SeenFileTags::attributeName);
    ASSERT_TRUE(record);
    EXPECT_EQ(SeenFileTags::fromText(*record), SeenFileTags::of({list("a"), {}, 2}));

    write({list("a") + QStringList{QString(5000, u'x')}, {}, 2}); // longer than an attribute may be
    EXPECT_EQ(raw(path, SeenFileTags::attributeName), record);
    EXPECT_EQ(tagsOf(path), list("a"));

    for (const char *damaged : {"", "r", "r2 t12345", "r9 t", "x2 t", "r2 t123456 c1", "r2 t 3 4", "r2 x", "r6 t",
                                "r/ t", "r22 t", "r2 t x0123456789abcdef", "r2 t c0123456789abcdef x"}) {
        EXPECT_FALSE(SeenFileTags::fromText(damaged)) << damaged;
    }
    for (const int rating : {0, 5}) {
        const SeenFileTags seen = SeenFileTags::of({list("a b"), QStringLiteral("noted"), rating});
        EXPECT_EQ(SeenFileTags::fromText(seen.text()), seen);
    }
    write(FileTags{});
    EXPECT_EQ(raw(path, SeenFileTags::attributeName), QByteArray("r0 t"));
    path = newFile(QStringLiteral("untouched"));
    write(FileTags{});
    EXPECT_TRUE(ZQExtendedAttributes::list(path).isEmpty());
}

TEST_F(FileTagsTest, AnUnknownRatingOfTheFileGivesWayToTheLibrarysOwn)
{
    ASSERT_TRUE(OpenMeta::setRating(4, path).isNull());
    write({{}, {}, 1});
    EXPECT_EQ(OpenMeta::getRating(path), 1);
    EXPECT_FALSE(adopted);
}

// A copy brings along the record of another library's file.
TEST_F(FileTagsTest, AFirstWriteTrustsNoRecord)
{
    write({list("a b"), {}, 0});
    theirs("a");
    auto first = request({list("a icon"), {}, 0});
    first.isFirst = true;
    send(first);
    EXPECT_EQ(sorted(), list("a icon"));
    EXPECT_FALSE(adopted);
    write({list("a icon b"), {}, 0});
    EXPECT_EQ(sorted(), list("a b icon"));
}

// An item that is made again of a file, after its store was lost, holds nothing yet.
TEST_F(FileTagsTest, AnItemMadeAnewTakesAllThatTheFileSays)
{
    write({list("a b"), QStringLiteral("noted"), 4});
    ZQError error;
    const auto read = FileTagsMerge::ofFile(path, {}, FileTagsMerge::Unknown::TakesFile, false, &error);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->merged.tags, list("a b"));
    EXPECT_EQ(read->merged.comment, QStringLiteral("noted"));
    EXPECT_EQ(read->merged.rating, 4);
}

TEST_F(FileTagsTest, ACopyThatLeavesTheLibraryCarriesNoRecord)
{
    write({list("a"), {}, 0});
    TagFileWriter::sharedTagFileWriter().writeTagsToFile(path, list("a"), QStringLiteral("noted"), 5);
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_FALSE(raw(path, SeenFileTags::attributeName));
    EXPECT_EQ(OpenMeta::getRating(path), 5);
}

TEST_F(FileTagsTest, WhoAskedHearsWhichFileWasWrittenTo)
{
    QStringList heard;
    for (const QString &found : {path, QString()}) {
        TagFileWriter::Merge merge;
        merge.find = [found] { return found; };
        merge.library = {{QStringLiteral("a")}, {}, 0};
        merge.willTouch = [&heard] { heard.append(QStringLiteral("touched")); };
        merge.done = [&heard](const QString &written) { heard.append(written); };
        TagFileWriter::sharedTagFileWriter().mergeWithFile(merge);
    }
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    EXPECT_EQ(heard, (QStringList{QStringLiteral("touched"), path, QString()}));
    EXPECT_EQ(OpenMeta::getUserTags(path), QStringList{QStringLiteral("a")});
}

TEST_F(FileTagsTest, WhoAsksForManyFilesWaitsUntilFewAreLeftOrItIsCancelled)
{
    TagFileWriter &writer = TagFileWriter::sharedTagFileWriter();
    std::promise<void> gate;
    writer.afterWrites([opened = gate.get_future().share()] { opened.wait(); });
    int written = 0;
    for (int i = 0; i < 4; ++i) {
        writer.afterWrites([&written] { ++written; });
    }
    writer.waitUntilFewerWait(5, nullptr); // so many may be left
    const auto asking = zqBlockOperation([] {});
    auto waiting = std::async(std::launch::async, [&writer, asking] { writer.waitUntilFewerWait(4, asking.get()); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    asking->cancel();
    waiting.get();
    gate.set_value();
    writer.waitUntilFewerWait(0, nullptr);
    EXPECT_EQ(written, 4);
}

// A copy that is behind the library gives a file tags of a later time than its own.
TEST_F(FileTagsTest, WhatComesBackFromAnOlderCopyTakesNothingAway)
{
    newFile(QStringLiteral("file.png"), "a picture");
    write({list("a"), {}, 0});
    OpenMetaBackup::waitUntilAllWritten();
    const QString other = newFile(QStringLiteral("new.tmp"), "a picture");
    ASSERT_EQ(rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData()), 0);
    ASSERT_EQ(tagsOf(path), list("a")); // somebody looks, before the library's newer tag is written
    const auto read =
        FileTagsMerge::ofFile(path, {list("a b"), {}, 0}, FileTagsMerge::Unknown::TakesFile, false, nullptr);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->change.removed, QStringList());
    const auto removed = FileTagsMerge::ofFile(path, {}, FileTagsMerge::Unknown::KeepsBoth, false, nullptr);
    ASSERT_TRUE(removed);
    EXPECT_EQ(removed->change.added, QStringList()) << "the library took it away meanwhile";
}

TEST_F(FileTagsTest, AWriteIsWaitingUntilItIsDone)
{
    TagFileWriter &writer = TagFileWriter::sharedTagFileWriter();
    std::promise<void> gate;
    writer.afterWrites([opened = gate.get_future().share()] { opened.wait(); });
    for (int i = 0; i < 2; ++i) {
        writer.mergeWithFile(request({list("a"), {}, 0}));
    }
    EXPECT_TRUE(writer.isWaiting(path));
    EXPECT_FALSE(writer.isWaiting(path + u'2'));
    gate.set_value();
    writer.waitUntilAllWritten();
    EXPECT_FALSE(writer.isWaiting(path));
}
