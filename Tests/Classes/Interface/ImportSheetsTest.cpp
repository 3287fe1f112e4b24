// What an import asks in sheets: about duplicates, and files that cannot be read.

#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/DesktopListener.h"
#include "Tests/Classes/Interface/SheetsFixture.h"

#include <QCheckBox>
#include <QListWidget>
#include <QLocale>

#include <future>

namespace {
using ImportSheetsTest = SheetsFixture;
} // namespace

TEST_F(ImportSheetsTest, DuplicatesAreAnsweredOneByOneWithTheNumberKeys)
{
    press({Qt::Key_3, Qt::Key_Return, Qt::Key_2, Qt::Key_Return, Qt::Key_1, Qt::Key_Return});
    const auto choices = resolved(3);
    ASSERT_TRUE(choices);
    EXPECT_EQ(choices->choices,
              (Choices{DuplicateChoice::KeepBoth, DuplicateChoice::Relink, DuplicateChoice::Discard}));
}

TEST_F(ImportSheetsTest, OneChoiceCanBeForAllThatRemain)
{
    press({Qt::Key_2, Qt::Key_A, Qt::Key_Return});
    EXPECT_EQ(resolved(3), std::optional(Choices(3, DuplicateChoice::Relink)));
    press({Qt::Key_2, Qt::Key_Return, Qt::Key_Escape});
    EXPECT_FALSE(resolved(3)) << "a cancelled dialogue answers nothing at all";
}

TEST_F(ImportSheetsTest, WithoutAWindowDuplicatesAreDiscarded)
{
    WindowUserInteraction user;
    EXPECT_EQ(user.resolveDuplicates(pairs(2), true), std::optional(Choices(2, DuplicateChoice::Discard)));
    QList<FileConflict> conflicts = {{QStringLiteral("/a"), false, true}};
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
}

TEST_F(ImportSheetsTest, AQuestionOfAnotherThreadIsAnsweredOrDismissed)
{
    WindowUserInteraction user;
    user.setPlaces({.window = &window, .browser = {}, .sidebar = {}, .progress = nullptr});
    window.setFocus();
    const auto ask = [&] {
        return std::async(std::launch::async, [&] { return user.resolveDuplicates(pairs(2), false); });
    };
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

TEST_F(ImportSheetsTest, AQuestionThatGoesWithItsWindowBringsNothingIn)
{
    WindowUserInteraction user;
    auto other = std::make_unique<QMainWindow>();
    other->show();
    user.setPlaces({.window = other.get(), .browser = {}, .sidebar = {}, .progress = nullptr});
    auto waiting = std::async(std::launch::async, [&] { return user.resolveDuplicates(pairs(1), false); });
    zqRunMainLoopUntil([&] { return other->property(Sheet::isShownProperty).toBool(); });
    other.reset();
    EXPECT_EQ(waiting.get(), std::optional(Choices(1, DuplicateChoice::Discard)));
}

TEST_F(ImportSheetsTest, UnreadableFilesAreLeftOutOneByOne)
{
    const DesktopListener desktop;
    WindowUserInteraction user;
    user.setPlaces({.window = &window, .browser = {}, .sidebar = {}, .progress = nullptr});
    const QString why = QStringLiteral("You have no permission to read it.");
    const QList<FileConflict> asked = {{QStringLiteral("/in/a"), false, true, why},
                                       {QStringLiteral("/in/b"), true, true},
                                       {QStringLiteral("/in/c"), true, false}};
    const auto included = [](const QList<FileConflict> &conflicts) {
        QString result;
        for (const FileConflict &each : conflicts) {
            result += each.isIncluded ? u'+' : u'-';
        }
        return result.toStdString();
    };
    QList<FileConflict> conflicts = asked;
    when<Sheet>([&](Sheet &sheet) {
        auto *list = sheet.findChild<QListWidget *>();
        EXPECT_EQ(sheet.width(), 560);
        EXPECT_GE(list->height(), 190);
        ASSERT_EQ(list->count(), 3);
        QString states;
        for (int row = 0; row < 3; ++row) {
            states += list->item(row)->checkState() == Qt::Checked ? u'+' : u'-';
            EXPECT_EQ(list->item(row)->flags(), Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
            EXPECT_EQ(list->item(row)->text(), row == 0 ? asked[row].path + u'\n' + why : asked[row].path);
            EXPECT_EQ(list->item(row)->foreground().color(),
                      zqColor(row == 0 ? ZQColorRole::Danger : ZQColorRole::Text));
        }
        EXPECT_EQ(states, QStringLiteral("-+-")) << "what cannot be read is left out";
        EXPECT_EQ(list->item(0)->toolTip(), list->item(0)->text());
        EXPECT_EQ(list->item(1)->toolTip(), QStringLiteral("/in/b"));
        list->item(1)->setCheckState(Qt::Unchecked);
        EXPECT_FALSE(button(sheet, "Continue")->isEnabled()) << "nothing is left to import";
        list->item(2)->setCheckState(Qt::Checked);
        EXPECT_TRUE(button(sheet, "Continue")->isEnabled());
        EXPECT_LT(button(sheet, "Show in Folder")->x(), button(sheet, "Stop Import")->x());
        list->setCurrentItem(nullptr); // the focus takes the first
        button(sheet, "Show in Folder")->click();
        EXPECT_TRUE(desktop.opened.isEmpty());
        list->setCurrentRow(2);
        button(sheet, "Show in Folder")->click();
        EXPECT_EQ(desktop.opened, QList<QUrl>{QUrl(QStringLiteral("file:///in"))});
        QTest::keyClick(&sheet, Qt::Key_Return);
    });
    EXPECT_TRUE(user.resolveUnreadableFiles(conflicts));
    EXPECT_EQ(included(conflicts), "--+");
    conflicts = asked;
    when<Sheet>([&](Sheet &sheet) { button(sheet, "Stop Import")->click(); });
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
    conflicts = asked;
    press({Qt::Key_Escape});
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
    EXPECT_EQ(user.resolveDuplicates({}, true), std::optional(Choices()));
}

TEST_F(ImportSheetsTest, DuplicatesSayWhatIsKnownOfBoth)
{
    QList<DuplicatePair> all = pairs(3);
    all[0].existingPlaces = {QStringLiteral("Brand"), QStringLiteral("Logos")};
    all[0].existingImportDate = QDateTime(QDate(2024, 2, 3), QTime(12, 0));
    all[0].bytes = 2048;
    all[0].pixelWidth = 1; // a rule
    all[0].pixelHeight = 30;
    all[1].existingImportDate = all[0].existingImportDate;
    const QString size = QLocale().formattedDataSize(2048, 1, QLocale::DataSizeSIFormat);
    const QString none = QLocale().formattedDataSize(0, 1, QLocale::DataSizeSIFormat);
    when<DuplicatesSheet>([&](DuplicatesSheet &sheet) {
        EXPECT_EQ(sheet.width(), 620);
        QString shown = texts(sheet);
        EXPECT_TRUE(
            shown.contains(QStringLiteral("mark|In your library since 3 Feb 2024 · Brand, Logos\n1 × 30 · ") + size))
            << shown.toStdString();
        EXPECT_TRUE(shown.contains(QStringLiteral("mark copy|New\n1 × 30 · ") + size));
        auto *all3 = sheet.findChild<QCheckBox *>();
        EXPECT_EQ(all3->text(), QStringLiteral("Apply to all 3 duplicates"));
        QTest::keyClick(&sheet, Qt::Key_0);
        QTest::keyClick(&sheet, Qt::Key_4);
        QTest::keyClick(&sheet, Qt::Key_Return); // discards, since nothing else was chosen
        shown = texts(sheet);
        EXPECT_TRUE(shown.contains(QStringLiteral("mark|In your library since 3 Feb 2024\n") + none));
        EXPECT_EQ(all3->text(), QStringLiteral("Apply to the remaining 2 duplicates"));
        QTest::keyClick(&sheet, Qt::Key_3);
        EXPECT_TRUE(QApplication::focusWidget()->inherits("QRadioButton"));
        button(sheet, "Next")->click();
        EXPECT_FALSE(all3->isVisible()) << "one is left";
        QTest::keyClick(&sheet, Qt::Key_A);
        EXPECT_FALSE(all3->isChecked());
        button(sheet, "Use the existing item here")->click();
        button(sheet, "Next")->click();
    });
    DuplicatesSheet sheet(&window, all);
    const int code = sheet.run();
    EXPECT_EQ(sheet.answer(code),
              std::optional(Choices{DuplicateChoice::Discard, DuplicateChoice::KeepBoth, DuplicateChoice::Relink}));
    when<DuplicatesSheet>([&](DuplicatesSheet &shown) { button(shown, "Cancel")->click(); });
    EXPECT_FALSE(resolved(2));
}

TEST_F(ImportSheetsTest, DuplicatesAreNamedWithTheirExtensionsAndWhereTheNewOneComesFrom)
{
    DuplicatePair pair;
    pair.existingTitle = QStringLiteral("mark");
    pair.existingPath = QStringLiteral("/library/x/old name.PNG");
    pair.newTitle = QStringLiteral("mark copy");
    pair.newPath = QStringLiteral("/home/me/Pictures/mark copy.png");
    pair.existingImportDate = QDateTime(QDate(2020, 5, 4), QTime(12, 0));
    when<Sheet>([](Sheet &sheet) {
        const QString shown = texts(sheet);
        EXPECT_TRUE(shown.contains(QStringLiteral("mark.PNG|"))) << shown.toStdString();
        EXPECT_TRUE(shown.contains(QStringLiteral("mark copy.png|"))) << shown.toStdString();
        EXPECT_TRUE(shown.contains(QStringLiteral("New, from /home/me/Pictures\n"))) << shown.toStdString();
        button(sheet, "Cancel")->click();
    });
    DuplicatesSheet(&window, {pair}).run();

    pair.newPath = QStringLiteral("/tmp/x/t.1/mark copy.png");
    pair.newAddress = QStringLiteral("https://example.org/a.png");
    pair.goesIntoProject = true;
    when<Sheet>([](Sheet &sheet) {
        EXPECT_TRUE(texts(sheet).contains(QStringLiteral("New, from https://example.org/a.png\n")));
        button(sheet, "Next")->click();
    });
    DuplicatesSheet sheet(&window, {pair});
    const int code = sheet.run();
    EXPECT_EQ(sheet.answer(code), std::optional(Choices{DuplicateChoice::Relink}));
}

TEST_F(ImportSheetsTest, AnAnswerForAllIsForTheRestTooWhereArchivesFollow)
{
    const auto answered = [this](const QList<Qt::Key> &keys, bool archivesFollow = true) {
        press(keys);
        DuplicatesSheet sheet(&window, pairs(2), archivesFollow);
        const int code = sheet.run();
        return sheet.answer(code);
    };
    const auto relink = DuplicateChoice::Relink;
    const QList<Qt::Key> forAll{Qt::Key_2, Qt::Key_A, Qt::Key_Return};
    EXPECT_EQ(answered(forAll), std::optional(DuplicateAnswers(Choices(2, relink), relink)));
    EXPECT_EQ(answered({Qt::Key_2, Qt::Key_Return, Qt::Key_Return}), std::optional(Choices(2, relink)));
    EXPECT_EQ(answered(forAll, false), std::optional(Choices(2, relink)));
    EXPECT_EQ(answered({Qt::Key_1, Qt::Key_Return, Qt::Key_2, Qt::Key_A, Qt::Key_Return}),
              std::optional(DuplicateAnswers({DuplicateChoice::Discard, relink}, relink)));
}
