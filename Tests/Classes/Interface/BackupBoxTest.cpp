// Backups as a person makes them in the preferences, and the numbers of the library.

#include "Classes/Interface/Preferences/BackupBox.h"
#include "Classes/Application/BackupSchedule.h"
#include "Classes/Browsing/Content/LibraryStatistics.h"
#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Classes/Interface/Sheets/StatisticsSheet.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"
#include "Tests/Classes/Interface/ProtectedFile.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSemaphore>
#include <QSignalSpy>
#include <QSpinBox>

namespace {

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

QString labelsOf(const QWidget &in)
{
    QStringList result;
    for (const QLabel *label : in.findChildren<QLabel *>()) {
        if (label->isVisible()) {
            result.append(label->text());
        }
    }
    return result.join(u'|');
}

class BackupBoxTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        forget();
        MainWindowFixture::SetUp();
        schedule = std::make_unique<BackupSchedule>(*delegate);
        ASSERT_TRUE(QDir().mkpath(folder()));
        open();
    }
    void TearDown() override
    {
        pane.reset();
        schedule.reset();
        MainWindowFixture::TearDown();
        forget();
    }
    static void forget()
    {
        for (const QString &key : {BackupSchedule::directoryKey, BackupSchedule::keepKey, BackupSchedule::intervalKey,
                                   BackupSchedule::madeInKey}) {
            defaults().removeObjectForKey(key);
        }
    }
    // As preferences that are closed and opened again.
    void open()
    {
        pane = std::make_unique<PreferencesPane>(QStringLiteral("Backup"));
        box = new BackupBox(*delegate, *schedule, *pane, pane.get());
        box->resize(500, 300);
        pane->show();
        box->show();
    }
    QPushButton *button(const char *text)
    {
        for (QPushButton *each : box->findChildren<QPushButton *>()) {
            if (each->text() == QString::fromUtf8(text)) {
                return each;
            }
        }
        return nullptr;
    }
    template <class T>
    T &the()
    {
        return *box->findChild<T *>();
    }
    bool says(const QString &part) { return labelsOf(*box).contains(part); }
    bool ends()
    {
        return waitFor([this] { return !schedule->work().isRunning(); });
    }
    QString folder() { return world.filePath(QStringLiteral("backups")); }

    std::unique_ptr<BackupSchedule> schedule;
    std::unique_ptr<PreferencesPane> pane;
    BackupBox *box = nullptr;
};

} // namespace

TEST_F(BackupBoxTest, ABackupIsMadeInTheFolderThatWasChosen)
{
    EXPECT_TRUE(says(QStringLiteral("No folder was chosen.")));
    button("&Back Up Now")->click();
    ASSERT_EQ(person.choices.size(), 1);
    EXPECT_TRUE(person.choices.first().directory);
    EXPECT_FALSE(schedule->work().isRunning()) << "the choice was cancelled";
    person.files = {folder()};
    button("&Back Up Now")->click();
    EXPECT_EQ(defaults().stringForKey(BackupSchedule::directoryKey), folder());
    ASSERT_TRUE(button("Stop &Backup"));
    EXPECT_TRUE(the<QProgressBar>().isVisible());
    ASSERT_TRUE(ends());
    const BackupResult &result = schedule->work().result();
    EXPECT_EQ(result.items, 4);
    EXPECT_TRUE(QFileInfo(result.path).isDir());
    EXPECT_TRUE(says(result.lines().join(u'\n'))) << labelsOf(*box).toStdString();
    EXPECT_TRUE(waitFor([this] { return says(QStringLiteral("The last one: ")); }));
    EXPECT_TRUE(button("&Back Up Now"));
    EXPECT_FALSE(the<QProgressBar>().isVisible());

    button("&Back Up Now")->click();
    open();
    ASSERT_TRUE(button("Stop &Backup")) << "it goes on without its window";
    EXPECT_TRUE(the<QProgressBar>().isVisible());
    button("Stop &Backup")->click();
    ASSERT_TRUE(ends());
    EXPECT_TRUE(button("&Back Up Now"));
    EXPECT_EQ(result.path.isEmpty(), result.isCancelled);
    EXPECT_TRUE(says(result.lines().first())) << labelsOf(*box).toStdString();
}

TEST_F(BackupBoxTest, AFolderThatCannotTakeItIsRefused)
{
    QString told;
    whenAsked([&told](Sheet &sheet) {
        told = labelsOf(sheet);
        sheet.findChild<QPushButton *>()->click();
    });
    person.files = {delegate->libraryBundleDirectory()};
    button("&Folder…")->click();
    EXPECT_TRUE(told.contains(QStringLiteral("inside a library"))) << told.toStdString();
    EXPECT_FALSE(defaults().isSet(BackupSchedule::directoryKey));
    defaults().setObjectForKey(world.filePath(QStringLiteral("gone")), BackupSchedule::directoryKey);
    open();
    button("&Back Up Now")->click();
    ASSERT_TRUE(ends());
    EXPECT_TRUE(says(QStringLiteral("There is no folder"))) << labelsOf(*box).toStdString();
    EXPECT_TRUE(button("&Back Up Now"));
}

TEST_F(BackupBoxTest, AFolderThatDoesNotAnswerHoldsNothingUp)
{
    // Shared with threads that nobody waits for.
    const auto silent = std::make_shared<QSemaphore>();
    const auto entered = std::make_shared<QSemaphore>();
    const QString gone = world.filePath(QStringLiteral("gone"));
    const auto read = [silent, entered, gone](const BackupLook::Place &place) {
        BackupLook::Found found;
        if (place.directory == gone) {
            entered->release();
            silent->acquire();
            found.last = BackupRecord{};
        }
        return found;
    };
    pane.reset();
    schedule = std::make_unique<BackupSchedule>(*delegate, read);
    defaults().setObjectForKey(gone, BackupSchedule::directoryKey);
    open();
    open();
    EXPECT_TRUE(says(QStringLiteral("Looking at the folder…"))) << labelsOf(*box).toStdString();
    ASSERT_TRUE(waitFor([&] { return entered->available() > 0; }));
    person.files = {folder()};
    button("&Folder…")->click();
    EXPECT_EQ(person.choices.last().startFolder, QString()) << "the choice does not begin in it either";
    const auto saysThatNoneIsThere = [this] { return says(QStringLiteral("There is no backup of this library")); };
    EXPECT_TRUE(waitFor(saysThatNoneIsThere)) << "the other folder answers meanwhile";
    EXPECT_EQ(entered->available(), 1) << "one thread a folder";
    button("&Folder…")->click();
    EXPECT_EQ(person.choices.last().startFolder, folder());
    ASSERT_TRUE(waitFor(saysThatNoneIsThere));
    bool isAnswered = false; // behind the box that was opened second
    defaults().setObjectForKey(gone, BackupSchedule::directoryKey);
    schedule->findLast([&isAnswered](const BackupLook::Found &) { isAnswered = true; });
    defaults().setObjectForKey(folder(), BackupSchedule::directoryKey);
    silent->release(2);
    ASSERT_TRUE(waitFor([&isAnswered] { return isAnswered; })) << "who asks while one looks gets a look of their own";
    EXPECT_EQ(entered->available(), 2);
    EXPECT_TRUE(saysThatNoneIsThere()) << "an answer of the folder before";
    defaults().setObjectForKey(gone, BackupSchedule::directoryKey);
    schedule->findLast([](const BackupLook::Found &) { ADD_FAILURE() << "nobody is there"; });
    pane.reset();
    schedule.reset(); // waits for nobody
    silent->release();
}

TEST_F(BackupBoxTest, TheSettingsAreWrittenAndWhatCannotBeGoesBack)
{
    EXPECT_EQ(the<QSpinBox>().text(), QStringLiteral("All"));
    the<QSpinBox>().setValue(3);
    QTest::keyClick(&the<QComboBox>(), Qt::Key_Down);
    EXPECT_EQ(defaults().integerForKey(BackupSchedule::keepKey), 3);
    EXPECT_EQ(defaults().integerForKey(BackupSchedule::intervalKey), 1);
    open();
    EXPECT_EQ(the<QSpinBox>().value(), 3);
    EXPECT_EQ(the<QComboBox>().currentText(), QStringLiteral("Every day"));
    for (const auto &[days, text] : {std::pair(3, "Every 3 days"), std::pair(-1, "Never"), std::pair(0, "Never"),
                                     std::pair(7, "Every week"), std::pair(1, "Every day")}) {
        defaults().setObjectForKey(days, BackupSchedule::intervalKey); // as `zelto defaults write` does
        open();
        EXPECT_EQ(the<QComboBox>().currentText().toStdString(), text);
    }
    const QSignalSpy refusals(pane.get(), &PreferencesPane::refused);
    ASSERT_TRUE(defaults().synchronize());
    const ProtectedFile file(defaults().path());
    the<QSpinBox>().setValue(7);
    QTest::keyClick(&the<QComboBox>(), Qt::Key_Down);
    EXPECT_EQ(refusals.size(), 2);
    EXPECT_EQ(the<QSpinBox>().value(), 3);
    EXPECT_EQ(the<QComboBox>().currentText(), QStringLiteral("Every day"));
}

TEST_F(BackupBoxTest, TheStatisticsAreThoseOfTheLibraryAndEndWithTheirSheet)
{
    ASSERT_TRUE(QFile::remove(image(QStringLiteral("red"))->itemURL()));
    const auto sheet = [this] { return window().findChild<StatisticsSheet *>(); };
    run(CommandID::LibraryStatistics);
    ASSERT_TRUE(sheet());
    EXPECT_TRUE(labelsOf(*sheet()).contains(QStringLiteral("Counting…")));
    const auto *numbers = sheet()->findChild<QPlainTextEdit *>();
    EXPECT_TRUE(waitFor([&] { return numbers->toPlainText().contains(QStringLiteral("Missing files: 1")); }))
        << numbers->toPlainText().toStdString();
    ZQError error;
    const auto counted = LibraryStatistics(context(), delegate->libraryDirectory()).count(true, &error);
    ASSERT_TRUE(counted) << error.localizedDescription().toStdString();
    EXPECT_EQ(numbers->toPlainText(), counted->lines().join(u'\n'));
    EXPECT_TRUE(numbers->toPlainText().startsWith(QStringLiteral("Items: 4\n")));
    EXPECT_EQ(sheet()->findChild<QLabel *>(QStringLiteral("SmallMuted"))->text(), QString()) << "nothing is to come";
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return !sheet(); }));
    run(CommandID::LibraryStatistics);
    QTest::keyClick(sheet(), Qt::Key_Escape); // in the middle of it
    EXPECT_TRUE(waitFor([&] { return !sheet(); }));
    const StatisticsSheet ofNone(&window(), nullptr, {});
    EXPECT_EQ(ofNone.findChild<QLabel *>(QStringLiteral("SmallMuted"))->text(),
              QStringLiteral("The library is not open."))
        << "nothing will come";
}
