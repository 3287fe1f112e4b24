#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Capture/PendingCaptures.h"
#include "Classes/Capture/ZeltoKunViewController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Tests/Classes/Import/ImportFixture.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>

namespace {

using Outcome = ZeltoKunViewController::Outcome;

QImage picture(const QColor &color, double scale = 1)
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(color);
    image.setPixelColor(7, 5, QColor(1, 2, 3));
    image.setDevicePixelRatio(scale);
    return image;
}

// A choice that the test makes.
class ScriptedSession : public ScreenshotSession
{
public:
    ScriptedSession(ScreenshotSessionDelegate &delegate, QList<ScriptedSession *> &all) : m_delegate(delegate)
    {
        all.append(this);
    }
    void begin(Kind kind) override { begun = kind; }
    void cancel() override { m_delegate.screenshotViewControllerDidEnd(*this, {}); }
    void take(const QImage &image, const QString &name) { m_delegate.screenshotViewController(*this, image, name); }
    std::optional<Kind> begun;

private:
    ScreenshotSessionDelegate &m_delegate;
};

class ScriptedViews : public CaptureInterface
{
public:
    std::unique_ptr<ScreenshotSession> makeSession(ScreenSource & /*source*/,
                                                   ScreenshotSessionDelegate &delegate) override
    {
        return std::make_unique<ScriptedSession>(delegate, sessions);
    }
    void showWebCapture(const QString &pageURL, const QRect & /*frame*/) override { pages.append(pageURL); }
    void hotKeysDidChange() override {}

    QList<ScriptedSession *> sessions; // the last is there for as long as it goes on
    QStringList pages;
};

class NoScreens : public ScreenSource
{
public:
    bool canSeeScreen() const override { return true; }
    QList<ScreenInfo> screens() const override { return {}; }
    QList<QVariantMap> onScreenWindows() const override { return {}; }
    std::optional<QVariantMap> windowDescription(quint32 /*number*/) const override { return std::nullopt; }
    void captureRect(const QRect & /*rect*/, Taken /*taken*/) override {}
    void captureWindow(quint32 /*number*/, Taken /*taken*/) override {}
    void captureAllScreens(Taken /*taken*/) override {}
    void captureInteractively(Taken /*taken*/) override {}
};

class RememberedHotKeys : public HotKeyRegistering
{
public:
    explicit RememberedHotKeys(QMap<QString, QVariantMap> &kept, QMap<QString, std::function<void()>> &commands)
        : m_kept(kept), m_commands(commands)
    {
    }
    QString registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run) override
    {
        m_kept[command] = setting;
        m_commands[command] = std::move(run);
        return {};
    }
    QString problemOfHotKey(const QString & /*command*/) const override { return {}; }

private:
    QMap<QString, QVariantMap> &m_kept;
    QMap<QString, std::function<void()>> &m_commands;
};

class StoringTest : public ImportFixture
{
protected:
    void SetUp() override
    {
        ImportFixture::SetUp();
        CaptureParts parts;
        parts.screenSource = std::make_unique<NoScreens>();
        parts.interface = &views;
        parts.hotKeys = std::make_unique<RememberedHotKeys>(hotKeys, commands);
        capture = std::make_unique<ZeltoKunViewController>(std::move(parts));
    }
    void TearDown() override { capture.reset(); }
    bool wasTold(const QString &part) const
    {
        return std::any_of(user.notifications.begin(), user.notifications.end(),
                           [&part](const auto &notification) { return notification.text.contains(part); });
    }
    void take(const QImage &image, const QString &name)
    {
        capture->snap(ScreenshotSession::Kind::Area, note());
        views.sessions.last()->take(image, name);
    }
    ZeltoKunViewController::Ended note()
    {
        return [this](const ZeltoKunViewController::End &end) {
            outcomes.append(end.outcome);
            last = end;
        };
    }
    void waitForOutcomes(qsizetype count)
    {
        zqRunMainLoopUntil([&] { return outcomes.size() >= count; });
    }
    QList<ZQRef<ZQLibraryBaseItem>> screenshots() const
    {
        QList<ZQRef<ZQLibraryBaseItem>> found;
        const auto project = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(context());
        for (const auto &item : items()) {
            for (const auto &membership : item->projectsItems()) {
                if (membership->project() == project) {
                    found.append(item);
                }
            }
        }
        return found;
    }

    ScriptedViews views;
    QMap<QString, QVariantMap> hotKeys;
    QMap<QString, std::function<void()>> commands;
    std::unique_ptr<ZeltoKunViewController> capture;
    QList<Outcome> outcomes;
    ZeltoKunViewController::End last;
};

TEST(CaptureNameTest, IsOneComponentWithTheDate)
{
    const QDateTime date(QDate(2026, 3, 5), QTime(14, 7, 31));
    const struct
    {
        QString name;
        const char *expected;
    } cases[] = {
        {QStringLiteral("Screenshot"), "Screenshot Mar 05 14.07.31.png"},
        {QStringLiteral("a/b\nc"), "a-b c Mar 05 14.07.31.png"},
        {QStringLiteral(".."), "_. Mar 05 14.07.31.png"},
        {QStringLiteral("  "), "Screenshot Mar 05 14.07.31.png"},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(CaptureStore::fileName(each.name, date).toStdString(), each.expected);
    }
    const QString longest = CaptureStore::fileName(QString(200, u'\u00e4'), date);
    EXPECT_LE(longest.toUtf8().size(), 255);
    EXPECT_TRUE(longest.endsWith(QStringLiteral(" Mar 05 14.07.31.png")));
}

TEST_F(StoringTest, KeepsTwoOfOneSecondApartWithPixelsAndScale)
{
    take(picture(Qt::red, 2), QStringLiteral("Painter"));
    take(picture(Qt::blue), QStringLiteral("Painter"));
    waitForOutcomes(2);
    EXPECT_EQ(outcomes, (QList<Outcome>{Outcome::Stored, Outcome::Stored}));
    ASSERT_EQ(screenshots().size(), 2);
    QSet<QRgb> colours;
    for (const auto &item : screenshots()) {
        EXPECT_TRUE(item->title().startsWith(QStringLiteral("Painter "))) << item->title().toStdString();
        const QImage stored(item->itemURL());
        EXPECT_EQ(stored.size(), QSize(60, 40));
        EXPECT_EQ(stored.pixelColor(7, 5), QColor(1, 2, 3));
        colours.insert(stored.pixel(0, 0));
        const bool isFine = stored.pixelColor(0, 0) == QColor(Qt::red);
        EXPECT_EQ(stored.dotsPerMeterX(), isFine ? 5669 : 2835);
    }
    EXPECT_EQ(colours.size(), 2);
}

TEST_F(StoringTest, LosesNoPictureThatCannotBeWritten)
{
    const QByteArray usual = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(writeFile(QStringLiteral("no folder"), "x")));
    user.answerQuestion = [&usual](const UserQuestion & /*question*/) {
        qputenv("TMPDIR", usual);
        return 0; // try again
    };
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(1);
    EXPECT_EQ(user.questions.size(), 1);
    EXPECT_EQ(screenshots().size(), 1);

    qputenv("TMPDIR", QFile::encodeName(path(QStringLiteral("no folder"))));
    user.answerQuestion = [](const UserQuestion & /*question*/) { return 1; };
    take(picture(Qt::blue), QStringLiteral("Painter"));
    waitForOutcomes(2);
    qputenv("TMPDIR", usual);
    EXPECT_EQ(outcomes.last(), Outcome::Failed);
    EXPECT_EQ(screenshots().size(), 1);
}

TEST_F(StoringTest, LosesNoPictureThatTheLibraryDoesNotTake)
{
    const QString library = delegate->libraryDirectory();
    ASSERT_TRUE(QDir().rename(library, library + u'~'));
    QString left; // the picture, while it is asked about
    const auto remember = [&left] {
        QDirIterator files(TemporaryArea::folder(), {QStringLiteral("Painter *.png")}, QDir::Files,
                           QDirIterator::Subdirectories);
        left = files.hasNext() ? files.next() : QString();
    };
    user.answerQuestion = [&](const UserQuestion &question) {
        remember();
        EXPECT_FALSE(left.isEmpty());
        EXPECT_EQ(question.buttons, (QStringList{QStringLiteral("Try Again"), QStringLiteral("Discard"),
                                                 QStringLiteral("Keep in Pictures")}));
        return 1;
    };
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(1);
    EXPECT_EQ(user.questions.size(), 1);
    EXPECT_EQ(last.outcome, Outcome::Failed);
    EXPECT_FALSE(last.error.localizedDescription().isEmpty());
    EXPECT_FALSE(QFile::exists(left));

    user.answerQuestion = [&](const UserQuestion & /*question*/) {
        EXPECT_TRUE(QDir().rename(library + u'~', library));
        return 0; // try again
    };
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(2);
    EXPECT_EQ(user.questions.size(), 2);
    EXPECT_EQ(last.outcome, Outcome::Stored);
    ASSERT_EQ(screenshots().size(), 1);
    EXPECT_EQ(last.items, QStringList{screenshots().first()->bundleID()});
    remember();
    EXPECT_TRUE(left.isEmpty());
    EXPECT_TRUE(wasTold(QStringLiteral("is in the library")));
}

// Esc, a question that is dismissed, and quitting while it is asked.
TEST_F(StoringTest, KeepsAmongThePersonsPicturesWhatNobodyDecidedAbout)
{
    const QByteArray usual = qgetenv("TMPDIR");
    const QByteArray home = qgetenv("HOME");
    const auto restored = qScopeGuard([&] {
        qputenv("TMPDIR", usual);
        qputenv("HOME", home);
    });
    qputenv("HOME", QFile::encodeName(path(QStringLiteral("home"))));
    qputenv("TMPDIR", QFile::encodeName(writeFile(QStringLiteral("no folder"), "x")));
    const QDir pictures(path(QStringLiteral("home/Pictures")));
    const bool isQuitting[] = {false, true};
    for (const bool quits : isQuitting) {
        user.answerQuestion = [&](const UserQuestion &question) {
            EXPECT_TRUE(capture->isStoring());
            EXPECT_EQ(pictures.entryList(QDir::Files).size(), outcomes.size());
            if (quits) {
                EXPECT_TRUE(capture->finishStoring());
                EXPECT_TRUE(question.withdrawal->isWithdrawn());
                EXPECT_EQ(outcomes.size(), 2);
                return 1; // too late
            }
            return int(question.buttons.size()) - 1;
        };
        take(picture(Qt::red), QStringLiteral("Painter"));
        waitForOutcomes(quits ? 2 : 1);
        EXPECT_EQ(last.error.code, CaptureStore::Kept);
        EXPECT_FALSE(capture->isStoring());
    }
    const QStringList kept = pictures.entryList(QDir::Files);
    ASSERT_EQ(kept.size(), 2);
    EXPECT_TRUE(wasTold(pictures.filePath(kept.first()))) << "in the window, too";
    for (const QString &name : kept) {
        EXPECT_EQ(QImage(pictures.filePath(name)).pixelColor(7, 5), QColor(1, 2, 3));
    }
    EXPECT_TRUE(PendingCaptures::left(delegate->libraryBundleDirectory()).isEmpty());
}

TEST_F(StoringTest, HoldsWhatHasNoPlaceAndDoesNotQuitMeanwhile)
{
    const QByteArray usual = qgetenv("TMPDIR");
    const QByteArray home = qgetenv("HOME");
    const auto restored = qScopeGuard([&] {
        qputenv("TMPDIR", usual);
        qputenv("HOME", home);
    });
    const QByteArray nowhere = QFile::encodeName(writeFile(QStringLiteral("no folder"), "x"));
    qputenv("HOME", nowhere);
    qputenv("TMPDIR", nowhere);
    const QString pending = delegate->libraryBundleDirectory() + QStringLiteral("/pending-captures");
    QFile inTheWay(pending);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(1);
    EXPECT_EQ(last.error.code, CaptureStore::Held);
    EXPECT_FALSE(capture->finishStoring());
    user.answerQuestion = [&](const UserQuestion & /*question*/) {
        qputenv("TMPDIR", usual);
        return 0; // try again
    };
    EXPECT_TRUE(capture->finishStoring());
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    EXPECT_EQ(screenshots().size(), 1);
}

TEST_F(StoringTest, TakesUpOnceWhatAKilledProcessLeft)
{
    const QString bundle = delegate->libraryBundleDirectory();
    const QString left = PendingCaptures::newPath(bundle, QStringLiteral("Painter Mar 05 14.07.31.png"));
    ASSERT_TRUE(picture(Qt::red).save(left));
    capture->loadView();
    capture->finishStoring();
    zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    ASSERT_EQ(screenshots().size(), 1);
    EXPECT_EQ(screenshots().first()->title(), QStringLiteral("Painter Mar 05 14.07.31"));
    EXPECT_TRUE(PendingCaptures::left(bundle).isEmpty());
}

TEST_F(StoringTest, OutlivesAProcessThatIsKilledBeforeItsImportIsNoted)
{
    const QString bundle = delegate->libraryBundleDirectory();
    take(picture(Qt::red), QStringLiteral("Painter"));
    // Nothing of the main thread runs meanwhile, as in a process that ends here.
    const auto isThere = [&bundle] {
        return QDirIterator(bundle + QStringLiteral("/pending-captures"), {QStringLiteral("*.png")}, QDir::Files,
                            QDirIterator::Subdirectories)
            .hasNext();
    };
    while (!isThere()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ASSERT_EQ(PendingCaptures::left(bundle).size(), 1);
    EXPECT_EQ(QImage(PendingCaptures::left(bundle).first()).pixelColor(7, 5), QColor(1, 2, 3));
    waitForOutcomes(1);
    EXPECT_TRUE(PendingCaptures::left(bundle).isEmpty());
    EXPECT_EQ(screenshots().size(), 1);
}

TEST(PendingCapturesTest, RemovesNothingThatLiesElsewhere)
{
    const QTemporaryDir bundle;
    const QString mine = bundle.filePath(QStringLiteral("mine.png"));
    const QString pending = PendingCaptures::newPath(bundle.path(), QStringLiteral("a.png"));
    for (const QString &path : {mine, pending}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    PendingCaptures::remove(bundle.path(), mine);
    PendingCaptures::remove({}, pending);
    PendingCaptures::remove(bundle.path(), {});
    EXPECT_TRUE(QFile::exists(mine));
    EXPECT_TRUE(QFile::exists(pending));
    PendingCaptures::remove(bundle.path(), pending);
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(pending).path()));
}

TEST_F(StoringTest, KeepsTheSamePictureAgainUnasked)
{
    user.answerDuplicates = [](const QList<DuplicatePair> & /*pairs*/) { return std::nullopt; };
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(1);
    take(picture(Qt::red), QStringLiteral("Painter"));
    waitForOutcomes(2);
    EXPECT_TRUE(user.duplicates.isEmpty());
    EXPECT_EQ(last.outcome, Outcome::Stored);
    EXPECT_EQ(screenshots().size(), 2);
}

TEST_F(StoringTest, IsOnItsWayIntoTheLibraryBeforeQuitting)
{
    take(picture(Qt::red), QStringLiteral("Painter"));
    capture->finishStoring();
    EXPECT_TRUE(delegate->backgroundOperationQueue().operationCount() == 1 || !screenshots().isEmpty());
    waitForOutcomes(1);
    EXPECT_EQ(screenshots().size(), 1);
}

TEST_F(StoringTest, IsNotCalledStoredWhenItGoesOnAtTheNextLaunch)
{
    ZQOperationQueue &imports = delegate->backgroundOperationQueue();
    std::promise<void> othersEnd;
    imports.addOperationWithBlock([&othersEnd] { othersEnd.get_future().wait(); });
    take(picture(Qt::red), QStringLiteral("Painter"));
    capture->finishStoring();
    AImportManager &manager = AImportManager::sharedAImportManager();
    manager.setKeepsCancelledImports(true); // Zelto is quit
    imports.cancelAllOperations();
    othersEnd.set_value();
    waitForOutcomes(1);
    manager.setKeepsCancelledImports(false);
    EXPECT_EQ(last.outcome, Outcome::Failed);
    EXPECT_TRUE(user.questions.isEmpty());
    zqRunMainLoopUntil([&manager] { return manager.pendingImports().cutOff().size() == 1; });
    ASSERT_EQ(manager.pendingImports().resume().size(), 1);
    zqRunMainLoopUntil([&imports] { return imports.operationCount() == 0; });
    QCoreApplication::processEvents();
    EXPECT_EQ(screenshots().size(), 1);
}

TEST_F(StoringTest, OneCaptureEndsAnother)
{
    const quint64 first = capture->snap(ScreenshotSession::Kind::Area, note());
    capture->snap(ScreenshotSession::Kind::Window, note());
    EXPECT_EQ(outcomes, QList<Outcome>{Outcome::CalledOff});
    EXPECT_EQ(views.sessions.last()->begun, ScreenshotSession::Kind::Window);
    capture->cancel(first); // who asked for it has gone; the other one is not theirs
    EXPECT_EQ(outcomes.size(), 1);
    capture->cancel();
    EXPECT_EQ(outcomes.size(), 2);
    capture->cancel(); // nothing
    EXPECT_EQ(outcomes.size(), 2);
}

TEST_F(StoringTest, AWebPageKeepsItsAddressAndTitle)
{
    const QString file = path(QStringLiteral("TMPDIR/page.png"));
    ASSERT_TRUE(picture(Qt::green).save(file));
    capture->storeWebCapture(file, QStringLiteral("https://example.org/a"), QStringLiteral(" A / \n page: 1 "), note());
    waitForOutcomes(1);
    ASSERT_EQ(screenshots().size(), 1);
    EXPECT_EQ(screenshots().first()->title(), QStringLiteral("A - page: 1"));
    EXPECT_TRUE(QFileInfo::exists(screenshots().first()->itemURL()));
    EXPECT_EQ(screenshots().first()->webPageURL(), QStringLiteral("https://example.org/a"));
}

TEST_F(StoringTest, HotKeysAreThoseOfTheUserDefaults)
{
    const QString area = HotKeyCommand::area;
    const auto codeOf = [&](const QString &command) {
        return hotKeys.value(command).value(QStringLiteral("code")).toInt();
    };
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    capture->loadView();
    EXPECT_EQ(hotKeys.size(), 4);
    EXPECT_EQ(codeOf(area), 18);
    EXPECT_EQ(codeOf(HotKeyCommand::showZelto), 21);
    commands.value(HotKeyCommand::window)();
    EXPECT_EQ(views.sessions.last()->begun, ScreenshotSession::Kind::Window);

    const QVariantMap other{{QStringLiteral("code"), 0}, {QStringLiteral("flags"), 1572864}};
    const auto restored = qScopeGuard([&] { defaults.removeObjectForKey(area); });
    defaults.setObjectForKey(other, area);
    zqRunMainLoopUntil([&] { return codeOf(area) == 0; });
    capture->setHotKeysPaused(true);
    EXPECT_TRUE(hotKeys.value(area).isEmpty());
    capture->setHotKeysPaused(false);
    EXPECT_EQ(hotKeys.value(area).size(), 2);
}

} // namespace
