// Several pictures beside each other, compared with keys and pointer.

#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/CompareController.h"
#include "Classes/Interface/Compare/CompareView.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QToolTip>
#include <QUndoStack>
#include <QWheelEvent>

namespace {

class CompareTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        QImage alike(80, 60, QImage::Format_RGB32); // as large as "red"
        alike.fill(Qt::red);
        for (int x = 0; x < 40; ++x) {
            alike.setPixelColor(x, 0, QColor(155, 0, 0));
        }
        const QString path = world.filePath(QStringLiteral("in/alike.png"));
        ASSERT_TRUE(alike.save(path));
        ImportDoor::importFiles({path}, a.get(), ZQSidebarBaseItem::appendIndex);
        ASSERT_TRUE(waitFor([this] { return delegate->backgroundOperationQueue().operationCount() == 0; }));
        settle();
    }
    CompareView &view() { return browser().comparison().view(); }
    bool isOpen() { return browser().comparison().isOpen(); }
    void open(const QStringList &titles)
    {
        select(titles);
        grid().setFocus();
        press(Qt::Key_K, Qt::ControlModifier);
        EXPECT_TRUE(waitFor([this] {
            const auto all = panes();
            return !all.isEmpty() && std::all_of(all.begin(), all.end(), [](ComparePane *pane) {
                return pane->canvas().document().state() == DetailDocument::State::Shown;
            });
        }));
    }
    QList<ComparePane *> panes()
    {
        QList<ComparePane *> result;
        for (const ZQObjectID &id : view().items()) {
            for (ComparePane *pane : view().findChildren<ComparePane *>()) {
                if (pane->picture().item == id && !pane->isHidden()) {
                    result.append(pane);
                }
            }
        }
        return result;
    }
    QString compared() // the current one in brackets
    {
        QStringList titles;
        for (const ComparePane *pane : panes()) {
            const bool isCurrent = pane->picture().item == view().currentItem();
            titles.append(isCurrent ? u'[' + pane->picture().title + u']' : pane->picture().title);
        }
        return titles.join(u' ');
    }
    QString facts(int pane)
    {
        for (const QLabel *label : panes().at(pane)->findChildren<QLabel *>()) {
            if (label->textFormat() == Qt::RichText) {
                return label->text();
            }
        }
        return {};
    }
    QToolButton *button(const char *text)
    {
        const auto all = view().findChildren<QToolButton *>();
        return *std::find_if(all.begin(), all.end(),
                             [&](const QToolButton *each) { return each->text() == QLatin1StringView(text); });
    }
    bool says(const char *text)
    {
        const auto labels = view().findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
            return label->isVisible() && label->text().contains(QString::fromUtf8(text));
        });
    }
};

} // namespace

TEST_F(CompareTest, OpensForTwoToNineAndGoesBackToThem)
{
    select({QStringLiteral("red")});
    EXPECT_FALSE(isEnabled(CommandID::Compare));
    open({QStringLiteral("red"), QStringLiteral("clear"), QStringLiteral("alike")});
    EXPECT_EQ(compared(), QStringLiteral("[red] clear alike"));
    EXPECT_EQ(selected(), QStringList{"red"}) << "what is done with what is selected is done with one";
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(compared(), QStringLiteral("red clear [alike]"));
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList{"clear"});
    press(Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_EQ(selected(), (QStringList{"red", "clear", "alike"}));
    run(CommandID::Compare);
    EXPECT_TRUE(isOpen());
    run(CommandID::NewTab);
    settle();
    EXPECT_FALSE(isOpen());
    run(CommandID::CloseTab);
    settle();
    EXPECT_EQ(compared(), QStringLiteral("[red] clear alike")) << "the tab was left so";
    view().setCurrentItem(image(QStringLiteral("clear"))->objectID());
    run(CommandID::Open);
    EXPECT_TRUE(browser().isDetailOpen());
    EXPECT_EQ(selected(), QStringList{"clear"}) << "the current one is opened";
    EXPECT_TRUE(view().items().isEmpty()) << "and no other held in memory";
    browser().closeDetail();
    select({QStringLiteral("red"), QStringLiteral("clear")});
    run(CommandID::Compare);
    EXPECT_TRUE(isOpen());
    show(b);
    EXPECT_FALSE(isOpen()) << "something else is shown";
}

TEST_F(CompareTest, DigitsRateTheCurrentOneAndNoOther)
{
    open({QStringLiteral("red"), QStringLiteral("alike")});
    press(Qt::Key_4);
    press(Qt::Key_Right);
    press(Qt::Key_2);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 4);
    EXPECT_EQ(image(QStringLiteral("alike"))->rating(), 2);
    EXPECT_TRUE(waitFor([this] { return facts(1).contains(QStringLiteral("<b>2 of 5</b>")); }))
        << facts(1).toStdString();
    EXPECT_TRUE(facts(0).contains(QStringLiteral("80 × 60")));
    EXPECT_FALSE(facts(0).contains(QStringLiteral("<b>80 × 60</b>"))) << "it is the same of both";
    EXPECT_TRUE(isOpen());
}

TEST_F(CompareTest, WhatIsTakenOutIsNotDeletedAndComesBack)
{
    open({QStringLiteral("red"), QStringLiteral("clear"), QStringLiteral("alike")});
    press(Qt::Key_Right);
    press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(compared(), QStringLiteral("red [clear] alike")) << "that is another key";
    press(Qt::Key_X);
    EXPECT_EQ(compared(), QStringLiteral("red [alike]"));
    EXPECT_EQ(QApplication::focusWidget(), &panes().at(1)->canvas()) << "in its stars, the next arrow would rate it";
    EXPECT_TRUE(image(QStringLiteral("clear"))->active());
    EXPECT_TRUE(says("1 taken out"));
    press(Qt::Key_X);
    EXPECT_EQ(compared(), QStringLiteral("[red]"));
    EXPECT_TRUE(says("There is nothing left to compare it with."));
    press(Qt::Key_X);
    press(Qt::Key_K);
    EXPECT_EQ(compared(), QStringLiteral("[red]")) << "the last one stays, and nobody else is there to go";
    EXPECT_EQ(controller->undoStack().count(), 0);
    press(Qt::Key_X, Qt::ShiftModifier);
    press(Qt::Key_X, Qt::ShiftModifier);
    EXPECT_EQ(compared(), QStringLiteral("red [clear] alike"));
    image(QStringLiteral("clear"))->setActive(false);
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] { return compared() == QStringLiteral("red [alike]"); })) << "it was deleted elsewhere";
}

TEST_F(CompareTest, TheOneIsKeptAndTheOthersGoAsOneStep)
{
    b->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    open({QStringLiteral("red"), QStringLiteral("alike")});
    press(Qt::Key_Right);
    press(Qt::Key_K);
    settle();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(selected(), QStringList{"alike"});
    EXPECT_FALSE(image(QStringLiteral("red"))->active());
    EXPECT_TRUE(b->containsItem(image(QStringLiteral("alike")).get()));
    EXPECT_TRUE(shown().contains(QStringLiteral("clear"))) << "what was not compared stays";
    press(Qt::Key_Z, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(image(QStringLiteral("red"))->active());
    EXPECT_FALSE(b->containsItem(image(QStringLiteral("alike")).get()));
}

TEST_F(CompareTest, ZoomAndPanAreLinkedUntilTheyAreNot)
{
    open({QStringLiteral("red"), QStringLiteral("clear")});
    CompareCanvas &first = panes().at(0)->canvas();
    CompareCanvas &second = panes().at(1)->canvas();
    EXPECT_DOUBLE_EQ(first.scale(), 1) << "the largest one is shown no larger than it is";
    EXPECT_NEAR(second.naturalSize().width() * second.scale(), 80, 1)
        << "and the others as large, but for a pane that is a point wider";
    run(CommandID::ZoomIn);
    EXPECT_DOUBLE_EQ(first.view().zoom, 1.25);
    EXPECT_EQ(second.view(), first.view());
    EXPECT_TRUE(says("125 %")) << "it is told of what is seen, not of what was";
    for (int i = 0; i < 12; ++i) {
        QWheelEvent wheel(QPointF(5, 5), first.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, {}, false);
        QApplication::sendEvent(&first, &wheel);
    }
    EXPECT_EQ(second.view(), first.view());
    const CompareZoom before = first.view();
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(first.view().center.x(), before.center.x());
    EXPECT_EQ(second.view(), first.view());
    press(Qt::Key_Z);
    EXPECT_DOUBLE_EQ(first.scale(), 1);
    press(Qt::Key_L);
    press(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(second.view().zoom, 1);
    EXPECT_DOUBLE_EQ(first.view().zoom, 1.25);
    press(Qt::Key_L);
    EXPECT_EQ(second.view(), first.view()) << "linked again, all follow the current one";
    press(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(second.view(), CompareZoom());
}

TEST_F(CompareTest, TwoOfOneSizeShowTheirDifference)
{
    open({QStringLiteral("red"), QStringLiteral("clear")});
    EXPECT_FALSE(button("Difference")->isEnabled());
    press(Qt::Key_D);
    EXPECT_FALSE(view().showsDifference()) << "they are of two sizes";
    EXPECT_EQ(QToolTip::text(), button("Difference")->toolTip()) << "and that is said";
    press(Qt::Key_Escape);
    open({QStringLiteral("red"), QStringLiteral("alike")});
    EXPECT_TRUE(button("Difference")->isEnabled());
    press(Qt::Key_Escape);
    open({QStringLiteral("red"), QStringLiteral("alike")});
    press(Qt::Key_D);
    EXPECT_TRUE(view().showsDifference());
    EXPECT_TRUE(waitFor([this] { return says("0.8 % of the pixels differ, by up to 100 of 255"); }));
    press(Qt::Key_X);
    EXPECT_FALSE(view().showsDifference());
    EXPECT_EQ(compared(), QStringLiteral("[alike]"));
    const QString path = world.filePath(QStringLiteral("in/large.png"));
    QImage large(400, 300, QImage::Format_RGB32);
    large.fill(Qt::blue);
    ASSERT_TRUE(large.save(path));
    for (const auto &[mostPixels, text] :
         {std::pair<qint64, const char *>{400 * 300, "The two are the same in every pixel."},
          {200 * 150, "No difference is seen at 200 × 150 pixels."}}) {
        QList<CompareView::Picture> same;
        for (const char *title : {"red", "alike"}) {
            same.append({image(QLatin1StringView(title))->objectID(), {}, {path, {}, large.size(), {}, mostPixels}, 0});
        }
        CompareView two;
        two.showPictures(same);
        two.show();
        two.setShowsDifference(true);
        EXPECT_TRUE(waitFor([&two, &text = text] {
            const auto labels = two.findChildren<QLabel *>();
            return std::any_of(labels.begin(), labels.end(),
                               [&](const QLabel *label) { return label->text().contains(QString::fromUtf8(text)); });
        })) << text;
    }
}

TEST_F(CompareTest, EachPictureSaysWhatItIsAndWhatCanBeDoneWithIt)
{
    open({QStringLiteral("red"), QStringLiteral("pages")});
    const auto spoken = [this](int pane) { return QAccessible::queryAccessibleInterface(&panes().at(pane)->canvas()); };
    QAccessibleInterface *first = spoken(0);
    EXPECT_EQ(first->role(), QAccessible::Graphic);
    EXPECT_EQ(first->text(QAccessible::Name), QStringLiteral("red"));
    EXPECT_TRUE(first->text(QAccessible::Description).contains(QStringLiteral("Size: 80 × 60, which differs")))
        << first->text(QAccessible::Description).toStdString();
    EXPECT_EQ(first->parent()->role(), QAccessible::Grouping);
    EXPECT_TRUE(first->state().selectable && first->state().selected && !first->state().busy);
    EXPECT_FALSE(spoken(1)->state().selected);
    press(Qt::Key_Right);
    EXPECT_FALSE(first->state().selected);
    EXPECT_TRUE(spoken(1)->state().selected);

    using Action = QAccessibleActionInterface;
    Action *actions = first->actionInterface();
    const QString before = first->text(QAccessible::Value);
    actions->doAction(Action::increaseAction());
    EXPECT_DOUBLE_EQ(panes().at(1)->canvas().view().zoom, 1.25) << "as with the key, of both";
    EXPECT_NE(first->text(QAccessible::Value), before);
    for (int i = 0; i < 12; ++i) {
        actions->doAction(Action::increaseAction());
    }
    const QPointF middle = panes().at(0)->canvas().view().center;
    actions->doAction(Action::scrollRightAction());
    EXPECT_GT(panes().at(0)->canvas().view().center.x(), middle.x());
    EXPECT_FALSE(actions->actionNames().contains(Action::nextPageAction())) << "it has one";
    spoken(1)->actionInterface()->doAction(Action::nextPageAction());
    EXPECT_EQ(panes().at(1)->canvas().document().page(), 1);
    actions->doAction(Action::setFocusAction());
    EXPECT_TRUE(first->state().selected);
}

TEST_F(CompareTest, FromRightToLeftTheFirstIsOnTheRight)
{
    view().setLayoutDirection(Qt::RightToLeft);
    open({QStringLiteral("red"), QStringLiteral("clear")});
    EXPECT_TRUE(waitFor([this] { return panes().at(0)->x() > panes().at(1)->x(); }));
    EXPECT_EQ(compared(), QStringLiteral("[red] clear"));
    press(Qt::Key_Left);
    EXPECT_EQ(compared(), QStringLiteral("red [clear]"));
    panes().at(0)->resize(400, panes().at(0)->height());
    for (QLabel *label : panes().at(0)->findChildren<QLabel *>()) {
        if (label->textFormat() != Qt::RichText) {
            continue;
        }
        const QImage image = label->grab().toImage();
        const auto isWritten = [&](int left, int right) {
            const QRgb ground = image.pixel(1, 1);
            for (int y = 0; y < image.height(); ++y) {
                for (int x = left; x < right; ++x) {
                    if (image.pixel(x, y) != ground) {
                        return true;
                    }
                }
            }
            return false;
        };
        EXPECT_TRUE(isWritten(image.width() - 60, image.width())) << "the facts begin on the right";
        EXPECT_FALSE(isWritten(0, 40));
    }
}
