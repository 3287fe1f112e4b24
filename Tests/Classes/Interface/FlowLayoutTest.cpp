#include "Classes/Interface/InfoPanel/FlowLayout.h"

#include <QWidget>

#include <gtest/gtest.h>

namespace {

struct Block : QWidget
{
    Block(QSize size, bool grows) : m_size(size)
    {
        setSizePolicy(grows ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override { return m_size; }
    QSize minimumSizeHint() const override { return m_size; }

private:
    QSize m_size;
};

} // namespace

// Margins 8, 6, 8, 6 and 5 between: 100 wide leaves 84.
TEST(FlowLayout, FillsLinesFromWhereReadingBeginsAndGivesTheRestToWhatGrows)
{
    struct Case
    {
        const char *what;
        QList<QSize> sizes; // a negative width grows from there on
        QList<QRect> places;
        int height;
    };
    for (const Case &each :
         {Case{"nothing", {}, {}, 12},
          {"one", {{30, 20}}, {{8, 6, 30, 20}}, 32},
          {"two that just fit", {{40, 20}, {39, 10}}, {{8, 6, 40, 20}, {53, 6, 39, 10}}, 32},
          {"two of which one is a pixel too wide", {{40, 20}, {40, 10}}, {{8, 6, 40, 20}, {8, 31, 40, 10}}, 47},
          {"one wider than the room", {{200, 20}}, {{8, 6, 84, 20}}, 32},
          {"the highest of a line counts",
           {{40, 10}, {39, 20}, {30, 10}},
           {{8, 6, 40, 10}, {53, 6, 39, 20}, {8, 31, 30, 10}},
           47},
          {"one that grows", {{30, 20}, {-20, 20}}, {{8, 6, 30, 20}, {43, 6, 49, 20}}, 32},
          {"one that grows just fits", {{30, 20}, {-49, 20}}, {{8, 6, 30, 20}, {43, 6, 49, 20}}, 32},
          {"one that grows on its own line", {{30, 20}, {-50, 20}}, {{8, 6, 30, 20}, {8, 31, 84, 20}}, 57}}) {
        QWidget window;
        auto *flow = new FlowLayout(5);
        flow->setContentsMargins(8, 6, 8, 6);
        window.setLayout(flow);
        QList<Block *> blocks;
        for (const QSize &size : each.sizes) {
            blocks.append(new Block({std::abs(size.width()), size.height()}, size.width() < 0));
            flow->addWidget(blocks.last());
            blocks.last()->show();
        }
        EXPECT_EQ(flow->heightForWidth(100), each.height) << each.what;
        flow->setGeometry({0, 0, 100, 300});
        for (qsizetype i = 0; i < blocks.size(); ++i) {
            EXPECT_EQ(blocks[i]->geometry(), each.places[i]) << each.what << " " << i;
        }
        EXPECT_EQ(flow->geometry(), QRect(0, 0, 100, 300));
        flow->setGeometry({50, 40, 100, 300});
        EXPECT_TRUE(blocks.isEmpty() || blocks[0]->pos() == QPoint(58, 46)) << each.what;
        window.setLayoutDirection(Qt::RightToLeft);
        flow->setGeometry({0, 0, 100, 300});
        for (qsizetype i = 0; i < blocks.size(); ++i) {
            const QRect &place = each.places[i];
            const QRect mirrored(100 - place.left() - place.width(), place.top(), place.width(), place.height());
            EXPECT_EQ(blocks[i]->geometry(), mirrored) << each.what << " " << i;
        }
    }
    QWidget window;
    auto *flow = new FlowLayout(5);
    flow->setContentsMargins(1, 2, 3, 4);
    window.setLayout(flow);
    EXPECT_EQ(flow->minimumSize(), QSize(3, 5));
    for (const QSize &size : {QSize(30, 10), QSize(20, 40)}) {
        flow->addWidget(new Block(size, false));
    }
    EXPECT_EQ(flow->minimumSize(), QSize(34, 46));
    EXPECT_EQ(flow->count(), 2);
    EXPECT_EQ(flow->itemAt(2), nullptr);
    EXPECT_EQ(flow->takeAt(2), nullptr);
    EXPECT_EQ(flow->takeAt(-1), nullptr);
    delete flow->takeAt(0);
    EXPECT_EQ(flow->count(), 1);
    EXPECT_EQ(flow->minimumSize(), QSize(24, 46));
}
