#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Kit/Widgets/ZQGridViewTest.h"

#include <QContextMenuEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>

TEST_F(ZQGridViewTest, CellsShowWhetherTheyAreChosenCurrentAndNamed)
{
    ZQTheme::current().setDark(true);
    Numbers numbers(8);
    show(numbers);
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    const auto corner = [this](qint64 index) { return pixel(view.visualRect(index).topLeft() + QPoint(30, 3)); };
    const auto title = [this](qint64 index) {
        const QRect rect = view.visualRect(index);
        const QImage image = view.viewport()->grab().toImage();
        QSet<QRgb> colors;
        for (int x = rect.left(); x < rect.right(); ++x) {
            colors.insert(image.pixel(x, rect.bottom() - 8));
        }
        return colors;
    };
    view.setCurrentIndex(0);
    EXPECT_EQ(corner(0), zqColor(ZQColorRole::Select));
    EXPECT_EQ(corner(1), zqColor(ZQColorRole::Ground));
    EXPECT_TRUE(title(0).contains(zqColor(ZQColorRole::AccentFill).rgb()));
    EXPECT_FALSE(title(1).contains(zqColor(ZQColorRole::AccentFill).rgb()));
    EXPECT_EQ(pixel(view.visualRect(1).topLeft() + QPoint(view.visualRect(1).width() / 2, 60)),
              zqColor(ZQColorRole::Cell));
    const QImage withTitles = view.viewport()->grab().toImage();
    key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(view.currentIndex(), 1);
    const QImage focused = view.viewport()->grab().toImage();
    EXPECT_NE(focused, withTitles) << "the current one is marked";
    view.clearFocus();
    EXPECT_NE(view.viewport()->grab().toImage(), focused);
    const int rowHeight = view.gridLayout().rowHeight();
    const QSet<QRgb> full = title(1);
    view.setShowsTitles(true, false);
    EXPECT_EQ(view.gridLayout().rowHeight(), rowHeight);
    EXPECT_NE(title(1), full) << "without the extension";
    view.setShowsTitles(false, true);
    EXPECT_EQ(title(1), full) << "an extension alone says nothing";
    view.setShowsTitles(false, false);
    EXPECT_LT(view.gridLayout().rowHeight(), rowHeight);
    Numbers none(0);
    view.setDataSource(&none);
    const QImage said = view.viewport()->grab().toImage();
    view.setDataSource(nullptr);
    EXPECT_NE(view.viewport()->grab().toImage(), said) << "what an empty one says";
    EXPECT_EQ(view.selection(), ZQIndexSet());
    key(Qt::Key_Right);
    key(Qt::Key_A);
    EXPECT_EQ(view.currentIndex(), -1);
}

TEST_F(ZQGridViewTest, PicturesAreDrawnInTheirShapeWithinTheCell)
{
    class Picture : public Numbers
    {
    public:
        using Numbers::Numbers;
        ZQGridItem item(qint64) const override { return shown; }
        ZQGridItem shown;
    };
    ZQTheme::current().setDark(true);
    Picture picture(1);
    show(picture);
    const auto draw = [&](QSize noted, bool isScalable, QSize real, const QColor &color) {
        view.thumbnailLoader().setDecoder([real, color](const ZQThumbnailRequest &, int) {
            QImage image(real, QImage::Format_ARGB32);
            image.fill(color);
            return image;
        });
        static int version = 0;
        picture.shown = {QStringLiteral("p"), {}, noted, isScalable, {QStringLiteral("/p"), ++version, false}};
        view.viewport()->grab();
        EXPECT_TRUE(QTest::qWaitFor([&] { return view.thumbnailLoader().pendingCount() == 0; }, 20000));
        const QImage drawn = view.viewport()->grab().toImage();
        QRect box;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 220; ++x) {
                const QColor at = drawn.pixelColor(x, y);
                if (at.red() > 90 && at.green() < 60) {
                    box |= QRect(x, y, 1, 1);
                }
            }
        }
        EXPECT_LE(std::abs(box.center().x() - view.visualRect(0).center().x()), 1);
        return box.size();
    };
    const int width = view.visualRect(0).width() - 12;
    const int height = view.gridLayout().pictureHeight() - 12;
    EXPECT_EQ(draw({400, 300}, false, {128, 96}, Qt::red), QSize(height * 4 / 3 + 1, height));
    EXPECT_EQ(draw({40, 30}, false, {40, 30}, Qt::red), QSize(40, 30)) << "small ones are not enlarged";
    EXPECT_GT(draw({40, 30}, true, {40, 30}, Qt::red).width(), 100) << "but drawings are";
    EXPECT_EQ(draw({}, false, {30, 10}, Qt::red).width(), width) << "of unknown size";
    EXPECT_EQ(draw({60, 30}, false, {30, 60}, Qt::red), QSize(30, 60)) << "as it is, not as it was noted";
    EXPECT_EQ(draw({40, 30}, false, {40, 30}, QColor(255, 0, 0, 200)), QSize(40, 30));
    EXPECT_EQ(draw({40, 30}, false, {800, 600}, Qt::red), QSize(40, 30)) << "shrunk to a twentieth";
    EXPECT_EQ(draw({1, 2000}, false, {1, 2000}, Qt::red).height(), height);
}

TEST_F(ZQGridViewTest, NothingOfWhatWasThereIsLeftAtAFractionOfAScale)
{
    constexpr double scale = 1.5;
    Numbers numbers(4);
    show(numbers);
    view.resize(933, 701);
    QWidget *viewport = view.viewport();
    QImage drawn((QSizeF(viewport->size()) * scale).toSize(), QImage::Format_RGB32);
    drawn.setDevicePixelRatio(scale);
    drawn.fill(Qt::magenta);
    viewport->render(&drawn, {}, {}, QWidget::DrawChildren);
    const QColor ground = zqColor(ZQColorRole::Ground);
    for (int y = 0; y < drawn.height(); y += 7) {
        ASSERT_EQ(drawn.pixelColor(drawn.width() - 1, y), ground) << y;
    }
    for (int x = 0; x < drawn.width(); x += 7) {
        ASSERT_EQ(drawn.pixelColor(x, drawn.height() - 1), ground) << x;
    }
}

TEST_F(ZQGridViewTest, HeadsSayTheirGroupAndAreFoldedByPointerAndKey)
{
    Numbers numbers(30, {{QStringLiteral("One"), 12}, {QStringLiteral("Two"), 18}});
    show(numbers);
    const auto top = [this](int group) { return int(view.gridLayout().groupTop(group) - view.scrollOffset()); };
    const auto click = [this](const QPoint &point) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, point);
        return QString::number(view.gridLayout().isCollapsed(0)) + QString::number(view.gridLayout().isCollapsed(1));
    };
    constexpr int head = ZQMeasure::groupHeadHeight;
    EXPECT_EQ(click({60, top(1) - 1}), QStringLiteral("00"));
    EXPECT_EQ(click({60, top(1)}), QStringLiteral("01"));
    EXPECT_EQ(click({60, top(1) + head - 1}), QStringLiteral("00"));
    EXPECT_EQ(click({60, top(1) + head}), QStringLiteral("00"));
    EXPECT_EQ(click({60, head - 1}), QStringLiteral("10"));
    EXPECT_EQ(click({60, 0}), QStringLiteral("00"));
    EXPECT_EQ(click({60, head}), QStringLiteral("00"));
    view.setCurrentIndex(13);
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(view.gridLayout().isCollapsed(1));
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_FALSE(view.gridLayout().isCollapsed(1));
    view.setSelection({});
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(view.gridLayout().isCollapsed(view.stickyGroup())) << "the one on top, when none is current";
    key(Qt::Key_Right, Qt::AltModifier);
    view.setGroupCollapsed(2, true);
    view.setGroupCollapsed(-1, true);
    EXPECT_EQ(click({60, head}), QStringLiteral("00"));
    // As heads are drawn: a name at the left, the sticky one pushed out by the next.
    view.resize(932, 300);
    view.setScrollOffset(view.gridLayout().groupTop(1) - 10);
    const QColor line = zqColor(ZQColorRole::Border);
    EXPECT_EQ(pixel({500, 9}), line) << "the end of the first";
    EXPECT_EQ(pixel({500, 10 + head - 1}), line);
    view.setScrollOffset(view.gridLayout().groupTop(1) - head);
    EXPECT_EQ(pixel({500, head - 1}), line);
    EXPECT_EQ(pixel({500, 2 * head - 1}), line);
    view.setScrollOffset(100);
    view.setGroupCollapsed(0, true);
    EXPECT_EQ(view.scrollOffset(), 0) << "its head stays where it stuck";
}

TEST_F(ZQGridViewTest, ScrollsZoomsAndKeepsItsPlace)
{
    Numbers numbers(4000);
    show(numbers);
    const int height = view.viewport()->height();
    QScrollBar *bar = view.verticalScrollBar();
    EXPECT_EQ(bar->maximum(), view.gridLayout().contentHeight() - height);
    EXPECT_EQ(bar->pageStep(), height);
    EXPECT_EQ(bar->singleStep(), 48);
    view.scrollToIndex(-1);
    view.scrollToIndex(4000);
    view.setCurrentIndex(4000);
    view.setCurrentIndex(-1);
    EXPECT_EQ(view.scrollOffset(), 0);
    EXPECT_EQ(view.currentIndex(), -1);
    const auto cell = view.gridLayout().cell(2000);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top + cell.height + 8 - height);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top + cell.height + 8 - height) << "it can be seen";
    view.setScrollOffset(cell.top);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top - 8);
    EXPECT_EQ(view.visualRect(2000).top(), 8);
    const qint64 before = view.scrollOffset();
    QWheelEvent pixels({300, 300}, view.mapToGlobal(QPoint(300, 300)), {0, -50}, {}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &pixels);
    EXPECT_EQ(view.scrollOffset(), before + 50);
    QWheelEvent wheel({300, 300}, view.mapToGlobal(QPoint(300, 300)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
    EXPECT_LT(view.scrollOffset(), before + 50);
    QSignalSpy zoomed(&view, &ZQGridView::zoomChanged);
    QWheelEvent zoom({300, 300}, view.mapToGlobal(QPoint(300, 300)), {}, {0, 120}, {}, Qt::ControlModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &zoom);
    EXPECT_DOUBLE_EQ(view.zoom(), 0.54);
    ASSERT_EQ(zoomed.size(), 1);
    view.setZoom(0.54);
    EXPECT_EQ(zoomed.size(), 1);
    view.setZoom(7);
    EXPECT_DOUBLE_EQ(view.zoom(), 1);
    view.setZoom(0.5);
    view.setScrollOffset(view.gridLayout().cell(2000).top);
    view.resize(700, 700);
    EXPECT_EQ(view.visualRect(view.gridLayout().indexAt(21, view.scrollOffset() + 1)).top(), 0);
    EXPECT_LE(view.gridLayout().cell(2000).top - view.scrollOffset(), 2 * view.gridLayout().rowHeight());
    EXPECT_TRUE(view.visibleIndexes().contains(2000));
}

TEST_F(ZQGridViewTest, KeysGoByPagesAndToTheEnds)
{
    Numbers numbers(100);
    show(numbers);
    const int rows = view.viewport()->height() / view.gridLayout().rowHeight();
    struct Press
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        qint64 current;
        qint64 selected;
    };
    QSignalSpy activated(&view, &ZQGridView::activated);
    QSignalSpy looked(&view, &ZQGridView::quickLookRequested);
    key(Qt::Key_Return);
    key(Qt::Key_Space);
    EXPECT_EQ(activated.size() + looked.size(), 0) << "there is no current one";
    const qint64 page = qint64(rows) * columns();
    for (const Press &each : {Press{Qt::Key_End, {}, 99, 1},
                              {Qt::Key_Home, {}, 0, 1},
                              {Qt::Key_PageDown, {}, page, 1},
                              {Qt::Key_PageDown, Qt::ShiftModifier, 2 * page, page + 1},
                              {Qt::Key_PageUp, {}, page, 1},
                              {Qt::Key_Up, {}, page - columns(), 1},
                              {Qt::Key_Left, {}, page - columns() - 1, 1},
                              {Qt::Key_End, Qt::ControlModifier, 99, 1},
                              {Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier, 0, 100}}) {
        key(each.key, each.modifiers);
        EXPECT_EQ(view.currentIndex(), each.current) << int(each.key);
        EXPECT_EQ(view.selection().count(), each.selected) << int(each.key);
    }
    key(Qt::Key_Enter);
    EXPECT_EQ(activated.size(), 1);
    view.setLayoutDirection(Qt::RightToLeft);
    key(Qt::Key_Left);
    EXPECT_EQ(view.currentIndex(), 1) << "the way of reading";
    view.setLayoutDirection(Qt::LeftToRight);
    QKeyEvent other(QEvent::KeyPress, Qt::Key_F5, {});
    QApplication::sendEvent(&view, &other);
    EXPECT_FALSE(other.isAccepted());
    QKeyEvent command(QEvent::KeyPress, Qt::Key_I, Qt::ControlModifier, QStringLiteral("i"));
    QApplication::sendEvent(&view, &command);
    EXPECT_EQ(view.currentIndex(), 1);

    const auto takes = [this](const QString &text, Qt::KeyboardModifiers modifiers) { // instead of a command
        QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_3, modifiers, text);
        event.ignore();
        QApplication::sendEvent(&view, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(takes(QStringLiteral("3"), {})) << "nothing is being typed";
    key(Qt::Key_I);
    EXPECT_EQ(view.currentIndex(), 2) << "the next one that begins so";
    EXPECT_TRUE(takes(QStringLiteral("3"), {}));
    EXPECT_FALSE(takes(QStringLiteral("3"), Qt::ControlModifier));
    EXPECT_FALSE(takes(QString(), {}));
    EXPECT_FALSE(takes(QStringLiteral("\x03"), {}));
    QTest::keyClicks(&view, QStringLiteral("tem 99"));
    EXPECT_EQ(view.currentIndex(), 99);
    QTest::keyClicks(&view, QStringLiteral("x"));
    EXPECT_EQ(view.currentIndex(), 99) << "there is none";
    EXPECT_EQ(looked.size(), 0) << "a space of a title is no look";
}

TEST_F(ZQGridViewTest, TheMenuComesWhereItIsAskedFor)
{
    Numbers numbers(40);
    show(numbers);
    QSignalSpy asked(&view, &ZQGridView::contextMenuRequested);
    const auto ask = [this](QContextMenuEvent::Reason reason, const QPoint &point) {
        QContextMenuEvent event(reason, point, view.viewport()->mapToGlobal(point));
        QApplication::sendEvent(view.viewport(), &event);
    };
    ask(QContextMenuEvent::Mouse, middle(3));
    EXPECT_EQ(view.selection(), ZQIndexSet(3, 3)) << "what it is about is chosen";
    view.setSelection(ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Mouse, middle(3));
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Mouse, {3, 3});
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Keyboard, {3, 3});
    view.setSelection({});
    ask(QContextMenuEvent::Keyboard, {3, 3});
    ASSERT_EQ(asked.size(), 5);
    const auto at = [&](int i) { return view.viewport()->mapFromGlobal(asked[i][0].toPoint()); };
    EXPECT_EQ(at(0), middle(3));
    EXPECT_EQ(at(3), middle(2)) << "by key: at the current one";
    EXPECT_EQ(at(4), QPoint(3, 3));
}
