#include "Classes/Interface/QuestionSheets.h"
#include "Classes/Interface/WindowUserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QMainWindow>
#include <QTimer>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

class SheetsTest : public testing::Test
{
protected:
    SheetsTest()
    {
        window.resize(900, 700);
        window.show();
    }
    // Presses these keys, one after another, once the sheet waits for them.
    static void press(const QList<Qt::Key> &keys)
    {
        QTimer::singleShot(50, qApp, [keys] {
            for (const Qt::Key key : keys) {
                QTest::keyClick(QApplication::focusWidget(), key);
            }
        });
    }
    QList<DuplicatePair> pairs(int count) const
    {
        QList<DuplicatePair> result(count);
        for (DuplicatePair &pair : result) {
            pair.existingTitle = QStringLiteral("mark");
            pair.newTitle = QStringLiteral("mark copy");
        }
        return result;
    }
    using Choices = QList<DuplicateChoice>;

    QMainWindow window;
};

} // namespace

TEST_F(SheetsTest, EnterTakesTheDefaultAndEscapeTheLast)
{
    UserQuestion question;
    question.message = QStringLiteral("Sure?");
    question.buttons = {QStringLiteral("Delete"), QStringLiteral("Keep"), QStringLiteral("Cancel")};
    press({Qt::Key_Return});
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 0);
    press({Qt::Key_Escape});
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 2);
}

TEST_F(SheetsTest, CommandsOfTheWindowRestWhileItIsAsked)
{
    QAction action;
    QAction disabled;
    disabled.setEnabled(false);
    window.addActions({&action, &disabled});
    UserQuestion question;
    question.buttons = {QStringLiteral("OK")};
    bool wasEnabled = true;
    QTimer::singleShot(30, qApp, [&] { wasEnabled = action.isEnabled(); });
    press({Qt::Key_Return});
    QuestionSheet(&window, question).ask();
    EXPECT_FALSE(wasEnabled);
    EXPECT_TRUE(action.isEnabled());
    EXPECT_FALSE(disabled.isEnabled());
    window.removeAction(&action);
    window.removeAction(&disabled);
}

TEST_F(SheetsTest, DuplicatesAreAnsweredOneByOneWithTheNumberKeys)
{
    press({Qt::Key_3, Qt::Key_Return, Qt::Key_2, Qt::Key_Return, Qt::Key_1, Qt::Key_Return});
    const auto choices = DuplicatesSheet(&window, pairs(3)).resolve();
    ASSERT_TRUE(choices);
    EXPECT_EQ(*choices, (Choices{DuplicateChoice::KeepBoth, DuplicateChoice::Relink, DuplicateChoice::Discard}));
}

TEST_F(SheetsTest, OneChoiceCanBeForAllThatRemain)
{
    QTimer::singleShot(30, qApp, [this] {
        for (QCheckBox *box : window.findChildren<QCheckBox *>()) {
            box->setChecked(true);
        }
    });
    press({Qt::Key_2, Qt::Key_Return});
    EXPECT_EQ(DuplicatesSheet(&window, pairs(3)).resolve(), std::optional(Choices(3, DuplicateChoice::Relink)));
    press({Qt::Key_2, Qt::Key_Return, Qt::Key_Escape});
    EXPECT_FALSE(DuplicatesSheet(&window, pairs(3)).resolve()) << "a cancelled dialogue answers nothing at all";
}

TEST_F(SheetsTest, WithoutAWindowDuplicatesAreDiscarded)
{
    WindowUserInteraction user;
    EXPECT_EQ(user.resolveDuplicates(pairs(2)), std::optional(Choices(2, DuplicateChoice::Discard)));
    QList<FileConflict> conflicts = {{QStringLiteral("/a"), false, true}};
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
}
