// What Python's own property list module and the `attr` tools make of our attributes, and we of theirs.

#include "Tests/Classes/Tags/TagsFixture.h"
#include "Tests/Support/Skip.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

class PythonReferenceTest : public TagsFixture
{
protected:
    static QByteArray run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60000)) << qPrintable(program);
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        return process.readAllStandardOutput();
    }
    QByteArray python(const QString &script)
    {
        return run(QStringLiteral("python3"), {QStringLiteral("-c"), script, path});
    }
};

TEST_F(PythonReferenceTest, PythonReadsWhatWeWrite)
{
    if (!hasRoomForMirrors()) {
        return skipWithout("room for several kilobytes of attributes in a file");
    }
    const QStringList tags{QStringLiteral("Logo"), QStringLiteral("Cafe\u0301"), QStringLiteral("日本")};
    ASSERT_TRUE(OpenMeta::setUserTags(tags, path).isNull());
    ASSERT_TRUE(OpenMeta::setRating(3.5, path).isNull());
    ASSERT_TRUE(OpenMeta::setFinderComment(QStringLiteral("two\nlines"), path).isNull());
    const QByteArray json = python(QStringLiteral(R"(
import json, os, plistlib, sys
def value(name): return plistlib.loads(os.getxattr(sys.argv[1], "user." + name))
main = value("com.apple.metadata:kMDItemOMUserTags")
assert all(value(n) == main for n in ("org.openmetainfo:kMDItemOMUserTags", "com.apple.metadata:kOMUserTags", "org.openmetainfo:kOMUserTags"))
print(json.dumps({"tags": main, "rating": value("com.apple.metadata:kMDItemStarRating"),
  "comment": value("com.apple.metadata:kMDItemFinderComment"), "time": value("com.apple.metadata:kMDItemOMUserTagTime").timestamp() > 0})))"));
    const QJsonObject read = QJsonDocument::fromJson(json).object();
    EXPECT_EQ(read.value(QStringLiteral("tags")).toVariant().toStringList(), tags);
    EXPECT_EQ(read.value(QStringLiteral("rating")).toDouble(), 3.5);
    EXPECT_EQ(read.value(QStringLiteral("comment")).toString(), QStringLiteral("two\nlines"));
    EXPECT_TRUE(read.value(QStringLiteral("time")).toBool());
}

TEST_F(PythonReferenceTest, WeReadWhatPythonWrites)
{
    python(QStringLiteral(R"(
import os, plistlib, sys
def put(name, value, form): os.setxattr(sys.argv[1], "user." + name, plistlib.dumps(value, fmt=form))
put("com.apple.metadata:kMDItemOMUserTags", ["one", "zw\u00f6lf", 3], plistlib.FMT_BINARY)
put("com.apple.metadata:kMDItemStarRating", 4, plistlib.FMT_BINARY)
put("com.apple.metadata:kMDItemFinderComment", "xml form", plistlib.FMT_XML))"));
    EXPECT_EQ(tagsOf(path), (QStringList{QStringLiteral("one"), QStringLiteral("zw\u00f6lf")}));
    EXPECT_EQ(OpenMeta::getRating(path), 4);
    EXPECT_EQ(OpenMeta::getFinderComment(path), QStringLiteral("xml form"));
}

TEST_F(PythonReferenceTest, TheAttrToolsSeeTheMirrorsAndTheirChangesComeBack)
{
    ASSERT_TRUE(OpenMeta::setUserTags(list("a b"), path).isNull());
    EXPECT_EQ(
        run(QStringLiteral("getfattr"), {QStringLiteral("--only-values"), QStringLiteral("-n"),
                                         QStringLiteral("user.xdg.tags"), QStringLiteral("--absolute-names"), path}),
        "a,b");
    run(QStringLiteral("setfattr"),
        {QStringLiteral("-n"), QStringLiteral("user.xdg.tags"), QStringLiteral("-v"), QStringLiteral("b,c"), path});
    EXPECT_EQ(tagsOf(path), list("b c"));
    run(QStringLiteral("setfattr"), {QStringLiteral("-x"), QStringLiteral("user.xdg.tags"), path});
    EXPECT_TRUE(tagsOf(path).isEmpty());
}
