#include "Kit/Files/ZQFolderEvents.h"
#include "Kit/Files/ZQSettlingChanges.h"
#include "Kit/Files/ZQUnfinishedFiles.h"
#include "Tests/Kit/Files/Scratch.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

using namespace std::chrono_literals;
using Clock = ZQSettlingChanges::Clock;

namespace {

const Clock::time_point start = Clock::time_point(1h);

// A queue that is filled by hand.
class Queue
{
public:
    Queue()
    {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
        m_read = ZQFileDescriptor(ends[0]);
        m_write = ZQFileDescriptor(ends[1]);
    }
    int descriptor() const { return m_read.get(); }
    void put(int watch, uint32_t mask, uint32_t cookie, const QByteArray &name) const
    {
        const auto length = static_cast<uint32_t>(name.isEmpty() ? 0 : (name.size() / 16 + 1) * 16);
        inotify_event head = {};
        head.wd = watch;
        head.mask = mask;
        head.cookie = cookie;
        head.len = length;
        QByteArray bytes(reinterpret_cast<const char *>(&head), sizeof head);
        bytes += name + QByteArray(length - name.size(), '\0');
        EXPECT_EQ(::write(m_write.get(), bytes.constData(), static_cast<size_t>(bytes.size())), bytes.size());
    }

private:
    ZQFileDescriptor m_read;
    ZQFileDescriptor m_write;
};

std::vector<QByteArray> names(const ZQSettlingChanges::Changes &changes)
{
    std::vector<QByteArray> names;
    for (const auto &[folder, extent] : changes.folders) {
        names.push_back(extent.everythingBelow ? folder + " and below" : folder);
    }
    return names;
}

using Names = std::vector<QByteArray>;

} // namespace

TEST(FolderEvents, JoinBothHalvesOfAMoveWhateverCameBetween)
{
    const Queue queue;
    const QByteArray longest(255, 'n');
    queue.put(1, IN_MOVED_FROM | IN_ISDIR, 7, "a");
    queue.put(3, IN_MOVED_FROM, 8, "\xff\n");
    queue.put(2, IN_CREATE, 0, longest);
    queue.put(2, IN_MOVED_TO | IN_ISDIR, 7, "b");
    queue.put(4, IN_MOVED_TO, 9, "from outside");
    ZQFolderEvents events(queue.descriptor());
    events.read(); // into memory, as while other work is done
    EXPECT_FALSE(events.isEmpty());
    queue.put(-1, IN_Q_OVERFLOW, 0, {});
    const std::vector<ZQFolderEvent> all = events.take();
    ASSERT_EQ(all.size(), 5);
    EXPECT_TRUE(all[0].isMove());
    EXPECT_EQ(all[0].name, "a");
    EXPECT_EQ(all[0].toWatch, 2);
    EXPECT_EQ(all[0].toName, "b");
    EXPECT_FALSE(all[1].isMove());
    EXPECT_EQ(all[1].name, "\xff\n");
    EXPECT_EQ(all[2].name, longest);
    EXPECT_FALSE(all[3].isMove());
    EXPECT_EQ(all[4].mask, IN_Q_OVERFLOW);
    EXPECT_TRUE(events.isEmpty());
    EXPECT_TRUE(events.take().empty());
}

TEST(SettlingChanges, WaitForQuietButNotForEver)
{
    ZQSettlingChanges changes(200ms, 700ms);
    EXPECT_FALSE(changes.due());
    changes.note("/a", {}, start);
    EXPECT_EQ(changes.due(), start + 200ms);
    changes.note("/a", {}, start + 150ms);
    EXPECT_EQ(changes.due(), start + 350ms);
    changes.note("/b", {}, start + 600ms);
    EXPECT_EQ(changes.due(), start + 700ms);
    EXPECT_EQ(names(changes.take()), (Names{"/a", "/b"}));
    EXPECT_FALSE(changes.due());
    changes.noteMove("/a", "/b", start + 2s);
    EXPECT_EQ(changes.due(), start + 2s + 200ms);
}

TEST(SettlingChanges, GoAlongWithFoldersAndAreToldOnce)
{
    ZQSettlingChanges changes(200ms, 700ms);
    for (const char *const folder : {"/r/a", "/r/a/x", "/r/ab", "/r/gone/y", "/r/c", "/r/c/d"}) {
        changes.note(folder, {QByteArray("/r/c") == folder, true}, start);
    }
    changes.didMoveFolder("/r/a", "/r/z", start);
    changes.forgetBelow("/r/gone");
    changes.note("/r/bad\xff/inner", {}, start);
    changes.noteMove("/r/1", "/r/2", start);
    changes.noteMove("/r/bad\xff", "/r/3", start);
    changes.noteMove("/r/2", "/r/1", start);
    const ZQSettlingChanges::Changes all = changes.take();
    EXPECT_EQ(names(all), (Names{"/r and below"})) << "which has to stand for a name that is no text";
    EXPECT_EQ(all.moves, (std::vector<ZQSettlingChanges::Move>{{"/r/1", "/r/2"}, {"/r/2", "/r/1"}}));

    for (const char *const folder : {"/r/a", "/r/a/x", "/r/ab", "/r/c", "/r/c/d"}) {
        changes.note(folder, {QByteArray("/r/c") == folder, true}, start);
    }
    changes.didMoveFolder("/r/a", "/r/z", start);
    EXPECT_EQ(names(changes.take()), (Names{"/r/ab", "/r/c and below", "/r/z", "/r/z/x"}));
}

TEST(SettlingChanges, OfManyFoldersAreToldByTheOneAroundThem)
{
    ZQSettlingChanges::Changes changes;
    for (int i = 0; i < 5000; ++i) {
        changes.folders["/r/deep/" + QByteArray::number(i % 50) + '/' + QByteArray::number(i)] = {};
    }
    changes.folders["/other/a"] = {};
    ZQSettlingChanges::gather(changes, {"/r", "/other"});
    EXPECT_EQ(names(changes), (Names{"/other/a", "/r/deep and below"}));
    ZQSettlingChanges::gather(changes, {"/r", "/other"});
    EXPECT_EQ(names(changes).size(), 2) << "few are told as they are";
}

using UnfinishedFiles = Scratch;

TEST_F(UnfinishedFiles, AreWaitedForWhileSomebodyWritesThemAndNotLonger)
{
    const QByteArray folder = QFile::encodeName(this->folder(QStringLiteral("folder")));
    ZQUnfinishedFiles files(200ms, 3s);
    QFile writer(path(QStringLiteral("folder/open")));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    files.didClose(folder, "open", start); // by one of two
    EXPECT_EQ(files.due(), start + 200ms);
    EXPECT_FALSE(files.look(folder, start + 200ms));
    EXPECT_TRUE(files.contains(folder, "open"));
    writer.close();
    EXPECT_TRUE(files.look(folder, start + 400ms));
    EXPECT_FALSE(files.due());

    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    files.didAppear(folder, "open", start);
    EXPECT_FALSE(files.look(folder, start + 2900ms));
    EXPECT_TRUE(files.look(folder, start + 3s));
    EXPECT_TRUE(files.look(folder, start + 3s)) << "nothing is known of it any more";
}

TEST_F(UnfinishedFiles, AreThoseThatStillGrowWithoutSayingThatTheyEnded)
{
    const QByteArray folder = QFile::encodeName(this->folder(QStringLiteral("folder")));
    file(QStringLiteral("folder/grows"), "1");
    ASSERT_EQ(::mkfifo((folder + "/pipe").constData(), 0600), 0);
    ZQUnfinishedFiles files(200ms, 1h);
    files.didAppear(folder, "pipe", start);
    EXPECT_TRUE(files.look(folder, start)) << "no file that could be complete";
    files.didAppear(folder, "grows", start);
    EXPECT_FALSE(files.look(folder, start + 200ms));
    file(QStringLiteral("folder/grows"), "12");
    EXPECT_FALSE(files.look(folder, start + 400ms));
    EXPECT_FALSE(files.look(folder, start + 500ms)) << "too soon after the last look";
    EXPECT_TRUE(files.look(folder, start + 600ms));
    files.didAppear(folder, "not there", start);
    EXPECT_TRUE(files.look(folder, start));
}

TEST_F(UnfinishedFiles, GoAlongWithTheirFolderAndAreForgottenWithIt)
{
    const QByteArray inner = QFile::encodeName(folder(QStringLiteral("a/inner")));
    const QByteArray around = QFile::encodeName(path(QStringLiteral("a")));
    const QByteArray moved = QFile::encodeName(path(QStringLiteral("b")));
    ZQUnfinishedFiles files(200ms, 1h);
    QFile writer(path(QStringLiteral("a/inner/open")));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    files.didAppear(inner, "open", start);
    ASSERT_EQ(::rename(around.constData(), moved.constData()), 0);
    files.didMoveFolder(around, moved);
    const auto none = [](const QByteArray &) { return false; };
    EXPECT_EQ(files.lookAtAll(start, none), Names());
    writer.close();
    EXPECT_EQ(files.lookAtAll(start + 200ms, [](const QByteArray &) { return true; }), Names());
    files.lookBelow(moved, start + 100ms);
    EXPECT_EQ(files.lookAtAll(start + 400ms, none), Names{moved + "/inner"});
    files.didAppear(moved + "/inner", "open", start);
    files.didAppear(moved, "other", start);
    files.forget(moved, "other");
    files.forgetBelow(moved + "/inner");
    EXPECT_FALSE(files.due());
}
