// Captures as a person takes them, over a desktop whose pixels tell where they are.

#include "Classes/Interface/Capture/CaptureEffects.h"
#include "Classes/Interface/Capture/ZQScreenshotViewController.h"
#include "Tests/Classes/Interface/FakeScreenSource.h"

#include <QCoreApplication>
#include <QWidget>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

class FakeEffects : public CaptureEffects
{
public:
    explicit FakeEffects(QStringList &told) : m_told(told) {}
    void playSound() override { m_told.append(QStringLiteral("sound")); }
    void flash(const QList<QRect> &frames) override
    {
        m_told.append(QStringLiteral("flash"));
        flashed = frames;
    }
    bool endFlash() override { return isFlashing; }
    QList<QRect> flashed;
    bool isFlashing = false;

private:
    QStringList &m_told;
};

class ScreenshotTest : public testing::Test, public ScreenshotSessionDelegate
{
protected:
    void TearDown() override
    {
        session.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void begin(ScreenshotSession::Kind kind)
    {
        session = std::make_unique<ZQScreenshotViewController>(source, *this, effects);
        session->begin(kind);
    }
    void beginArea()
    {
        begin(ScreenshotSession::Kind::Area);
        ASSERT_EQ(session->views().size(), std::size_t(source.list.size()));
    }
    void beginWindow() { begin(ScreenshotSession::Kind::Window); }
    ZQScreenshotAreaView &area(std::size_t index = 0)
    {
        return static_cast<ZQScreenshotAreaView &>(*session->views().at(index));
    }
    ScreenshotView &view(std::size_t index = 0) { return *session->views().at(index); }
    static void drag(QWidget &widget, const QPoint &from, const QPoint &to)
    {
        QTest::mouseMove(&widget, from);
        QTest::mousePress(&widget, Qt::LeftButton, {}, from);
        QTest::mouseMove(&widget, (from + to) / 2);
        QTest::mouseMove(&widget, to);
        QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
    }
    static void press(QWidget &widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&widget, key, modifiers);
    }
    bool isTaken(const QRect &pixels) const { return taken.size() == 1 && hasPixels(taken[0], pixels); }
    static bool hasPixels(const QImage &image, const QRect &pixels)
    {
        QImage plain = image.convertToFormat(QImage::Format_RGB32);
        plain.setDevicePixelRatio(1);
        return plain == FakeScreenSource::drawn(pixels);
    }

    void screenshotViewController(ScreenshotSession &, const QImage &didTakeScreenshotImage) override
    {
        take(didTakeScreenshotImage, QStringLiteral("Screenshot"));
    }
    void screenshotViewController(ScreenshotSession &, const QImage &didTakeScreenshotImage,
                                  const QString &imageName) override
    {
        take(didTakeScreenshotImage, imageName);
    }
    void screenshotViewControllerDidEnd(ScreenshotSession &, const ZQError &error) override
    {
        told.append(error.isNull() ? QStringLiteral("left") : error.localizedDescription());
        session.reset(); // as who holds it may
    }
    void take(const QImage &image, const QString &name)
    {
        told.append(name);
        taken.append(image);
        session.reset();
    }

    FakeScreenSource source;
    QStringList told;
    FakeEffects effects{told};
    QList<QImage> taken;
    std::unique_ptr<ZQScreenshotViewController> session;
};

} // namespace

TEST_F(ScreenshotTest, AnAreaIsThePixelsFromWhereTheDragBeganToWhereItEnded)
{
    struct
    {
        double scale;
        QPoint from, to; // points
        QRect pixels;
    } const cases[] = {
        {1, {20, 30}, {79, 49}, {20, 30, 60, 20}},       {1, {79, 49}, {20, 30}, {20, 30, 60, 20}},
        {2, {20, 30}, {79, 49}, {40, 60, 119, 39}},      {1.5, {20, 30}, {101, 51}, {30, 45, 122, 32}},
        {1, {350, 250}, {399, 299}, {350, 250, 50, 50}}, // to the last pixel
        {1, {350, 250}, {600, 900}, {350, 250, 50, 50}}, // and not beyond
    };
    for (const auto &each : cases) {
        source = FakeScreenSource(QSize(int(400 * each.scale), int(300 * each.scale)), each.scale);
        told.clear();
        taken.clear();
        beginArea();
        drag(area(), each.from, each.to);
        EXPECT_EQ(area().selection(), each.pixels);
        press(area(), Qt::Key_Return);
        EXPECT_TRUE(isTaken(each.pixels)) << each.scale;
        EXPECT_EQ(taken.value(0).devicePixelRatio(), each.scale);
        EXPECT_EQ(told.join(u' '), QStringLiteral("sound flash Screenshot"));
    }
}

TEST_F(ScreenshotTest, AForgottenChoiceEndsByItself)
{
    for (const auto kind : {ScreenshotSession::Kind::Area, ScreenshotSession::Kind::Window}) {
        told.clear();
        session = std::make_unique<ZQScreenshotViewController>(source, *this, effects);
        session->setIdleLimit(std::chrono::milliseconds(1));
        session->begin(kind);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !told.isEmpty(); }));
        EXPECT_EQ(told.join(u' '), QStringLiteral("left"));
        EXPECT_FALSE(session);
        EXPECT_FALSE(QWidget::keyboardGrabber());
    }
}

TEST_F(ScreenshotTest, HandlesResizeFromTheOppositeSideAndNeverToNothing)
{
    constexpr QRect start(100, 100, 100, 60); // to 199, 159
    struct
    {
        QPoint from, to;
        QRect expected;
    } const cases[] = {
        {{200, 130}, {220, 190}, {100, 100, 120, 60}}, // the right edge ignores up and down
        {{100, 130}, {80, 0}, {80, 100, 120, 60}},     // left
        {{150, 100}, {0, 90}, {100, 90, 100, 70}},     // top
        {{150, 160}, {0, 170}, {100, 100, 100, 70}},   // bottom
        {{200, 160}, {210, 180}, {100, 100, 110, 80}}, // a corner
        {{100, 100}, {110, 90}, {110, 90, 90, 70}},    // the opposite one
        {{200, 130}, {101, 130}, {100, 100, 1, 60}},   // as narrow as it gets
        {{200, 130}, {61, 130}, {60, 100, 41, 60}},    // and over to the other side
        {{150, 130}, {170, 100}, {120, 70, 100, 60}},  // moved
        {{150, 130}, {-90, -90}, {0, 0, 100, 60}},     // as far as there is a screen
        {{150, 130}, {399, 299}, {300, 240, 100, 60}}, // on each side
        {{10, 10}, {59, 39}, {10, 10, 50, 30}},        // drawn anew
        {{10, 10}, {11, 10}, start},                   // a click draws nothing
    };
    for (const auto &each : cases) {
        beginArea();
        drag(area(), start.topLeft(), start.bottomRight());
        ASSERT_EQ(area().selection(), start);
        drag(area(), each.from, each.to);
        EXPECT_EQ(area().selection(), each.expected) << each.from.x() << ' ' << each.from.y();
        session->cancel();
    }
}

TEST_F(ScreenshotTest, ArrowKeysMoveByAPointAndByTen)
{
    for (const int scale : {1, 2}) {
        source = FakeScreenSource(QSize(400, 300) * scale, scale);
        beginArea();
        press(area(), Qt::Key_Left);
        const QRect middle(100 * scale, 75 * scale, 200 * scale, 150 * scale);
        EXPECT_EQ(area().selection(), middle) << "who has no mouse begins there";
        press(area(), Qt::Key_Right);
        press(area(), Qt::Key_Down, Qt::ShiftModifier);
        EXPECT_EQ(area().selection(), middle.translated(scale, 10 * scale));
        press(area(), Qt::Key_Left, Qt::ShiftModifier);
        press(area(), Qt::Key_Up);
        EXPECT_EQ(area().selection(), middle.translated(-9 * scale, 9 * scale));
        press(area(), Qt::Key_Right, Qt::ControlModifier);
        press(area(), Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(area().selection().size(), QSize(201, 140) * scale);
        for (int i = 0; i < 60; ++i) {
            press(area(), Qt::Key_Down, Qt::ShiftModifier);
            press(area(), Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
        }
        EXPECT_EQ(area().selection().bottom(), 300 * scale - 1);
        EXPECT_EQ(area().selection().width(), 1);
        EXPECT_TRUE(area().accessibleName().startsWith(QStringLiteral("1 × %1 pixels").arg(140 * scale)));
        session->cancel();
    }
}

TEST_F(ScreenshotTest, OnlyReturnAndEnterConfirmAndOnlyWhatIsSelected)
{
    beginArea();
    press(area(), Qt::Key_Return);
    EXPECT_TRUE(session) << "nothing is selected";
    drag(area(), {20, 30}, {79, 49});
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_A, Qt::Key_Backspace, Qt::Key_F5}) {
        press(area(), key);
        EXPECT_TRUE(session);
    }
    EXPECT_TRUE(told.isEmpty());
    press(area(), Qt::Key_Enter);
    EXPECT_TRUE(isTaken({20, 30, 60, 20}));

    beginArea();
    drag(area(), {20, 30}, {79, 49});
    QTest::mouseDClick(&area(), Qt::LeftButton, {}, {200, 200});
    ASSERT_TRUE(session) << "beside it";
    QTest::mouseDClick(&area(), Qt::LeftButton, {}, {50, 40});
    EXPECT_FALSE(session);
    EXPECT_EQ(taken.size(), 2);
}

TEST_F(ScreenshotTest, ItIsLeftByEscAndTheRightButtonAndTellsSoOnce)
{
    const std::function<void()> ways[] = {
        [this] { press(view(), Qt::Key_Escape); },
        [this] {
            QTest::mouseClick(&view(), Qt::RightButton, {}, {10, 10});
        },
        [this] { session->cancel(); },
    };
    for (const auto kind : {ScreenshotSession::Kind::Area, ScreenshotSession::Kind::Window}) {
        for (const auto &leave : ways) {
            told.clear();
            begin(kind);
            QWidget *const mask = &view();
            leave();
            EXPECT_EQ(told.join(u' '), QStringLiteral("left"));
            EXPECT_FALSE(mask->isVisible());
            QTest::keyClick(mask, Qt::Key_Escape); // that was under way
            QTest::keyClick(mask, Qt::Key_Return);
            EXPECT_EQ(told.size(), 1);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    EXPECT_TRUE(taken.isEmpty());
}

TEST_F(ScreenshotTest, EachScreenHasItsViewAndOneOfThemTheSelection)
{
    source.addScreen({400, 50, 640, 480}, 2);
    beginArea();
    EXPECT_EQ(view(0).geometry(), QRect(0, 0, 400, 300));
    EXPECT_EQ(view(1).geometry(), QRect(400, 50, 320, 240));
    EXPECT_EQ(view(1).parentWidget(), &view(0)) << "so that what is modal lets both be used";
    drag(area(0), {10, 10}, {59, 59});
    drag(area(1), {10, 20}, {109, 69});
    EXPECT_TRUE(area(0).selection().isEmpty());
    EXPECT_EQ(QWidget::keyboardGrabber(), &area(1));
    QTest::mouseMove(&area(0), {20, 20});
    EXPECT_EQ(QWidget::keyboardGrabber(), &area(1)) << "the arrows go on moving what is selected";
    press(area(1), Qt::Key_Return);
    EXPECT_TRUE(isTaken({420, 90, 199, 99}));
    EXPECT_EQ(effects.flashed, QList<QRect>({QRect(410, 70, 100, 50)}));
    EXPECT_FALSE(QWidget::keyboardGrabber());
}

TEST_F(ScreenshotTest, WhatIsSelectedIsBrightAndTheMagnifierShowsPixels)
{
    beginArea();
    drag(area(), {20, 30}, {119, 89});
    const QPoint pointer(200, 100);
    QTest::mouseMove(&area(), pointer);
    const QImage drawn = area().grab().toImage();
    EXPECT_EQ(drawn.pixel(100, 35), FakeScreenSource::pixelAt(100, 35));
    const QRgb beside = FakeScreenSource::pixelAt(350, 20);
    EXPECT_NEAR(qRed(drawn.pixel(350, 20)), qRed(beside) / 2, 1);
    const QPoint middle = pointer + QPoint(84, 84);
    for (const QPoint &pixel : {QPoint(0, 0), QPoint(3, 2), QPoint(-4, 3), QPoint(-2, -5)}) {
        const QPoint place = pointer + pixel;
        EXPECT_EQ(drawn.pixel(middle + 8 * pixel), FakeScreenSource::pixelAt(place.x(), place.y())) << pixel.x();
    }
    QTest::mouseMove(&area(), QPoint(70, 50));
    EXPECT_NE(area().grab().toImage().pixel(QPoint(70, 50) + QPoint(84, 84)), FakeScreenSource::pixelAt(70, 50))
        << "it would lie over what is moved";
}

TEST_F(ScreenshotTest, TheHintStaysReadableWhereverTheMagnifierIs)
{
    struct : ZQScreenshotAreaViewDelegate
    {
        void screenshotAreaView(ZQScreenshotAreaView &, const QRectF &) override {}
        void screenshotAreaViewDidBegin(ZQScreenshotAreaView &) override {}
    } nobody;
    FrozenScreen screen;
    screen.info.frame = screen.info.pixelFrame = {0, 0, 800, 600};
    screen.image = QImage(screen.info.frame.size(), QImage::Format_RGB32);
    screen.image.fill(Qt::white); // whatever lies there is seen
    ZQScreenshotAreaView one(screen, nobody);
    one.left = one.entered = [] {};
    one.resize(screen.info.frame.size());
    one.show();
    const auto drawn = [&one] { return one.grab().toImage().convertToFormat(QImage::Format_RGB32); };
    const QImage before = drawn();
    QRect hint;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            hint = before.pixel(x, y) == before.pixel(0, 0) ? hint : hint.united({x, y, 1, 1});
        }
    }
    ASSERT_TRUE(hint.width() > 100 && hint.top() > 400) << "it stands below";
    const int over = hint.top() - 120; // from there the magnifier reaches down into it
    for (const QPoint &pointer : {QPoint(20, 20), hint.center(), QPoint(hint.left() - 60, over),
                                  QPoint(hint.center().x(), over), hint.bottomRight()}) {
        QTest::mouseMove(&one, pointer);
        const QImage now = drawn();
        int places = 0;
        for (int y = 0; y + hint.height() <= now.height(); ++y) {
            places += now.copy(QRect(QPoint(hint.left(), y), hint.size())) == before.copy(hint) ? 1 : 0;
        }
        EXPECT_EQ(places, 1) << pointer.x() << ' ' << pointer.y();
    }
}

TEST_F(ScreenshotTest, TheFirstWindowAtThePointerIsTaken)
{
    source.addWindow(7, 25, {0, 0, 400, 20}, QStringLiteral("panel"));
    source.addWindow(1, 0, {50, 50, 100, 100}, QStringLiteral("Front"));
    source.addWindow(2, 3, {50, 50, 200, 200}, QStringLiteral("Middle"));
    source.addWindow(3, 0, {60, 60, 50, 50}, QStringLiteral("Covered"));
    source.addWindow(4, 19, {300, 50, 20, 20});
    source.addWindow(5, 20, {340, 50, 20, 20}, QStringLiteral("Menu"));
    source.addWindow(6, -1, {0, 0, 400, 300}, QStringLiteral("Desktop"));
    struct
    {
        QPoint at;
        const char *told; // empty: nothing is there to be taken
        QRect pixels;
    } const cases[] = {
        {{60, 60}, "sound flash Front", {50, 50, 100, 100}},
        {{200, 200}, "sound flash Middle", {50, 50, 200, 200}},
        {{310, 60}, "sound flash Screenshot", {300, 50, 20, 20}},
        {{350, 60}, "", {}},
        {{100, 10}, "", {}},
    };
    for (const auto &each : cases) {
        for (const bool byKey : {false, true}) {
            told.clear();
            taken.clear();
            beginWindow();
            QTest::mouseMove(&view(), each.at);
            byKey ? press(view(), Qt::Key_Return) : QTest::mouseClick(&view(), Qt::LeftButton, {}, each.at);
            if (*each.told != '\0') {
                ASSERT_TRUE(QTest::qWaitFor([this] { return !session; }));
                EXPECT_TRUE(isTaken(each.pixels));
            } else {
                ASSERT_TRUE(session);
                EXPECT_TRUE(view().isVisible());
                session.reset();
            }
            EXPECT_EQ(told.join(u' '), QLatin1StringView(each.told));
        }
    }
    EXPECT_EQ(source.windowLists, 10) << "once each time";
}

TEST_F(ScreenshotTest, KeysReachWindowsThatOthersCover)
{
    source.addScreen({400, 0, 400, 300});
    source.addWindow(1, 0, {50, 50, 100, 100}, QStringLiteral("Front"));
    source.addWindow(2, 30, {0, 0, 400, 300}, QStringLiteral("panel"));
    source.addWindow(3, 0, {60, 60, 50, 50}, QStringLiteral("Covered"));
    source.addWindow(4, 0, {350, 60, 100, 50}, QStringLiteral("On both"));
    const auto takenBy = [this](const QList<Qt::Key> &keys) {
        taken.clear();
        beginWindow();
        for (const Qt::Key key : keys) {
            QTest::keyClick(&view(), key);
        }
        press(view(1), Qt::Key_Return);
        const bool isPicked = session->views().empty();
        return isPicked && QTest::qWaitFor([this] { return !session; }) ? told.last() : QString();
    };
    EXPECT_EQ(takenBy({}), QString());
    session.reset();
    EXPECT_EQ(takenBy({Qt::Key_Tab}), QStringLiteral("Front"));
    EXPECT_EQ(takenBy({Qt::Key_Tab, Qt::Key_Down}), QStringLiteral("Covered"));
    EXPECT_TRUE(isTaken({60, 60, 50, 50}));
    EXPECT_EQ(takenBy({Qt::Key_Backtab}), QStringLiteral("On both"));
    EXPECT_EQ(effects.flashed, QList<QRect>({{350, 60, 50, 50}, {400, 60, 50, 50}}));
    EXPECT_EQ(takenBy({Qt::Key_Tab, Qt::Key_Left}), QStringLiteral("On both"));
}

TEST_F(ScreenshotTest, AWindowThatWentMeanwhileIsAnError)
{
    source.addWindow(1, 0, {50, 50, 100, 100}, QStringLiteral("Front"));
    source.error = ZQError::with(QStringLiteral("test"), 1, QStringLiteral("it is gone"));
    beginWindow();
    press(view(), Qt::Key_Tab);
    source.windows.clear();
    press(view(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !session; }));
    EXPECT_EQ(told.join(u' '), QStringLiteral("it is gone"));
}

TEST_F(ScreenshotTest, WholeScreensAreTakenBetweenSoundAndFlash)
{
    source.addScreen({400, 0, 200, 400});
    source.isLate = true;
    begin(ScreenshotSession::Kind::FullScreen);
    EXPECT_EQ(told.join(u' '), QStringLiteral("sound"));
    source.answerNow();
    EXPECT_EQ(told.join(u' '), QStringLiteral("sound flash Screenshot"));
    EXPECT_TRUE(isTaken({0, 0, 600, 400}));
    EXPECT_EQ(effects.flashed.size(), 2);

    effects.isFlashing = true;
    begin(ScreenshotSession::Kind::FullScreen);
    EXPECT_EQ(told.size(), 3) << "the flash of the one before is not in its picture";
    EXPECT_TRUE(QTest::qWaitFor([this] { return told.size() == 4; }));
    session->cancel();
    source.answerNow();
    EXPECT_EQ(told.last(), QStringLiteral("left")) << "and nothing after it";
    EXPECT_EQ(taken.size(), 1);
}

TEST_F(ScreenshotTest, WhereNothingIsSeenTheDesktopLetsChoose)
{
    source.canSee = false;
    for (const auto kind : {ScreenshotSession::Kind::Area, ScreenshotSession::Kind::Window}) {
        told.clear();
        source.interactive = FakeScreenSource::drawn({5, 6, 7, 8});
        source.error = {};
        begin(kind);
        EXPECT_EQ(told.join(u' '), QStringLiteral("Screenshot"));
        source.interactive = {};
        begin(kind);
        EXPECT_EQ(told.last(), QStringLiteral("left")) << "the person did";
        source.error = ZQError::with(QStringLiteral("test"), 1, QStringLiteral("install a portal"));
        begin(kind);
        EXPECT_EQ(told.last(), QStringLiteral("install a portal"));
    }
    source.canSee = true;
    source.list.clear();
    begin(ScreenshotSession::Kind::Area);
    EXPECT_EQ(told.last(), QStringLiteral("There is no screen that could be captured"));
}
