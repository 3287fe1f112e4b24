// What looks like a picture, and what looks alike.

#include "Classes/Interface/Browser/BrowserHead.h"
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
    EXPECT_EQ(shown(), (QStringList{"red", "clear", "pages"}));
    EXPECT_TRUE(named("Sort: Nearness"));
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

TEST_F(SimilarTest, OneOfEachGroupIsKept)
{
    run(CommandID::FindNearDuplicates);
    const auto *sheet = window().findChild<NearDuplicatesSheet *>();
    ASSERT_TRUE(sheet);
    const auto list = [&](const char *name) {
        const auto lists = sheet->findChildren<QListWidget *>();
        return *std::find_if(lists.begin(), lists.end(),
                             [&](QListWidget *each) { return each->accessibleName() == QLatin1StringView(name); });
    };
    QListWidget *groups = list("Groups");
    QListWidget *pictures = list("The one to keep");
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
