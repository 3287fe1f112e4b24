#include "Classes/Capture/PortalScreenSource.h"
#include "Tests/Classes/Capture/MockPortal.h"
#include "Tests/Classes/Capture/XDesktop.h"

#include <QDBusArgument>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QUrl>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

class PortalScreenSourceTest : public testing::Test
{
protected:
    // A picture as the desktop leaves it, with its address as what the portal answers.
    MockPortal::Answer pictureAt(const QString &path)
    {
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(Qt::red);
        EXPECT_TRUE(picture.save(path, "PNG"));
        return {0, {{QStringLiteral("uri"), QUrl::fromLocalFile(path).toString()}}};
    }
    void take(const std::function<void(ScreenSource::Taken)> &start)
    {
        count = 0;
        start([this](const QImage &taken, const ZQError &problem) {
            ++count;
            image = taken;
            error = problem;
        });
        EXPECT_TRUE(XDesktop::waitUntil([this] { return count > 0; }));
    }
    void takeAll()
    {
        take([this](ScreenSource::Taken taken) { source.captureAllScreens(std::move(taken)); });
    }

    QTemporaryDir folder; // of the temporary area
    PortalScreenSource source;
    QImage image;
    ZQError error;
    int count = 0;
};

TEST_F(PortalScreenSourceTest, ReadsThePictureAndClearsItAwayOnlyWhereItWasPassedOn)
{
    const QString temporary = QDir::tempPath() + QStringLiteral("/zelto-portal-%1-").arg(::getpid());
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    const auto cleared = qScopeGuard([&] {
        qputenv("XDG_RUNTIME_DIR", runtime);
        for (const char *name : {"one.png", "link.png", "twice.png"}) {
            QFile::remove(temporary + QLatin1StringView(name));
        }
    });
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("doc/4f3a")));
    const QString own = folder.filePath(QStringLiteral("own.png"));
    ASSERT_TRUE(QImage(40, 30, QImage::Format_RGB32).save(own));
    ASSERT_TRUE(QFile::link(own, temporary + QStringLiteral("link.png")));
    ASSERT_EQ(::link(QFile::encodeName(own).constData(), QFile::encodeName(temporary + "twice.png").constData()), 0);
    const struct
    {
        QString path;
        bool stays;
    } cases[] = {{temporary + QStringLiteral("one.png"), false},
                 {temporary + QStringLiteral("link.png"), true},
                 {temporary + QStringLiteral("twice.png"), true}, // a person's file has another name there
                 {folder.filePath(QStringLiteral("shot.png")), true},
                 {folder.filePath(QStringLiteral("doc/4f3a/person.png")), true}};
    MockPortal portal;
    const int limit = QImageReader::allocationLimit();
    for (const auto &each : cases) {
        bool isInteractive = true;
        portal.answer = [&](const QString & /*method*/, const QVariantList &arguments) {
            isInteractive = qdbus_cast<QVariantMap>(arguments.last()).value(QStringLiteral("interactive")).toBool();
            return pictureAt(each.path);
        };
        takeAll();
        EXPECT_TRUE(error.isNull()) << error.localizedDescription().toStdString();
        EXPECT_EQ(image.size(), QSize(40, 30));
        EXPECT_FALSE(isInteractive);
        EXPECT_EQ(QFileInfo::exists(each.path), each.stays) << each.path.toStdString();
        EXPECT_EQ(QImageReader::allocationLimit(), limit) << "other readers of the process have it too";
    }
    EXPECT_TRUE(QFileInfo::exists(own));
    portal.answer = [&](const QString & /*method*/, const QVariantList &arguments) {
        EXPECT_TRUE(qdbus_cast<QVariantMap>(arguments.last()).value(QStringLiteral("interactive")).toBool());
        return pictureAt(cases[0].path);
    };
    take([this](ScreenSource::Taken taken) { source.captureInteractively(std::move(taken)); });
    EXPECT_FALSE(image.isNull());
}

TEST_F(PortalScreenSourceTest, SaysWhyThereIsNoPicture)
{
    take([this](ScreenSource::Taken taken) { source.captureRect({0, 0, 1, 1}, std::move(taken)); });
    EXPECT_TRUE(image.isNull());
    EXPECT_FALSE(error.isNull());
    takeAll(); // nobody has the name
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("xdg-desktop-portal")));

    const QString pipe = folder.filePath(QStringLiteral("pipe.png"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString vector = folder.filePath(QStringLiteral("vector.png"));
    QFile file(vector);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    file.close();
    MockPortal portal;
    const struct
    {
        MockPortal::Answer answer;
        bool isError;
    } cases[] = {
        {{1, {}}, false}, // called off
        {{2, {}}, true},
        {{0, {}}, true},
        {{0, {{QStringLiteral("uri"), QStringLiteral("https://example.org/a.png")}}}, true},
        {{0, {{QStringLiteral("uri"), QStringLiteral("file:///nonexistent.png")}}}, true},
        {{0, {{QStringLiteral("uri"), QUrl::fromLocalFile(pipe).toString()}}}, true}, // nobody writes into it
        {{0, {{QStringLiteral("uri"), QUrl::fromLocalFile(vector).toString()}}}, true},
    };
    for (const auto &each : cases) {
        portal.answer = [&each](const QString & /*method*/, const QVariantList & /*arguments*/) { return each.answer; };
        takeAll();
        EXPECT_TRUE(image.isNull());
        EXPECT_EQ(!error.isNull(), each.isError);
        EXPECT_EQ(count, 1);
    }
}

TEST_F(PortalScreenSourceTest, EndsWhenThePortalDoesAndWhenAnotherCaptureBegins)
{
    MockPortal portal;
    portal.answersRequests = false;
    int calledOff = 0;
    source.captureInteractively([&calledOff](const QImage &none, const ZQError &problem) {
        calledOff += none.isNull() && problem.isNull() ? 1 : 0;
    });
    ASSERT_TRUE(XDesktop::waitUntil([&] { return portal.calls.contains(QStringLiteral("Screenshot")); }));
    take([&](ScreenSource::Taken taken) {
        source.captureInteractively(std::move(taken));
        EXPECT_EQ(calledOff, 1);
        EXPECT_TRUE(XDesktop::waitUntil([&] { return portal.calls.count(QStringLiteral("Screenshot")) == 2; }));
        portal.leave();
    });
    EXPECT_TRUE(portal.calls.contains(QStringLiteral("Close"))); // the first was withdrawn
    EXPECT_TRUE(image.isNull());
    EXPECT_FALSE(error.isNull());
}

} // namespace
