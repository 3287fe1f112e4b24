// Sheets as such, and what a person is asked or told beside them.

#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Interface/Sheets/RefusedFilesSheet.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Interface/SheetsFixture.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QShortcut>
#include <QTemporaryDir>
#include <QToolButton>
#include <QVBoxLayout>

#include <future>

namespace {
using SheetsTest = SheetsFixture;
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

TEST_F(SheetsTest, AQuestionThatIsTakenBackGoesAndChangesLeast)
{
    UserQuestion question;
    question.buttons = {QStringLiteral("Delete"), QStringLiteral("Cancel")};
    question.withdrawal = std::make_shared<QuestionWithdrawal>();
    when<Sheet>([&](Sheet &) { question.withdrawal->withdraw(); });
    EXPECT_EQ(QuestionSheet(&window, question).ask(), 1);
    EXPECT_TRUE(window.findChildren<Sheet *>().isEmpty());
    question.withdrawal->withdraw(); // again, when nothing is shown
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

TEST_F(SheetsTest, LongButtonsAreShownWhole)
{
    UserQuestion question;
    question.buttons = {QStringLiteral("What other languages say at some length"),
                        QStringLiteral("And once more at length"), QStringLiteral("Cancel")};
    when<Sheet>([&](Sheet &sheet) {
        EXPECT_GT(sheet.width(), 460);
        for (const QString &text : std::as_const(question.buttons)) {
            const QAbstractButton *each = button(sheet, text.toLatin1());
            EXPECT_GE(each->width(), each->sizeHint().width()) << text.toStdString();
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    });
    QuestionSheet(&window, question).ask();
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
    choice.suggestedName = QStringLiteral("new");
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
        EXPECT_TRUE(wait([&] { return says("Still", ""); })) << "how much there is is not known";
        line()->findChild<QToolButton *>()->click();
        EXPECT_EQ(cancels, hasWindow ? 2 : 1);
        std::async(std::launch::async, [&] { progress.reset(); }).get(); // the last one out may be any thread
        EXPECT_TRUE(wait([&] { return line() == nullptr; }));
    }
    const auto uncancellable = user.beginProgress(QStringLiteral("On"), 1, {});
    ASSERT_TRUE(wait([&] { return line() != nullptr; }));
    EXPECT_FALSE(line()->findChild<QToolButton *>()->isVisible());
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
