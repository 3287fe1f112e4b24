// The small controls: where they are hit, what they tell, what they draw.

#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Kit/Widgets/ZQTabStrip.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QFontMetrics>
#include <QGraphicsEffect>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

QColor pixelOf(QWidget &widget, const QPoint &point)
{
    return widget.grab().toImage().pixelColor(point);
}

// A strip on a window, so that it has the focus, with the signals it sends as text: "current 1", "moved 0 2".
class Strip : public testing::Test
{
protected:
    Strip()
    {
        ZQTheme::current().setDark(true);
        window.resize(900, 60);
        strip.resize(800, 36);
        QObject::connect(&strip, &ZQTabStrip::currentChanged, [this](int i) { tell("current %1", i); });
        QObject::connect(&strip, &ZQTabStrip::closeRequested, [this](int i) { tell("close %1", i); });
        QObject::connect(&strip, &ZQTabStrip::newRequested, [this] { told.append(QStringLiteral("new")); });
        QObject::connect(&strip, &ZQTabStrip::moved,
                         [this](int from, int to) { told.append(QStringLiteral("moved %1 %2").arg(from).arg(to)); });
        window.show();
    }
    void tell(const char *form, int index) { told.append(QString::fromLatin1(form).arg(index)); }
    QString take() { return std::exchange(told, {}).join(u','); }
    // "0 1+": which tab, "x" its close mark, "+" the button for a new one, by clicking every fourth pixel.
    QString hits(Qt::MouseButton button = Qt::LeftButton)
    {
        told.clear();
        for (int x = 2; x < 800; x += 4) {
            click(button, {x, 18});
        }
        return take();
    }
    // Where a person's click arrives.
    void click(Qt::MouseButton button, const QPoint &point)
    {
        QWidget *child = strip.childAt(point);
        if (auto *opener = qobject_cast<QToolButton *>(child); !opener || !opener->menu()) {
            QTest::mouseClick(child ? child : &strip, button, {}, child ? child->mapFrom(&strip, point) : point);
        }
    }
    int natural(const QString &title, int more) const
    {
        return QFontMetrics(ZQTheme::current().font()).horizontalAdvance(title) + more;
    }

    QWidget window;
    ZQTabStrip strip{&window};
    QStringList told;
};

} // namespace

TEST_F(Strip, TabsAreAsWideAsTheirTitlesUntilTheRoomEnds)
{
    EXPECT_EQ(strip.sizeHint(), QSize(30, 36)) << "the button alone";
    EXPECT_EQ(strip.height(), 36);
    const QString longTitle(80, u'w');
    struct Case
    {
        int width;
        QStringList titles;
        QList<int> widths;
    };
    for (const Case &each : {Case{800, {QStringLiteral("Alpha")}, {natural(QStringLiteral("Alpha"), 26)}},
                             {800,
                              {QStringLiteral("Alpha"), QStringLiteral("B")},
                              {natural(QStringLiteral("Alpha"), 44), std::max(48, natural(QStringLiteral("B"), 44))}},
                             {800, {longTitle}, {200}},
                             {800, {longTitle, longTitle, longTitle, longTitle, longTitle}, {150, 150, 150, 150, 150}},
                             {100, {longTitle, longTitle}, {200, 200}}, // not laid out yet
                             {180, {longTitle, longTitle}, {108}},
                             {200, {longTitle, longTitle}, {78, 78}},
                             {201, QStringList(8, longTitle), {129}}, // and seven in the menu
                             {199, {QStringLiteral("A")}, {std::max(48, natural(QStringLiteral("A"), 26))}},
                             {800, {QString()}, {48}}}) {
        strip.resize(each.width, 36);
        strip.setTabs(each.titles, 0);
        int width = 0;
        for (const int tab : each.widths) {
            width += tab + 2;
        }
        EXPECT_EQ(strip.sizeHint().width(), width + 4 + 26) << each.width << " " << each.titles.size();
    }
}

TEST_F(Strip, ThePointerChoosesClosesOpensAndMoves)
{
    strip.setTabs({QStringLiteral("One"), QStringLiteral("Another"), QStringLiteral("Third")}, 1);
    EXPECT_EQ(strip.accessibleDescription(), QStringLiteral("Another"));
    const int first = std::max(48, natural(QStringLiteral("One"), 44));
    const int second = natural(QStringLiteral("Another"), 44);
    const int third = natural(QStringLiteral("Third"), 44);
    const QPoint onFirst(5, 10);
    const QPoint onSecond(first + 2 + 5, 10);
    const QPoint onThird(first + 2 + second + 2 + 5, 10);
    const int end = first + second + third + 6;
    struct Click
    {
        const char *what;
        Qt::MouseButton button;
        QPoint point;
        const char *told;
    };
    for (const Click &each : {Click{"another tab", Qt::LeftButton, onFirst, "current 0"},
                              {"its first column", Qt::LeftButton, {0, 1}, "current 0"},
                              {"its last one", Qt::LeftButton, {first - 1, 35}, "current 0"},
                              {"between two", Qt::LeftButton, {first, 10}, ""},
                              {"beside it", Qt::LeftButton, {first + 1, 10}, ""},
                              {"the current one", Qt::LeftButton, onSecond, ""},
                              {"with the right button", Qt::RightButton, onFirst, ""},
                              {"with the middle one", Qt::MiddleButton, onThird, "close 2"},
                              {"the middle one on nothing", Qt::MiddleButton, {end + 60, 10}, ""},
                              {"the close mark", Qt::LeftButton, {first - 15, 18}, "close 0"},
                              {"its left border", Qt::LeftButton, {first - 1 - 22, 10}, "close 0"},
                              {"left of it", Qt::LeftButton, {first - 1 - 23, 10}, "current 0"},
                              {"its right border", Qt::LeftButton, {first - 1 - 7, 25}, "close 0"},
                              {"right of it", Qt::LeftButton, {first - 1 - 6, 10}, "current 0"},
                              {"above it", Qt::LeftButton, {first - 15, 9}, "current 0"},
                              {"below it", Qt::LeftButton, {first - 15, 26}, "current 0"},
                              {"the button", Qt::LeftButton, {end + 4, 5}, "new"},
                              {"its end", Qt::LeftButton, {end + 29, 30}, "new"},
                              {"before the button", Qt::LeftButton, {end + 3, 10}, ""},
                              {"behind it", Qt::LeftButton, {end + 30, 10}, ""},
                              {"above the button", Qt::LeftButton, {end + 10, 4}, ""},
                              {"below the button", Qt::LeftButton, {end + 10, 31}, ""}}) {
        click(each.button, each.point);
        EXPECT_EQ(take(), QLatin1StringView(each.told)) << each.what;
    }
    const auto move = [this](const QPoint &to) {
        QMouseEvent event(QEvent::MouseMove, to, strip.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&strip, &event);
    };
    QTest::mousePress(&strip, Qt::LeftButton, {}, {first + 2 + 1, 10});
    move({first - 9, 10});
    EXPECT_EQ(take(), QString()) << "twelve pixels are no drag";
    move({first - 10, 10});
    EXPECT_EQ(take(), QStringLiteral("moved 1 0"));
    move({first + 2, 10});
    EXPECT_EQ(take(), QString()) << "twelve pixels from where it moved";
    move({first + 2 + 1, 10});
    EXPECT_EQ(take(), QStringLiteral("moved 0 1")) << "and not from where it was taken";
    move({end + 100, 10});
    move(onThird);
    EXPECT_EQ(take(), QStringLiteral("moved 1 2")) << "it goes on from where it is";
    move({onThird.x() + 3, 10});
    QTest::mouseRelease(&strip, Qt::LeftButton, {}, onThird);
    move(onFirst);
    EXPECT_EQ(take(), QString());

    strip.setTabs({QStringLiteral("One")}, 0);
    const QStringList all = hits().split(u',');
    EXPECT_EQ(all.count(QStringLiteral("new")), all.size()) << "the last one stays";
    EXPECT_EQ(hits(Qt::MiddleButton), QString());
}

TEST_F(Strip, FromRightToLeftItIsTheOtherWayRound)
{
    for (const qsizetype count : {3, 30}) { // with and without the menu of all
        strip.setLayoutDirection(Qt::LeftToRight);
        strip.setTabs(QStringList(count, QStringLiteral("Another")), 1);
        const auto hitsAndPlaces = [&](bool isMirrored) {
            QStringList result;
            const auto place = [&](const QRect &rect) {
                const int left =
                    isMirrored && rect.isValid() ? strip.width() - rect.left() - rect.width() : rect.left();
                result.append(QStringLiteral("%1 %2").arg(left).arg(rect.width()));
            };
            for (int x = 0; x < strip.width(); x += 3) {
                click(Qt::LeftButton, {isMirrored ? strip.width() - 1 - x : x, 18});
                result.append(take());
            }
            for (int i = 0; i < strip.count(); ++i) {
                place(strip.accessiblePart(i).place);
            }
            for (const auto *button : strip.findChildren<QToolButton *>()) {
                place(button->geometry());
            }
            return result.join(u'|').toStdString();
        };
        const std::string usual = hitsAndPlaces(false);
        strip.setLayoutDirection(Qt::RightToLeft);
        EXPECT_EQ(hitsAndPlaces(true), usual) << count;
    }
    strip.setFocus();
    QTest::keyClick(&strip, Qt::Key_Left);
    QTest::keyClick(&strip, Qt::Key_Right);
    EXPECT_EQ(take(), QStringLiteral("current 2,current 0"));
}

TEST_F(Strip, KeysGoToTheNeighboursAndClose)
{
    strip.setTabs({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")}, 1);
    EXPECT_TRUE(strip.focusPolicy() & Qt::TabFocus);
    struct Case
    {
        int current;
        Qt::Key key;
        const char *told;
    };
    for (const Case &each : {Case{1, Qt::Key_Left, "current 0"},
                             {1, Qt::Key_Right, "current 2"},
                             {0, Qt::Key_Left, ""},
                             {2, Qt::Key_Right, ""},
                             {1, Qt::Key_Up, ""},
                             {1, Qt::Key_Delete, "close 1"}}) {
        strip.setTabs({QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")}, each.current);
        QKeyEvent event(QEvent::KeyPress, each.key, {});
        QApplication::sendEvent(&strip, &event);
        EXPECT_EQ(take(), QLatin1StringView(each.told)) << int(each.key);
        EXPECT_EQ(event.isAccepted(), each.told[0] != 0);
    }
    strip.setTabs({QStringLiteral("One")}, 0);
    QTest::keyClick(&strip, Qt::Key_Delete);
    EXPECT_EQ(take(), QString());
}

TEST_F(Strip, TheCurrentAndTheOneUnderThePointerStandOut)
{
    strip.setTabs({QStringLiteral("One"), QStringLiteral("Two")}, 0);
    const int first = std::max(48, natural(QStringLiteral("One"), 44));
    const QPoint inSecond(first + 2 + 5, 30);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    strip.clearFocus();
    const QColor ground = pixelOf(strip, inSecond);
    EXPECT_EQ(pixelOf(strip, {5, 30}), zqColor(ZQColorRole::Ground));
    const QImage before = strip.grab().toImage();
    QTest::mouseMove(&strip, inSecond);
    EXPECT_EQ(pixelOf(strip, inSecond), zqColor(ZQColorRole::Hover));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&strip, &leave);
    EXPECT_EQ(pixelOf(strip, inSecond), ground);
    EXPECT_EQ(pixelOf(strip, {0, 30}), zqColor(ZQColorRole::Border));
    strip.setFocus();
    EXPECT_EQ(pixelOf(strip, {0, 30}), zqColor(ZQColorRole::Accent));
    strip.clearFocus();
    // Marks only where there is something to close.
    const auto inked = [this](const QRect &rect) {
        const QImage image = strip.grab().toImage();
        QSet<QRgb> colors;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                colors.insert(image.pixel(x, y));
            }
        }
        return colors.size() > 1;
    };
    EXPECT_TRUE(inked({first - 20, 13, 10, 10}));
    EXPECT_TRUE(inked({12, 8, 20, 20})) << "its title";
    strip.setTabs({QString(80, u'w'), QStringLiteral("Two")}, 0); // 200 wide
    EXPECT_TRUE(inked({150, 8, 10, 20}));
    EXPECT_FALSE(inked({175, 8, 4, 20})) << "a long title ends before the mark";
    strip.setTabs({QStringLiteral("mmmmmmmmmmmm")}, 0);
    const int only = natural(QStringLiteral("mmmmmmmmmmmm"), 26);
    EXPECT_TRUE(inked({only - 25, 8, 14, 20})) << "the title goes on where no mark is";
    EXPECT_TRUE(inked({only + 2 + 4 + 8, 13, 10, 10})) << "the button";
    EXPECT_EQ(strip.grab().toImage().size(), before.size());
}

TEST_F(Strip, TabsWithoutRoomAreInAMenuOfAll)
{
    auto *all = qobject_cast<QToolButton *>(strip.focusStops().last());
    strip.resize(400, 36);
    QStringList titles;
    for (int i = 0; i < 14; ++i) {
        titles.append(QStringLiteral("Some long title & %1").arg(i));
    }
    strip.setTabs(titles.first(3), 0);
    EXPECT_FALSE(all->isVisibleTo(&strip));
    strip.setTabs(titles, 0);
    EXPECT_EQ(strip.visibleCount(), 4);
    EXPECT_TRUE(all->isVisibleTo(&strip));
    EXPECT_EQ(all->accessibleName(), QStringLiteral("All Tabs"));
    EXPECT_TRUE(all->focusPolicy() & Qt::TabFocus);
    EXPECT_GT(all->geometry().left(), strip.sizeHint().width()) << "beside the tabs and the button for a new one";
    const auto chosen = [this] {
        QStringList parts = hits().split(u',');
        parts.removeDuplicates();
        return parts.filter(QStringLiteral("current")).join(u' ');
    };
    EXPECT_EQ(chosen(), QStringLiteral("current 1 current 2 current 3"));
    strip.setTabs(titles, 9);
    EXPECT_EQ(chosen(), QStringLiteral("current 6 current 7 current 8")) << "the current one is shown";
    strip.setTabs(titles, 7);
    EXPECT_EQ(chosen(), QStringLiteral("current 6 current 8 current 9")) << "and nothing moves without need";
    strip.setTabs(titles, 13);
    strip.setTabs(titles.first(5), 4);
    EXPECT_EQ(strip.visibleCount(), 4);
    EXPECT_EQ(chosen(), QStringLiteral("current 1 current 2 current 3"));
    strip.setTabs(titles, 2);
    take();
    Q_EMIT all->menu()->aboutToShow();
    ASSERT_EQ(all->menu()->actions().size(), 14);
    EXPECT_EQ(all->menu()->actions()[13]->text(), QStringLiteral("Some long title && 13"));
    EXPECT_TRUE(all->menu()->actions()[2]->isChecked());
    EXPECT_FALSE(all->menu()->actions()[3]->isChecked());
    all->menu()->actions()[13]->trigger();
    EXPECT_EQ(take(), QStringLiteral("current 13"));
    strip.resize(3000, 36);
    EXPECT_EQ(strip.visibleCount(), 14);
    EXPECT_FALSE(all->isVisibleTo(&strip));
}

TEST_F(Strip, TipsSayTheWholeTitle)
{
    strip.setTabs({QStringLiteral("One"), QStringLiteral("Two")}, 0);
    const int end = strip.sizeHint().width();
    struct Case
    {
        QPoint point;
        const char *tip;
    };
    for (const Case &each : {Case{{5, 10}, "One"}, {{end - 10, 18}, "New Tab"}, {{end + 50, 18}, ""}}) {
        QWidget *child = strip.childAt(each.point);
        QHelpEvent event(QEvent::ToolTip, child ? child->mapFrom(&strip, each.point) : each.point,
                         strip.mapToGlobal(each.point));
        EXPECT_TRUE(QApplication::sendEvent(child ? child : &strip, &event));
        if (each.tip[0] != 0) {
            EXPECT_EQ(QToolTip::text(), QLatin1StringView(each.tip));
        }
    }
    QToolTip::hideText();
}

TEST(ZQSwitch, SegmentsAreChosenWithPointerAndKeys)
{
    QWidget window;
    ZQSwitch control({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}, &window);
    EXPECT_EQ(control.sizeHint(), QSize(270, 28));
    EXPECT_EQ(control.height(), 28);
    EXPECT_EQ(control.focusPolicy(), Qt::TabFocus);
    EXPECT_EQ(control.accessibleName(), QStringLiteral("A"));
    control.resize(154, 28); // segments of 50 from 2 on
    window.show();
    QList<int> told;
    QObject::connect(&control, &ZQSwitch::currentIndexChanged, [&](int index) { told.append(index); });
    struct Click
    {
        QPoint point;
        int after;
    };
    for (const Click &each : {Click{{52, 14}, 1},
                              {{51, 14}, 0},
                              {{101, 2}, 1},
                              {{102, 25}, 2},
                              {{1, 14}, 2},
                              {{2, 14}, 0},
                              {{151, 14}, 2},
                              {{60, 1}, 2},
                              {{60, 26}, 2},
                              {{60, 25}, 1},
                              {{152, 14}, 1}}) {
        QTest::mouseClick(&control, Qt::LeftButton, {}, each.point);
        EXPECT_EQ(control.currentIndex(), each.after) << each.point.x() << "," << each.point.y();
    }
    EXPECT_EQ(control.accessibleName(), QStringLiteral("B"));
    EXPECT_EQ(told, (QList<int>{1, 0, 1, 2, 0, 2, 1}));
    struct Press
    {
        Qt::Key key;
        int after;
        bool isMirrored = false;
    };
    for (const Press &each : {Press{Qt::Key_Right, 2},
                              {Qt::Key_Right, 2},
                              {Qt::Key_Space, 0},
                              {Qt::Key_Left, 0},
                              {Qt::Key_Space, 1},
                              {Qt::Key_Left, 0},
                              {Qt::Key_X, 0},
                              {Qt::Key_Left, 1, true},
                              {Qt::Key_Right, 0, true}}) {
        control.setLayoutDirection(each.isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
        QTest::keyClick(&control, each.key);
        EXPECT_EQ(control.currentIndex(), each.after) << int(each.key);
    }
    control.setCurrentIndex(3);
    control.setCurrentIndex(-1);
    EXPECT_EQ(control.currentIndex(), 0);

    ZQTheme::current().setDark(true);
    const QColor off = zqColor(ZQColorRole::Raised);
    const QColor on = zqColor(ZQColorRole::Raised2);
    EXPECT_EQ(pixelOf(control, {10, 14}), on);
    EXPECT_EQ(pixelOf(control, {60, 14}), off);
    control.clearFocus();
    EXPECT_EQ(pixelOf(control, {25, 3}), on);
    EXPECT_NE(pixelOf(control, {25, 2}), zqColor(ZQColorRole::Accent));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    control.setFocus();
    EXPECT_EQ(pixelOf(control, {25, 2}), zqColor(ZQColorRole::Accent));
    EXPECT_EQ(pixelOf(control, {60, 14}), off);
}

TEST(ZQProgressLine, ShortensWhatItNamesAndNeverHowFarItIs)
{
    const QString name = QStringLiteral("Syncing A folder with a long name: ");
    const QString numbers = QStringLiteral("1,200 of 104,201");
    const QFontMetrics metrics{QFont()};
    const int whole = metrics.horizontalAdvance(name + numbers);
    EXPECT_EQ(ZQProgressLine::fitted(name, numbers, metrics, whole), name + numbers);
    const QString shortened = ZQProgressLine::fitted(name, numbers, metrics, whole * 2 / 3);
    EXPECT_TRUE(shortened.startsWith(QStringLiteral("Sync"))) << qPrintable(shortened);
    EXPECT_TRUE(shortened.endsWith(u' ' + numbers)) << qPrintable(shortened);
    EXPECT_TRUE(shortened.contains(u'…'));
    EXPECT_LE(metrics.horizontalAdvance(shortened), whole * 2 / 3);
    EXPECT_EQ(ZQProgressLine::fitted(name, numbers, metrics, metrics.horizontalAdvance(numbers)), numbers);
    const QString alone = ZQProgressLine::fitted(name, {}, metrics, metrics.horizontalAdvance(name) / 2);
    EXPECT_TRUE(alone.contains(u'…'));
}

TEST(ZQProgressLine, ShowsHowFarItIsAndCanBeCancelled)
{
    ZQTheme::current().setDark(true);
    ZQProgressLine line(true);
    line.resize(228, line.sizeHint().height()); // the bar is 200 wide
    line.show();
    line.setText(QStringLiteral("Importing…"));
    EXPECT_EQ(line.findChild<QLabel *>()->text(), QStringLiteral("Importing…"));
    auto *cancel = line.findChild<QToolButton *>();
    EXPECT_TRUE(cancel->isVisible());
    EXPECT_EQ(cancel->size(), QSize(18, 18));
    EXPECT_EQ(cancel->iconSize(), QSize(10, 10));
    int cancels = 0;
    QObject::connect(&line, &ZQProgressLine::cancelled, [&] { ++cancels; });
    cancel->click();
    EXPECT_EQ(cancels, 1);
    QApplication::processEvents();
    const QColor done = zqColor(ZQColorRole::Accent);
    const int y = line.height() - 12;
    struct Case
    {
        double fraction;
        int part; // of the 200 pixels
    };
    for (const Case &each : {Case{0.5, 100}, {0, 0}, {1, 200}, {3, 200}, {-1, 60}}) {
        line.setFraction(each.fraction);
        QApplication::processEvents();
        const QImage image = line.grab().toImage();
        int count = 0;
        for (int x = 14; x < 214; ++x) {
            count += image.pixelColor(x, y) == done ? 1 : 0;
        }
        EXPECT_NEAR(count, each.part, 2) << each.fraction;
    }
    line.setFraction(0.256);
    QString described;
    for (const auto *child : line.findChildren<QWidget *>()) {
        described += child->accessibleDescription();
    }
    EXPECT_EQ(described, QStringLiteral("25 %"));
    ZQProgressLine other(false);
    EXPECT_TRUE(other.findChild<QToolButton *>()->isHidden());
}

TEST(ZQNotificationBubble, StandsWhereItBelongsAndGoesByItself)
{
    ZQTheme::current().setDark(true);
    QWidget window;
    window.resize(600, 500);
    QWidget place(&window);
    place.setGeometry(100, 0, 400, 300);
    auto *bubble = new ZQNotificationBubble(&window);
    QWidget over(&window);
    window.show();
    EXPECT_FALSE(bubble->isVisible());
    const QString text = QStringLiteral("Done");
    const QSize words = QFontMetrics(ZQTheme::current().font())
                            .boundingRect(QRect(0, 0, 344, 1000), int(Qt::AlignCenter) | Qt::TextWordWrap, text)
                            .size();
    const QSize size = words + QSize(54, 40);
    bubble->showText(text, &place, false, std::chrono::seconds(30));
    EXPECT_EQ(bubble->text(), text);
    EXPECT_EQ(bubble->accessibleName(), text);
    EXPECT_EQ(bubble->geometry(), QRect(QPoint(100 + (400 - size.width()) / 2, 300 - size.height() - 56), size));
    EXPECT_TRUE(bubble->isVisible());
    EXPECT_EQ(window.children().last(), bubble) << "above everything";
    bubble->showText(text, &place, true, std::chrono::seconds(30));
    EXPECT_EQ(bubble->geometry(), QRect(QPoint(100 + (400 - size.width()) / 2, (300 - size.height()) / 2), size));
    place.resize(400, 40);
    bubble->showText(text, &place, false, std::chrono::seconds(30));
    EXPECT_EQ(bubble->y(), 0) << "stays within the window";
    place.resize(400, 300);
    window.resize(600, 501); // the place is laid out anew by then
    place.setGeometry(0, 0, 500, 300);
    QApplication::processEvents();
    EXPECT_EQ(bubble->x(), (500 - size.width()) / 2);
    // Long ones wrap at the place's width, at most 420.
    const QString words20 = QStringLiteral("words and words ").repeated(20);
    for (const auto &[width, widest] : {std::pair{1000, 420 - 32 + 54}, {300, 300 - 24 - 32 + 54}, {50, 80 + 54}}) {
        place.resize(width, 300);
        QTest::mouseClick(bubble, Qt::LeftButton); // what is shown makes room
        bubble->showText(words20, &place, false, std::chrono::seconds(30));
        EXPECT_LE(bubble->width(), widest) << width;
        EXPECT_GT(bubble->width(), widest - 60) << width;
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return bubble->graphicsEffect()->property("opacity").toDouble() == 1; }, 20000));
    place.resize(500, 300);
    QTest::mouseClick(bubble, Qt::LeftButton);
    bubble->showText(text, &place, false, std::chrono::seconds(30));
    ASSERT_TRUE(QTest::qWaitFor([&] { return bubble->graphicsEffect()->property("opacity").toDouble() == 1; }, 20000));
    EXPECT_EQ(pixelOf(*bubble, {size.width() / 2, 14}), zqColor(ZQColorRole::Raised2));
    QTest::mouseClick(bubble, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !bubble->isVisible(); }, 20000)) << "a click sends it away";
    window.resize(600, 510);
    bubble->showText(text, &place, false, std::chrono::seconds(0));
    EXPECT_TRUE(bubble->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !bubble->isVisible(); }, 20000)) << "and so does its time";
    delete bubble;
}

TEST(ZQNotificationBubble, OneMessageFollowsTheOtherAndEachIsSaidOnce)
{
    QWidget window;
    window.resize(600, 500);
    auto *bubble = new ZQNotificationBubble(&window);
    window.show();
    const auto say = [&](const char *text, const QList<ZQNotificationAction> &actions = {}) {
        bubble->showText(QLatin1StringView(text), &window, false, std::chrono::seconds(30), actions);
    };
    say("first");
    int done = 0;
    say("second", {{QStringLiteral("Do"), [&done] { ++done; }}, {QStringLiteral("Leave"), [] {}}});
    say("third");
    say("third");
    say("first");
    EXPECT_EQ(bubble->text(), QStringLiteral("first"));
    EXPECT_EQ(bubble->waitingCount(), 2);
    EXPECT_TRUE(bubble->findChildren<QPushButton *>().isEmpty());
    QTest::mouseClick(bubble, Qt::LeftButton);
    EXPECT_EQ(bubble->text(), QStringLiteral("second"));
    const auto buttons = bubble->findChildren<QPushButton *>();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_TRUE(bubble->rect().contains(buttons[0]->geometry() | buttons[1]->geometry()));
    EXPECT_FALSE(buttons[0]->geometry().intersects(buttons[1]->geometry()));
    const QList<QRect> usual{buttons[0]->geometry(), buttons[1]->geometry()};
    EXPECT_LT(usual[0].left(), usual[1].left());
    bubble->setLayoutDirection(Qt::RightToLeft);
    for (qsizetype i = 0; i < usual.size(); ++i) {
        EXPECT_EQ(buttons[i]->x(), bubble->width() - usual[i].left() - usual[i].width()) << i;
    }
    bubble->setLayoutDirection(Qt::LeftToRight);
    buttons[0]->setFocus();
    QTest::keyClick(buttons[0], Qt::Key_Space);
    EXPECT_EQ(done, 1);
    EXPECT_EQ(bubble->text(), QStringLiteral("third")) << "what was done ends it";
    QTest::mouseClick(bubble, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !bubble->isVisible(); }, 20000));
}

TEST(ZQNotificationBubble, WhatWaitsIsShownByItselfAndNotWhereItsPlaceIsGone)
{
    QWidget window;
    window.resize(600, 500);
    auto *bubble = new ZQNotificationBubble(&window);
    auto *place = new QWidget(&window);
    window.show();
    const auto say = [&](const char *text, QWidget *where) {
        bubble->showText(QLatin1StringView(text), where, false, std::chrono::seconds(0));
    };
    say("first", &window);
    say("gone", place);
    say("last", &window);
    delete place;
    QStringList seen{bubble->text()};
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            if (seen.last() != bubble->text()) {
                seen.append(bubble->text());
            }
            return !bubble->isVisible();
        },
        20000));
    EXPECT_EQ(seen, (QStringList{"first", "last"}));
}
