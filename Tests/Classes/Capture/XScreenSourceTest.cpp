#include "Classes/Capture/XScreenSource.h"
#include "Tests/Classes/Capture/XDesktop.h"

#include <QCoreApplication>
#include <QProcess>
#include <QScopeGuard>

#include <gtest/gtest.h>

#include <xcb/shape.h>

#include <algorithm>
#include <memory>

namespace {

const QColor red(0xff, 0, 0);
constexpr quint32 redPixel = 0xff0000;
constexpr quint32 greenPixel = 0x00ff00;

class XScreenSourceTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.hasWindowManager()) << "openbox is missing";
        source = std::make_unique<XScreenSource>(ZQXConnection::open());
    }
    void TearDown() override
    {
        for (const xcb_window_t window : shown) {
            desktop.destroy(window);
        }
    }
    xcb_window_t show(const XDesktop::Window &window)
    {
        shown.append(desktop.show(window));
        return shown.last();
    }
    std::optional<QVariantMap> listed(xcb_window_t window) const
    {
        for (const QVariantMap &each : source->onScreenWindows()) {
            if (each.value(QStringLiteral("kCGWindowNumber")).toUInt() == window) {
                return each;
            }
        }
        return std::nullopt;
    }
    QList<quint32> numbers() const
    {
        QList<quint32> all;
        for (const QVariantMap &each : source->onScreenWindows()) {
            all.append(each.value(QStringLiteral("kCGWindowNumber")).toUInt());
        }
        return all;
    }
    QRect bounds(xcb_window_t window) const
    {
        return source->windowDescription(window)
            .value_or(QVariantMap())
            .value(QStringLiteral("kCGWindowBounds"))
            .toRect();
    }
    QImage take(const std::function<void(ScreenSource::Taken)> &start)
    {
        bool isTaken = false;
        QImage picture;
        start([&](const QImage &image, const ZQError &problem) {
            isTaken = true;
            picture = image;
            error = problem;
        });
        EXPECT_TRUE(XDesktop::waitUntil([&isTaken] { return isTaken; }));
        return picture;
    }
    QImage takeWindow(xcb_window_t window)
    {
        return take([this, window](ScreenSource::Taken taken) { source->captureWindow(window, std::move(taken)); });
    }
    QImage takeRect(const QRect &rect)
    {
        return take([this, &rect](ScreenSource::Taken taken) { source->captureRect(rect, std::move(taken)); });
    }
    // Of the window's own part of a picture of all of it.
    static bool isWholly(const QImage &image, const QRect &inside, const QColor &colour)
    {
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            for (int x = inside.left(); x <= inside.right(); ++x) {
                if (!image.valid(x, y) || image.pixelColor(x, y) != colour) {
                    return false;
                }
            }
        }
        return true;
    }

    XDesktop desktop;
    std::unique_ptr<XScreenSource> source;
    QList<xcb_window_t> shown;
    ZQError error;
};

TEST_F(XScreenSourceTest, ListsWindowsFrontToBackWithTheirFrames)
{
    const QSize size(300, 200);
    const xcb_window_t back = show({QRect(QPoint(100, 100), size), redPixel, "Painter"});
    const xcb_window_t front = show({QRect(QPoint(200, 150), size), greenPixel});
    ASSERT_TRUE(XDesktop::waitUntil([&] { return numbers() == QList<quint32>{front, back}; }));
    const QVariantMap description = listed(back).value();
    EXPECT_EQ(description.value(QStringLiteral("kCGWindowOwnerName")), QStringLiteral("Painter"));
    EXPECT_EQ(description.value(QStringLiteral("kCGWindowName")), QStringLiteral("Tïtle"));
    EXPECT_EQ(description.value(QStringLiteral("kCGWindowLayer")), 0);
    EXPECT_EQ(source->windowDescription(back), description);
    const QRect frame = description.value(QStringLiteral("kCGWindowBounds")).toRect();
    EXPECT_GT(frame.height(), size.height() + 10); // its title
    EXPECT_GE(frame.width(), size.width());
}

TEST_F(XScreenSourceTest, TakesAWindowWithoutWhatCoversIt)
{
    const QSize size(300, 200);
    const xcb_window_t covered = show({QRect(QPoint(100, 100), size), redPixel});
    const xcb_window_t outside = show({QRect(QPoint(-100, 500), size), redPixel});
    show({{150, 120, 400, 300}, greenPixel});
    for (const xcb_window_t window : {covered, outside}) {
        ASSERT_TRUE(XDesktop::waitUntil([&] { return listed(window).has_value(); }));
        const QImage image = takeWindow(window);
        EXPECT_EQ(image.size(), bounds(window).size());
        EXPECT_TRUE(isWholly(image, {desktop.origin(window) - bounds(window).topLeft(), size}, red));
    }
    // On the screen it is covered.
    EXPECT_FALSE(isWholly(takeRect({desktop.origin(covered), size}), {QPoint(0, 0), size}, red));
}

TEST_F(XScreenSourceTest, KeepsWhatShowsThrough)
{
    const QRect rect(600, 500, 200, 100);
    const xcb_window_t half = show({rect, 0x80800000, "Glass", true, false});
    const QImage glass = takeWindow(half);
    EXPECT_EQ(glass.size(), rect.size());
    EXPECT_EQ(glass.pixelColor(100, 50), QColor(0xff, 0, 0, 0x80));

    const xcb_window_t round = show({rect.translated(0, -200), redPixel, "Round", false, false});
    const xcb_rectangle_t part{20, 10, 100, 50};
    xcb_shape_rectangles(desktop.connection().get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, round, 0, 0, 1, &part);
    xcb_flush(desktop.connection().get());
    ASSERT_TRUE(XDesktop::waitUntil([&] { return takeWindow(round).pixelColor(0, 0).alpha() == 0; }));
    const QImage shaped = takeWindow(round);
    EXPECT_TRUE(isWholly(shaped, QRect(20, 10, 100, 50), red));
    EXPECT_EQ(shaped.pixelColor(19, 10).alpha(), 0);
    EXPECT_EQ(shaped.pixelColor(120, 59).alpha(), 0);
}

TEST_F(XScreenSourceTest, CutsOffAShadowThatTheProgramDraws)
{
    const QRect rect(600, 200, 200, 150);
    const xcb_window_t window = show({rect, redPixel, "Shadowed", false, false});
    desktop.setNumbers(window, "_GTK_FRAME_EXTENTS", {10, 20, 5, 15}); // left, right, top, bottom
    EXPECT_EQ(bounds(window), rect.adjusted(10, 5, -20, -15));
    EXPECT_EQ(takeWindow(window).size(), QSize(170, 130));
    desktop.setNumbers(window, "_GTK_FRAME_EXTENTS", {0xffffffff, 0, 0, 0});
    EXPECT_EQ(bounds(window), rect); // nonsense moves nothing
}

TEST_F(XScreenSourceTest, TellsPanelsMenusAndTheDesktopFromWindows)
{
    const struct
    {
        QByteArray type;
        int least;
        int most;
    } cases[] = {
        {"_NET_WM_WINDOW_TYPE_DESKTOP", -100, -1},    {"_NET_WM_WINDOW_TYPE_DOCK", 20, 1000},
        {"_NET_WM_WINDOW_TYPE_POPUP_MENU", 20, 1000}, {"_NET_WM_WINDOW_TYPE_TOOLTIP", 20, 1000},
        {"_NET_WM_WINDOW_TYPE_DIALOG", 0, 19},        {"_NET_WM_WINDOW_TYPE_UTILITY", 0, 19},
    };
    for (const auto &each : cases) {
        const xcb_window_t window = show({{50, 50, 200, 150}, redPixel, "Program", false, true, each.type});
        ASSERT_TRUE(XDesktop::waitUntil([&] { return listed(window).has_value(); })) << each.type.constData();
        const int layer = listed(window)->value(QStringLiteral("kCGWindowLayer")).toInt();
        EXPECT_TRUE(layer >= each.least && layer <= each.most) << each.type.constData() << ' ' << layer;
    }
}

TEST_F(XScreenSourceTest, LeavesOutWhatCannotBeSeen)
{
    const xcb_window_t minimised = show({{100, 100, 200, 150}});
    const xcb_window_t helper = show({{0, 0, 20, 20}, redPixel, "Helper", false, false});
    ASSERT_TRUE(XDesktop::waitUntil([&] { return listed(minimised).has_value(); }));
    EXPECT_FALSE(listed(helper));
    desktop.minimise(minimised);
    EXPECT_TRUE(XDesktop::waitUntil([&] { return !listed(minimised) && !source->windowDescription(minimised); }));
}

TEST_F(XScreenSourceTest, SaysSoWhenAWindowIsGone)
{
    const xcb_window_t window = show({{100, 100, 300, 200}});
    const xcb_window_t cover = show({{100, 100, 300, 200}, greenPixel});
    ASSERT_TRUE(XDesktop::waitUntil([&] { return listed(cover).has_value(); }));
    const QImage image = take([&](ScreenSource::Taken taken) {
        source->captureWindow(window, std::move(taken)); // waits for what it covered
        desktop.destroy(window);
    });
    EXPECT_TRUE(image.isNull());
    EXPECT_FALSE(error.isNull());
    EXPECT_TRUE(takeWindow(window).isNull());
    EXPECT_FALSE(error.isNull());
    EXPECT_FALSE(takeRect({0, 0, 10, 10}).isNull()); // and the display still answers
}

// Two screens side by side, the second lower, with a hole above it.
TEST_F(XScreenSourceTest, TakesAreasOverSeveralScreens)
{
    const QRect frames[] = {{0, 0, 800, 900}, {800, 100, 600, 700}};
    const auto xrandr = [](const QStringList &arguments) {
        return QProcess::execute(QStringLiteral("xrandr"), arguments) == 0;
    };
    const auto restored = qScopeGuard([&xrandr] {
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("LEFT")});
        xrandr({QStringLiteral("--delmonitor"), QStringLiteral("RIGHT")});
    });
    // The first takes the place of the display's own.
    ASSERT_TRUE(xrandr({QStringLiteral("--setmonitor"), QStringLiteral("LEFT"), QStringLiteral("800/200x900/200+0+0"),
                        QStringLiteral("screen")}));
    ASSERT_TRUE(xrandr({QStringLiteral("--setmonitor"), QStringLiteral("RIGHT"),
                        QStringLiteral("600/200x700/200+800+100"), QStringLiteral("none")}));
    const QList<ScreenInfo> all = source->screens();
    show({{750, 50, 200, 150}, redPixel, "Over", false, false});
    const QImage image = takeRect({750, 50, 200, 150});
    const QImage whole = take([this](ScreenSource::Taken taken) { source->captureAllScreens(std::move(taken)); });
    takeRect({2000, 0, 10, 10});
    const bool isRefused = !error.isNull();

    const auto isThere = [&all](const QRect &frame) {
        return std::any_of(all.begin(), all.end(),
                           [&frame](const ScreenInfo &screen) { return screen.pixelFrame == frame; });
    };
    ASSERT_TRUE(isThere(frames[0]) && isThere(frames[1]));
    EXPECT_EQ(image.size(), QSize(200, 150));
    EXPECT_EQ(image.pixelColor(49, 0), red);
    EXPECT_EQ(image.pixelColor(50, 49).alpha(), 0); // the hole
    EXPECT_EQ(image.pixelColor(50, 50), red);
    EXPECT_EQ(whole.size(), QSize(1400, 900));
    EXPECT_TRUE(isRefused);
}

TEST_F(XScreenSourceTest, KnowsTheScaleOfTheToolkit)
{
    const struct
    {
        const char *factor;
        const char *expected;
    } cases[] = {{"1", "0,0 1400x900 of 1400x900 at 1"},
                 {"1.5", "0,0 933x600 of 1400x900 at 1.5"},
                 {"2", "0,0 700x450 of 1400x900 at 2"}};
    for (const auto &each : cases) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(each.factor));
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--print-screens")});
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.readAllStandardOutput().trimmed().toStdString(), each.expected);
    }
}

} // namespace
