#include "Kit/Files/ZQZipWriter.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QDateTime>
#include <QFileInfo>
#include <QProcess>

#include <cerrno>
#include <clocale>
#include <sys/stat.h>

namespace {

class ZipWriterTest : public Scratch
{
protected:
    QString archive() const { return path(QStringLiteral("Archive.zip")); }
    bool write(const QList<ZQZipMember> &members) { return zqWriteZip(members, archive(), {}, &error); }
    QStringList left() const
    {
        return QDir(QFileInfo(archive()).path()).entryList({QStringLiteral(".zelto-*")}, QDir::Files | QDir::Hidden);
    }

    // What another program prints; its exit status is that of the archive.
    static QByteArray run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(120'000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput();
    }
    QByteArray python(const QString &statement) const
    {
        return run(QStringLiteral("python3"),
                   {QStringLiteral("-c"),
                    QStringLiteral("import sys, zipfile; sys.stdout.reconfigure(encoding='utf-8')\n"
                                   "z = zipfile.ZipFile(sys.argv[1]); assert z.testzip() is None\n") +
                        statement,
                    archive()})
            .trimmed();
    }

    ZQError error;
};

} // namespace

TEST_F(ZipWriterTest, OtherProgramsReadWhatWasWritten)
{
    const QStringList names{
        QStringLiteral("Übergröße.txt"),           QStringLiteral("smile 😀.jpg"), QStringLiteral("two  spaces .txt"),
        QStringLiteral("u\u0308 apart"),           QStringLiteral("日本/中.txt"), QStringLiteral("-dash"),
        QString(QStringLiteral("ä")).repeated(120)};
    QList<ZQZipMember> members;
    QByteArray expected;
    for (const QString &name : names) {
        const QByteArray content = name.toUtf8().repeated(5000);
        members.append({file(QString::number(members.size()), content), name});
        expected += name.toUtf8() + ' ' + QByteArray::number(content.size()) + '\n';
    }
    const QByteArray before = std::setlocale(LC_CTYPE, nullptr);
    std::setlocale(LC_CTYPE, "C"); // names do not depend on it
    EXPECT_TRUE(write(members)) << error.localizedDescription().toStdString();
    std::setlocale(LC_CTYPE, before.constData());
    EXPECT_EQ(python(QStringLiteral("for i in z.infolist(): print(i.filename, len(z.read(i)))")), expected.trimmed());
    EXPECT_TRUE(run(QStringLiteral("unzip"), {QStringLiteral("-tq"), archive()}).contains("No errors"));
    EXPECT_EQ(left(), QStringList());
}

TEST_F(ZipWriterTest, StoresWhatIsCompressedAndKeepsDates)
{
    const QByteArray content(100'000, 'x');
    const QString picture = file(QStringLiteral("a.JPG"), content);
    const QString text = file(QStringLiteral("b.psd"), content);
    QFile dated(picture);
    ASSERT_TRUE(dated.open(QIODevice::ReadWrite));
    ASSERT_TRUE(dated.setFileTime(QDateTime(QDate(2019, 5, 4), QTime(12, 30, 10)), QFileDevice::FileModificationTime));
    ASSERT_TRUE(write({{picture, QStringLiteral("a.JPG")}, {text, QStringLiteral("b.psd")}}));
    EXPECT_EQ(python(QStringLiteral("for i in z.infolist(): print(i.compress_type, i.compress_size < 1000)")),
              "0 False\n8 True");
    EXPECT_EQ(python(QStringLiteral("print(z.infolist()[0].date_time)")), "(2019, 5, 4, 12, 30, 10)");
}

TEST_F(ZipWriterTest, AFolderComesWithAllBelowItAndItsLinksAreNotFollowed)
{
    const QString package = folder(QStringLiteral("Plan.sketch"));
    folder(QStringLiteral("Plan.sketch/empty"));
    folder(QStringLiteral("Plan.sketch/deep/er"));
    file(QStringLiteral("Plan.sketch/deep/er/data"), "data");
    file(QStringLiteral("secret"), "secret");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("secret")), package + QStringLiteral("/link")));
    ASSERT_TRUE(write({{package, QStringLiteral("Plan.sketch")}})) << error.localizedDescription().toStdString();
    EXPECT_EQ(python(QStringLiteral("for n in sorted(z.namelist()): print(n)")),
              "Plan.sketch/\nPlan.sketch/deep/\nPlan.sketch/deep/er/\nPlan.sketch/deep/er/data\nPlan.sketch/"
              "empty/\nPlan.sketch/link");
    EXPECT_EQ(
        python(QStringLiteral("print(z.getinfo('Plan.sketch/link').external_attr >> 28, z.read('Plan.sketch/link'))")),
        "10 b'" + path(QStringLiteral("secret")).toUtf8() + "'");
    EXPECT_EQ(read(package + QStringLiteral("/deep/er/data")), "data");
}

TEST_F(ZipWriterTest, MoreMembersThanTheOldFormatCounts)
{
    const QString one = file(QStringLiteral("one.png"), "1");
    QList<ZQZipMember> members;
    for (int i = 0; i < 65'540; ++i) {
        members.append({one, QString::number(i) + QStringLiteral(".png")});
    }
    ASSERT_TRUE(write(members));
    EXPECT_EQ(python(QStringLiteral("print(len(z.namelist()))")), "65540");
}

TEST_F(ZipWriterTest, WhatCannotBeWrittenLeavesNothing)
{
    const QString good = file(QStringLiteral("good"), "good");
    const QString fifo = path(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    struct Row
    {
        const char *what;
        ZQZipMember member;
        int code;
    };
    for (const Row &row : {
             Row{"the same name again", {good, QStringLiteral("good")}, EEXIST},
             Row{"no name", {good, {}}, EINVAL},
             Row{"from the root", {good, QStringLiteral("/etc/passwd")}, EINVAL},
             Row{"upwards", {good, QStringLiteral("a/../../b")}, EINVAL},
             Row{"a name cut short", {good, QStringLiteral("a") + QChar::Null}, EINVAL},
             Row{"no file", {path(QStringLiteral("none")), QStringLiteral("none")}, ENOENT},
             Row{"a pipe", {fifo, QStringLiteral("fifo")}, EINVAL},
             Row{"a path cut short", {good + QChar::Null, QStringLiteral("b")}, EINVAL},
         }) {
        SCOPED_TRACE(row.what);
        error = {};
        EXPECT_FALSE(write({{good, QStringLiteral("good")}, row.member}));
        EXPECT_EQ(error.code, row.code);
        EXPECT_FALSE(QFile::exists(archive()));
        EXPECT_EQ(left(), QStringList());
    }
    const QString taken = file(QStringLiteral("Archive.zip"), "somebody's");
    EXPECT_FALSE(write({{good, QStringLiteral("good")}}));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Archive.zip")));
    EXPECT_EQ(read(taken), "somebody's");
    EXPECT_EQ(left(), QStringList());
}

TEST_F(ZipWriterTest, EndsWhenItIsNotWantedAnyMore)
{
    const QList<ZQZipMember> members{{file(QStringLiteral("a"), "a"), QStringLiteral("a")},
                                     {file(QStringLiteral("b"), "b"), QStringLiteral("b")}};
    QList<qsizetype> asked;
    EXPECT_FALSE(zqWriteZip(
        members, archive(),
        [&](qsizetype index) {
            asked.append(index);
            return index == 0;
        },
        &error));
    EXPECT_EQ(asked, (QList<qsizetype>{0, 1}));
    EXPECT_EQ(error.code, ECANCELED);
    EXPECT_FALSE(QFile::exists(archive()));
    const auto cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope scope(cancellation);
    const auto cancelWithin = [&](qsizetype) { // the member at hand is not read to its end
        cancellation->cancel();
        return true;
    };
    EXPECT_FALSE(zqWriteZip(members.first(1), archive(), cancelWithin, &error));
    EXPECT_FALSE(QFile::exists(archive()));
    EXPECT_EQ(left(), QStringList());
}
