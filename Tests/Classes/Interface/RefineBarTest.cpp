// What is shown is refined by a click, and the text says so.

#include "Classes/Interface/Browser/RefineBar.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Interface/Browser/FacetButton.h"
#include "Classes/Interface/Browser/FacetMenu.h"
#include "Classes/Interface/Browser/HiddenItems.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/MainWindowTest.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QLabel>
#include <QListWidget>
#include <QToolButton>

namespace {

class RefineBarTest : public MainWindowTest
{
protected:
    RefineBar &bar() { return *window().findChild<RefineBar *>(); }
    // Values and what opens the others, as they lie there; those that are chosen with a "+".
    QString values()
    {
        QStringList texts;
        for (const FacetButton *button : buttons()) {
            texts.append((button->isChecked() ? QStringLiteral("+") : QString()) +
                         button->accessibleName().section(u',', 0, 1));
        }
        return texts.join(u'|');
    }
    QList<FacetButton *> buttons()
    {
        QList<FacetButton *> shown;
        for (FacetButton *button : bar().findChildren<FacetButton *>()) {
            if (button->isVisible()) {
                shown.append(button);
            }
        }
        std::stable_sort(shown.begin(), shown.end(), [](const FacetButton *left, const FacetButton *right) {
            return std::pair(left->y(), left->x()) < std::pair(right->y(), right->x());
        });
        return shown;
    }
    FacetButton *button(const char *beginning)
    {
        for (FacetButton *each : buttons()) {
            if (each->accessibleName().startsWith(QString::fromUtf8(beginning))) {
                return each;
            }
        }
        return nullptr;
    }
    void open()
    {
        press(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
        ASSERT_TRUE(waitFor([this] { return !buttons().isEmpty(); }));
        settle();
    }
    void click(const char *beginning)
    {
        FacetButton *wanted = button(beginning);
        ASSERT_TRUE(wanted) << beginning << " of " << values().toStdString();
        QTest::mouseClick(wanted, Qt::LeftButton);
        settle();
    }
    QString head()
    {
        QStringList texts;
        for (const QLabel *label : browser().findChildren<QLabel *>(QStringLiteral("Muted"))) {
            if (label->isVisible() && label->text().contains(QStringLiteral("item"))) {
                texts.append(label->text());
            }
        }
        return texts.join(u'|');
    }
    QString status()
    {
        for (const QLabel *label : browser().findChildren<QLabel *>(QStringLiteral("SmallMuted"))) {
            if (label->isVisible()) {
                return label->text();
            }
        }
        return {};
    }
};

class RefineBarStates : public WindowFixture
{
protected:
    RefineBarStates() : project(addProject(QStringLiteral("Project"))), image(library.addImage(QStringLiteral("a")))
    {
        project->addItem(image.get());
        library.context().save();
        index->follow(library.context());
        fetcher.setIndex(index);
        bar = std::make_unique<RefineBar>(window);
        bar->resize(800, 100);
        bar->show();
        ContentQuery query;
        query.sidebarItems = {project->objectID()};
        bar->setContent(query);
    }
    bool waitUntilItSays(const QString &text)
    {
        return QTest::qWaitFor([&] { return fetcher.isIdle() && said() == text; }, 10000);
    }
    // What stands there instead of values; "values" for those.
    QString said() const
    {
        QStringList texts;
        for (const QWidget *each : bar->findChildren<QWidget *>()) {
            const auto *label = qobject_cast<const QLabel *>(each);
            if (each->isVisible() && label && label->objectName() == QStringLiteral("SmallMuted")) {
                texts.append(label->text());
            } else if (each->isVisible() && !texts.contains(QStringLiteral("values"))) {
                texts.append(QStringLiteral("values"));
            }
        }
        return texts.join(u'|');
    }

    const QString values = QStringLiteral("values");
    const QString failed = QStringLiteral("The items could not be counted");
    Item project;
    ZQRef<ZQLibraryImage> image;
    std::shared_ptr<LibraryIndex> index = std::make_shared<LibraryIndex>(library.coordinator());
    std::unique_ptr<RefineBar> bar;
};

} // namespace

TEST_F(RefineBarStates, ItCountsUntilTheIndexIsThereAndSaysWhenACountFails)
{
    EXPECT_TRUE(waitUntilItSays(QStringLiteral("Counting…")));
    index->start();
    EXPECT_TRUE(waitUntilItSays(values)) << said().toStdString();
    library.renameTable("ZQSidebarBaseItem", "away");
    bar->recount();
    EXPECT_TRUE(waitUntilItSays(failed)) << said().toStdString();
    EXPECT_TRUE(bar->facets().isEmpty());
    library.renameTable("away", "ZQSidebarBaseItem");
    bar->recount();
    EXPECT_TRUE(waitUntilItSays(values)) << said().toStdString();
    bar->setContent({});
    EXPECT_TRUE(waitUntilItSays(QString())) << "nothing is shown that could be refined";
}

TEST_F(RefineBarStates, FromRightToLeftItIsTheOtherWayRound)
{
    index->start();
    ASSERT_TRUE(waitUntilItSays(values));
    const auto places = [&](bool isMirrored) {
        QStringList result;
        for (const QWidget *each : bar->findChildren<QWidget *>()) {
            const QRect place = each->geometry();
            const int x = isMirrored ? bar->width() - place.left() - place.width() : place.left();
            result.append(each->isVisible() ? QStringLiteral("%1 %2").arg(x).arg(place.y()) : QString());
        }
        return result.join(u'|').toStdString();
    };
    for (const int width : {800, 180}) { // in one line, and in several
        bar->setLayoutDirection(Qt::LeftToRight);
        bar->resize(width, bar->heightForWidth(width));
        const std::string usual = places(false);
        bar->setLayoutDirection(Qt::RightToLeft);
        EXPECT_EQ(places(true), usual) << width;
        EXPECT_NE(places(false), usual) << width;
    }
}

TEST(FacetButton, BeginsWithItsDotWhereReadingDoes)
{
    FacetValue value;
    value.color = int(ZQSidebarKind::FirstColor) + 3;
    value.count = 1234;
    FacetButton button;
    button.showValue(FacetKind::Color, value);
    button.resize(button.sizeHint());
    const QColor color = ZQTheme::swatch(value.color);
    const auto isDot = [&](const QImage &image, int x) { return image.pixelColor(x, image.height() / 2) == color; };
    const QImage usual = button.grab().toImage();
    button.setLayoutDirection(Qt::RightToLeft);
    const QImage other = button.grab().toImage();
    ASSERT_TRUE(isDot(usual, 14));
    for (int x = 0; x < usual.width(); ++x) {
        EXPECT_EQ(isDot(other, usual.width() - 1 - x), isDot(usual, x)) << x;
    }
}

TEST_F(RefineBarStates, AnIndexThatCannotBeBuiltIsNotWaitedFor)
{
    library.renameTable("ZQLibraryBaseItem", "away");
    index->start();
    EXPECT_TRUE(waitUntilItSays(failed)) << said().toStdString();
    library.renameTable("away", "ZQLibraryBaseItem");
    image->setRating(3);
    library.context().save();
    EXPECT_TRUE(waitUntilItSays(values)) << said().toStdString();
}

TEST_F(RefineBarTest, WhatStandsThereOfAnotherPlaceCannotBeChosen)
{
    open();
    FacetButton *const chosen = buttons().first();
    ASSERT_TRUE(chosen->isEnabled());
    search().setFocus();
    type(QStringLiteral("e"));
    EXPECT_TRUE(chosen->isEnabled()) << "a key leaves it as it is";
    settle();
    search().clear();
    settle();
    browser().showSidebarItems({b->objectID()});
    EXPECT_FALSE(chosen->isEnabled()) << "the new counts are not there";
    const QString before = search().text();
    chosen->click();
    bar().choose(chosen->kind(), chosen->token());
    EXPECT_EQ(search().text(), before);
    settle();
    EXPECT_TRUE(waitFor([this] { return bar().isEnabled(); }));
}

TEST_F(RefineBarTest, AClickPutsATokenIntoTheTextAndTakesItOutAgain)
{
    EXPECT_FALSE(bar().isVisible());
    EXPECT_FALSE(controller->command(CommandID::RefineBar)->isChecked());
    open();
    EXPECT_TRUE(controller->command(CommandID::RefineBar)->isChecked());
    ASSERT_TRUE(button("PNG")) << values().toStdString();
    EXPECT_EQ(button("PNG")->accessibleName(), QStringLiteral("PNG, 2 items, not chosen"));
    EXPECT_EQ(button("PDF")->accessibleName(), QStringLiteral("PDF, 1 item, not chosen"));
    click("PNG");
    EXPECT_EQ(search().text(), QStringLiteral("#kind png"));
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("red"), QStringLiteral("clear")}));
    EXPECT_EQ(button("PNG")->accessibleName(), QStringLiteral("PNG, 2 items, chosen"));
    EXPECT_TRUE(button("PDF")) << "another kind can take its place";
    click("PDF");
    EXPECT_EQ(search().text(), QStringLiteral("#kind pdf"));
    EXPECT_EQ(shown(), QStringList{QStringLiteral("pages")});
    click("PDF");
    EXPECT_EQ(search().text(), QString());
    EXPECT_EQ(shown().size(), 4);

    search().setFocus();
    type(QStringLiteral("e"));
    settle();
    click("unrated");
    EXPECT_EQ(search().text(), QStringLiteral("e #rating=0"));
    EXPECT_EQ(QApplication::focusWidget(), &search()) << "typing goes on";
    search().undo();
    EXPECT_EQ(search().text(), QStringLiteral("e"));
}

TEST_F(RefineBarTest, AClickTakesAwayWhatTheFieldSaysOtherwise)
{
    open();
    const auto typed = [this](const char *text, bool isCounted) {
        search().clear();
        settle();
        search().setText(QString::fromUtf8(text));
        if (isCounted) {
            settle();
        }
    };
    for (const bool isCounted : {true, false}) { // or as the bar was before it was typed
        SCOPED_TRACE(isCounted);
        typed("#e png", isCounted);
        click("PNG");
        EXPECT_EQ(search().text(), QString());
        typed("#e png OR moving", isCounted);
        click("PNG");
        EXPECT_EQ(search().text(), QStringLiteral("moving"));
        typed("#e png #kind png", isCounted);
        click("PNG");
        EXPECT_EQ(search().text(), QString());
        typed("red", isCounted);
        click("PNG");
        EXPECT_EQ(search().text(), QStringLiteral("red #kind png")) << "what was typed stays";
    }
    typed("#e png", true);
    EXPECT_EQ(values().count(QStringLiteral("PNG"), Qt::CaseInsensitive), 1) << values().toStdString();
    EXPECT_TRUE(values().startsWith(QStringLiteral("+PNG"))) << values().toStdString();
}

TEST_F(RefineBarTest, CountsFollowWhatIsShownAndWhatIsChanged)
{
    open();
    EXPECT_TRUE(button("unrated, 4 items"));
    select({QStringLiteral("red")});
    grid().setFocus();
    press(Qt::Key_4);
    EXPECT_TRUE(waitFor([this] { return button("4 stars or more, 1 item") != nullptr; })) << values().toStdString();
    tag->addItems({image(QStringLiteral("red")), image(QStringLiteral("pages"))});
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] { return button("mine, 2 items") != nullptr; })) << values().toStdString();
    click("mine");
    EXPECT_EQ(search().text(), QStringLiteral("#tag mine"));
    EXPECT_TRUE(button("4 stars or more, 1 item"));
    EXPECT_TRUE(button("unrated, 1 item"));
    show(b);
    EXPECT_TRUE(waitFor([this] { return !button("unrated"); })) << "nothing is in there";
}

TEST_F(RefineBarTest, ItIsOneTabStopInWhichTheArrowsMove)
{
    open();
    grid().setFocus();
    QWidget *before = nullptr;
    for (int i = 0; i < 40 && !qobject_cast<FacetButton *>(QApplication::focusWidget()); ++i) {
        before = QApplication::focusWidget();
        press(Qt::Key_Backtab, Qt::ShiftModifier);
        ASSERT_NE(QApplication::focusWidget(), before);
    }
    const QList<FacetButton *> all = buttons();
    auto *first = qobject_cast<FacetButton *>(QApplication::focusWidget());
    ASSERT_TRUE(first);
    EXPECT_EQ(first, all.first());
    press(Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), all.at(1));
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    EXPECT_EQ(QApplication::focusWidget(), all.first());
    press(Qt::Key_End);
    EXPECT_EQ(QApplication::focusWidget(), all.last());
    press(Qt::Key_Home);
    const QString token = first->token();
    press(Qt::Key_Space);
    EXPECT_EQ(search().text(), token);
    settle();
    auto *now = qobject_cast<FacetButton *>(QApplication::focusWidget());
    ASSERT_TRUE(now);
    EXPECT_EQ(now->token(), token) << "the focus stays with the value";
    press(Qt::Key_Return);
    EXPECT_EQ(search().text(), QString());
    settle();
    press(Qt::Key_Tab);
    EXPECT_FALSE(qobject_cast<FacetButton *>(QApplication::focusWidget()));
}

TEST_F(RefineBarTest, ItComesRightBeforeTheGrid)
{
    open();
    grid().setFocus();
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), buttons().first());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(RefineBarTest, AMenuHasAllValuesAndFindsAmongThem)
{
    for (int i = 1; i <= 9; ++i) {
        const auto made = ZQSidebarTag::getOrCreateTagWithName(QStringLiteral("tag %1").arg(i), context());
        made->addItems({image(QStringLiteral("red"))});
    }
    delegate->saveAction();
    open();
    ASSERT_TRUE(waitFor([this] { return button("Tag: 5 more") != nullptr; })) << values().toStdString();
    click("Tag: 5 more");
    auto *popup = qobject_cast<FacetMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(popup);
    auto *list = popup->findChild<QListWidget *>();
    EXPECT_EQ(list->count(), 9);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("tag 1  1"));
    auto *field = popup->findChild<QLineEdit *>();
    QTest::keyClicks(field, QStringLiteral("8"));
    EXPECT_TRUE(list->item(0)->isHidden());
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(search().text(), QStringLiteral("#tag \"tag 8\""));
    settle();
    EXPECT_TRUE(button("tag 8")) << "what is chosen is shown";
    EXPECT_TRUE(button("tag 8")->isChecked());
    click("Tag: ");
    popup = qobject_cast<FacetMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(popup);
    QTest::keyClick(popup->findChild<QLineEdit *>(), Qt::Key_Escape);
    EXPECT_FALSE(QApplication::activePopupWidget());
    EXPECT_EQ(search().text(), QStringLiteral("#tag \"tag 8\""));
}

TEST_F(RefineBarTest, ItIsThereAgainAtTheNextLaunch)
{
    open();
    closeWindow();
    openWindow();
    EXPECT_TRUE(bar().isVisible());
    EXPECT_TRUE(controller->command(CommandID::RefineBar)->isChecked());
    EXPECT_TRUE(waitFor([this] { return !buttons().isEmpty(); })) << "once the index is ready";
    run(CommandID::RefineBar);
    EXPECT_FALSE(bar().isVisible());
    closeWindow();
    openWindow();
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(RefineBarTest, WhatATextHidesIsCountedAndShownAgainByAClick)
{
    auto *hidden = window().findChild<HiddenItems *>();
    EXPECT_FALSE(hidden->isVisible());
    search().setFocus();
    type(QStringLiteral("moving"));
    settle();
    EXPECT_EQ(status(), QStringLiteral("1 shown, 3 hidden"));
    EXPECT_EQ(head(), QStringLiteral("1 of 4 items"));
    select({QStringLiteral("moving")});
    EXPECT_EQ(status(), QStringLiteral("1 of 1 selected  ·  3 hidden"));
    EXPECT_TRUE(waitFor([hidden] { return hidden->accessibleName() == QStringLiteral("1 shown, 3 hidden"); }));
    closeWindow();
    openWindow();
    settle();
    EXPECT_EQ(head(), QStringLiteral("1 of 4 items")) << "though it was never shown without its text";
    b->addItem(image(QStringLiteral("red")).get());
    const auto more = context().insertNewObject<ZQLibraryImage>();
    more->setTitle(QStringLiteral("more"));
    more->setActive(true);
    a->addItem(more.get());
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] { return head() == QStringLiteral("1 of 5 items"); })) << head().toStdString();
    auto *showAll = named<QToolButton>("Show all");
    ASSERT_TRUE(showAll);
    QTest::mouseClick(showAll, Qt::LeftButton);
    EXPECT_EQ(search().text(), QString());
    settle();
    EXPECT_EQ(head(), QStringLiteral("5 items"));
    EXPECT_FALSE(showAll->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}
