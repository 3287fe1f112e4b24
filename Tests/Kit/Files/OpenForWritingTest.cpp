#include "Kit/Files/ZQOpenForWriting.h"
#include "Tests/Kit/Files/Scratch.h"

#include <sys/stat.h>

class OpenForWriting : public Scratch
{
};

TEST_F(OpenForWriting, OnlyAFileThatSomebodyWritesIs)
{
    const QString path = file(QStringLiteral("a"), "content");
    EXPECT_FALSE(zqIsOpenForWriting(path));
    QFile other(path);
    ASSERT_TRUE(other.open(QIODevice::ReadOnly));
    EXPECT_FALSE(zqIsOpenForWriting(path)) << "it is only read";
    other.close();
    for (const auto mode : {QIODevice::OpenMode(QIODevice::WriteOnly), QIODevice::OpenMode(QIODevice::ReadWrite)}) {
        ASSERT_TRUE(other.open(mode));
        EXPECT_TRUE(zqIsOpenForWriting(path));
        EXPECT_EQ(other.write("more"), 4) << "which goes on undisturbed";
        other.close();
        EXPECT_FALSE(zqIsOpenForWriting(path));
    }
    ASSERT_TRUE(QFile::link(path, this->path(QStringLiteral("link"))));
    ASSERT_EQ(::mkfifo(QFile::encodeName(this->path(QStringLiteral("pipe"))).constData(), 0600), 0);
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    for (const char *none : {"link", "pipe", "missing", "."}) {
        EXPECT_FALSE(zqIsOpenForWriting(this->path(QLatin1StringView(none)))) << none;
    }
}
