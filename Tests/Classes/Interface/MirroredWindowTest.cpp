// The window of a language that is written from right to left: the same, the other way round.

#include "Classes/Interface/Sidebar/SidebarDelegate.h"
#include "Classes/Interface/Window/SidePanel.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QScopeGuard>

namespace {

// Around all pixels that are nearly of this color; empty for none.
QRect boundsOf(const QImage &image, const QColor &color)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int apart = std::abs(pixel.red() - color.red()) + std::abs(pixel.green() - color.green()) +
                              std::abs(pixel.blue() - color.blue());
            bounds |= apart < 24 ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return bounds;
}

QRect mirrored(const QRect &rect, int width)
{
    return {width - rect.left() - rect.width(), rect.top(), rect.width(), rect.height()};
}

bool isNear(const QRect &one, const QRect &other)
{
    constexpr int rounding = 2;
    return one.isValid() && std::abs(one.left() - other.left()) <= rounding &&
           std::abs(one.right() - other.right()) <= rounding;
}

} // namespace

class MirroredWindowTest : public MainWindowFixture
{
protected:
    struct Places
    {
        QRect sidebar, panel, grid; // in the window
        QRect picture;              // in the grid, of pixels
        QRect twisty, row;          // in the tree
    };
    QRect inWindow(QWidget &widget) { return {widget.mapTo(&window(), QPoint()), widget.size()}; }
    Places places()
    {
        Places found{inWindow(*tree()), inWindow(*window().findChild<SidePanel *>()), inWindow(grid()), {}, {}, {}};
        const auto isDrawn = [&] {
            found.picture = boundsOf(grid().viewport()->grab().toImage(), Qt::red);
            return found.picture.isValid();
        };
        EXPECT_TRUE(waitFor(isDrawn));
        const QModelIndex index = tree()->tree()->indexOf(folder->objectID());
        found.row = tree()->visualRect(index);
        found.twisty = SidebarDelegate::twistyRect(found.row, index);
        return found;
    }
};

TEST_F(MirroredWindowTest, EachPartIsOnItsOtherSide)
{
    settle();
    const Places usual = places();
    const qint64 first = grid().indexAt({usual.picture.left() + 3, usual.picture.center().y()});
    ASSERT_GE(first, 0);
    closeWindow();
    QApplication::setLayoutDirection(Qt::RightToLeft);
    const auto again = qScopeGuard([] { QApplication::setLayoutDirection(Qt::LeftToRight); });
    openWindow();
    show(a);
    settle();
    const Places other = places();
    const int width = window().width();
    EXPECT_TRUE(isNear(other.sidebar, mirrored(usual.sidebar, width)));
    EXPECT_TRUE(isNear(other.panel, mirrored(usual.panel, width)));
    EXPECT_TRUE(isNear(other.grid, mirrored(usual.grid, width)));
    EXPECT_TRUE(isNear(other.picture, mirrored(usual.picture, grid().viewport()->width())));
    EXPECT_EQ(other.twisty.left() - other.row.left(), usual.row.right() - usual.twisty.right());
    const qint64 index = grid().indexAt({other.picture.right() - 3, other.picture.center().y()});
    EXPECT_EQ(index, first) << "what is clicked is what is seen there";
}

TEST_F(MirroredWindowTest, ProgressGrowsTheWayOfReading)
{
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        ZQProgressLine line(false);
        line.setLayoutDirection(direction);
        line.resize(300, 50);
        line.setFraction(0.25);
        const QRect done = boundsOf(line.grab().toImage(), zqColor(ZQColorRole::Accent));
        ASSERT_TRUE(done.isValid());
        EXPECT_EQ(done.center().x() < 150, direction == Qt::LeftToRight) << done.left() << ' ' << done.right();
    }
}
