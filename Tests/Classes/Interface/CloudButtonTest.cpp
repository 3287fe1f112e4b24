// Sharing from the window: the button and its ring, the keys, presets that are dropped, and the menu of uploads.

#include "Classes/Interface/Cloud/CloudButton.h"
#include "Classes/Export/ExportItem.h"
#include "Classes/Interface/Export/DirectSaveSource.h"
#include "Classes/Interface/Export/ExportPanelViewController.h"
#include "Classes/Interface/Export/PresetDrag.h"
#include "Classes/Interface/Preferences/CloudPane.h"
#include "Classes/Sharing/CloudMenuViewController.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Tests/Classes/Interface/FakeCloudService.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

namespace {

class CloudButtonTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        forget();
        kept = CloudServices::sharedCloudServices().services();
        CloudServices::sharedCloudServices().setServices({service, other});
        ZQUserDefaults::standardUserDefaults().setObjectForKey(service->identifier(), CloudServices::choiceKey);
        WebBrowser::setShared(std::make_unique<FakeBrowser>(opened, true));
        MainWindowFixture::SetUp();
        QGuiApplication::clipboard()->clear();
    }
    void TearDown() override
    {
        CloudUploader::sharedCloudUploader().cancelUploads();
        EXPECT_TRUE(waitFor([] { return !CloudUploader::sharedCloudUploader().hasUploadsLeft(); }));
        MainWindowFixture::TearDown();
        CloudServices::sharedCloudServices().setServices(kept);
        WebBrowser::setShared(nullptr);
        forget();
    }
    static void forget()
    {
        for (const QString &key : {CloudServices::choiceKey, LatestUploads::storageKey}) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
        }
    }
    CloudButton &button() { return *window().findChild<CloudButton *>(); }
    QMenu &cloudMenu() { return *button().cloudMenu(); }
    HeldUpload &upload(int index)
    {
        EXPECT_TRUE(waitFor([&] { return service->uploads.size() > index && service->uploads[index]->hasBegun; }));
        return *service->uploads[index];
    }
    bool says(const QString &text)
    {
        return waitFor([&] {
            for (const auto *bubble : window().findChildren<ZQNotificationBubble *>()) {
                if (bubble->isVisible() && bubble->text() == text) {
                    return true;
                }
            }
            return false;
        });
    }
    bool showsNoUpload()
    {
        return waitFor([this] { return !button().isUploading(); }) &&
               button().accessibleName() == QStringLiteral("Share (Ctrl+Shift+C)");
    }
    // Whether it took what was let go over it.
    bool drops(const QMimeData &data)
    {
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(&button(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        drop.ignore();
        QApplication::sendEvent(&button(), &drop);
        return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
    }
    QAction *entry(const QString &start)
    {
        for (QAction *action : cloudMenu().actions()) {
            if (action->text().startsWith(start)) {
                return action;
            }
        }
        return nullptr;
    }
    void openMenu()
    {
        button().showCloudMenu();
        ASSERT_TRUE(waitFor([this] { return cloudMenu().isVisible(); }));
    }

    std::shared_ptr<FakeCloudService> service = std::make_shared<FakeCloudService>(QStringLiteral("Ours"));
    std::shared_ptr<FakeCloudService> other = std::make_shared<FakeCloudService>(QStringLiteral("Other & Co"), false);
    CloudServices::List kept;
    QList<QUrl> opened;
};

const QString first = QStringLiteral("https://example.org/1");
const QString second = QStringLiteral("https://example.org/2");

} // namespace

TEST_F(CloudButtonTest, AClickSharesWhatIsSelectedAndTheRingFills)
{
    grid().setSelection({});
    settle();
    EXPECT_FALSE(isEnabled(CommandID::Share));
    button().click();
    EXPECT_TRUE(says(QStringLiteral("Please select some items!")));
    select({QStringLiteral("red"), QStringLiteral("clear")});
    ASSERT_TRUE(isEnabled(CommandID::Share));
    EXPECT_TRUE(showsNoUpload());

    button().click();
    HeldUpload &red = upload(0);
    ASSERT_EQ(service->uploads.size(), 2);
    EXPECT_TRUE(QFileInfo(red.fileToUploadURL()).isFile());
    EXPECT_EQ(button().accessibleName(), QStringLiteral("Sharing 1 of 2…"));
    EXPECT_TRUE(button().toolTip().contains(QStringLiteral("cancel")));
    const QImage empty = button().grab().toImage();
    red.sent(0.5);
    EXPECT_TRUE(waitFor([&] { return button().grab().toImage() != empty; }));
    EXPECT_DOUBLE_EQ(button().filesDone(), 0.5);
    red.succeed(first);
    HeldUpload &clear = upload(1);
    clear.sent(0.1);
    EXPECT_TRUE(waitFor([this] { return button().accessibleName() == QStringLiteral("Sharing 2 of 2…"); }));
    clear.succeed(second);
    EXPECT_TRUE(says(QStringLiteral("Uploaded 2 files to the cloud!")));
    EXPECT_TRUE(showsNoUpload());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), second);
    openMenu();
    QAction *all = entry(QStringLiteral("Copy All 2 Links"));
    ASSERT_TRUE(all);
    all->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), first + u'\n' + second);
}

TEST_F(CloudButtonTest, TheSameKeysShareAndCancel)
{
    select({QStringLiteral("red")});
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    upload(0);
    EXPECT_EQ(button().accessibleName(), QStringLiteral("Sharing…"));
    EXPECT_EQ(controller->command(CommandID::Share)->text(), QStringLiteral("Cancel Sharing"));
    grid().setSelection({});
    settle();
    EXPECT_TRUE(isEnabled(CommandID::Share)) << "what goes up can be cancelled whatever is selected";
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(says(QStringLiteral("Upload cancelled")));
    EXPECT_TRUE(showsNoUpload());
    EXPECT_TRUE(service->uploads.first()->isCancelled());
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty());
}

TEST_F(CloudButtonTest, APresetIsExportedAndSharedAndAnythingElseIsAClick)
{
    select({QStringLiteral("red")});
    ExportItem preset;
    preset.imageFileType = JPEG;
    PresetDrag drag(
        [this, preset](const QString &place, QStringList *paths) {
            return ExportPanelViewController::exportItemsToURL(place, preset, browser().selectedItems(), paths);
        },
        [] { return QString(); }, nullptr);
    qApp->installEventFilter(&drag);
    EXPECT_TRUE(drops(drag));
    EXPECT_TRUE(upload(0).fileToUploadURL().endsWith(QStringLiteral("/red.jpg")));
    EXPECT_EQ(service->uploads.first()->fileToUploadName(), QStringLiteral("red"));
    EXPECT_TRUE(button().isUploading());
    EXPECT_TRUE(drops(drag)) << "for the next upload";
    EXPECT_TRUE(waitFor([this] { return service->uploads.size() == 2; }));
    EXPECT_FALSE(service->uploads[0]->isCancelled() || service->uploads[1]->hasBegun);
    service->uploads[0]->succeed(first);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), first);
    upload(1).succeed(second);
    EXPECT_TRUE(showsNoUpload());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), second);
    qApp->removeEventFilter(&drag);

    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/nowhere.png"))});
    EXPECT_TRUE(drops(files));
    EXPECT_TRUE(upload(2).fileToUploadURL().endsWith(QStringLiteral(".png")));
    EXPECT_NE(service->uploads[2]->fileToUploadURL(), QStringLiteral("/nowhere.png"));
    EXPECT_TRUE(drops(files));
    EXPECT_TRUE(says(QStringLiteral("Upload cancelled")));
}

TEST_F(CloudButtonTest, TheMenuListsUploadsAndCopiesOrOpensTheirLinks)
{
    openMenu();
    ASSERT_TRUE(entry(QStringLiteral("No uploads yet")));
    EXPECT_FALSE(entry(QStringLiteral("No uploads yet"))->isEnabled());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    LatestUploads::add({{first, QStringLiteral("one\tor & two"), now.addSecs(-7300)}});
    LatestUploads::add({{second, QStringLiteral("hero"), now.addSecs(-130)}});
    CloudMenuViewController().updateCloudMenu();
    EXPECT_TRUE(waitFor([this] { return !entry(QStringLiteral("No uploads yet")); })) << "an open menu follows";
    QAction *hero = entry(QStringLiteral("hero\t"));
    ASSERT_TRUE(hero);
    EXPECT_FALSE(hero->text().contains(QStringLiteral("Copied")));
    EXPECT_TRUE(hero->text().endsWith(QStringLiteral("example.org/2"))) << "which tells those of one name apart";
    EXPECT_TRUE(entry(QStringLiteral("one or && two\t2 "))) << "no tab of its own, and no key";

    cloudMenu().setActiveAction(hero);
    QTest::keyClick(&cloudMenu(), Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return !cloudMenu().isVisible(); }));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), second);
    EXPECT_TRUE(says(QStringLiteral("Link to “hero” copied to clipboard!")));
    EXPECT_TRUE(opened.isEmpty());

    openMenu();
    EXPECT_TRUE(entry(QStringLiteral("hero\t"))->text().endsWith(QStringLiteral("· Copied")));
    QTest::mouseClick(&cloudMenu(), Qt::LeftButton, Qt::ControlModifier,
                      cloudMenu().actionGeometry(entry(QStringLiteral("one"))).center());
    EXPECT_TRUE(waitFor([this] { return opened == QList{QUrl(first)}; }));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), second) << "only opened";
}

TEST_F(CloudButtonTest, TheMenuCancelsChoosesTheServiceAndLeadsToItsAccounts)
{
    select({QStringLiteral("red"), QStringLiteral("clear")});
    run(CommandID::LatestUploads);
    ASSERT_TRUE(waitFor([this] { return cloudMenu().isVisible(); }));
    EXPECT_FALSE(entry(QStringLiteral("Sharing")));
    button().click();
    upload(0).succeed(first);
    upload(1).sent(0.1);
    ASSERT_TRUE(waitFor([this] { return entry(QStringLiteral("Sharing 2 of 2…")) != nullptr; }));
    const QString name = service->uploads.first()->fileToUploadName();
    EXPECT_TRUE(waitFor([&] { return entry(name) != nullptr; })) << "what is up already is listed";
    entry(QStringLiteral("Sharing"))->trigger();
    EXPECT_TRUE(says(QStringLiteral("Upload cancelled")));
    EXPECT_TRUE(waitFor([this] { return !entry(QStringLiteral("Sharing")); }));

    QAction *to = entry(QStringLiteral("Share to\tOurs"));
    ASSERT_TRUE(to && to->menu());
    const QList<QAction *> services = to->menu()->actions();
    ASSERT_EQ(services.size(), 4);
    EXPECT_EQ(services[2]->text(), QStringLiteral("Ours"));
    EXPECT_TRUE(services[2]->isChecked());
    services[0]->trigger();
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().stringForKey(CloudServices::choiceKey), QString());
    EXPECT_EQ(services[3]->text(), QStringLiteral("Other && Co\tSet up…"));
    EXPECT_EQ(services[3]->toolTip(), QStringLiteral("Set it up."));
    services[3]->trigger();
    EXPECT_TRUE(waitFor([this] { return named<CloudPane>("Cloud") != nullptr; }));
}
