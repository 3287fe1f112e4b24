#include "Classes/Tags/AttributeRoom.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Tests/Classes/Tags/AttributeFaults.h"
#include "Tests/Classes/Tags/TagsFixture.h"
#include "Tests/Support/Skip.h"

#include <sys/stat.h>

#include <cerrno>

class AttributeRoomTest : public TagsFixture
{
protected:
    // Leaves `bytes` of room for further attributes.
    void leaveRoom(const QString &file, qsizetype bytes)
    {
        qsizetype taken = 0;
        for (const QString &name : ZQExtendedAttributes::list(file)) {
            taken += qsizetype(qstrlen("user.")) + name.size() + raw(file, name)->size();
        }
        faults.setRoom(taken + bytes);
    }
    static ZQError noRoom() { return ZQError::posix(ENOSPC, QStringLiteral("file")); }

    AttributeFaults faults;
};

TEST_F(AttributeRoomTest, TheMirrorsGiveWayFirstThenOlderNamesThenTimes)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    QStringList missing; // at each try
    int tries = 0;
    const ZQError error = AttributeRoom::write(path, [&] {
        for (const auto &[label, name] :
             {std::pair{"mirror", DesktopMirror::tagsName}, std::pair{"record", DesktopMirror::recordName},
              std::pair{"older", OpenMeta::spotlightKey(OpenMeta::olderUserTagsKey)},
              std::pair{"time", OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey)},
              std::pair{"second", OpenMeta::openmetaKey(OpenMeta::userTagsKey)},
              std::pair{"main", OpenMeta::spotlightKey(OpenMeta::userTagsKey)}}) {
            if (!raw(path, name)) {
                missing.append(QString::number(tries) + QLatin1String(label));
            }
        }
        return ++tries < 5 ? noRoom() : ZQError();
    });
    EXPECT_TRUE(error.isNull());
    EXPECT_EQ(missing, list("1mirror 1record 2mirror 2record 2older 3mirror 3record 3older 3time "
                            "4mirror 4record 4older 4time 4second"));
}

TEST_F(AttributeRoomTest, WhatGaveWayInVainComesBack)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    QStringList before = ZQExtendedAttributes::list(path);
    EXPECT_EQ(AttributeRoom::write(path, [] { return noRoom(); }).code, ENOSPC);
    QStringList after = ZQExtendedAttributes::list(path);
    before.sort();
    after.sort();
    EXPECT_EQ(after, before);
    EXPECT_EQ(raw(path, DesktopMirror::tagsName), QByteArray("a"));
}

TEST_F(AttributeRoomTest, AnotherErrorLeavesEverything)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    const auto before = ZQExtendedAttributes::list(path).size();
    EXPECT_EQ(AttributeRoom::write(path, [] { return ZQError::posix(EACCES, QStringLiteral("file")); }).code, EACCES);
    EXPECT_EQ(ZQExtendedAttributes::list(path).size(), before);
}

// From much room to none: whatever is left, either the new tags are in the main name or the old ones still are.
TEST_F(AttributeRoomTest, InEveryRoomTheMainNameHoldsTheNewTagsOrStillTheOldOnes)
{
    int written = 0;
    int refused = 0;
    const QStringList longer{QString(150, u'n')};
    for (int room = 1600; room >= 0; room -= 40) {
        const QString file = newFile(QStringLiteral("room-%1").arg(room));
        ASSERT_TRUE(OpenMeta::setUserTags(list("old"), file).isNull());
        leaveRoom(file, room);
        const ZQError error = OpenMeta::setUserTags(longer, file);
        faults.clear();
        const auto mirror = raw(file, DesktopMirror::tagsName);
        EXPECT_TRUE(!mirror || *mirror == longer.first().toUtf8()) << room << ": no other program sees what is over";
        const auto tags = tagsOf(file);
        EXPECT_EQ(tags, error.isNull() ? longer : list("old")) << room;
        EXPECT_EQ(tagsOf(file), tags) << room << ": a mirror that found no room is no removal";
        const QVariant second = OpenMeta::getXAttrMetaDataNoSpotlightMirror(OpenMeta::userTagsKey, file);
        EXPECT_TRUE(!error.isNull() || !second.isValid() || second.toStringList() == longer) << room;
        ++(error.isNull() ? written : refused);
    }
    EXPECT_GT(written, 20);
    EXPECT_EQ(refused, 0); // what gives way makes room for a list of this length
}

TEST_F(AttributeRoomTest, AForeignMirrorDoesNotGiveWay)
{
    ASSERT_TRUE(ZQExtendedAttributes::set(path, DesktopMirror::commentName, "said elsewhere"));
    ASSERT_TRUE(OpenMeta::setUserTags(list("a"), path).isNull());
    AttributeRoom::write(path, [tries = 0]() mutable { return ++tries < 3 ? noRoom() : ZQError(); });
    EXPECT_FALSE(raw(path, DesktopMirror::tagsName));
    EXPECT_EQ(raw(path, DesktopMirror::commentName), QByteArray("said elsewhere"));
}

TEST_F(AttributeRoomTest, TheApplicationHearsOnceOfAPlaceThatTakesNoAttributesAndLaterWritesTryAgain)
{
    QList<ZQError> told;
    TagFileWriter &writer = TagFileWriter::sharedTagFileWriter();
    writer.setProblemHandler([&told](const ZQError &error) { told.append(error); });
    // Other kinds of files than regular ones take no attributes of users; neither does this file system.
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &file : {pipe, pipe, QStringLiteral("/proc/version"), QStringLiteral("/proc/cpuinfo")}) {
        writer.writeTagsToFile(file, list("a"), std::nullopt);
    }
    writer.writeTagsToFile(folder.filePath(QStringLiteral("gone")), list("a"), std::nullopt);
    writer.writeTagsToFile(path, list("a"), std::nullopt); // of the same file system as the pipe
    writer.waitUntilAllWritten();
    writer.setProblemHandler({});
    ASSERT_EQ(told.size(), 2);
    EXPECT_EQ(told.at(0).code, EPERM);
    EXPECT_EQ(told.at(1).code, ENOTSUP);
    EXPECT_TRUE(told.at(1).localizedDescription().contains(QStringLiteral("version")));
    EXPECT_EQ(tagsOf(path), list("a"));
}

TEST_F(AttributeRoomTest, InMemoryFileSystemsToo)
{
    const QTemporaryDir memory(QStringLiteral("/dev/shm/tags-XXXXXX"));
    QFile file(memory.filePath(QStringLiteral("file")));
    if (!memory.isValid() || !file.open(QIODevice::WriteOnly) ||
        !ZQExtendedAttributes::set(file.fileName(), QStringLiteral("probe"), "1")) {
        return skipWithout("extended attributes in /dev/shm");
    }
    ASSERT_TRUE(OpenMeta::setUserTags(list("a b"), file.fileName()).isNull());
    EXPECT_EQ(tagsOf(file.fileName()), list("a b"));
    EXPECT_EQ(raw(file.fileName(), DesktopMirror::tagsName), QByteArray("a,b"));
}
