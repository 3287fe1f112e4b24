// Captures from the key to the item, as a person takes them and as commands do.

#include "Classes/Capture/ChromiumBrowser.h"
#include "Classes/Command/Commands.h"
#include "Classes/Interface/Capture/ZQScreenshotAreaView.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Tests/Classes/CaptureWay/CaptureWayFixture.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QUrl>

namespace {

QString number(int value)
{
    return QString::number(value);
}

QStringList moveTo(const QPoint &pixel)
{
    return {QStringLiteral("mousemove"), number(pixel.x()), number(pixel.y())};
}

class CaptureWayTest : public CaptureWayFixture
{
protected:
    static void set(const char *preference, bool isOn)
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(isOn, QLatin1StringView(preference));
    }
    void setAfterCapture(bool isOn)
    {
        set(opensZelto, isOn);
        set(goesToScreenshots, isOn);
    }
    int snapFull(bool isForAnother)
    {
        return run([](CommandContext &asked) { return zqRunSnap(SnapKind::FullScreen, asked); }, isForAnother);
    }
    // The windows of the other program are in it, at their places.
    void expectWholeDisplay(const ZQLibraryBaseItem &item)
    {
        const QImage image = picture(item);
        EXPECT_EQ(image.size(), displaySize);
        for (const QRect &each : {redRect, blueRect.adjusted(-9, -9, 9, 9)}) {
            EXPECT_EQ(image.copy(each), drawn(each));
        }
        EXPECT_TRUE(item.title().startsWith(QStringLiteral("Screenshot "))) << item.title().toStdString();
    }
    // Of the window that is minimised before, with Library selected.
    void expectAfterCapture(bool isOn, const std::function<void()> &capture)
    {
        const auto library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*delegate->managedObjectContext());
        setAfterCapture(isOn);
        window().selectSidebarItem(library->objectID());
        window().window()->showMinimized();
        ASSERT_TRUE(waitFor([this] { return window().isMiniaturized(); }));
        capture();
        const QList<ZQObjectID> expected{isOn ? screenshotsEntry() : library->objectID()};
        EXPECT_TRUE(waitFor([&] {
            return window().isMiniaturized() != isOn && window().window()->isActiveWindow() == isOn &&
                   window().sidebar().selectedItems() == expected;
        })) << isOn;
    }
};

TEST_F(CaptureWayTest, AnAreaIsThePixelsThatAnotherProgramDrewThere)
{
    launchWithWindow();
    const auto *const view = qobject_cast<ZQScreenshotAreaView *>(begin("ctrl+super+1"));
    ASSERT_TRUE(view);
    const QRect wanted = blueRect.adjusted(-21, -13, 17, 8);
    press(moveTo(wanted.topLeft()) + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")} +
          moveTo(wanted.center()) + moveTo(wanted.bottomRight()) +
          QStringList{QStringLiteral("mouseup"), QStringLiteral("1")});
    ASSERT_TRUE(waitFor([&] { return view->selection() == wanted; }))
        << view->selection().x() << ' ' << view->selection().y() << ' ' << view->selection().width() << ' '
        << view->selection().height();
    EXPECT_TRUE(screenshots().isEmpty());
    press({QStringLiteral("key"), QStringLiteral("Return")});
    const auto item = waitForItem();
    ASSERT_TRUE(item);
    EXPECT_EQ(picture(*item), drawn(wanted));
}

TEST_F(CaptureWayTest, AWindowIsItselfAloneBelowOthers)
{
    launchWithWindow();
    ASSERT_TRUE(begin("ctrl+super+2"));
    const QPoint uncovered = greenRect.bottomLeft() + QPoint(20, -20);
    press(moveTo(uncovered) + moveTo(uncovered + QPoint(3, 3)));
    press({QStringLiteral("key"), QStringLiteral("Return")});
    const auto item = waitForItem();
    ASSERT_TRUE(item);
    const QRect frame = frameOf(greenWindow);
    const QImage image = picture(*item);
    EXPECT_EQ(image.size(), frame.size());
    QImage all(greenRect.size(), QImage::Format_RGB32);
    all.fill(QColor::fromRgb(green));
    EXPECT_EQ(image.copy(greenRect.translated(-frame.topLeft())), all);
    EXPECT_TRUE(item->title().startsWith(QStringLiteral("Painter "))) << item->title().toStdString();
}

TEST_F(CaptureWayTest, TheWholeScreenIsEveryPixelOfTheDisplay)
{
    launchWithWindow();
    press({QStringLiteral("key"), QStringLiteral("ctrl+super+3")});
    const auto item = waitForItem();
    ASSERT_TRUE(item);
    expectWholeDisplay(*item);
}

TEST_F(CaptureWayTest, ACommandTakesTheSameWithAWindowAndWithout)
{
    openForCommand();
    EXPECT_EQ(snapFull(false), 0) << context.errors.constData();
    ASSERT_EQ(screenshots().size(), 1);
    expectWholeDisplay(*screenshots().first());
    delegate.reset();

    launchWithWindow();
    setAfterCapture(false);
    EXPECT_EQ(snapFull(true), 0) << context.errors.constData();
    EXPECT_EQ(screenshots().size(), 2);
}

TEST_F(CaptureWayTest, ACommandSaysWhatTheLibraryDidNotTake)
{
    openForCommand();
    const QString library = delegate->libraryDirectory();
    ASSERT_TRUE(QDir().rename(library, library + u'~'));
    EXPECT_EQ(snapFull(false), 2);
    EXPECT_TRUE(context.errors.startsWith("zelto: ")) << context.errors.constData();
    EXPECT_TRUE(screenshots().isEmpty());
    ASSERT_TRUE(QDir().rename(library + u'~', library));
    EXPECT_EQ(snapFull(false), 0);
}

TEST_F(CaptureWayTest, AfterACaptureZeltoComesForwardOnlyWhereThatIsWanted)
{
    launchWithWindow();
    for (const bool isOn : {false, true}) {
        expectAfterCapture(isOn, [this] {
            const qsizetype before = screenshots().size();
            press({QStringLiteral("key"), QStringLiteral("ctrl+super+3")});
            EXPECT_TRUE(waitFor([&] { return screenshots().size() > before; }));
        });
    }
}

class PageWayTest : public CaptureWayTest
{
protected:
    void SetUp() override
    {
        if (ChromiumBrowser::program().isEmpty()) {
            return skipWithout("chromium");
        }
        CaptureWayTest::SetUp();
        QFile file(page);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<!doctype html><title>A page</title><body style='margin:0;background:#fff'><div "
                   "style='width:200px;height:100px;background:#00c040'></div>");
    }
    // The file of the item that the command names.
    QString snapPage(bool isLayered, bool isForAnother)
    {
        const SnapWebRequest request{
            .url = QUrl::fromLocalFile(page).toString(), .width = 400, .layered = isLayered, .visible = false};
        const int status = run([&](CommandContext &asked) { return zqRunSnapWeb(request, asked); }, isForAnother);
        EXPECT_EQ(status, 0) << context.errors.constData();
        const QJsonArray items = QJsonDocument::fromJson(context.output).array();
        EXPECT_EQ(items.size(), 1) << context.output.constData();
        return items.at(0).toObject().value(QStringLiteral("itemPath")).toString();
    }

    const QString page = world.filePath(QStringLiteral("page.html"));
};

TEST_F(PageWayTest, ACommandHasItAsPictureAndAsLayersAndAgain)
{
    openForCommand();
    for (const qsizetype count : {1, 2}) {
        const QImage image = plain(QImage(snapPage(false, false), "PNG"));
        ASSERT_EQ(image.width(), 400);
        EXPECT_EQ(image.pixelColor(199, 99), QColor::fromRgb(green));
        EXPECT_EQ(image.pixelColor(200, 99), QColor(Qt::white));
        ASSERT_EQ(screenshots().size(), count);
    }
    EXPECT_EQ(screenshots().first()->title(), QStringLiteral("A page"));
    EXPECT_EQ(screenshots().first()->webPageURL(), QUrl::fromLocalFile(page).toString());
    QFile document(snapPage(true, false));
    EXPECT_TRUE(document.fileName().endsWith(QStringLiteral(".psd"))) << document.fileName().toStdString();
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    EXPECT_EQ(document.read(4), QByteArray("8BPS"));
    EXPECT_EQ(screenshots().size(), 3);
}

TEST_F(PageWayTest, AfterItZeltoComesForwardOnlyWhereThatIsWanted)
{
    launchWithWindow();
    for (const bool isOn : {false, true}) {
        expectAfterCapture(isOn, [this] { EXPECT_FALSE(snapPage(false, true).isEmpty()); });
    }
}

// The scale is the process's.
TEST(CaptureWayAtScaleTwoTest, TakesTheSamePixels)
{
    constexpr int farTooLong = 300000; // milliseconds
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(
        QCoreApplication::applicationFilePath(),
        {QString::fromLatin1(CaptureWayFixture::onThisDisplay),
         QStringLiteral("--gtest_filter=CaptureWayTest.AnArea*:CaptureWayTest.AWindow*:CaptureWayTest.TheWhole*")});
    ASSERT_TRUE(child.waitForFinished(farTooLong));
    const QByteArray said = child.readAll();
    EXPECT_EQ(child.exitCode(), 0) << said.constData();
    EXPECT_TRUE(said.contains("[  PASSED  ] 3 tests")) << said.constData();
}

} // namespace
