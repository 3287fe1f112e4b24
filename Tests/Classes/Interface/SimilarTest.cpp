// What looks like a picture, and what looks alike.

#include "Classes/Interface/Browser/BrowserHead.h"
#include "Classes/Interface/Browser/ColorWheel.h"
#include "Classes/Interface/Browser/SearchChips.h"
#include "Classes/Interface/Sheets/NearDuplicatesSheet.h"
#include "Kit/Imaging/ZQPictureHash.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QUndoStack>

namespace {

class SimilarTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        // So many bits from "red".
        for (const auto &[title, bits] : {std::pair{"red", 0}, {"pages", 40}, {"clear", 10}, {"moving", 120}}) {
            ZQPictureHash hash;
            for (int bit = 0; bit < bits; ++bit) {
                hash.words[size_t(bit / 64)] |= quint64(1) << (bit % 64);
            }
            image(QLatin1StringView(title))->setPictureHash(hash.bytes());
        }
        delegate->saveAction();
        settle();
    }
    QString text() { return window().findChild<QLineEdit *>(QStringLiteral("Search"))->text(); }
    QSlider *slider() { return named<QSlider>("How near"); }
    static QListWidget *list(const NearDuplicatesSheet &sheet, const char *name)
    {
        const auto lists = sheet.findChildren<QListWidget *>();
        return *std::find_if(lists.begin(), lists.end(),
                             [&](QListWidget *each) { return each->accessibleName() == QLatin1StringView(name); });
    }
    QString tabName() { return browser().content().tab().tabName(); }
};

} // namespace

TEST_F(SimilarTest, ShowsWhatIsLikeAPictureTheNearestFirst)
{
    EXPECT_FALSE(slider());
    select({QStringLiteral("red"), QStringLiteral("clear")});
    EXPECT_FALSE(isEnabled(CommandID::FindSimilar));
    select({QStringLiteral("red")});
    run(CommandID::FindSimilar);
    settle();
    EXPECT_EQ(text(), QStringLiteral("#like ") + image(QStringLiteral("red"))->bundleID());
    EXPECT_EQ(tabName(), QStringLiteral("Like red"));
    EXPECT_EQ(window().findChild<SearchChips *>()->accessiblePart(0).name,
              QStringLiteral("#like red: Looks like “red”"));
    EXPECT_EQ(shown(), (QStringList{"red", "clear", "pages"}));
    EXPECT_TRUE(named("Sort: Nearness"));
    for (int id = int(CommandID::SortManually); id <= int(CommandID::SortByHue); ++id) {
        EXPECT_FALSE(controller->command(CommandID(id))->isChecked()) << id;
    }
    ASSERT_TRUE(slider());
    EXPECT_EQ(slider()->value(), slider()->maximum());
    const QString widest = slider()->accessibleDescription();
    slider()->setValue(20);
    EXPECT_TRUE(waitFor([this] { return text().endsWith(QStringLiteral("~20")); })) << text().toStdString();
    EXPECT_EQ(slider()->accessibleDescription(), QStringLiteral("Likeness 81 % or more"));
    EXPECT_NE(slider()->accessibleDescription(), widest);
    settle();
    EXPECT_EQ(shown(), (QStringList{"red", "clear"}));

    browser().head().setSort(ZQSortValue::Title, true);
    settle();
    EXPECT_EQ(shown(), (QStringList{"clear", "red"})) << "another order can be chosen";
    whenMenuOpens(QStringLiteral("Nearness"));
    named<QAbstractButton>("Sort: Title")->click();
    settle();
    EXPECT_EQ(shown(), (QStringList{"red", "clear"}));

    closeWindow();
    openWindow();
    settle();
    EXPECT_EQ(tabName(), QStringLiteral("Like red"));
    EXPECT_EQ(shown(), (QStringList{"red", "clear"})) << "as it was left";
    EXPECT_EQ(slider()->value(), 20);
    run(CommandID::CloseTab);
    settle();
    EXPECT_EQ(shown().size(), 4);
    EXPECT_FALSE(slider());
}

TEST_F(SimilarTest, ThePictureItselfComesBeforeWhatLooksTheSame)
{
    image(QStringLiteral("clear"))->setPictureHash(image(QStringLiteral("red"))->pictureHash());
    delegate->saveAction();
    settle();
    for (const QString &title : {QStringLiteral("red"), QStringLiteral("clear")}) {
        select({title});
        run(CommandID::FindSimilar);
        settle();
        EXPECT_EQ(shown().value(0), title);
        run(CommandID::CloseTab);
        settle();
    }
}

TEST_F(SimilarTest, AColorIsFoundByTheWheelWithoutTheRefineBar)
{
    show(b); // what was counted before is no longer to be chosen
    show(a);
    run(CommandID::FindColor);
    auto *wheel = window().findChild<ColorWheel *>();
    ASSERT_TRUE(wheel);
    QTest::keyClick(wheel, Qt::Key_Up);
    EXPECT_TRUE(waitFor([this] { return text().startsWith(QStringLiteral("#color #")); }));
    Q_EMIT browser().searchRequested(QStringLiteral("red OR clear"));
    settle();
    QString before = text();
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(wheel, Qt::Key_Right);
        EXPECT_TRUE(waitFor([&] { return std::exchange(before, text()) != text(); })) << i;
    }
    EXPECT_EQ(text().count(QStringLiteral("#color")), 1) << text().toStdString();
    wheel->window()->close();
}

TEST_F(SimilarTest, LooksAtAPictureAtOnceThatWasNotLookedAtYet)
{
    image(QStringLiteral("red"))->setPictureHash({});
    delegate->saveAction();
    select({QStringLiteral("red")});
    run(CommandID::FindSimilar);
    EXPECT_TRUE(waitFor([this] { return !image(QStringLiteral("red"))->pictureHash().isNull(); }));
    EXPECT_EQ(tabName(), QStringLiteral("A"));
}

TEST_F(SimilarTest, SaysWhyNothingIsLikeAPicture)
{
    image(QStringLiteral("red"))->setPictureHash(QByteArray("")); // looked at, and shows nothing
    delegate->saveAction();
    select({QStringLiteral("red")});
    run(CommandID::FindSimilar);
    settle();
    EXPECT_EQ(tabName(), QStringLiteral("A"));
    EXPECT_EQ(text(), QString());
}

// A picture may be there a hundred thousand times.
TEST_F(SimilarTest, OfALargeGroupOnlySomeAreShownAndTheOthersStay)
{
    const QByteArray hash = image(QStringLiteral("red"))->pictureHash();
    for (qsizetype i = 0; i < NearDuplicatesSheet::mostInGroup + 5; ++i) {
        const auto copy = context().insertNewObject<ZQLibraryImage>();
        copy->setTitle(QStringLiteral("copy"));
        copy->setBundleID(QStringLiteral("copy-%1").arg(i));
        copy->setPictureHash(hash);
        copy->setActive(true);
    }
    delegate->saveAction();
    settle();
    show(special(ZQSidebarKind::Library));
    run(CommandID::FindNearDuplicates);
    const auto *sheet = window().findChild<NearDuplicatesSheet *>();
    ASSERT_TRUE(sheet);
    QListWidget *groups = list(*sheet, "Groups");
    ASSERT_TRUE(waitFor([&] { return groups->count() > 0; }));
    EXPECT_EQ(list(*sheet, "The one to keep")->count(), NearDuplicatesSheet::mostInGroup);
    press(Qt::Key_Escape);
    settle();
}

TEST_F(SimilarTest, OneOfEachGroupIsKept)
{
    select({QStringLiteral("pages"), QStringLiteral("moving")});
    Q_EMIT sidebar().nearDuplicatesRequested(); // which asks of the library, whatever is selected
    const auto *sheet = window().findChild<NearDuplicatesSheet *>();
    ASSERT_TRUE(sheet);
    QListWidget *groups = list(*sheet, "Groups");
    QListWidget *pictures = list(*sheet, "The one to keep");
    ASSERT_TRUE(waitFor([&] { return groups->count() > 0; }));
    EXPECT_EQ(groups->count(), 1);
    EXPECT_TRUE(pictures->currentItem()) << "one is proposed";
    const auto heard = [](QListWidget &of, int row, QAccessible::Text kind) {
        return QAccessible::queryAccessibleInterface(&of)->child(row)->text(kind);
    };
    EXPECT_EQ(heard(*groups, 0, QAccessible::Description), QStringLiteral("%1 pictures").arg(pictures->count()));
    for (int row = 0; row < pictures->count(); ++row) {
        EXPECT_EQ(heard(*pictures, row, QAccessible::Description).startsWith(QStringLiteral("Proposed to be kept.")),
                  row == pictures->currentRow());
    }
    for (int row = 0; row < pictures->count(); ++row) {
        if (pictures->item(row)->text().startsWith(QStringLiteral("clear\n"))) {
            pictures->setCurrentRow(row);
        }
    }
    for (QPushButton *button : sheet->findChildren<QPushButton *>()) {
        if (button->text() == QStringLiteral("Keep Chosen, Delete Others")) {
            button->click();
        }
    }
    EXPECT_EQ(groups->count(), 0);
    EXPECT_FALSE(pictures->isVisible()) << "nothing is left to choose from";
    press(Qt::Key_Escape);
    settle();
    EXPECT_TRUE(image(QStringLiteral("clear"))->active());
    EXPECT_FALSE(image(QStringLiteral("red"))->active());
    EXPECT_TRUE(image(QStringLiteral("moving"))->active()) << "it looks like none of them";
    EXPECT_EQ(controller->undoStack().count(), 1);
    run(CommandID::Undo);
    settle();
    EXPECT_TRUE(image(QStringLiteral("red"))->active());
}
