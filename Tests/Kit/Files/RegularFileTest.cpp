// What stands in the place of a file of ours: it is read when it is one, and holds up nobody when it is none.

#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Kit/Files/Scratch.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

class RegularFile : public Scratch
{
protected:
    static QByteArray system(const QString &path) { return QFile::encodeName(path); }
    static bool makePipe(const QString &path) { return ::mkfifo(system(path).constData(), 0600) == 0; }
    // Each would keep who reads it waiting, or has no end.
    QStringList others() const
    {
        const QString pipe = path(QStringLiteral("pipe"));
        const QString toPipe = path(QStringLiteral("to pipe"));
        const QString socket = path(QStringLiteral("socket"));
        EXPECT_TRUE(makePipe(pipe) && QFile::link(pipe, toPipe));
        const ZQFileDescriptor listening(::socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, system(socket).constData(), sizeof address.sun_path);
        EXPECT_EQ(::bind(listening.get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        return {pipe, toPipe, socket, folder(QStringLiteral("folder")), QStringLiteral("/dev/zero")};
    }
};

} // namespace

TEST_F(RegularFile, IsReadWholeAndNothingElseIs)
{
    const QByteArray content(200'000, 'x');
    const QString made = file(QStringLiteral("a"), content);
    const QString link = path(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(made, link));
    EXPECT_EQ(zqReadRegularFile(made, content.size()), content);
    EXPECT_EQ(zqReadRegularFile(link, content.size()), content);
    EXPECT_EQ(zqReadRegularFile(file(QStringLiteral("empty"), {}), 0), QByteArray());
    ZQError error;
    EXPECT_FALSE(zqReadRegularFile(made, content.size() - 1, &error));
    EXPECT_EQ(error.domain, zqNoRegularFileDomain);
    EXPECT_FALSE(zqReadRegularFile(link, content.size(), &error, O_NOFOLLOW));
    EXPECT_EQ(error.code, ELOOP);
    EXPECT_FALSE(zqReadRegularFile(path(QStringLiteral("none")), 10, &error));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_GT(zqReadRegularFile(QStringLiteral("/proc/self/mounts"), 1 << 20)->size(), 0) << "its size is told as 0";
    for (const QString &other : others()) {
        EXPECT_FALSE(zqReadRegularFile(other, 1 << 20, &error)) << qPrintable(other);
        EXPECT_EQ(error.domain, zqNoRegularFileDomain) << qPrintable(other);
        EXPECT_TRUE(error.localizedDescription().contains(other)) << qPrintable(error.localizedDescription());
        for (const int flags : {O_RDWR | O_CREAT, O_WRONLY | O_APPEND, O_RDONLY}) {
            error = {};
            EXPECT_FALSE(zqOpenRegularFile(other, flags, &error).isOpen()) << qPrintable(other);
            EXPECT_EQ(error.domain, zqNoRegularFileDomain) << qPrintable(other);
        }
    }
    const QString fresh = path(QStringLiteral("fresh"));
    EXPECT_TRUE(zqOpenRegularFile(fresh, O_RDWR | O_CREAT, &error, 0600).isOpen());
    EXPECT_EQ(QFile::permissions(fresh) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(RegularFile, SettingsGoOnBesideWhatStandsInTheirPlace)
{
    const QString store = folder(QStringLiteral("config")) + QStringLiteral("/defaults.json");
    const QString key = QStringLiteral("Key");
    for (const QString &place : {store, store + QStringLiteral(".lock")}) {
        SCOPED_TRACE(place.toStdString());
        ASSERT_TRUE(makePipe(place));
        ZQUserDefaults defaults(store);
        defaults.registerDefaults({{key, 5}});
        EXPECT_EQ(defaults.integerForKey(key), 5);
        ZQError error;
        EXPECT_FALSE(defaults.storeObjectForKey(7, key, &error));
        EXPECT_TRUE(error.localizedDescription().contains(u'“' + place + QStringLiteral("” is no file")))
            << qPrintable(error.localizedDescription());
        EXPECT_TRUE(error.localizedDescription().endsWith(QStringLiteral("Move it away, then try again.")));
        defaults.setObjectForKey(7, key);
        EXPECT_EQ(defaults.integerForKey(key), 7) << "while the program runs";
        struct stat status = {};
        ASSERT_EQ(::stat(system(place).constData(), &status), 0);
        EXPECT_TRUE(S_ISFIFO(status.st_mode)) << "it is left alone";
        ASSERT_TRUE(QFile::remove(place));
        EXPECT_TRUE(defaults.synchronize(&error)) << qPrintable(error.localizedDescription());
        EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 7);
        ASSERT_TRUE(QFile::remove(store) && QFile::remove(store + QStringLiteral(".lock")));
    }
}
