#include "Kit/Files/ZQFolderIdentity.h"
#include "Kit/Files/ZQMountTable.h"
#include "Tests/Kit/Files/Scratch.h"

#include <algorithm>

using FolderIdentity = Scratch;

TEST(MountTable, TellsWhereAPathLiesAndWhetherThatPlaceTellsOfChanges)
{
    const ZQMountTable table("22 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
                             "30 22 0:40 / /net rw - autofs systemd-1 rw\n"
                             "31 30 0:41 / /net/a\\040b\\134\\012 rw master:3 shared:9 - nfs4 server:/export rw\n"
                             "32 22 0:42 / /home/me/cloud rw - fuse.rclone remote: rw\n"
                             "33 22 0:43 / /home/me/safe rw - fuse.gocryptfs /home/me/.safe rw\n"
                             "34 22 8:17 / /media/stick rw - fuseblk /dev/sdb1 rw\n"
                             "35 22 0:44 / /covered/inner rw - cifs //server/share rw\n"
                             "36 22 0:45 / /covered rw - tmpfs tmpfs rw\n"
                             "half a line - nfs\n\n37 22 0:46 / /short\n");
    const struct
    {
        QByteArray path;
        QByteArray point;
        QByteArray type;
        bool isSilent;
    } rows[] = {{"/", "/", "ext4", false},
                {"/home/me/cloudy", "/", "ext4", false},
                {"/home/me/cloud", "/home/me/cloud", "fuse.rclone", true},
                {"/home/me/cloud/a", "/home/me/cloud", "fuse.rclone", true},
                {"/home/me/safe/a", "/home/me/safe", "fuse.gocryptfs", false},
                {"/net/a b\\\n/c", "/net/a b\\\n", "nfs4", true},
                {"/net/other", "/net", "autofs", true},
                {"/media/stick", "/media/stick", "fuseblk", false},
                {"/covered/inner/a", "/covered", "tmpfs", false},
                {"/short", "/", "ext4", false}};
    for (const auto &row : rows) {
        const ZQMountTable::Mount *const mount = table.mountOf(row.path);
        ASSERT_TRUE(mount) << row.path.constData();
        EXPECT_EQ(mount->point, row.point);
        EXPECT_EQ(mount->type, row.type);
        EXPECT_EQ(table.isSilent(row.path), row.isSilent) << row.path.constData();
    }
    EXPECT_EQ(table.mountOf("/net/a b\\\n/c")->source, "server:/export");
    EXPECT_EQ(table.mountsBelow("/home/me").size(), 2);
    EXPECT_EQ(table.mountsBelow("/home/me/safe").size(), 0);
    EXPECT_EQ(table.mountsBelow("/covered").size(), 0) << "what is covered is not there";
    EXPECT_FALSE(ZQMountTable().mountOf("/"));
    EXPECT_FALSE(ZQMountTable().isSilent("/"));
    EXPECT_EQ(ZQMountTable::read().mountOf("/proc/self")->type, "proc");
}

TEST_F(FolderIdentity, IsThatOfTheFolderAndNotOfItsPath)
{
    const QString one = folder(QStringLiteral("one"));
    ASSERT_TRUE(QFile::link(one, path(QStringLiteral("link"))));
    const auto before = ZQFolderIdentity::read(one);
    ASSERT_TRUE(before);
    EXPECT_EQ(ZQFolderIdentity::read(path(QStringLiteral("link"))), before);
    ASSERT_TRUE(QDir().rename(one, path(QStringLiteral("moved"))));
    EXPECT_EQ(ZQFolderIdentity::read(path(QStringLiteral("moved"))), before);
    const auto other = ZQFolderIdentity::read(folder(QStringLiteral("one")));
    ASSERT_TRUE(other);
    EXPECT_FALSE(*other == *before);
    EXPECT_FALSE(other->isSamePlace(*before));
    EXPECT_FALSE(ZQFolderIdentity::read(path(QStringLiteral("nothing"))));
    EXPECT_FALSE(ZQFolderIdentity::read(file(QStringLiteral("file"), "x")));
    EXPECT_FALSE(ZQFolderIdentity::read(QString()));
}

TEST_F(FolderIdentity, IsKeptAsText)
{
    ZQFolderIdentity identity{1, ~0ull, 0x65735546, 4, -5, QStringLiteral("user@h\u00f6st:/a b%20\n")};
    EXPECT_EQ(ZQFolderIdentity::fromString(identity.toString()), identity);
    EXPECT_FALSE(identity.toString().contains(u'\n'));
    identity.volume.clear();
    EXPECT_EQ(ZQFolderIdentity::fromString(identity.toString()), identity);
    for (const char *const text :
         {"", "1", "1 1 2 3 4 5", "2 1 2 3 4 5 ", "1 1 2 3 x 5 ", "1 1 2 3 4 five ", "1 1 2 3 4 5 a b"}) {
        EXPECT_FALSE(ZQFolderIdentity::fromString(QString::fromLatin1(text))) << text;
    }
}

TEST_F(FolderIdentity, HoldsWhenTheDriveComesBackAsAnotherDevice)
{
    constexpr quint64 ext4 = 0xef53;
    constexpr quint64 fat = 0x4d44;
    const QString disk = QStringLiteral("disk");
    const QString other = QStringLiteral("other");
    const struct
    {
        const char *what;
        ZQFolderIdentity one;
        ZQFolderIdentity two;
        bool isSame;
    } rows[] = {
        {"another device, born at the same time", {1, 5, ext4, 2, 9, disk}, {8, 6, ext4, 2, 9, {}}, true},
        {"the same device, made anew", {1, 5, ext4, 2, 9, disk}, {1, 5, ext4, 2, 10, disk}, false},
        {"another folder", {1, 5, ext4, 2, 9, disk}, {1, 5, ext4, 3, 9, disk}, false},
        {"another file system", {1, 5, ext4, 2, 0, disk}, {1, 5, fat, 2, 0, disk}, false},
        {"the same drive, unknown birth", {1, 5, ext4, 2, 0, disk}, {8, 6, ext4, 2, 9, disk}, true},
        {"another drive at the same port", {1, 5, ext4, 2, 0, disk}, {1, 5, ext4, 2, 0, other}, false},
        {"numbered anew, same drive", {1, 5, fat, 2, 0, disk}, {8, 6, fat, 3, 0, disk}, true},
        {"numbered anew, other birth", {1, 5, fat, 2, 8, disk}, {8, 6, fat, 3, 9, disk}, false},
        {"numbered anew, same birth, other drive", {1, 5, fat, 2, 8, disk}, {8, 6, fat, 3, 8, other}, false},
        {"what the file system says", {1, 5, ext4, 2, 0, {}}, {8, 5, ext4, 2, 0, disk}, true},
        {"what the file system says of another", {1, 5, ext4, 2, 0, {}}, {1, 6, ext4, 2, 0, {}}, false},
        {"nothing but the device", {1, 0, ext4, 2, 0, {}}, {1, 6, ext4, 2, 0, {}}, true},
        {"nothing but another device", {1, 0, ext4, 2, 0, {}}, {2, 0, ext4, 2, 0, {}}, false},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.one.isSamePlace(row.two), row.isSame) << row.what;
        EXPECT_EQ(row.two.isSamePlace(row.one), row.isSame) << row.what;
    }
}
