#include "Kit/Files/ZQOwnChanges.h"
#include "Tests/Kit/Files/Scratch.h"

#include <sys/stat.h>

using OwnChanges = Scratch;

TEST_F(OwnChanges, AreOfOnePathOnlyAndForOneMomentOnly)
{
    ZQOwnChanges changes(std::chrono::hours(1));
    changes.note(QStringLiteral("/pictures//inner/../b\u00e4r.png"));
    EXPECT_TRUE(changes.contains("/pictures/b\xc3\xa4r.png"));
    EXPECT_FALSE(changes.contains("/pictures"));
    EXPECT_FALSE(changes.contains("/pictures/b\xc3\xa4r.png/below"));

    ZQOwnChanges over(std::chrono::milliseconds(0));
    over.note(QStringLiteral("/a"));
    EXPECT_FALSE(over.contains("/a"));
}

TEST_F(OwnChanges, ForgetTheOldestWhenThereAreTooMany)
{
    ZQOwnChanges changes(std::chrono::hours(1), 2);
    for (const char *const path : {"/a", "/b", "/b", "/a", "/c"}) {
        changes.note(QString::fromLatin1(path));
    }
    EXPECT_TRUE(changes.contains("/a")) << "noted again after it was the oldest";
    EXPECT_FALSE(changes.contains("/b"));
    EXPECT_TRUE(changes.contains("/c"));
}

TEST_F(OwnChanges, TellWhatOthersDoAfterwardsFromWhatWeDid)
{
    ZQOwnChanges changes(std::chrono::hours(1));
    const QString written = file(QStringLiteral("written"), "1");
    const QString removed = file(QStringLiteral("removed"), "1");
    for (const QString &path : {written, removed}) {
        changes.note(path);
    }
    ASSERT_TRUE(QFile::remove(removed));
    for (const QString &path : {written, removed}) {
        changes.didChange(path);
        EXPECT_TRUE(changes.contains(QFile::encodeName(path)));
    }
    // Replaced, since a mere change in the same tick of the system's clock has the same time.
    file(QStringLiteral("other"), "2");
    ASSERT_EQ(
        ::rename(QFile::encodeName(path(QStringLiteral("other"))).constData(), QFile::encodeName(written).constData()),
        0);
    file(QStringLiteral("removed"), "2");
    for (const QString &path : {written, removed}) {
        EXPECT_FALSE(changes.contains(QFile::encodeName(path)));
    }
}

TEST_F(OwnChanges, AreHeldUntilTheyAreReleasedAsOften)
{
    const QString path = QStringLiteral("/held");
    ZQOwnChanges brief(std::chrono::milliseconds(0), 2);
    brief.hold(path);
    brief.hold(path);
    for (const char *const other : {"/a", "/b", "/c"}) {
        brief.note(QString::fromLatin1(other));
    }
    brief.release(path);
    brief.forget(path);
    EXPECT_TRUE(brief.contains("/held") && brief.isHeld("/held"));
    brief.release(path);
    EXPECT_FALSE(brief.contains("/held") || brief.isHeld("/held"));
    brief.release(path);

    ZQOwnChanges changes(std::chrono::hours(1));
    const QString written = file(QStringLiteral("written"), "1");
    const QByteArray name = QFile::encodeName(written);
    changes.hold(written);
    changes.didChange(written);
    ASSERT_TRUE(QFile::remove(written));
    EXPECT_FALSE(changes.contains(name)) << "somebody else's doing";
    EXPECT_TRUE(changes.isHeld(name));
    file(QStringLiteral("written"), "2");
    changes.didChange(written);
    changes.release(written);
    EXPECT_TRUE(changes.contains(name)) << "for a moment more";
    changes.forget(written);
    EXPECT_FALSE(changes.contains(name));
}
