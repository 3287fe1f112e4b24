// What a missing file costs, who is told when it is found, and which newcomer under its name is that file.

#include "Kit/Files/ZQFileReference.h"
#include "Kit/Files/ZQFileSearch.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QDataStream>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <future>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

class MissingFiles : public Scratch
{
protected:
    MissingFiles() { zqForgetPersistentURLs(); }
    ~MissingFiles() override
    {
        zqSetPersistentURLTime({});
        zqWaitForPersistentURLSearches();
    }

    // So that the folders' next change shows in their times.
    static void settle() { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }
    // How many entries of folders one resolving looks at, in the caller's way.
    static qint64 costOf(const QByteArray &reference)
    {
        const qint64 before = zqPersistentURLCounts().entriesInCallers;
        EXPECT_EQ(zqURLFromPersistentData(reference), QString());
        return zqPersistentURLCounts().entriesInCallers - before;
    }
    static bool rename(const QString &from, const QString &to)
    {
        return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    }
    static bool link(const QString &from, const QString &to)
    {
        return ::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    }
    // Where every way of asking has it.
    static QString found(const QByteArray &reference)
    {
        zqLookForPersistentURLs({{reference, {}}});
        zqWaitForPersistentURLSearches();
        EXPECT_EQ(zqURLFromPersistentData(reference), zqFindPersistentURL(reference));
        return zqFindPersistentURL(reference);
    }
};

QByteArray noise(qsizetype size, quint32 seed)
{
    std::mt19937 random(seed);
    QByteArray bytes(size, '\0');
    for (char &byte : bytes) {
        byte = char(random());
    }
    return bytes;
}

} // namespace

TEST_F(MissingFiles, CostOneLookIntoTheirFolderAndOneAround)
{
    const QString start = folder(QStringLiteral("one/two/three"));
    const QString made = start + QStringLiteral("/a.png");
    write(made, "a");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(QFile::remove(made));
    constexpr int siblings = 40;
    for (int i = 0; i < siblings; ++i) {
        write(start + QStringLiteral("/sibling %1").arg(i), "s");
    }
    settle();
    const qint64 before = zqPersistentURLCounts().entriesBeside;
    EXPECT_EQ(costOf(reference), siblings);
    zqWaitForPersistentURLSearches();
    const qint64 around = siblings + (siblings + 1) + (siblings + 2); // of three, of two and of one
    EXPECT_EQ(zqPersistentURLCounts().entriesBeside - before, around);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(costOf(reference), 0);
    }
    EXPECT_EQ(zqFindPersistentURL(reference), QString()); // has been looked for
    zqWaitForPersistentURLSearches();
    EXPECT_EQ(zqPersistentURLCounts().entriesBeside - before, around);

    write(start + QStringLiteral("/new"), "n"); // it might be the file
    settle();
    EXPECT_EQ(costOf(reference), siblings + 1);
    EXPECT_EQ(costOf(reference), 0);
    zqWaitForPersistentURLSearches();
    zqForgetPersistentURLs();
    EXPECT_EQ(costOf(reference), siblings + 1);
}

TEST_F(MissingFiles, AreRememberedForAMinuteOrASecondWhileTheirFolderMayStillChangeUnseen)
{
    using namespace std::chrono_literals;
    const QString start = folder(QStringLiteral("one/two/three"));
    write(start + QStringLiteral("/a.png"), "a");
    write(start + QStringLiteral("/sibling"), "s");
    const QByteArray reference = zqDataForPersistentURL(start + QStringLiteral("/a.png"));
    ASSERT_TRUE(QFile::remove(start + QStringLiteral("/a.png")));
    const auto place = zqLookAtFile(QFile::encodeName(start));
    ASSERT_TRUE(place);
    const std::chrono::nanoseconds changed(std::max(place->modification, place->change));
    struct Case
    {
        std::chrono::nanoseconds sinceTheChange;
        std::chrono::nanoseconds remembered;
    };
    for (const Case &c : {Case{0ns, 1s}, Case{50ms, 1s}, Case{50ms + 1ns, 60s}, Case{1h, 60s}}) {
        zqForgetPersistentURLs();
        zqSetPersistentURLTime(changed + c.sinceTheChange);
        EXPECT_EQ(costOf(reference), 1);
        zqSetPersistentURLTime(changed + c.sinceTheChange + c.remembered - 1ns);
        EXPECT_EQ(costOf(reference), 0) << c.sinceTheChange.count();
        zqSetPersistentURLTime(changed + c.sinceTheChange + c.remembered);
        EXPECT_EQ(costOf(reference), 1) << c.sinceTheChange.count();
        zqWaitForPersistentURLSearches();
    }
}

TEST_F(MissingFiles, WhoWaitsForOneGoesOnBeforeThoseWhoAreTold)
{
    const QString made = folder(QStringLiteral("one/two/three")) + QStringLiteral("/a.png");
    write(made, "a");
    for (int i = 0; i < 2000; ++i) { // so that the others wait before it is found
        folder(QStringLiteral("one/two/%1").arg(i));
    }
    const QByteArray reference = zqDataForPersistentURL(made);
    const QString far = folder(QStringLiteral("one/other/deep")) + QStringLiteral("/b.png");
    ASSERT_TRUE(rename(made, far));
    std::promise<void> wentOn;
    std::promise<bool> told;
    const auto moved = [&, goesOn = wentOn.get_future().share()](const QString &) {
        told.set_value(goesOn.wait_for(std::chrono::seconds(20)) == std::future_status::ready);
    };
    EXPECT_EQ(zqURLFromPersistentData(reference, moved), QString()); // looked for beside
    std::thread waiting([&] {
        EXPECT_EQ(zqFindPersistentURL(reference), far);
        wentOn.set_value();
    });
    EXPECT_TRUE(told.get_future().get());
    waiting.join();
}

TEST_F(MissingFiles, AreFoundForEveryoneWhoWaitsAndToldAgainWhenTheNewsWereLost)
{
    const QString made = folder(QStringLiteral("one/two/three")) + QStringLiteral("/a.png");
    write(made, "a");
    for (int i = 0; i < 300; ++i) {
        write(folder(QStringLiteral("one/two/%1").arg(i)) + QStringLiteral("/b"), "b");
    }
    const QString far = folder(QStringLiteral("one/other/deep")) + QStringLiteral("/b.png");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(rename(made, far));
    std::atomic<int> told = 0;
    std::atomic<bool> isBesideTheCaller = true;
    const auto moved = [&, caller = std::this_thread::get_id()](const QString &) {
        ++told;
        isBesideTheCaller = isBesideTheCaller && std::this_thread::get_id() != caller;
    };
    std::vector<std::thread> waiting;
    std::atomic<int> found = 0;
    for (int i = 0; i < 4; ++i) {
        waiting.emplace_back([&] { found += zqFindPersistentURL(reference) == far; });
    }
    for (std::thread &thread : waiting) {
        thread.join();
    }
    EXPECT_EQ(found, 4);
    for (int i = 1; i <= 2; ++i) {
        EXPECT_EQ(zqURLFromPersistentData(reference, moved), far); // those who found it told nobody
        EXPECT_EQ(zqURLFromPersistentData(reference, moved), far);
        zqWaitForPersistentURLSearches();
        EXPECT_EQ(told, i);
        zqTellPersistentURLAgain(reference);
    }

    zqForgetPersistentURLs();
    EXPECT_EQ(zqURLFromPersistentData(reference), QString());
    const qint64 before = zqPersistentURLCounts().entriesInCallers;
    EXPECT_EQ(zqFindPersistentURL(reference), far); // which is being looked for already
    EXPECT_EQ(zqPersistentURLCounts().entriesInCallers, before);
    const QString near = QFileInfo(made).path() + QStringLiteral("/renamed.png");
    ASSERT_TRUE(rename(far, near));
    EXPECT_EQ(zqURLFromPersistentData(reference, moved), near);
    zqWaitForPersistentURLSearches();
    EXPECT_EQ(told, 3);
    EXPECT_TRUE(isBesideTheCaller);
}

TEST_F(MissingFiles, AreFoundBesideTheCallerWhoIsToldOnce)
{
    const QString made = folder(QStringLiteral("one/two/three")) + QStringLiteral("/a.png");
    write(made, "a");
    const QString far = folder(QStringLiteral("one/other/deep")) + QStringLiteral("/b.png");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(rename(made, far));
    QStringList told;
    std::mutex mutex;
    const auto resolve = [&] {
        return zqURLFromPersistentData(reference, [&](const QString &path) {
            const std::lock_guard lock(mutex);
            told.append(path);
        });
    };
    EXPECT_EQ(resolve(), QString());
    zqWaitForPersistentURLSearches();
    const ZQPersistentURLCounts before = zqPersistentURLCounts();
    EXPECT_EQ(resolve(), far);
    EXPECT_EQ(resolve(), far);
    EXPECT_EQ(told, QStringList{far});
    EXPECT_EQ(zqPersistentURLCounts().entriesInCallers, before.entriesInCallers);

    const QString renamed = far + QStringLiteral(".moved");
    ASSERT_TRUE(rename(far, renamed)); // what is remembered is looked at each time
    EXPECT_EQ(zqFindPersistentURL(reference), renamed);
    ASSERT_TRUE(rename(renamed, made));
    EXPECT_EQ(resolve(), made);
}

TEST_F(MissingFiles, AreFoundAtOnceByAProcessThatCanAlwaysWait)
{
    const QString made = folder(QStringLiteral("one/two/three")) + QStringLiteral("/a.png");
    write(made, "a");
    const QString far = folder(QStringLiteral("one/other/deep")) + QStringLiteral("/b.png");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(rename(made, far));
    zqSetPersistentURLsWait(true);
    EXPECT_EQ(zqURLFromPersistentData(reference), far);
    zqSetPersistentURLsWait(false);
    zqForgetPersistentURLs();
    EXPECT_EQ(zqURLFromPersistentData(reference), QString());
}

TEST_F(MissingFiles, OfOneFolderAreLookedForTogether)
{
    const QString start = folder(QStringLiteral("one/two"));
    const QString other = folder(QStringLiteral("one/other"));
    QList<ZQFileReference> references;
    for (const char *name : {"a", "b", "c"}) {
        write(start + u'/' + QLatin1String(name), name);
        references.append(*ZQFileReference::decoded(zqDataForPersistentURL(start + u'/' + QLatin1String(name))));
    }
    ASSERT_TRUE(rename(start + QStringLiteral("/a"), other + QStringLiteral("/1")));
    ASSERT_TRUE(rename(start + QStringLiteral("/b"), other + QStringLiteral("/2")));
    ASSERT_TRUE(QFile::remove(start + QStringLiteral("/c")));
    write(other + QStringLiteral("/3"), "3");
    std::atomic<qint64> looked = 0;
    const auto found = ZQFileSearch({&references[0], &references[1], &references[2]}, looked)
                           .run(QFile::encodeName(path(QStringLiteral("one"))), ZQFileSearch::Reach::Below);
    EXPECT_EQ(found.value(&references[0]), QFile::encodeName(other + QStringLiteral("/1")));
    EXPECT_EQ(found.value(&references[1]), QFile::encodeName(other + QStringLiteral("/2")));
    EXPECT_EQ(found.size(), 2);
    EXPECT_EQ(looked, 2 + 3); // both folders, and what is in the other
}

TEST_F(MissingFiles, AreLookedForInOneGoBeforeEachIsAskedFor)
{
    const QString start = folder(QStringLiteral("one/two"));
    const QString other = folder(QStringLiteral("one/other"));
    QList<ZQPersistentURL> references;
    constexpr int count = 40;
    for (int i = 0; i < count; ++i) {
        const QString made = start + QStringLiteral("/%1.png").arg(i);
        write(made, QByteArray::number(i));
        write(other + QStringLiteral("/%1").arg(i), "other");
        references.append({zqDataForPersistentURL(made), {}});
        ASSERT_TRUE(rename(made, (i % 2 == 0 ? other : start) + QStringLiteral("/moved %1").arg(i)));
    }
    for (const bool waits : {false, true}) {
        zqForgetPersistentURLs();
        settle();
        zqSetPersistentURLsWait(waits);
        const ZQPersistentURLCounts before = zqPersistentURLCounts();
        zqLookForPersistentURLs(references + references);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(zqFindPersistentURL(references.at(i).data),
                      (i % 2 == 0 ? other : start) + QStringLiteral("/moved %1").arg(i));
        }
        const ZQPersistentURLCounts after = zqPersistentURLCounts();
        const qint64 inCallers = after.entriesInCallers - before.entriesInCallers;
        const qint64 beside = after.entriesBeside - before.entriesBeside;
        EXPECT_LE(inCallers + beside, 5 * count) << "each folder once, and once more from further up";
        EXPECT_EQ(beside > 0, !waits);
    }
    zqSetPersistentURLsWait(false);
}

TEST_F(MissingFiles, AreFoundInTheirOwnFolderHoweverLargeItIs)
{
    const QString start = folder(QStringLiteral("one/two"));
    QList<QByteArray> references;
    for (int i = 0; i < ZQFileSearch::mostEntries + 200; ++i) {
        const QString made = start + QStringLiteral("/%1").arg(i);
        write(made, "");
        if (i % 400 == 0) {
            references.append(zqDataForPersistentURL(made));
            ASSERT_TRUE(rename(made, made + QStringLiteral(" renamed")));
        }
    }
    for (qsizetype i = 0; i < references.size(); ++i) {
        EXPECT_EQ(zqFindPersistentURL(references.at(i)), start + QStringLiteral("/%1 renamed").arg(i * 400));
    }
}

TEST(MissingFile, TakesWhatStandsInItsPlaceOnlyWhenItWasPutAsideForIt)
{
    constexpr qint64 second = 1000000000;
    const auto file = [](qint64 birth, qint64 modification, qint64 change) {
        ZQFoundFile found;
        found.identity.birth = birth;
        found.modification = modification;
        found.change = change;
        return found;
    };
    const ZQFoundFile aside = file(second, 2 * second, 1000 * second);
    struct Case
    {
        qint64 birth, modification;
        bool isOfOneSaving;
    };
    for (const Case &each :
         {Case{1000 * second, 1, true}, Case{1005 * second, 1, true}, Case{995 * second, 1, true},
          Case{1005 * second + 1, 1000 * second, false}, Case{995 * second - 1, 1000 * second, false},
          Case{0, 1005 * second, true}, Case{0, 1005 * second + 1, false}}) {
        EXPECT_EQ(zqAreOfOneSaving(aside, file(each.birth, each.modification, 0)), each.isOfOneSaving)
            << each.birth << " " << each.modification;
    }
}

TEST_F(MissingFiles, RememberedAreBoundedInNumber)
{
    const QString made = folder(QStringLiteral("one/two/three")) + QStringLiteral("/a.png");
    write(made, "a");
    write(path(QStringLiteral("one/two/three/sibling")), "s");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(QFile::remove(made));
    settle();
    EXPECT_EQ(costOf(reference), 1);
    auto other = *ZQFileReference::decoded(reference);
    for (int i = 0; i < zqMostPersistentURLs - 1; ++i) {
        other.path = QFile::encodeName(path(QStringLiteral("one/two/three/%1").arg(i)));
        costOf(other.encoded());
    }
    EXPECT_EQ(costOf(reference), 0);
    other.path += "one more";
    costOf(other.encoded());
    EXPECT_EQ(costOf(reference), 1);
}

TEST_F(MissingFiles, ANewcomerIsTheFileOnlyWhenItIsThatFileSavedByReplacingIt)
{
    const QByteArray picture = noise(60000, 1);
    const QByteArray plain = QByteArray(20000, '\xff') + noise(20000, 2) + QByteArray(20000, '\xff');
    const QByteArray profile = noise(20000, 9);
    struct Case
    {
        const char *what;
        QByteArray before;
        QByteArray after;
        const char *aside; // where the old file goes; null: it is gone
        const char *found; // null: nothing
        ZQReferenceContents contents = ZQReferenceContents::Noted;
    };
    const Case cases[] = {
        {"another file", picture, noise(60000, 3), nullptr, nullptr},
        {"the same contents", picture, picture, nullptr, "a.png"},
        {"a small one, the same contents", "small", "small", nullptr, "a.png"},
        {"an empty one", "", "", nullptr, nullptr},
        {"another picture with the same profile at its end", noise(9000, 4) + profile, noise(8000, 10) + profile,
         nullptr, nullptr},
        {"another of that size, white around as well", plain,
         QByteArray(20000, '\xff') + noise(20000, 5) + QByteArray(20000, '\xff'), nullptr, nullptr},
        {"edited, with the old one kept", picture, noise(60000, 6), "a.png~", "a.png"},
        {"edited, with the old one hidden", picture, noise(60000, 7), ".a.png.bak", "a.png"},
        {"another one, the file renamed", picture, noise(60000, 8), "old a.png", "old a.png"},
        {"without contents noted", picture, picture, nullptr, nullptr, ZQReferenceContents::NotNoted},
    };
    for (const Case &c : cases) {
        const QString place = folder(QString::fromLatin1(c.what));
        const QString made = place + QStringLiteral("/a.png");
        write(made, c.before);
        const QByteArray reference = zqDataForPersistentURL(made, c.contents);
        write(place + QStringLiteral("/saving"), c.after);
        if (c.aside) {
            ASSERT_TRUE(rename(made, place + u'/' + QString::fromLatin1(c.aside)));
        }
        ASSERT_TRUE(rename(place + QStringLiteral("/saving"), made));
        QString told;
        const QString expected = c.found ? place + u'/' + QString::fromLatin1(c.found) : QString();
        EXPECT_EQ(zqURLFromPersistentData(reference, [&told](const QString &path) { told = path; }), expected)
            << c.what;
        zqWaitForPersistentURLSearches();
        EXPECT_EQ(told, expected) << c.what;
        EXPECT_EQ(zqFindPersistentURL(reference), expected) << c.what;
    }
}

TEST_F(MissingFiles, InATrashAreDeletedUntilTheyArePutBack)
{
    const QString around = folder(QStringLiteral("one/two"));
    const QString user = folder(QStringLiteral(".Trash-1000/files"));
    const QString desktop = folder(QStringLiteral("XDG_DATA_HOME/Trash/files"));
    for (const QString &trash : {user, desktop, folder(QStringLiteral("one/.Trash/1000/files"))}) {
        const QString set = folder(QStringLiteral("one/two/set"));
        const QString alone = around + QStringLiteral("/a.png");
        const QString inSet = set + QStringLiteral("/b.png");
        write(alone, "a");
        write(inSet, "b");
        const QByteArray toAlone = zqDataForPersistentURL(alone);
        const QByteArray toInSet = zqDataForPersistentURL(inSet);
        const QByteArray toSet = zqDataForPersistentURL(set);
        ASSERT_TRUE(rename(alone, trash + QStringLiteral("/a.png")) && rename(set, trash + QStringLiteral("/set")));
        QStringList told;
        const auto moved = [&told](const QString &path) { told.append(path); };
        for (const QByteArray &reference :
             {toAlone, toInSet, zqDataForPersistentURL(trash + QStringLiteral("/a.png"))}) {
            EXPECT_EQ(zqFindPersistentURL(reference), QString());
            EXPECT_EQ(zqURLFromPersistentData(reference, moved), QString());
        }
        EXPECT_EQ(zqFindPersistentURL(toSet), trash + QStringLiteral("/set")) << "so that it is known to be there";
        zqWaitForPersistentURLSearches();
        EXPECT_EQ(told, QStringList());
        ASSERT_TRUE(rename(trash + QStringLiteral("/a.png"), alone) && rename(trash + QStringLiteral("/set"), set));
        EXPECT_EQ(zqURLFromPersistentData(toAlone), alone);
        EXPECT_EQ(zqURLFromPersistentData(toInSet), inSet);
        ASSERT_TRUE(QFile::remove(alone) && QFile::remove(inSet));
    }
}

TEST_F(MissingFiles, ANameThatWasThereBeforeIsNotTheFileThatWasDeleted)
{
    const QString made = folder(QStringLiteral("one/two")) + QStringLiteral("/a.png");
    const QString near = folder(QStringLiteral("one/two")) + QStringLiteral("/copy.png");
    const QString far = folder(QStringLiteral("one/backup")) + QStringLiteral("/a.png");
    const QString moved = folder(QStringLiteral("one/moved")) + QStringLiteral("/b.png");
    for (const QString &other : {near, far}) {
        SCOPED_TRACE(other.toStdString());
        write(made, "a");
        ASSERT_TRUE(link(made, other));
        const QByteArray reference = zqDataForPersistentURL(made);
        ASSERT_TRUE(QFile::remove(made));
        EXPECT_EQ(found(reference), QString());
        ASSERT_TRUE(link(other, made));
        EXPECT_EQ(found(reference), made) << "it was put back";
        ASSERT_TRUE(QFile::remove(other));
        EXPECT_EQ(found(reference), made) << "whatever became of the others";

        const QByteArray ofOne = zqDataForPersistentURL(made);
        ASSERT_TRUE(rename(made, moved));
        EXPECT_EQ(found(ofOne), moved);
        ASSERT_TRUE(link(moved, other));
        const QByteArray ofTwo = zqDataForPersistentURL(moved);
        ASSERT_TRUE(rename(moved, made));
        const QString again = found(ofTwo);
        EXPECT_TRUE(again == made || again == other) << "it was moved, and both are it";
        ASSERT_TRUE(QFile::remove(made) && QFile::remove(other));
    }
}

TEST_F(MissingFiles, AnotherNameIsTheFileOnceTheOldOneIsGone)
{
    const QString made = folder(QStringLiteral("one/two")) + QStringLiteral("/a.png");
    const QString near = folder(QStringLiteral("one/two")) + QStringLiteral("/b.png");
    const QString far = folder(QStringLiteral("one/other")) + QStringLiteral("/a.png");
    const QString trashed = folder(QStringLiteral("one/two/.Trash-1000/files")) + QStringLiteral("/a.png");
    write(made, "a");
    const QByteArray reference = zqDataForPersistentURL(made);
    ASSERT_TRUE(link(made, trashed) && link(made, far) && link(made, near));
    const auto lookAtAll = [&] { return found(reference); };
    EXPECT_EQ(lookAtAll(), made);
    ASSERT_TRUE(QFile::remove(made));
    EXPECT_EQ(lookAtAll(), near);
    ASSERT_TRUE(link(near, made));
    EXPECT_EQ(lookAtAll(), made) << "the old name is back";
    ASSERT_TRUE(QFile::remove(made) && QFile::remove(near));
    EXPECT_EQ(lookAtAll(), far);
    ASSERT_TRUE(QFile::remove(far));
    EXPECT_EQ(lookAtAll(), QString());
}

TEST_F(MissingFiles, AStrangerThatTakesTheNameAtOnceIsNotTheFile)
{
    std::atomic<int> told = 0;
    const auto count = [&told](const QString &) { ++told; };
    constexpr int times = 100;
    for (int i = 0; i < times; ++i) {
        const QString made = file(QStringLiteral("%1.png").arg(i), noise(2000, 1));
        const QByteArray reference = zqDataForPersistentURL(made);
        EXPECT_EQ(zqURLFromPersistentData(reference, count), made);
        const QString stranger = file(QStringLiteral("stranger"), noise(2000, quint32(i) + 2));
        ASSERT_TRUE(QFile::remove(made) && rename(stranger, made));
        EXPECT_EQ(zqURLFromPersistentData(reference, count), QString());
        EXPECT_EQ(zqFindPersistentURL(reference), QString());
    }
    zqWaitForPersistentURLSearches();
    EXPECT_EQ(told, 0);
}

TEST_F(MissingFiles, ReferencesOfTheFirstFormatAreReadOn)
{
    const QString made = file(QStringLiteral("a"), "a");
    const auto reference = ZQFileReference::decoded(zqDataForPersistentURL(made));
    ASSERT_TRUE(reference);
    QByteArray first;
    QDataStream stream(&first, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream << quint32(0x5a51504c) << quint8(1);
    for (const ZQFileIdentity &identity : {reference->file, reference->folder}) {
        stream << identity.fileSystem << identity.inode << identity.birth;
    }
    stream << false << reference->path;
    EXPECT_EQ(zqURLFromPersistentData(first), made);
    const QString renamed = path(QStringLiteral("b"));
    ASSERT_TRUE(rename(made, renamed));
    EXPECT_EQ(zqURLFromPersistentData(first), renamed);
    if (reference->file.birth != 0) {
        ASSERT_TRUE(QFile::remove(renamed));
        write(made, "a");
        EXPECT_EQ(zqURLFromPersistentData(first), QString()); // nothing says that it is the same
    }
}
