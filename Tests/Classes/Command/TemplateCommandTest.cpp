#include "Tests/Classes/Command/CommandFixture.h"

#include "Classes/Application/TemporaryArea.h"

#include <QDir>
#include <QFile>

TEST_F(CommandTest, AssetsAreMadeOfTemplatesWhichStayAsTheyAre)
{
    EXPECT_EQ(run("new Poster"), 2);
    EXPECT_TRUE(context.errors.contains(delegate->templateDirectory().toUtf8())) << "where to put one";
    const QString path = delegate->templateDirectory() + QStringLiteral("/Poster.png.zttemplate");
    ASSERT_TRUE(QFile::copy(picture(QStringLiteral("p.png"), qRgb(9, 9, 200)), path));
    EXPECT_EQ(run("templates --json"), 0);
    ASSERT_EQ(array().size(), 1);
    EXPECT_EQ(array().first().toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Poster"));

    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*delegate->managedObjectContext());
    const auto project = delegate->managedObjectContext()->insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("Brand"));
    project->setActive(true);
    projects->appendChild(project.get());
    delegate->saveAction();
    // Twice: two assets, about which nobody is asked.
    EXPECT_EQ(run({QStringLiteral("new"), QStringLiteral("Poster"), QStringLiteral("--in"),
                   QStringLiteral("PROJECTS/Brand")}),
              0)
        << context.errors.constData();
    EXPECT_EQ(run("new Poster.png.zttemplate"), 0) << context.errors.constData();
    EXPECT_EQ(run("items --json"), 0);
    ASSERT_EQ(array().size(), 2);
    for (const QJsonValue &item : array()) {
        EXPECT_EQ(item.toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Poster"));
    }
    EXPECT_EQ(run({QStringLiteral("items"), QStringLiteral("--json"), QStringLiteral("--in"),
                   QStringLiteral("PROJECTS/Brand")}),
              0);
    EXPECT_EQ(array().size(), 1);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(run("new Poster --in PROJECTS"), 2);
    EXPECT_EQ(run("new Poste"), 2);
    EXPECT_TRUE(context.errors.contains("Poster"));
}

TEST_F(CommandTest, NothingStaysOfTheCopyThatAnAssetIsMadeOfAndWhatFailsSaysWhatToDo)
{
    const QDir area(TemporaryArea::folder());
    const auto folders = [&area] { return area.entryList({QStringLiteral("t.*")}, QDir::Dirs); };
    const QStringList before = folders();
    const QString path = delegate->templateDirectory() + QStringLiteral("/%1.zttemplate");
    ASSERT_TRUE(QFile::copy(picture(QStringLiteral("p.png"), qRgb(9, 9, 200)), path.arg(QStringLiteral("Poster.png"))));
    QFile broken(path.arg(QStringLiteral("Broken.png")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write("no picture") > 0);
    broken.close();
    EXPECT_EQ(run("new Poster"), 0) << context.errors.constData();
    run("new Broken");
    EXPECT_EQ(folders(), before);

    const QByteArray usual = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(world.filePath(QStringLiteral("gone"))));
    EXPECT_EQ(run("new Poster"), 2);
    qputenv("TMPDIR", usual);
    EXPECT_TRUE(context.errors.contains("TMPDIR")) << context.errors.constData();
}
