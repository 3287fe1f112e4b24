// What helps in the search field: completions, chips, and what is wrong.

#include "Classes/Interface/Browser/SearchChips.h"
#include "Classes/Interface/Window/CompletionList.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QLabel>
#include <QWheelEvent>

namespace {

class SearchFieldTest : public MainWindowTest
{
protected:
    CompletionList &list() { return *window().findChild<CompletionList *>(); }
    SearchChips &chips() { return *window().findChild<SearchChips *>(); }
    QString hint()
    {
        const auto *label = window().findChild<QLabel *>(QStringLiteral("FieldHint"));
        return label->isVisible() ? label->text() : QString();
    }
    QString options()
    {
        QStringList texts;
        for (const SearchCompletion &option : list().isVisible() ? list().options() : QList<SearchCompletion>()) {
            texts.append(option.text);
        }
        return texts.join(u' ');
    }
    // Whether a chip tells what is wrong with a token.
    bool saysWhatIsWrong()
    {
        const QString said = chips().isVisible() ? chips().accessibleName() : QString();
        return said.contains(u'#');
    }
    void enter(const char *text)
    {
        search().setFocus();
        search().clear();
        type(QString::fromUtf8(text));
    }
};

} // namespace

TEST_F(SearchFieldTest, TokensAreCompletedByKeys)
{
    enter("#");
    EXPECT_TRUE(options().startsWith(QStringLiteral("#title #notes #ext #tag"))) << options().toStdString();
    const QPoint corner = search().mapTo(&window(), QPoint(search().width(), search().height()));
    EXPECT_GE(list().y(), corner.y()) << "not over the field";
    EXPECT_EQ(list().geometry().right() + 1, corner.x());
    EXPECT_EQ(QApplication::focusWidget(), &search());
    type(QStringLiteral("co"));
    EXPECT_EQ(options(), QStringLiteral("#color"));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(search().text(), QStringLiteral("#color "));
    EXPECT_EQ(QApplication::focusWidget(), &search());
    ASSERT_TRUE(options().startsWith(QStringLiteral("white black"))) << options().toStdString();
    EXPECT_EQ(list().options().first().color, int(ZQSidebarKind::FirstColor));
    press(Qt::Key_Up);
    EXPECT_EQ(list().current()->text, QStringLiteral("none")) << "up begins at the end";
    press(Qt::Key_Down);
    EXPECT_FALSE(list().current());
    type(QStringLiteral("bl"));
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#color blue "));
    EXPECT_EQ(QApplication::focusWidget(), &search());
    EXPECT_EQ(options(), QString());
    search().undo();
    EXPECT_EQ(search().text(), QStringLiteral("#color bl")) << "as if it had been typed";
    enter("#color whit");
    EXPECT_EQ(options(), QStringLiteral("white"));
    type(QStringLiteral("e"));
    EXPECT_EQ(options(), QStringLiteral("white~4 white~10 white~20")) << "how near, once it is typed in full";
    type(QStringLiteral("~4"));
    EXPECT_EQ(options(), QString());
}

TEST_F(SearchFieldTest, EnterGoesOnWhereNothingIsChosenAndEscGoesStepByStep)
{
    enter("#ti");
    EXPECT_EQ(options(), QStringLiteral("#title"));
    press(Qt::Key_Return);
    EXPECT_EQ(search().text(), QStringLiteral("#ti"));
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_FALSE(list().isVisible());
    enter("#ti");
    press(Qt::Key_Escape);
    EXPECT_FALSE(list().isVisible());
    EXPECT_EQ(search().text(), QStringLiteral("#ti"));
    press(Qt::Key_Down);
    EXPECT_EQ(options(), QStringLiteral("#title")) << "it comes back when it is asked for";
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    EXPECT_EQ(search().text(), QString());
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(SearchFieldTest, TabTakesWhatIsOfferedAndGoesOnWhereNothingIs)
{
    const auto often = ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("minestrone"), context());
    often->addItems({image(QStringLiteral("red"))});
    delegate->saveAction();
    settle();
    enter("#co");
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#color "));
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#color white "));
    EXPECT_EQ(QApplication::focusWidget(), &search());
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#color white "));
    EXPECT_NE(QApplication::focusWidget(), &search()) << "nothing is offered any more";
    enter("#tag mine");
    ASSERT_TRUE(waitFor([this] { return options() == QStringLiteral("minestrone mine"); })) << options().toStdString();
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#tag mine ")) << "it was typed to the end";
    enter("#n");
    EXPECT_TRUE(options().startsWith(QStringLiteral("#title #notes"))) << options().toStdString();
    press(Qt::Key_Tab);
    EXPECT_EQ(search().text(), QStringLiteral("#notes ")) << "which it is short for";
    enter("#ti");
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(search().text(), QStringLiteral("#ti"));
    EXPECT_NE(QApplication::focusWidget(), &search());
}

TEST_F(SearchFieldTest, ATokenThatIsOnlyBegunIsNoMistakeUntilTheCursorLeavesIt)
{
    enter("red ");
    for (const char *typed : {"#", "z", "z"}) {
        type(QLatin1StringView(typed));
        settle();
        EXPECT_FALSE(chips().isVisible()) << search().text().toStdString();
    }
    type(QStringLiteral(" "));
    settle();
    EXPECT_TRUE(chips().isVisible());
    EXPECT_EQ(chips().count(), 2);
    press(Qt::Key_Left);
    EXPECT_TRUE(chips().isVisible()) << "a blank ends it";
    press(Qt::Key_Delete);
    settle();
    EXPECT_FALSE(chips().isVisible());
    press(Qt::Key_Home);
    EXPECT_TRUE(chips().isVisible());
    press(Qt::Key_End);
    EXPECT_FALSE(chips().isVisible());
    for (const char *text : {"#w", "#wid", "-#tag", "#tag=", "(red #col"}) {
        enter(text);
        settle();
        EXPECT_FALSE(saysWhatIsWrong()) << text;
    }
    for (const char *text : {"#zz=5", "#tag>", "#w<>3", "#tag \"\"", "#zz)"}) {
        enter(text);
        settle();
        EXPECT_TRUE(saysWhatIsWrong()) << text;
    }
    enter("red #zz");
    grid().setFocus();
    EXPECT_TRUE(chips().isVisible());
    EXPECT_EQ(chips().count(), 2);
    search().setFocus();
    EXPECT_FALSE(chips().isVisible());
}

TEST_F(SearchFieldTest, AllChipsHaveRoomInTheWindow)
{
    enter(
        "#w>10 #h>10 #r>2 #c blue #kind png #tag mine #e png #di=7d #d=today #w<9000 #h<9000 #title red #notes a #f x");
    settle();
    ASSERT_EQ(chips().count(), 14);
    const int oneRow = ZQMeasure::groupHeadHeight;
    EXPECT_GT(chips().height(), oneRow);
    for (int i = 0; i < chips().count(); ++i) {
        EXPECT_TRUE(chips().rect().contains(chips().chipRect(i))) << i;
        EXPECT_TRUE(i == 0 || !chips().chipRect(i).intersects(chips().chipRect(i - 1))) << i;
    }
    EXPECT_LE(chips().geometry().bottom(), grid().mapTo(chips().parentWidget(), QPoint()).y());
    enter("#w>10");
    settle();
    EXPECT_EQ(chips().height(), oneRow);
}

TEST(SearchChipsTest, OfMoreRowsThanThreeTheOneWithTheFocusIsShown)
{
    SearchChips chips;
    chips.resize(300, ZQMeasure::groupHeadHeight);
    QString text;
    for (int i = 0; i < 20; ++i) {
        text += QStringLiteral("#width>%1 ").arg(1000 + i);
    }
    chips.setText(text);
    const auto shown = [&chips] {
        int count = 0;
        for (int i = 0; i < chips.count(); ++i) {
            const bool isInside = chips.rect().contains(chips.chipRect(i));
            EXPECT_EQ(isInside, chips.isShown(i)) << i;
            EXPECT_FALSE(isInside && chips.chipRect(i).intersects(chips.moreRect())) << i;
            count += isInside ? 1 : 0;
        }
        EXPECT_EQ(chips.moreText(), QStringLiteral("%1 more").arg(chips.count() - count));
        EXPECT_TRUE(chips.rect().contains(chips.moreRect()));
        return count;
    };
    EXPECT_GE(shown(), 3);
    for (int i = 1; i < chips.count(); ++i) {
        QTest::keyClick(&chips, Qt::Key_Right);
        EXPECT_TRUE(chips.accessibleDescription().startsWith(QStringLiteral("#width>%1:").arg(1000 + i)));
        EXPECT_TRUE(chips.isShown(i)) << i;
    }
    EXPECT_GE(shown(), 1);
    QTest::keyClick(&chips, Qt::Key_Home);
    EXPECT_TRUE(chips.isShown(0));
    const int first = shown();
    QTest::mouseClick(&chips, Qt::LeftButton, {}, chips.moreRect().center());
    EXPECT_FALSE(chips.isShown(0));
    EXPECT_TRUE(chips.isShown(first)) << "those that come next";
    chips.resize(3000, chips.height());
    EXPECT_EQ(chips.moreText(), QString());
    EXPECT_TRUE(chips.isShown(0));
    chips.setText(QStringLiteral("#title %1 ").arg(QString(60, u'm')));
    chips.resize(200, chips.height());
    EXPECT_TRUE(chips.rect().contains(chips.crossRect(0))) << "a long one can be taken out";
}

TEST(SearchChipsTest, TheWheelTurnsByRowsFromTheFirstToTheLast)
{
    SearchChips chips;
    chips.resize(300, ZQMeasure::groupHeadHeight);
    QString text;
    for (int i = 0; i < 20; ++i) {
        text += QStringLiteral("#width>%1 ").arg(1000 + i);
    }
    chips.setText(text);
    const auto turn = [&chips](int by) {
        QWheelEvent event(chips.rect().center(), chips.mapToGlobal(chips.rect().center()), {}, {0, by}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&chips, &event);
    };
    ASSERT_TRUE(chips.isShown(0));
    const int top = chips.chipRect(0).top();
    int second = 0; // the first chip of the second row
    while (chips.chipRect(second).top() == top) {
        ++second;
    }
    const int step = chips.chipRect(second).top() - top;
    turn(120);
    EXPECT_TRUE(chips.isShown(0)) << "there is nothing above";
    turn(-120);
    EXPECT_FALSE(chips.isShown(second - 1));
    EXPECT_TRUE(chips.isShown(second));
    EXPECT_EQ(chips.chipRect(second).top(), top);
    turn(120);
    EXPECT_EQ(chips.chipRect(0).top(), top);
    for (int i = 0; i < chips.count(); ++i) {
        turn(-120);
    }
    EXPECT_TRUE(chips.isShown(chips.count() - 1));
    EXPECT_EQ(chips.chipRect(chips.count() - 1).top(), top + 2 * step) << "in the last row";
}

TEST(SearchChipsTest, ThreeRowsThatHoldAllOfThemLeaveNoRoomForANumber)
{
    SearchChips chips;
    chips.setText(QStringLiteral("#width>1000 #width>1000 #width>1000"));
    chips.resize(2000, chips.height());
    const int oneRow = chips.height();
    const int wide = chips.chipRect(0).width();
    const int margin = chips.chipRect(0).left();
    for (const int room : {wide, wide + 20}) { // a chip a row, and no room for a second one
        chips.resize(room + 2 * margin, chips.height());
        EXPECT_GT(chips.height(), oneRow);
        EXPECT_EQ(chips.moreText(), QString());
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(chips.isShown(i)) << i;
            EXPECT_EQ(chips.chipRect(i).width(), wide) << "not cut for the number of those that are not shown";
        }
    }
}

TEST(SearchChipsTest, WhatJoinsTheChipsStandsBetweenThemAndIsSaid)
{
    SearchChips chips;
    chips.resize(1200, ZQMeasure::groupHeadHeight);
    chips.setText(QStringLiteral("(#rating>3 OR map) #c blue AND NOT ((red x) OR +y)"));
    QStringList drawn;
    for (int i = 0; i < chips.count(); ++i) {
        drawn.append(chips.joins(i) + u'|' + chips.closings(i));
    }
    EXPECT_EQ(drawn.join(u' ').toStdString(), "(| or|) | and not ( (| |) or|)");
    const QStringList said = chips.accessibleName().split(u'\n');
    ASSERT_EQ(said.size(), 6);
    EXPECT_TRUE(said[0].startsWith(QStringLiteral("Search: open bracket #rating>3: "))) << said[0].toStdString();
    EXPECT_TRUE(said[1].startsWith(QStringLiteral("or map: "))) << said[1].toStdString();
    EXPECT_TRUE(said[1].endsWith(QStringLiteral(" close bracket"))) << said[1].toStdString();
    QTest::keyClick(&chips, Qt::Key_Right);
    EXPECT_EQ(chips.accessibleDescription(), said[1]);
    const QImage picture = chips.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const qreal scale = picture.devicePixelRatio();
    const auto colorsBetween = [&](int from, int to) {
        QSet<QRgb> colors;
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < chips.height(); ++y) {
                colors.insert(picture.pixel(int(x * scale), int(y * scale)));
            }
        }
        return colors.size();
    };
    EXPECT_GT(colorsBetween(0, chips.chipRect(0).left() - 1), 1) << "the bracket";
    EXPECT_GT(colorsBetween(chips.chipRect(0).right() + 2, chips.chipRect(1).left() - 1), 1) << "or";
    EXPECT_EQ(colorsBetween(chips.chipRect(3).right() + 2, chips.chipRect(4).left() - 1), 1) << "nothing is there";
}

TEST_F(SearchFieldTest, NamesOfTheLibraryAreOfferedAndTakenByAClick)
{
    const auto often = ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("summer 2026"), context());
    often->addItems({image(QStringLiteral("red"))});
    delegate->saveAction();
    settle();
    enter("#tag ");
    EXPECT_TRUE(waitFor([this] { return options().startsWith(QStringLiteral("summer 2026 mine")); }))
        << options().toStdString();
    EXPECT_EQ(list().options().first().meaning, QStringLiteral("1 item"));
    type(QStringLiteral("mi"));
    EXPECT_EQ(options(), QStringLiteral("mine"));
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    QTest::mouseMove(&list(), list().rowRect(0).center());
    QTest::mouseClick(&list(), Qt::LeftButton, {}, list().rowRect(0).center());
    EXPECT_EQ(search().text(), QStringLiteral("#tag \"summer 2026\" "));
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("red")});
    enter("#project i");
    EXPECT_TRUE(waitFor([this] { return options() == QStringLiteral("Inner"); })) << options().toStdString();
    enter("#kind p");
    EXPECT_TRUE(waitFor([this] { return options() == QStringLiteral("png pdf"); })) << options().toStdString();
}

TEST_F(SearchFieldTest, AChipSelectsItsPartAndIsTakenOut)
{
    enter("red #w>10 #d=31/02");
    settle();
    ASSERT_EQ(chips().count(), 3);
    const auto click = [this](const QPoint &place) {
        QTest::mouseClick(&chips(), Qt::LeftButton, {}, place);
        settle();
    };
    click(chips().chipRect(1).center() - QPoint(9, 0));
    EXPECT_EQ(search().selectedText(), QStringLiteral("#w>10"));
    EXPECT_EQ(QApplication::focusWidget(), &search());
    click(chips().chipRect(2).topLeft() + QPoint(10, 10));
    EXPECT_EQ(search().selectedText(), QStringLiteral("#d=31/02"));
    EXPECT_TRUE(hint().startsWith(QStringLiteral("“31/02” is no date"))) << hint().toStdString();
    click(chips().crossRect(2).center());
    EXPECT_EQ(search().text(), QStringLiteral("red #w>10"));
    EXPECT_EQ(hint(), QString());

    grid().setFocus();
    for (int i = 0; i < 60 && QApplication::focusWidget() != &chips(); ++i) {
        press(Qt::Key_Backtab, Qt::ShiftModifier);
    }
    ASSERT_EQ(QApplication::focusWidget(), &chips());
    press(Qt::Key_End);
    EXPECT_TRUE(chips().accessibleDescription().startsWith(QStringLiteral("#w>10: Width > 10")));
    press(Qt::Key_Left);
    press(Qt::Key_Delete);
    EXPECT_EQ(search().text(), QStringLiteral("#w>10"));
    EXPECT_EQ(QApplication::focusWidget(), &chips()) << "nothing else is deleted";
    EXPECT_TRUE(a->containsItem(image(QStringLiteral("red")).get()));
    press(Qt::Key_Return);
    EXPECT_EQ(search().selectedText(), QStringLiteral("#w>10"));
}

TEST_F(SearchFieldTest, WhatIsWrongIsSaidBelowTheFieldWhileItHasTheFocus)
{
    enter("#d=31/02 ");
    EXPECT_TRUE(hint().startsWith(QStringLiteral("“31/02” is no date"))) << hint().toStdString();
    const auto *label = window().findChild<QLabel *>(QStringLiteral("FieldHint"));
    const QPoint corner = search().mapTo(&window(), QPoint(search().width(), search().height()));
    EXPECT_GE(label->y(), corner.y());
    EXPECT_LE(label->geometry().right(), window().width());
    press(Qt::Key_Return);
    EXPECT_EQ(hint(), QString()) << "the chip says it from then on";
    enter("red (");
    EXPECT_EQ(hint(), QString()) << "more may come";
    EXPECT_TRUE(waitFor([this] { return !hint().isEmpty(); })) << "nothing came";
    press(Qt::Key_Escape);
    EXPECT_EQ(hint(), QString());
    enter("#");
    EXPECT_TRUE(list().isVisible());
    EXPECT_EQ(hint(), QString()) << "the list lies there";
}
