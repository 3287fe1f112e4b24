// Which files an import takes away from where they came: nothing that the library does not hold.

#include "Classes/Import/MovedSource.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class MovedSourceTest : public ImportFixture
{
protected:
    QString temporary(const char *name) const
    {
        return QStringLiteral("ZeltoTemporaryFolder/t/") + QLatin1String(name);
    }
    QString linkTo(const QString &target, const QString &name) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        EXPECT_TRUE(QFile::link(target, path(name)));
        return path(name);
    }
};

} // namespace

TEST_F(MovedSourceTest, ARecordIsBelievedOnlyOfATemporaryFileWithATrueCopyInTheLibrary)
{
    import({writeImage(QStringLiteral("in/a.png"), {20, 20})});
    const auto made = item(QStringLiteral("a"));
    ASSERT_TRUE(made);
    const QString copy = made->itemURL();
    QFile file(copy);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    const QString same = writeFile(temporary("a.png"), content);
    const QString outside = writeFile(QStringLiteral("in/b.png"), content);
    const QString besideLibrary = library + QStringLiteral("2/a.png");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(besideLibrary).path()) && QFile::copy(same, besideLibrary));
    const QString linkInLibrary = QFileInfo(copy).path() + QStringLiteral("/link.png");
    ASSERT_TRUE(QFile::link(same, linkInLibrary));
    linkTo(path(QStringLiteral("in")), temporary("linked"));
    struct Case
    {
        const char *what;
        QString source;
        QString itemFile;
        bool isBelieved;
    };
    const Case cases[] = {
        {"a true copy", same, copy, true},
        {"other content", writeFile(temporary("other.png"), content + 'x'), copy, false},
        {"no temporary file", outside, copy, false},
        {"a link to one's own file", linkTo(outside, temporary("link.png")), copy, false},
        {"a file behind a link", path(temporary("linked/b.png")), copy, false},
        {"a copy outside the library", same, outside, false},
        {"a copy in a folder whose name begins like the library's", same, besideLibrary, false},
        {"a link in the library to the file itself", same, linkInLibrary, false},
        {"no copy", same, copy + QStringLiteral(".gone"), false},
        {"no file", path(temporary("gone.png")), copy, false},
        {"a folder", path(QStringLiteral("ZeltoTemporaryFolder/t")), copy, false},
        {"nothing", QString(), QString(), false},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(mayRemoveRecordedSource(each.source, each.itemFile), each.isBelieved) << each.what;
    }
}

TEST_F(MovedSourceTest, WhatIsNotAsItWasReadStaysWhereItIs)
{
    const auto modificationOf = [](const QString &name) {
        const auto dates = zqFileDates(name);
        EXPECT_TRUE(dates);
        return dates ? dates->modification : 0;
    };
    const QString changed = writeFile(temporary("changed.png"), "a");
    removeMovedSource(changed, modificationOf(changed) - 1);
    EXPECT_TRUE(QFile::exists(changed));

    const QString target = writeFile(QStringLiteral("in/a.png"), "a");
    const QString link = linkTo(target, temporary("link.png"));
    removeMovedSource(link, modificationOf(link));
    removeMovedSource(link, modificationOf(target));
    EXPECT_TRUE(QFileInfo(link).isSymLink() && QFile::exists(target));

    removeMovedSource(path(temporary("gone.png")), 0);
    const QString package = QFileInfo(writeFile(temporary("a.sketch/data"), "a")).path();
    for (const QString &moved : {changed, package}) {
        removeMovedSource(moved, modificationOf(moved));
        EXPECT_FALSE(QFileInfo::exists(moved)) << moved.toStdString();
    }
}
