// `zelto thumbnail`: what a file manager gets, and what is left alone.

#include "Tests/Classes/Command/CommandFixture.h"

#include <QSet>

namespace {

class ThumbnailCommandTest : public CommandTest
{
protected:
    QImage drawn(const QStringList &arguments)
    {
        const QString out = QStringLiteral("out.png");
        EXPECT_EQ(run(QStringList{QStringLiteral("thumbnail")} + arguments + QStringList{out}), 0)
            << context.errors.constData();
        const QImage image(world.filePath(out));
        QFile::remove(world.filePath(out));
        return image;
    }
};

} // namespace

TEST_F(ThumbnailCommandTest, DrawsFilesAndLibraries)
{
    picture(QStringLiteral("a.png"), qRgb(200, 10, 20));
    EXPECT_EQ(drawn({QStringLiteral("a.png"), QStringLiteral("--size"), QStringLiteral("60")}).size(), QSize(60, 40));
    EXPECT_EQ(drawn({QStringLiteral("a.png"), QStringLiteral("--size"), QStringLiteral("999")}).size(), QSize(300, 200))
        << "nothing is enlarged";

    const QStringList library{QStringLiteral("Test.ztlibrary"), QStringLiteral("--size"), QStringLiteral("64")};
    EXPECT_EQ(run("thumbnail Test.ztlibrary out.png"), 2);
    EXPECT_TRUE(context.errors.contains("holds no picture yet")) << context.errors.constData();
    QStringList import{QStringLiteral("import"), QStringLiteral("a.png")};
    ASSERT_EQ(run(import), 0) << context.errors.constData();
    EXPECT_EQ(drawn(library).size(), QSize(64, 43)) << "its only picture";
    for (int i = 1; i < 4; ++i) {
        picture(QStringLiteral("%1.png").arg(i), qRgb(0, 60 * i, 0));
        import.append(QStringLiteral("%1.png").arg(i));
    }
    import.removeAt(1);
    ASSERT_EQ(run(import), 0) << context.errors.constData();
    const QImage four = drawn(library);
    EXPECT_EQ(four.size(), QSize(64, 64));
    QSet<QRgb> colours;
    for (const QPoint &corner : {QPoint(5, 5), QPoint(58, 5), QPoint(5, 58), QPoint(58, 58)}) {
        colours.insert(four.pixel(corner));
    }
    EXPECT_EQ(colours.size(), 4);
    EXPECT_EQ(qAlpha(four.pixel(32, 32)), 0) << "between the tiles the ground is seen";
}

TEST_F(ThumbnailCommandTest, WritesOverNothingThatItWasNotToldOf)
{
    picture(QStringLiteral("a.png"), qRgb(1, 2, 3));
    const QString there = picture(QStringLiteral("there.png"), qRgb(4, 5, 6));
    ASSERT_TRUE(QFile::link(world.filePath(QStringLiteral("a.png")), world.filePath(QStringLiteral("link.png"))));
    struct
    {
        const char *arguments;
        const char *said;
    } cases[] = {{"thumbnail none.png x.png", "there is no file “none.png”"},
                 {"thumbnail a.png there.png", "is there already"},
                 {"thumbnail --force a.png a.png", "can't be written over"},
                 {"thumbnail --force a.png link.png", "can't be written over"},
                 {"thumbnail --force a.png Test.ztlibrary", "can't be written over"},
                 {"thumbnail --size 0 a.png x.png", "--size"},
                 {"thumbnail a.png none/x.png", "none"}};
    for (const auto &test : cases) {
        EXPECT_EQ(run(test.arguments), 2) << test.arguments;
        EXPECT_TRUE(context.errors.contains(test.said)) << test.arguments << "\n" << context.errors.constData();
    }
    EXPECT_EQ(QImage(there).width(), 300);
    EXPECT_EQ(run("thumbnail --force --size 30 a.png there.png"), 0) << context.errors.constData();
    EXPECT_EQ(QImage(there).width(), 30);
}
