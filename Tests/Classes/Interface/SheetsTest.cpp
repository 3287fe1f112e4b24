#include "Classes/Interface/Sheets/QuestionSheets.h"
#include "Classes/Interface/Sheets/RefusedFilesSheet.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/DesktopListener.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QMainWindow>
#include <QMessageBox>
#include <QShortcut>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
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
    // What somebody does once the sheet, or a window of that kind, is there.
    template <class T>
    static void when(std::function<void(T &)> act)
    {
        auto *poll = new QTimer(qApp);
        poll->callOnTimeout([act, poll] {
            for (QWidget *top : QApplication::topLevelWidgets()) {
                QList<T *> found = top->findChildren<T *>();
                if (auto *self = qobject_cast<T *>(top)) {
                    found.prepend(self);
                }
                for (T *each : found) {
                    if (each->isVisible()) {
                        poll->stop();
                        poll->deleteLater();
                        act(*each);
                        return;
                    }
                }
            }
        });
        poll->start(5);
    }
    static QAbstractButton *button(const QWidget &in, const char *text)
    {
        for (QAbstractButton *each : in.findChildren<QAbstractButton *>()) {
            if (each->text() == QLatin1StringView(text)) {
                return each;
            }
        }
        return nullptr;
    }
    static QString texts(const QWidget &in)
    {
        QStringList result;
        for (const QLabel *label : in.findChildren<QLabel *>()) {
            if (label->isVisible()) {
                result.append(label->text());
            }
        }
        return result.join(u'|');
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
    std::optional<DuplicateAnswers> resolved(int count)
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
    EXPECT_EQ(choices->choices,
              (Choices{DuplicateChoice::KeepBoth, DuplicateChoice::Relink, DuplicateChoice::Discard}));
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
    EXPECT_EQ(user.resolveDuplicates(pairs(2), true), std::optional(Choices(2, DuplicateChoice::Discard)));
    QList<FileConflict> conflicts = {{QStringLiteral("/a"), false, true}};
    EXPECT_FALSE(user.resolveUnreadableFiles(conflicts));
}

TEST_F(SheetsTest, AQuestionOfAnotherThreadIsAnsweredOrDismissed)
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

TEST_F(SheetsTest, AQuestionThatGoesWithItsWindowBringsNothingIn)
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

TEST_F(SheetsTest, HangsFromTheTopOfItsWindowAndGivesTheFocusBack)
{
    QLineEdit before(&window);
    before.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    before.setFocus();
    UserQuestion question;
    question.message = QStringLiteral("Sure?");
    question.informativeText = QStringLiteral("More of it");
    question.buttons = {QStringLiteral("Delete"), QStringLiteral("Keep"), QStringLiteral("Cancel")};
    question.isDestructive = true;
    const int top = ZQMeasure::toolbarHeight + 1;
    when<Sheet>([&](Sheet &sheet) {
        EXPECT_EQ(texts(sheet), QStringLiteral("Sure?|More of it"));
        EXPECT_EQ(sheet.width(), 460);
        EXPECT_EQ(sheet.geometry().topLeft(), QPoint(220, 0));
        EXPECT_EQ(sheet.height(), sheet.layout()->totalHeightForWidth(460));
        EXPECT_EQ(sheet.parentWidget()->geometry(), QRect(0, top, 900, 700 - top));
        EXPECT_EQ(window.childAt(5, 600), sheet.parentWidget()) << "nothing below can be clicked";
        EXPECT_EQ(QApplication::focusWidget(), button(sheet, "Delete"));
        EXPECT_TRUE(button(sheet, "Delete")->property("destructive").toBool());
        EXPECT_TRUE(button(sheet, "Delete")->property("primary").toBool());
        EXPECT_FALSE(button(sheet, "Keep")->property("destructive").toBool());
        EXPECT_FALSE(button(sheet, "Keep")->property("primary").toBool());
        EXPECT_LT(button(sheet, "Cancel")->x(), button(sheet, "Keep")->x());
        EXPECT_LT(button(sheet, "Keep")->x(), button(sheet, "Delete")->x());
        const char *const round[] = {"Cancel", "Keep", "Delete"};
        for (const char *name : round) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(QApplication::focusWidget(), button(sheet, name)) << "the focus stays in the sheet";
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_EQ(QApplication::focusWidget(), button(sheet, "Keep"));
        window.resize(400, 300);
        EXPECT_EQ(sheet.geometry().left(), 20);
        EXPECT_EQ(sheet.width(), 360);
        EXPECT_EQ(sheet.parentWidget()->size(), QSize(400, 300 - top));
        window.resize(900, 700);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_X);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    });
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 1) << "Enter presses what has the focus";
    EXPECT_EQ(QApplication::focusWidget(), &before);
    EXPECT_FALSE(window.property(Sheet::isShownProperty).isValid());
    for (const auto &[text, index] : {std::pair{"Delete", 0}, {"Keep", 1}, {"Cancel", 2}}) {
        when<Sheet>([text = text](Sheet &sheet) { button(sheet, text)->click(); });
        EXPECT_EQ(QuestionSheet(&window, question).ask(), index);
    }
    when<Sheet>([&](Sheet &sheet) {
        sheet.setFocus();
        button(sheet, "Delete")->setEnabled(false);
        QTest::keyClick(&sheet, Qt::Key_Return);
        EXPECT_TRUE(sheet.isVisible());
        QTest::keyClick(&sheet, Qt::Key_Escape);
    });
    question.informativeText.clear();
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 2);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(SheetsTest, HoldsTheFocusAndTheKeysAgainstItsWindow)
{
    QLineEdit field(&window); // where the toolbar is, above the cover
    field.setGeometry(10, 5, 200, 30);
    QLineEdit other(&window);
    other.setGeometry(10, 300, 200, 30);
    QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_1), &window);
    QAction later;
    later.setShortcut(Qt::Key_5);
    later.setShortcutContext(Qt::WidgetWithChildrenShortcut);
    int fired = 0;
    QObject::connect(&shortcut, &QShortcut::activated, &window, [&fired] { ++fired; });
    QObject::connect(&later, &QAction::triggered, &window, [&fired] { ++fired; });
    field.show();
    other.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    const auto focusIsHeld = [&](const Sheet &sheet) {
        QApplication::processEvents();
        QWidget *focus = QApplication::focusWidget();
        return focus && (focus == &sheet || sheet.isAncestorOf(focus));
    };
    QList<FileConflict> conflicts{{QStringLiteral("/a.png"), false, true}}; // none can be taken: no default button
    when<UnreadableFilesSheet>([&](UnreadableFilesSheet &sheet) {
        window.addAction(&later); // and what becomes enabled meanwhile
        EXPECT_TRUE(focusIsHeld(sheet)) << "without a button that Enter could take";
        for (int i = 0; i < 8; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, i < 5 ? Qt::NoModifier : Qt::ShiftModifier);
            EXPECT_TRUE(focusIsHeld(sheet)) << i;
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_1, Qt::ControlModifier);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_5);
        QTest::mouseClick(&field, Qt::LeftButton);
        EXPECT_TRUE(focusIsHeld(sheet));
        other.setFocus(); // by something that ends meanwhile
        EXPECT_TRUE(focusIsHeld(sheet));
        QTest::keyClick(&field, Qt::Key_X);
        when<QuestionSheet>([&](QuestionSheet &above) {
            QTest::keyClick(button(sheet, "Stop Import"), Qt::Key_Space);
            EXPECT_TRUE(focusIsHeld(above)) << "the one above has it";
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        });
        UserQuestion question;
        question.buttons = {QStringLiteral("OK")};
        QuestionSheet(&window, question).ask();
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_TRUE(focusIsHeld(sheet));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    });
    UnreadableFilesSheet(&window, conflicts).run();
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(field.text().isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), &other);
    QTest::keyClick(&other, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(fired, 1) << "and then they are the window's again";
    window.removeAction(&later);
}

TEST_F(SheetsTest, LongTextsAreShortAndStayWithinIt)
{
    const QString endless(100'000, u'x');
    UserQuestion question;
    question.message = endless;
    question.informativeText = endless;
    question.buttons = {QStringLiteral("OK")};
    when<Sheet>([&](Sheet &sheet) {
        EXPECT_LT(texts(sheet).size(), 3000);
        for (const QLabel *label : sheet.findChildren<QLabel *>()) {
            EXPECT_LE(label->minimumSizeHint().width(), sheet.width()) << label->text().size();
        }
        EXPECT_TRUE(
            window.rect().contains(QRect(button(sheet, "OK")->mapTo(&window, QPoint()), button(sheet, "OK")->size())));
        button(sheet, "OK")->click();
    });
    QuestionSheet(&window, question).ask();
}

TEST_F(SheetsTest, WhatIsNotToBeAskedAgainIsKept)
{
    auto &defaults = ZQUserDefaults::standardUserDefaults();
    const QString key = QStringLiteral("sheetsTestSuppress");
    UserQuestion question;
    question.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    question.suppressionKey = key;
    defaults.removeObjectForKey(key);
    for (const bool isTicked : {false, true}) {
        when<Sheet>([&](Sheet &sheet) {
            auto *box = sheet.findChild<QCheckBox *>();
            EXPECT_EQ(box->text(), QStringLiteral("Do not ask again"));
            box->setChecked(isTicked);
            button(sheet, "OK")->click();
        });
        EXPECT_EQ(QuestionSheet(&window, question).ask(), 0);
        EXPECT_EQ(defaults.boolForKey(key), isTicked);
    }
    defaults.removeObjectForKey(key);
    question.suppressionKey.clear();
    when<Sheet>([&](Sheet &sheet) {
        EXPECT_EQ(sheet.findChild<QCheckBox *>(), nullptr);
        button(sheet, "OK")->click();
    });
    QuestionSheet(&window, question).ask();
}

TEST_F(SheetsTest, UnreadableFilesAreLeftOutOneByOne)
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

TEST_F(SheetsTest, DuplicatesSayWhatIsKnownOfBoth)
{
    QList<DuplicatePair> all = pairs(3);
    all[0].existingPlaces = {QStringLiteral("Brand"), QStringLiteral("Logos")};
    all[0].existingImportDate = QDateTime(QDate(2024, 2, 3), QTime(12, 0));
    all[0].bytes = 2048;
    all[0].pixelWidth = 40;
    all[0].pixelHeight = 30;
    all[1].existingImportDate = all[0].existingImportDate;
    const QString size = QLocale().formattedDataSize(2048, 1, QLocale::DataSizeSIFormat);
    const QString none = QLocale().formattedDataSize(0, 1, QLocale::DataSizeSIFormat);
    when<DuplicatesSheet>([&](DuplicatesSheet &sheet) {
        EXPECT_EQ(sheet.width(), 620);
        QString shown = texts(sheet);
        EXPECT_TRUE(
            shown.contains(QStringLiteral("mark|In your library since 3 Feb 2024 · Brand, Logos\n40 × 30 · ") + size))
            << shown.toStdString();
        EXPECT_TRUE(shown.contains(QStringLiteral("mark copy|New\n40 × 30 · ") + size));
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

TEST_F(SheetsTest, ErrorsAndQuestionsWithoutAWindowAreDialogs)
{
    WindowUserInteraction user;
    user.showNotificationWithText(QStringLiteral("nobody sees it"), NotificationPlace::Window, std::chrono::seconds(1));
    UserQuestion question;
    question.message = QStringLiteral("Sure?");
    question.informativeText = QStringLiteral("More");
    question.buttons = {QStringLiteral("Delete"), QStringLiteral("Keep"), QStringLiteral("Cancel")};
    for (const auto &[text, index] : {std::pair{"Delete", 0}, {"Keep", 1}, {"Cancel", 2}}) {
        when<QMessageBox>([text = text](QMessageBox &box) {
            EXPECT_EQ(box.text(), QStringLiteral("Sure?"));
            EXPECT_EQ(box.informativeText(), QStringLiteral("More"));
            button(box, text)->click();
        });
        EXPECT_EQ(user.ask(question), index);
    }
    when<QMessageBox>([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(user.ask(question), 2);
    user.setPlaces({.window = &window, .browser = {}, .sidebar = {}, .progress = nullptr});
    const ZQError whole{QStringLiteral("Test"),
                        1,
                        {{ZQError::descriptionKey, QStringLiteral("It went wrong")},
                         {ZQError::failureReasonKey, QStringLiteral("Because")}}};
    const ZQError bare{QStringLiteral("Test"), 7, {}};
    for (const auto &[error, shown] :
         {std::pair{whole, QStringLiteral("It went wrong|Because")}, {bare, bare.localizedDescription()}}) {
        QString said;
        when<Sheet>([&](Sheet &sheet) {
            said = texts(sheet);
            button(sheet, "OK")->click();
        });
        user.presentError(error);
        EXPECT_EQ(said, shown);
    }
}

TEST_F(SheetsTest, FilesAreChosenAsTheyAreAskedFor)
{
    WindowUserInteraction user;
    user.setPlaces({.window = &window, .browser = {}, .sidebar = {}, .progress = nullptr});
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    FileChoice choice;
    choice.title = QStringLiteral("Import");
    choice.prompt = QStringLiteral("Take");
    struct Case
    {
        bool isDirectory;
        bool isSeveral;
        QFileDialog::FileMode mode;
    };
    for (const Case &each : {Case{false, false, QFileDialog::ExistingFile},
                             {false, true, QFileDialog::ExistingFiles},
                             {true, false, QFileDialog::Directory}}) {
        choice.directory = each.isDirectory;
        choice.several = each.isSeveral;
        choice.extensions =
            each.isDirectory ? QStringList() : QStringList{QStringLiteral("png"), QStringLiteral("gif")};
        when<QFileDialog>([&](QFileDialog &dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Import"));
            EXPECT_EQ(dialog.labelText(QFileDialog::Accept), QStringLiteral("Take"));
            EXPECT_EQ(dialog.fileMode(), each.mode);
            EXPECT_EQ(dialog.testOption(QFileDialog::ShowDirsOnly), each.isDirectory);
            EXPECT_EQ(dialog.nameFilters().first(), each.isDirectory ? dialog.nameFilters().first()
                                                                     : QStringLiteral("Supported files (*.png *.gif)"));
            dialog.setDirectory(folder.path());
            dialog.selectFile(each.isDirectory ? folder.path() : path);
            static_cast<QDialog &>(dialog).done(QDialog::Accepted);
        });
        EXPECT_EQ(user.chooseFilesToOpen(choice), QStringList{each.isDirectory ? folder.path() : path});
    }
    when<QFileDialog>([](QFileDialog &dialog) { dialog.reject(); });
    EXPECT_EQ(user.chooseFilesToOpen(choice), QStringList());
    choice = {};
    choice.name = QStringLiteral("new");
    choice.prompt = QStringLiteral("Make");
    choice.extensions = {QStringLiteral("ztlibrary")};
    when<QFileDialog>([&](QFileDialog &dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog.defaultSuffix(), QStringLiteral("ztlibrary"));
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), QStringLiteral("Make"));
        EXPECT_EQ(QFileInfo(dialog.selectedFiles().value(0)).completeBaseName(), QStringLiteral("new"));
        dialog.setDirectory(folder.path());
        dialog.selectFile(QStringLiteral("new"));
        static_cast<QDialog &>(dialog).done(QDialog::Accepted);
    });
    EXPECT_EQ(user.chooseFileToSave(choice), std::optional(folder.filePath(QStringLiteral("new.ztlibrary"))));
    when<QFileDialog>([](QFileDialog &dialog) { dialog.reject(); });
    EXPECT_FALSE(user.chooseFileToSave(choice));
}

TEST_F(SheetsTest, LongWorkHasALineInTheSidebarOrAWindowOfItsOwn)
{
    WindowUserInteraction user;
    int cancels = 0;
    const auto line = [] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            if (auto *found = top->findChild<ZQProgressLine *>()) {
                return found;
            }
        }
        return static_cast<ZQProgressLine *>(nullptr);
    };
    const auto wait = [](const std::function<bool()> &condition) { return QTest::qWaitFor(condition, 20000); };
    QWidget sidebar(&window);
    auto *lines = new QVBoxLayout(&sidebar);
    sidebar.show();
    for (const bool hasWindow : {false, true}) {
        if (hasWindow) {
            user.setPlaces({.window = &window, .browser = {}, .sidebar = &sidebar, .progress = lines});
        }
        auto progress = user.beginProgress(QStringLiteral("Working…"), 4, [&] { ++cancels; });
        EXPECT_EQ(line(), nullptr) << "what is over at once shows nothing";
        ASSERT_TRUE(wait([&] { return line() != nullptr; }));
        EXPECT_EQ(line()->window() == &window, hasWindow);
        EXPECT_EQ(lines->count(), hasWindow ? 1 : 0);
        if (!hasWindow) {
            EXPECT_EQ(line()->window()->width(), 420);
            EXPECT_EQ(line()->geometry().left(), 24);
            EXPECT_TRUE(line()->window()->isVisible());
        }
        const auto says = [&](const char *text, const char *fraction) {
            QString described;
            for (const QWidget *child : line()->findChildren<QWidget *>()) {
                described += child->accessibleDescription();
            }
            return line()->findChild<QLabel *>()->text() == QString::fromUtf8(text) &&
                   described == QLatin1StringView(fraction);
        };
        EXPECT_TRUE(says("Working…", "0 %"));
        progress->advanceBy(1);
        EXPECT_TRUE(wait([&] { return says("Working…", "25 %"); }));
        progress->advanceBy(1);
        progress->setText(QStringLiteral("Still"));
        progress->setMaximum(8);
        EXPECT_TRUE(wait([&] { return says("Still", "25 %"); }));
        progress->setMaximum(0);
        EXPECT_TRUE(wait([&] { return says("Still", "-100 %"); })) << "how much there is is not known";
        line()->findChild<QToolButton *>()->click();
        EXPECT_EQ(cancels, hasWindow ? 2 : 1);
        std::async(std::launch::async, [&] { progress.reset(); }).get(); // the last one out may be any thread
        EXPECT_TRUE(wait([&] { return line() == nullptr; }));
    }
    const auto uncancellable = user.beginProgress(QStringLiteral("On"), 1, {});
    ASSERT_TRUE(wait([&] { return line() != nullptr; }));
    EXPECT_FALSE(line()->findChild<QToolButton *>()->isVisible());
}

TEST_F(SheetsTest, DuplicatesAreNamedWithTheirExtensionsAndWhereTheNewOneComesFrom)
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
}

TEST_F(SheetsTest, TabGoesThroughASheetAsItIsSeen)
{
    UserQuestion question;
    question.message = QStringLiteral("Sure?");
    question.buttons = {QStringLiteral("Delete"), QStringLiteral("Keep"), QStringLiteral("Cancel")};
    question.suppressionKey = QStringLiteral("SheetsTestOrder");
    const QList<RefusedFile> refused{{QStringLiteral("/in/a"), QStringLiteral("why")}};
    struct Case
    {
        Sheet *sheet;
        const char *order; // from the first to the default, which has the focus
        Qt::Key before = Qt::Key_Shift;
    };
    for (const Case &each :
         {Case{new DuplicatesSheet(&window, pairs(2)), "Discard the new copy|Apply to all 2 duplicates|Cancel|Next"},
          Case{new DuplicatesSheet(&window, pairs(2)),
               "Apply to all 2 duplicates|Cancel|Next|Use the existing item here", Qt::Key_2},
          Case{new QuestionSheet(&window, question), "Do not ask again|Cancel|Keep|Delete"},
          Case{new UnreadableFilesSheet(&window, {{QStringLiteral("/in/a"), true, true}}),
               "Files|Show in Folder|Stop Import|Continue"},
          Case{new RefusedFilesSheet(&window, QStringLiteral("Left out"), refused, RefusedFilesSheet::Way::ToImported),
               "Files that were not imported|Show in Folder|Show Imported|Close"}}) {
        SCOPED_TRACE(each.order);
        const QStringList expected = QString::fromLatin1(each.order).split(u'|');
        each.sheet->open([](std::optional<int>) {});
        ASSERT_TRUE(QTest::qWaitFor([] { return isSheetFocused(); }));
        QTest::keyClick(QApplication::focusWidget(), each.before);
        QStringList order;
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            const QString text = QApplication::focusWidget()->property("text").toString();
            order.append(text.isEmpty() ? QApplication::focusWidget()->accessibleName() : text);
        }
        EXPECT_EQ(order, expected) << order.join(u'|').toStdString();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(SheetsTest, AnAnswerForAllIsForTheRestTooWhereArchivesFollow)
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
