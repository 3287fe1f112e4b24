// One asset, large, as it is looked at with keys and pointer.

#include "Classes/Interface/Detail/DetailView.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QLabel>
#include <QToolButton>
#include <QWheelEvent>

#include <cmath>

namespace {

using State = DetailDocument::State;

class DetailViewTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        detail = window().findChild<DetailView *>();
    }
    void open(const char *title)
    {
        browser().closeDetail();
        select({QLatin1StringView(title)});
        grid().setFocus();
        press(Qt::Key_Return);
        EXPECT_TRUE(waitFor([this] { return !detail->isLoading(); }));
    }
    DetailDocument &document() { return detail->document(); }
    // What the head says and offers: title, position, pages, and the buttons that can be pressed.
    QString head()
    {
        QStringList texts;
        for (const QLabel *label : detail->findChildren<QLabel *>()) {
            if (label->isVisible() && label->accessibleName() != QStringLiteral("Zoom")) {
                texts.append(label->text());
            }
        }
        texts.sort();
        for (const QToolButton *button : detail->findChildren<QToolButton *>()) {
            if (button->isVisible() && button->isEnabled()) {
                texts.append(u'[' + (button->text().isEmpty() ? button->toolTip() : button->text()) +
                             (button->isChecked() ? QStringLiteral("*]") : QStringLiteral("]")));
            }
        }
        return texts.join(u' ');
    }
    QString zoom() { return named<QLabel>("Zoom")->text(); }
    QColor pixel(const QPoint &point) { return detail->grab().toImage().pixelColor(point); }
    QPoint middle() { return detail->rect().adjusted(0, ZQMeasure::headHeight, 0, 0).center(); }
    QSize seen(const QColor &color) // the box around all of that colour
    {
        const QImage image = detail->grab().toImage();
        QRect box;
        for (int y = ZQMeasure::headHeight; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == color) {
                    box |= QRect(x, y, 1, 1);
                }
            }
        }
        return box.size();
    }
    void move(const QPoint &from, const QPoint &to, Qt::MouseButtons buttons)
    {
        QTest::mousePress(detail, Qt::LeftButton, {}, from);
        QMouseEvent event(QEvent::MouseMove, to, detail->mapToGlobal(to), Qt::NoButton, buttons, {});
        QApplication::sendEvent(detail, &event);
        QTest::mouseRelease(detail, Qt::LeftButton, {}, to);
    }

    DetailView *detail = nullptr;
};

} // namespace

TEST_F(DetailViewTest, ThePlaceFollowsTheContentAndTheViewEndsWithItsItem)
{
    open("red");
    const auto head = [this] { return this->head().left(this->head().indexOf(u'[')).trimmed().toStdString(); };
    EXPECT_EQ(head(), "1 of 4 red");
    const auto other = image(QStringLiteral("clear"));
    other->setActive(false);
    delegate->saveAction();
    settle();
    EXPECT_EQ(head(), "1 of 3 red");
    run(CommandID(int(CommandID::SortManually) + int(ZQSortValue::Title)));
    settle();
    EXPECT_EQ(head(), "3 of 3 red") << "the same item, at another place";
    image(QStringLiteral("red"))->setActive(false);
    delegate->saveAction();
    settle();
    EXPECT_FALSE(browser().isDetailOpen());
}

TEST_F(DetailViewTest, KeysOpenStepAndGoBack)
{
    open("red");
    EXPECT_EQ(head().toStdString(), "1 of 4 red [Back to the items (Esc)] [Fit*] [100 %] [Previous] [Next]");
    EXPECT_EQ(detail->accessibleName(), QStringLiteral("red"));
    EXPECT_EQ(QApplication::focusWidget(), detail);
    struct Step
    {
        Qt::Key key;
        const char *title; // none: closed
    };
    const auto follow = [this](const QList<Step> &steps) {
        for (const Step &each : steps) {
            press(each.key);
            EXPECT_EQ(browser().isDetailOpen(), each.title != nullptr);
            if (each.title) {
                EXPECT_EQ(detail->accessibleName(), QLatin1StringView(each.title));
                EXPECT_EQ(selected(), QStringList{QLatin1StringView(each.title)});
            } else {
                EXPECT_EQ(QApplication::focusWidget(), &grid());
            }
        }
    };
    follow({{Qt::Key_Left, "red"},
            {Qt::Key_Right, "clear"},
            {Qt::Key_Down, "pages"},
            {Qt::Key_Up, "clear"},
            {Qt::Key_Space, "pages"},
            {Qt::Key_Right, "moving"},
            {Qt::Key_Right, "moving"},
            {Qt::Key_Left, "pages"},
            {Qt::Key_X, "pages"},
            {Qt::Key_Escape, nullptr},
            {Qt::Key_Space, "pages"},
            {Qt::Key_Space, nullptr},
            {Qt::Key_Return, "pages"},
            {Qt::Key_Return, nullptr},
            {Qt::Key_Enter, "pages"},
            {Qt::Key_Enter, nullptr}});
    run(CommandID::QuickLook);
    follow({{Qt::Key_Space, nullptr}});
    run(CommandID::Open);
    follow({{Qt::Key_Space, "moving"}});
    named<QToolButton>("Previous")->click();
    EXPECT_EQ(detail->accessibleName(), QStringLiteral("pages"));
    named<QToolButton>("Next")->click();
    EXPECT_EQ(detail->accessibleName(), QStringLiteral("moving"));
    named<QToolButton>("Back to the items (Esc)")->click();
    EXPECT_FALSE(browser().isDetailOpen());
    for (const QToolButton *button : detail->findChildren<QToolButton *>()) {
        EXPECT_EQ(button->focusPolicy(), Qt::TabFocus);
        if (button->text().isEmpty()) {
            EXPECT_EQ(button->size(), QSize(30, 28));
        } else {
            EXPECT_TRUE(button->isCheckable());
        }
    }
    EXPECT_EQ(detail->focusPolicy(), Qt::StrongFocus);
    grid().setSelection({});
    press(Qt::Key_Return);
    EXPECT_FALSE(browser().isDetailOpen()) << "there is nothing to open";
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, grid().visualRect(1).center());
    QMouseEvent again(QEvent::MouseButtonDblClick, grid().visualRect(1).center(),
                      grid().viewport()->mapToGlobal(grid().visualRect(1).center()), Qt::LeftButton, Qt::LeftButton,
                      {});
    QApplication::sendEvent(grid().viewport(), &again);
    EXPECT_EQ(detail->accessibleName(), QStringLiteral("clear"));
    show(b);
    EXPECT_FALSE(browser().isDetailOpen()) << "something else is shown";
}

TEST_F(DetailViewTest, DocumentsArePagedThrough)
{
    open("pages");
    EXPECT_TRUE(waitFor([this] { return document().pageCount() == 3; }));
    EXPECT_EQ(document().naturalSize(), QSizeF(200, 100));
    const auto buttons = [](const char *first, const char *second) {
        return QStringLiteral("3 of 4 %1 pages%2 [Fit*] [100 %] [Back to the items (Esc)] [Previous] [Next]")
            .arg(QLatin1StringView(first), QLatin1StringView(second));
    };
    const auto sorted = [this] {
        QStringList parts = head().split(u' ');
        parts.sort();
        return parts;
    };
    const auto expect = [&](const char *page, const char *offered) {
        QStringList parts = buttons(page, offered).split(u' ');
        parts.sort();
        EXPECT_EQ(sorted(), parts) << head().toStdString();
    };
    expect("Page 1 of 3", " [Next page (Page Down)]");
    EXPECT_EQ(pixel(middle()), QColor(Qt::blue));
    press(Qt::Key_PageUp);
    EXPECT_EQ(document().page(), 0);
    press(Qt::Key_PageDown);
    expect("Page 2 of 3", " [Previous page (Page Up)] [Next page (Page Down)]");
    EXPECT_TRUE(waitFor([this] { return pixel(middle()) == QColor(Qt::red); }));
    EXPECT_EQ(document().naturalSize(), QSizeF(200, 100));
    named<QToolButton>("Next page (Page Down)")->click();
    expect("Page 3 of 3", " [Previous page (Page Up)]");
    EXPECT_TRUE(waitFor([this] { return document().naturalSize() == QSizeF(100, 200); })) << "pages of one measure";
    EXPECT_EQ(pixel(middle()), QColor(0, 255, 0));
    press(Qt::Key_PageDown);
    EXPECT_EQ(document().page(), 2);
    named<QToolButton>("Previous page (Page Up)")->click();
    press(Qt::Key_PageUp);
    EXPECT_EQ(document().page(), 0);
    EXPECT_TRUE(waitFor([this] { return pixel(middle()) == QColor(Qt::blue); })) << "the one asked for last";
    press(Qt::Key_P);
    EXPECT_FALSE(document().isPlaying()) << "pages do not move";

    // Drawn anew for the size it is seen at, up to what is drawn at most.
    EXPECT_DOUBLE_EQ(document().sharpestScale(), 6144.0 / 200);
    const int before = document().image().width();
    for (int i = 0; i < 12; ++i) {
        press(Qt::Key_Plus);
    }
    EXPECT_TRUE(waitFor([&] { return document().image().width() > before * 2; }));
    for (int i = 0; i < 20; ++i) {
        press(Qt::Key_Equal);
    }
    EXPECT_DOUBLE_EQ(detail->scale(), 6144.0 / 200);
    open("red");
    EXPECT_EQ(document().pageCount(), 1);
    EXPECT_EQ(document().page(), 0);
    EXPECT_EQ(document().sharpestScale(), 0);
    EXPECT_FALSE(head().contains(QStringLiteral("Page")));
}

TEST_F(DetailViewTest, AnimationsPlayUntilTheyAreStoppedOrUnseen)
{
    open("moving");
    EXPECT_TRUE(document().isAnimation());
    EXPECT_EQ(document().pageCount(), 3);
    ASSERT_TRUE(document().isPlaying());
    EXPECT_TRUE(head().contains(QStringLiteral("[Pause (P)]")));
    EXPECT_FALSE(head().contains(QStringLiteral("page (Page")));
    QSet<int> pages;
    EXPECT_TRUE(waitFor([&] {
        pages.insert(document().page());
        return pages.size() == 3;
    })) << "they go round";
    EXPECT_TRUE(waitFor([&] { return document().page() == 0; }));
    press(Qt::Key_P);
    EXPECT_FALSE(document().isPlaying());
    EXPECT_TRUE(head().contains(QStringLiteral("[Play (P)]")));
    document().setPage(0);
    const QColor colors[] = {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)};
    for (int frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(document().page(), frame);
        EXPECT_TRUE(head().contains(QStringLiteral("Frame %1 of 3").arg(frame + 1)));
        EXPECT_EQ(head().contains(QStringLiteral("[Previous page")), frame > 0);
        EXPECT_EQ(head().contains(QStringLiteral("[Next page")), frame < 2);
        const QColor drawn = pixel(middle());
        EXPECT_NEAR(drawn.hue(), colors[frame].hue(), 8) << frame;
        EXPECT_EQ(document().image().size(), QSize(30, 20));
        press(Qt::Key_PageDown);
    }
    named<QToolButton>("Play (P)")->click();
    EXPECT_TRUE(document().isPlaying());
    int changes = 0;
    QObject::connect(&document(), &DetailDocument::changed, detail, [&] { ++changes; });
    document().setPlaying(true);
    EXPECT_EQ(changes, 0) << "it does already";
    press(Qt::Key_Escape);
    EXPECT_FALSE(document().isPlaying()) << "what nobody sees costs nothing";
    open("red");
    EXPECT_FALSE(document().isAnimation());
    EXPECT_FALSE(document().isPlaying());
}

TEST_F(DetailViewTest, PicturesAreFittedZoomedAndMoved)
{
    open("red"); // 80 x 60
    const QColor drawn = pixel(middle());
    EXPECT_GT(drawn.red(), 250);
    EXPECT_DOUBLE_EQ(detail->scale(), 1) << "never enlarged by itself";
    EXPECT_EQ(zoom(), QStringLiteral("100 %"));
    EXPECT_EQ(seen(drawn), QSize(80, 60));
    press(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(detail->scale(), 1.25);
    EXPECT_EQ(zoom(), QStringLiteral("125 %"));
    EXPECT_FALSE(head().contains(QStringLiteral("[Fit*]")));
    EXPECT_FALSE(head().contains(QStringLiteral("[100 %*]")));
    EXPECT_EQ(pixel(middle()), drawn) << "the middle stays";
    press(Qt::Key_Equal);
    press(Qt::Key_Minus);
    press(Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(detail->scale(), 1);
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit] [100 %*]")));
    press(Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(detail->scale(), 0.8);
    press(Qt::Key_Z);
    EXPECT_DOUBLE_EQ(detail->scale(), 1);
    for (int i = 0; i < 30; ++i) {
        press(Qt::Key_Plus);
    }
    EXPECT_DOUBLE_EQ(detail->scale(), 16);
    for (int i = 0; i < 60; ++i) {
        press(Qt::Key_Minus);
    }
    EXPECT_DOUBLE_EQ(detail->scale(), 0.02);
    EXPECT_EQ(zoom(), QStringLiteral("2 %"));
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(zoom(), QStringLiteral("100 %"));
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit*] [100 %]")));
    for (QToolButton *button : detail->findChildren<QToolButton *>()) {
        if (button->text() == QStringLiteral("100 %")) {
            button->click();
        }
    }
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit] [100 %*]")));
    EXPECT_EQ(seen(drawn), QSize(80, 60));

    const QPoint corner = middle() + QPoint(-30, -20); // within the picture
    const QPoint out = middle() + QPoint(60, 0);
    move(middle(), middle() + QPoint(40, 10), Qt::RightButton);
    EXPECT_NE(pixel(out), drawn);
    move(middle(), middle() + QPoint(40, 10), Qt::LeftButton);
    EXPECT_EQ(pixel(out), drawn);
    EXPECT_NE(pixel(corner), drawn);
    EXPECT_EQ(seen(drawn), QSize(80, 60));
    move(middle(), middle() - QPoint(40, 10), Qt::LeftButton);
    EXPECT_EQ(pixel(corner), drawn);
    QTest::mouseDClick(detail, Qt::LeftButton, {}, middle());
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit*]")));
    move(middle(), middle() + QPoint(40, 10), Qt::LeftButton);
    EXPECT_NE(pixel(out), drawn) << "what is fitted stays";
    QTest::mouseDClick(detail, Qt::LeftButton, {}, middle());
    EXPECT_TRUE(head().contains(QStringLiteral("[100 %*]")));

    // The point under the wheel stays under it.
    const QPoint anchor = middle() + QPoint(-39, -29);
    QWheelEvent wheel(anchor, detail->mapToGlobal(anchor), {}, {0, 240}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(detail, &wheel);
    EXPECT_NEAR(detail->scale(), 1.44, 1e-9);
    EXPECT_TRUE(wheel.isAccepted());
    EXPECT_EQ(pixel(anchor), drawn);
    EXPECT_NE(pixel(anchor - QPoint(3, 3)), drawn);
    open("red");
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit*]"))) << "each begins fitted";
}

TEST_F(DetailViewTest, LargePicturesAreShrunkToTheRoomAndClearOnesLieOnSquares)
{
    QImage large(3000, 1000, QImage::Format_RGB32);
    large.fill(Qt::darkRed);
    const QString path = world.filePath(QStringLiteral("large.png"));
    ASSERT_TRUE(large.save(path));
    open("clear");
    const QRect room = detail->rect().adjusted(24, ZQMeasure::headHeight + 24, -24, -24);
    detail->showItem(QStringLiteral("large"), {path, {}, {3000, 1000}, {}}, {});
    EXPECT_TRUE(waitFor([this] { return !detail->isLoading(); }));
    EXPECT_NEAR(detail->scale(), room.width() / 3000.0, 1e-9);
    EXPECT_EQ(seen(pixel(middle())).width(), room.width());
    detail->showItem(QStringLiteral("tall"), {path, {}, {100, 3000}, {}}, {});
    EXPECT_NEAR(detail->scale(), room.height() / 3000.0, 1e-9);
    open("clear");
    QSet<QRgb> colors;
    const QImage image = detail->grab().toImage();
    for (int x = -19; x < 19; ++x) {
        for (int y = -19; y < 19; ++y) {
            colors.insert(image.pixel(middle() + QPoint(x, y)));
        }
    }
    EXPECT_GE(colors.size(), 2) << "squares show through";
    EXPECT_NE(pixel(middle()), pixel(middle() + QPoint(10, 0)));
    EXPECT_EQ(pixel(middle()), pixel(middle() + QPoint(10, 10)));
    EXPECT_EQ(pixel(middle() + QPoint(30, 0)), zqColor(ZQColorRole::Ground));
}

TEST_F(DetailViewTest, WhatCannotBeShownSaysWhy)
{
    open("red");
    const QString path = world.filePath(QStringLiteral("broken.png"));
    QImage standIn(20, 10, QImage::Format_RGB32);
    standIn.fill(Qt::blue);
    struct Case
    {
        const char *what;
        DetailDocument::Source source;
        State state;
        QSizeF size;
        bool hasReason;
    };
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("no picture") == 10);
    file.close();
    const QString whole = image(QStringLiteral("red"))->itemURL();
    const QColor ground = zqColor(ZQColorRole::Ground);
    for (const Case &each :
         {Case{"no path", {{}, {}, {}, standIn}, State::Missing, {20, 10}, false},
          {"a path that is gone", {path + u'x', {}, {40, 30}, standIn}, State::Missing, {40, 30}, false},
          {"a damaged file", {path, {}, {}, {}}, State::Failed, {0, 0}, true},
          {"a damaged file with a stand-in", {path, {}, {40, 30}, standIn}, State::Failed, {40, 30}, true},
          {"a picture for a file that is none", {path, whole, {}, {}}, State::Shown, {80, 60}, false},
          {"a picture of unknown size", {whole, {}, {}, standIn}, State::Shown, {80, 60}, false},
          {"a picture of known size", {whole, {}, {160, 120}, {}}, State::Shown, {160, 120}, false}}) {
        detail->showItem({}, each.source, {});
        EXPECT_TRUE(waitFor([this] { return !detail->isLoading(); }));
        EXPECT_EQ(document().state(), each.state) << each.what;
        EXPECT_EQ(document().naturalSize(), each.size) << each.what;
        EXPECT_TRUE(each.state == State::Shown || document().reason().isEmpty() != each.hasReason) << each.what;
        // In the middle, or below what stands in.
        const QImage drawn = detail->grab().toImage();
        int below = 0;
        int across = 0;
        for (int x = 30; x < drawn.width() - 30; ++x) {
            for (int y = drawn.height() - 60; y < drawn.height(); ++y) {
                below += drawn.pixelColor(x, y) != ground ? 1 : 0;
            }
            for (int y = middle().y() - 30; y < middle().y() + 30; ++y) {
                across += x < middle().x() - 100 && drawn.pixelColor(x, y) != ground ? 1 : 0;
            }
        }
        const bool standsIn = !each.source.standIn.isNull();
        EXPECT_EQ(below > 0, each.state != State::Shown && standsIn) << each.what;
        EXPECT_EQ(across > 0, each.state != State::Shown && !standsIn) << each.what;
        if (standsIn && each.state == State::Missing) {
            EXPECT_NE(pixel(middle()), QColor(Qt::blue)) << "paler than what is there";
            EXPECT_NE(pixel(middle()), ground);
        }
    }
}

TEST_F(DetailViewTest, TheFocusShowsWhenItCameByKey)
{
    open("red");
    const QPoint edge(0, ZQMeasure::headHeight + 100);
    EXPECT_NE(pixel(edge), zqColor(ZQColorRole::Accent));
    for (const auto &[reason, isSeen] :
         {std::pair{Qt::TabFocusReason, true}, {Qt::MouseFocusReason, false}, {Qt::BacktabFocusReason, true}}) {
        grid().setFocus();
        window().findChild<QLineEdit *>(QStringLiteral("Search"))->setFocus();
        detail->setFocus(reason);
        EXPECT_EQ(pixel(edge) == zqColor(ZQColorRole::Accent), isSeen) << int(reason);
    }
    window().findChild<QLineEdit *>(QStringLiteral("Search"))->setFocus();
    EXPECT_NE(pixel(edge), zqColor(ZQColorRole::Accent));
}

TEST_F(DetailViewTest, ClearPicturesStandOutFromTheirSquaresInBothThemes)
{
    const bool wasDark = ZQTheme::current().isDark();
    open("clear");
    int made = 0;
    for (const bool isDark : {true, false}) {
        ZQTheme::current().setDark(isDark);
        for (const QList<QColor> &colors : {QList<QColor>{Qt::black}, {Qt::white}, {Qt::black, Qt::white}}) {
            QImage image(200, 120, QImage::Format_ARGB32);
            image.fill(Qt::transparent);
            for (int x = 40; x < 160; ++x) {
                for (int y = 40; y < 80; ++y) {
                    image.setPixelColor(x, y, colors[x % colors.size()]);
                }
            }
            const QString path = world.filePath(QStringLiteral("clear%1.png").arg(++made));
            ASSERT_TRUE(image.save(path));
            detail->showItem(QStringLiteral("clear"), {path, {}, image.size(), {}}, {});
            ASSERT_TRUE(waitFor([this] { return !detail->isLoading(); }));
            const QImage drawn = detail->grab().toImage();
            QSet<QRgb> squares;
            for (int x = -90; x < 90; x += 3) {
                squares.insert(drawn.pixel(middle() + QPoint(x, 45)));
            }
            EXPECT_EQ(squares.size(), 2) << isDark;
            for (const QRgb square : squares) {
                for (const QColor &color : colors) {
                    EXPECT_GE(ZQTheme::contrast(QColor(square), color), 3)
                        << isDark << " " << color.name().toStdString() << " on " << std::hex << square;
                }
            }
        }
    }
    ZQTheme::current().setDark(wasDark);
}

TEST_F(DetailViewTest, PixelsAreSharpAtWholeFactors)
{
    QImage image(81, 61, QImage::Format_RGB32); // in the middle of an even room it lies on half pixels
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixelColor(x, y, (x + y) % 2 == 0 ? Qt::red : Qt::blue);
        }
    }
    const QString path = world.filePath(QStringLiteral("sharp.png"));
    ASSERT_TRUE(image.save(path));
    open("red");
    for (const double scale : {1.0, 2.0, 3.0}) {
        detail->showItem(QStringLiteral("sharp"), {path, {}, image.size(), {}}, {});
        ASSERT_TRUE(waitFor([this] { return !detail->isLoading(); }));
        detail->setView(scale, QPointF(40.5, 30.5));
        const QImage drawn = detail->grab().toImage();
        for (int x = -20; x < 20; ++x) {
            const QColor at = drawn.pixelColor(middle() + QPoint(x, 0));
            ASSERT_TRUE(at == QColor(Qt::red) || at == QColor(Qt::blue)) << scale << " " << at.name().toStdString();
        }
    }
}

TEST_F(DetailViewTest, DigitsRateWhatIsShown)
{
    open("red");
    for (const auto &[key, stars] : {std::pair{Qt::Key_4, 4}, {Qt::Key_1, 1}, {Qt::Key_0, 0}}) {
        press(key);
        EXPECT_EQ(image(QStringLiteral("red"))->rating(), stars);
        EXPECT_TRUE(browser().isDetailOpen());
    }
    EXPECT_TRUE(head().contains(QStringLiteral("[Fit*]"))) << "the zoom has keys of its own";
    press(Qt::Key_Right);
    press(Qt::Key_5);
    EXPECT_EQ(image(QStringLiteral("clear"))->rating(), 5);
    named<QToolButton>("Next")->setFocus();
    press(Qt::Key_2);
    EXPECT_EQ(image(QStringLiteral("clear"))->rating(), 2) << "wherever in the view the focus is";
    EXPECT_TRUE(isEnabled(CommandID::ZoomIn));
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(browser().isDetailOpen()) << "that is for tabs, and this one is in front";
    browser().closeDetail();
    EXPECT_FALSE(isEnabled(CommandID::ZoomIn));
}
