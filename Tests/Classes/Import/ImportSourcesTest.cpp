// What a source says of itself, and sources that are not what their path says.

#include "Tests/Classes/Import/ImportFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class ImportSources : public ImportFixture
{
protected:
    struct Dates
    {
        qint64 birth;
        qint64 modification;
        qint64 attributes;
    };
    static struct statx statusOf(const QString &path)
    {
        struct statx status = {};
        EXPECT_EQ(statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW,
                        STATX_BASIC_STATS | STATX_BTIME, &status),
                  0);
        return status;
    }
    static Dates datesOf(const QString &path)
    {
        const auto milliseconds = [](const statx_timestamp &time) {
            return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
        };
        const struct statx status = statusOf(path);
        return {milliseconds(status.stx_btime), milliseconds(status.stx_mtime), milliseconds(status.stx_ctime)};
    }
    static void setModification(const QString &path, qint64 seconds)
    {
        const timespec times[] = {{1, 0}, {seconds, 250000000}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    }
};

} // namespace

TEST_F(ImportSources, EachOfTheFiveDatesIsItsOwn)
{
    constexpr qint64 past = 1000000000;
    constexpr qint64 future = 4000000000;
    const struct
    {
        QString file;
        qint64 modification; // seconds
    } rows[] = {{QStringLiteral("in/past.png"), past},
                {QStringLiteral("in/future.png"), future},
                {QStringLiteral("ZeltoTemporaryFolder/t.1/moved.png"), past}};
    for (const auto &row : rows) {
        SCOPED_TRACE(qPrintable(row.file));
        const QString source = writeImage(row.file, {20, 20});
        QThread::msleep(30); // more than one tick of the clock of files
        ASSERT_NO_FATAL_FAILURE(setModification(source, row.modification));
        const Dates dates = datesOf(source);
        ASSERT_LT(dates.birth, dates.attributes);
        ASSERT_NE(dates.birth, dates.modification);
        QThread::msleep(30);
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        import({source});
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        const auto made = item(QFileInfo(source).completeBaseName());
        ASSERT_TRUE(made);
        EXPECT_EQ(made->creation_date().toMSecsSinceEpoch(), dates.birth);
        EXPECT_EQ(made->modification_date().toMSecsSinceEpoch(), row.modification * 1000 + 250);
        EXPECT_EQ(made->attributes_modification_date().toMSecsSinceEpoch(), dates.attributes);
        const qint64 imported = made->import_date().toMSecsSinceEpoch();
        EXPECT_TRUE(before <= imported && imported <= after) << imported - before;
        EXPECT_EQ(made->sort_date().toMSecsSinceEpoch(), row.modification == future ? future * 1000 + 250 : imported);
    }
}

TEST_F(ImportSources, ALinkInTheTemporaryFolderTakesNothingFromWhereItLeads)
{
    const QString original = writeImage(QStringLiteral("mine/original.png"), {20, 20});
    const QString inFolder = writeImage(QStringLiteral("mine/folder/other.png"), {21, 20});
    const QString temporary = path(QStringLiteral("ZeltoTemporaryFolder/t.1"));
    QDir().mkpath(temporary);
    const QString link = temporary + QStringLiteral("/link.png");
    ASSERT_TRUE(QFile::link(original, link));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("mine/folder")), temporary + QStringLiteral("/way")));
    const QString behindLink = temporary + QStringLiteral("/way/other.png");
    const struct
    {
        QString dropped;
        QString original;
        QString title;
    } rows[] = {{link, original, QStringLiteral("link")}, {behindLink, inFolder, QStringLiteral("other")}};
    for (const auto &row : rows) {
        SCOPED_TRACE(qPrintable(row.dropped));
        const auto before = statusOf(row.original);
        import({row.dropped});
        ASSERT_TRUE(QFileInfo::exists(row.original));
        const auto after = statusOf(row.original);
        EXPECT_EQ(after.stx_ino, before.stx_ino);
        EXPECT_EQ(after.stx_nlink, 1U) << "the library shares it";
        EXPECT_TRUE(QFileInfo::exists(row.dropped));
        if (const auto made = item(row.title)) {
            EXPECT_FALSE(QFileInfo(made->itemURL()).isSymLink());
            EXPECT_NE(statusOf(made->itemURL()).stx_ino, before.stx_ino);
        }
    }
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}
