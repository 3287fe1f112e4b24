#include "Classes/Interface/QuestionSheets.h"
#include "Classes/Interface/WindowUserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QAbstractButton>
#include <QMainWindow>
#include <QTimer>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <future>

namespace {

class SheetsTest : public testing::Test
{
protected:
    SheetsTest()
    {
        window.resize(900, 700);
        window.show();
    }
    static bool isSheetFocused()
    {
        for (QWidget *widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
            if (qobject_cast<Sheet *>(widget)) {
                return true;
            }
        }
        return false;
    }
    // Presses these keys, one after another, once the sheet waits for them.
    static void press(const QList<Qt::Key> &keys)
    {
        auto *poll = new QTimer(qApp);
        poll->callOnTimeout([keys, poll] {
            if (!isSheetFocused()) {
                return;
            }
            poll->stop();
            poll->deleteLater();
            for (const Qt::Key key : keys) {
                QTest::keyClick(QApplication::focusWidget(), key);
            }
        });
        poll->start(20);
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
    std::optional<Choices> resolved(int count)
    {
        DuplicatesSheet sheet(&window, pairs(count));
        const int code = sheet.run();
        return sheet.answer(code);
    }

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
    QTimer::singleShot(0, qApp, [&] { wasEnabled = action.isEnabled(); });
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
    const auto choices = resolved(3);
    ASSERT_TRUE(choices);
    EXPECT_EQ(*choices, (Choices{DuplicateChoice::KeepBoth, DuplicateChoice::Relink, DuplicateChoice::Discard}));
}

TEST_F(SheetsTest, OneChoiceCanBeForAllThatRemain)
{
    press({Qt::Key_2, Qt::Key_A, Qt::Key_Return});
    EXPECT_EQ(resolved(3), std::optional(Choices(3, DuplicateChoice::Relink)));
    press({Qt::Key_2, Qt::Key_Return, Qt::Key_Escape});
    EXPECT_FALSE(resolved(3)) << "a cancelled dialogue answers nothing at all";
}

TEST_F(SheetsTest, WithoutAWindowDuplicatesAreDiscarded)
{
    WindowUserInteraction user;
    EXPECT_EQ(user.resolveDuplicates(pairs(2)), std::optional(Choices(2, DuplicateChoice::Discard)));
    QList<FileConflict> conflicts = {{QStringLiteral("/a"), false, true}};
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
}

TEST_F(SheetsTest, AQuestionOfAnotherThreadIsAnsweredOrDismissed)
{
    WindowUserInteraction user;
    user.setPlaces({.window = &window, .browser = {}, .sidebar = {}, .progress = nullptr});
    window.setFocus();
    const auto ask = [&] { return std::async(std::launch::async, [&] { return user.resolveDuplicates(pairs(2)); }); };
    const auto isShown = [&] { return window.property(Sheet::isShownProperty).toBool(); };

    auto answered = ask();
    zqRunMainLoopUntil(isShown);
    press({Qt::Key_3, Qt::Key_A, Qt::Key_Return});
    zqRunMainLoopUntil([&] { return !isShown(); });
    EXPECT_EQ(answered.get(), std::optional(Choices(2, DuplicateChoice::KeepBoth)));

    auto dismissed = ask();
    zqRunMainLoopUntil(isShown);
    UserQuestion question;
    question.buttons = {QStringLiteral("Quit anyway"), QStringLiteral("Cancel")};
    press({Qt::Key_Return});
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 0) << "a second sheet lies over the first";
    EXPECT_TRUE(isShown());
    user.dismissQuestions();
    EXPECT_FALSE(isShown());
    EXPECT_FALSE(dismissed.get());
}

TEST_F(SheetsTest, AQuestionThatGoesWithItsWindowBringsNothingIn)
{
    WindowUserInteraction user;
    auto other = std::make_unique<QMainWindow>();
    other->show();
    user.setPlaces({.window = other.get(), .browser = {}, .sidebar = {}, .progress = nullptr});
    auto waiting = std::async(std::launch::async, [&] { return user.resolveDuplicates(pairs(1)); });
    zqRunMainLoopUntil([&] { return other->property(Sheet::isShownProperty).toBool(); });
    other.reset();
    EXPECT_EQ(waiting.get(), std::optional(Choices(1, DuplicateChoice::Discard)));
}
