// `zelto psd`: what its layers may be called, and what it refuses.

#include "Tests/Classes/Command/CommandFixture.h"

namespace {

class PsdCommandTest : public CommandTest
{
protected:
    // The names of the layers and their opacities, the bottom one first, as the document's records hold them.
    QStringList layersOf(const QString &path) const
    {
        QFile file(world.filePath(path));
        QStringList layers;
        const QByteArray document = file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
        for (qsizetype at = document.indexOf("8BIMnorm"); at >= 0; at = document.indexOf("8BIMnorm", at + 1)) {
            const QString name = QString::fromLatin1(document.mid(at + 25, 15)).trimmed();
            layers.append(name + u' ' + QString::number(uchar(document[at + 8])));
        }
        return layers;
    }
};

} // namespace

TEST_F(PsdCommandTest, PlacesAndNamesLayers)
{
    for (const char *name : {"a.png", "b@2x.png", "c@1,2"}) {
        picture(QString::fromLatin1(name), qRgb(1, 2, 3));
    }
    const QStringList arguments = {QStringLiteral("psd"),
                                   QStringLiteral("--size"),
                                   QStringLiteral("20x10"),
                                   QStringLiteral("--out"),
                                   QStringLiteral("a.psd"),
                                   QStringLiteral("a.png"),
                                   QStringLiteral("a.png@-5,3"),
                                   QStringLiteral("b@2x.png@1,2,0.5,a, b @ 3,4"),
                                   QStringLiteral("b@2x.png"),
                                   QStringLiteral("c@1,2"),
                                   QStringLiteral("a.png@0,0,,named"),
                                   QStringLiteral("--json")};
    ASSERT_EQ(run(arguments), 0) << context.errors.constData();
    EXPECT_EQ(layersOf(QStringLiteral("a.psd")),
              (QStringList{QStringLiteral("a 255"), QStringLiteral("a 255"), QStringLiteral("a, b @ 3,4 128"),
                           QStringLiteral("b@2x 255"), QStringLiteral("c@1,2 255"), QStringLiteral("named 255")}));
    EXPECT_EQ(object()[QStringLiteral("layers")].toInt(), 6);
    EXPECT_EQ(object()[QStringLiteral("bytes")].toInteger(), QFileInfo(world.filePath(QStringLiteral("a.psd"))).size());
}

TEST_F(PsdCommandTest, RefusesWhatItDoesNotUnderstand)
{
    picture(QStringLiteral("a.png"), qRgb(1, 2, 3));
    struct
    {
        const char *arguments;
        const char *said;
    } cases[] = {{"psd --size 20 --out x.psd a.png", "“20” is no size"},
                 {"psd --size 0x5 --out x.psd a.png", "“0x5” is no size"},
                 {"psd --size 30001x5 --out x.psd a.png", "30001"},
                 {"psd --size 20x5 --out x.psd b.png", "there is no file “b.png”"},
                 {"psd --size 20x5 --out x.psd b.png@1,2", "there is no file “b.png@1,2”"},
                 {"psd --size 20x5 --out x.psd a.png@1", "says no place"},
                 {"psd --size 20x5 --out x.psd a.png@1,b", "says no place"},
                 {"psd --size 20x5 --out x.psd a.png@1,2,1.5", "says no place"},
                 {"psd --size 20x5 --out x.psd a.png@1,2,nan", "says no place"},
                 {"psd --size 20x5 --out a.png --force a.png", "is one of the layers"},
                 {"psd --size 20x5 --out none/x.psd a.png", "none"}};
    for (const auto &test : cases) {
        EXPECT_EQ(run(test.arguments), 2) << test.arguments;
        EXPECT_TRUE(context.errors.contains(test.said)) << test.arguments << "\n" << context.errors.constData();
        EXPECT_FALSE(QFileInfo::exists(world.filePath(QStringLiteral("x.psd"))));
    }
}

TEST_F(PsdCommandTest, ReplacesOnlyWhenTold)
{
    picture(QStringLiteral("a.png"), qRgb(1, 2, 3));
    const QString there = picture(QStringLiteral("there.png"), qRgb(1, 2, 3));
    const QDateTime before = QFileInfo(there).lastModified();
    EXPECT_EQ(run("psd --size 2x2 --out there.png a.png"), 2);
    EXPECT_TRUE(context.errors.contains("--force")) << context.errors.constData();
    EXPECT_EQ(QFileInfo(there).lastModified(), before);
    EXPECT_EQ(layersOf(QStringLiteral("there.png")), QStringList());
    EXPECT_EQ(run("psd --size 2x2 --out there.png --force a.png"), 0);
    EXPECT_EQ(layersOf(QStringLiteral("there.png")), QStringList{QStringLiteral("a 255")});
}
