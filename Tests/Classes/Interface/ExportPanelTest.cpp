// The quick export panel: what its presets do, and how they are made, moved and deleted.

#include "Classes/Export/ExportManager.h"
#include "Classes/Export/ExportOperation.h"
#include "Classes/Interface/Export/DirectSaveSource.h"
#include "Classes/Interface/Export/ExportEditPanel.h"
#include "Classes/Interface/Export/ExportPanelViewController.h"
#include "Classes/Interface/Export/ExportPresets.h"
#include "Classes/Interface/Export/PresetCell.h"
#include "Classes/Interface/Export/PresetDrag.h"
#include "Classes/Interface/Export/PresetIcon.h"
#include "Classes/Interface/Export/PresetsView.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QImageReader>
#include <QPushButton>
#include <QSet>
#include <QSysInfo>
#include <QToolButton>
#include <QUrl>

namespace {

class ExportPanelTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(ExportItem::storageKey);
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("ExportFolder"));
        MainWindowFixture::SetUp();
        ASSERT_TRUE(QDir().mkpath(out()));
        run(CommandID::ExportPanel);
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(ExportItem::storageKey);
    }
    QString out() const { return world.filePath(QStringLiteral("out")); }
    QStringList outFiles() const { return QDir(out()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    ExportPanelViewController &panel() { return controller->exportPanel(); }
    QList<PresetCell *> cells() { return panel().presetsView().cells(); }
    QStringList titles()
    {
        QStringList result;
        for (const ExportItem &item : panel().presets().items()) {
            result.append(item.title.isEmpty() ? item.extensionString() : item.title);
        }
        return result;
    }
    // Of what the next launch finds; they have no titles there.
    static QStringList storedFormats()
    {
        QStringList result;
        for (const ExportItem &item : ExportItem::exportItems()) {
            result.append(item.extensionString());
        }
        return result;
    }
    bool isPanelOpen() { return controller->command(CommandID::ExportPanel)->isChecked(); }
};

// Says where the target wants the file.
class NamedPlace : public DirectSaveSource
{
public:
    explicit NamedPlace(QString path) : m_path(std::move(path)) {}
    void propose(const QString & /*name*/) override {}
    QString address() override { return m_path; }

private:
    const QString m_path;
};

// A widget as the one that shares; and what it heard.
class Receiver : public QWidget, public PresetReceiver
{
public:
    explicit Receiver(QWidget *parent) : QWidget(parent) { setAcceptDrops(true); }
    void setFileToUploadAfterExport(const QStringList &paths) override { heard.append(paths); }

    QList<QStringList> heard;
};

// Whether the widget took what was let go over it.
bool drops(QWidget &widget, const QMimeData &data)
{
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.ignore();
    QApplication::sendEvent(&widget, &enter);
    if (!enter.isAccepted()) {
        return false;
    }
    QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
    drop.ignore();
    QApplication::sendEvent(&widget, &drop);
    return drop.isAccepted();
}

} // namespace

TEST_F(ExportPanelTest, AClickAsksForTheFolderAndExportsWhatIsSelected)
{
    ASSERT_EQ(cells().size(), 3);
    grid().setSelection({});
    settle();
    EXPECT_FALSE(cells().first()->isEnabled());
    select({QStringLiteral("red"), QStringLiteral("clear")});
    ASSERT_TRUE(cells().first()->isEnabled());
    EXPECT_EQ(cells().first()->size(), QSize(114, 145));
    EXPECT_EQ(cells().first()->accessibleName(), QStringLiteral("Jpeg export (jpg, 50%)"));
    const qsizetype asked = person.choices.size();
    cells().first()->click();
    settle();
    ASSERT_EQ(person.choices.size(), asked + 1);
    const FileChoice choice = person.choices.last();
    EXPECT_EQ(choice.title, QStringLiteral("Please choose the location where the images will be saved"));
    EXPECT_EQ(choice.prompt, QStringLiteral("Export"));
    EXPECT_TRUE(choice.directory);
    EXPECT_TRUE(choice.startFolder.isEmpty()) << "nothing was exported yet";
    EXPECT_FALSE(choice.several);
    EXPECT_TRUE(outFiles().isEmpty()) << "no folder was chosen";
    person.files = QStringList{out()};
    cells().first()->setFocus();
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(outFiles(), (QStringList{QStringLiteral("clear.jpg"), QStringLiteral("red.jpg")}));
    EXPECT_EQ(QImageReader(out() + QStringLiteral("/red.jpg")).size(), QSize(40, 30));
    person.files.clear();
    cells().first()->click();
    EXPECT_EQ(person.choices.last().startFolder, out()) << "begins where the last export went";
}

TEST_F(ExportPanelTest, ThePaneShowsOneOfBothPanels)
{
    const auto isInfoOpen = [this] { return controller->command(CommandID::InfoPanel)->isChecked(); };
    EXPECT_TRUE(isPanelOpen());
    EXPECT_FALSE(isInfoOpen());
    run(CommandID::InfoPanel);
    EXPECT_TRUE(isInfoOpen());
    EXPECT_FALSE(isPanelOpen());
    run(CommandID::ExportPanel);
    run(CommandID::NewTab);
    run(CommandID::InfoPanel);
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(isPanelOpen()) << "as this tab was left";
    closeWindow();
    openWindow();
    EXPECT_TRUE(isPanelOpen());
    show(a);
    select({QStringLiteral("red")});
    named<QToolButton>("Edit presets")->click();
    ASSERT_TRUE(panel().isEditing());
    EXPECT_TRUE(panel().editPanel().formatMenu().hasFocus());
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel().isEditing());
    EXPECT_TRUE(isPanelOpen());
    cells().first()->setFocus();
    press(Qt::Key_Escape);
    EXPECT_FALSE(isPanelOpen());
    EXPECT_TRUE(grid().hasFocus());
}

TEST_F(ExportPanelTest, ChangesOfPresetsAreTakenBackAndStoredButForTheirOrder)
{
    ExportPresets &presets = panel().presets();
    const QStringList first = {QStringLiteral("Jpeg export"), QStringLiteral("Png export"),
                               QStringLiteral("Zip export")};
    EXPECT_EQ(titles(), first);
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().isSet(ExportItem::storageKey));
    presets.moveItem(presets.items().first().identifier, 3);
    EXPECT_EQ(titles(), (QStringList{first[1], first[2], first[0]}));
    EXPECT_EQ(controller->undoStack().undoText(), QStringLiteral("move export preset"));
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().isSet(ExportItem::storageKey));
    run(CommandID::Undo);
    EXPECT_EQ(titles(), first);
    run(CommandID::Redo);

    ExportItem added;
    added.imageFileType = WebP;
    presets.addItem(added);
    EXPECT_EQ(controller->undoStack().undoText(), QStringLiteral("add export preset"));
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("png"), QStringLiteral("orig"), QStringLiteral("jpg"),
                                            QStringLiteral("webp")}));
    run(CommandID::Undo);
    EXPECT_EQ(storedFormats().size(), 3);

    panel().setEditing(true);
    cells().first()->setFocus();
    press(Qt::Key_Delete);
    EXPECT_EQ(controller->undoStack().undoText(), QStringLiteral("delete export preset"));
    EXPECT_EQ(storedFormats(), (QStringList{QStringLiteral("orig"), QStringLiteral("jpg")}));
    EXPECT_TRUE(image(QStringLiteral("red"))) << "the key means the preset";
    run(CommandID::Undo);
    EXPECT_EQ(storedFormats().first(), QStringLiteral("png"));
    for (qsizetype left = presets.items().size(); left > 0; --left) {
        presets.deleteItem(presets.items().first().identifier);
    }
    EXPECT_TRUE(ExportItem::exportItems().isEmpty()) << "the first ones do not come back";
    EXPECT_TRUE(cells().isEmpty());
}

TEST_F(ExportPanelTest, TheFieldsMakeThePreset)
{
    using Edit = ExportEditPanel;
    struct Case
    {
        int format;
        int size;
        const char *first;
        const char *second;
        std::optional<int> type, width, height, percentage;
        bool hasFirst, hasSecond;
    };
    const std::nullopt_t none = std::nullopt;
    const Case cases[] = {
        {Edit::Original, Edit::OriginalSize, "", "", none, none, none, none, false, false},
        {Edit::PNG, Edit::OriginalSize, "", "", PNG, none, none, none, false, false},
        {Edit::JPEG, Edit::WidthAndHeight, "800", "", JPEG, 800, none, none, true, true},
        {Edit::JPEG, Edit::WidthAndHeight, "0", "600", JPEG, none, 600, none, true, true},
        {Edit::JPEG, Edit::Percentage, "50", "", JPEG, none, none, 50, true, false},
        {Edit::PNG, Edit::Percentage, "0", "", PNG, none, none, none, true, false},
        {Edit::PNG, Edit::Percentage, "200000", "", PNG, none, none, ExportItem::mostPercent, true, false},
        {Edit::PNG, Edit::WidthAndHeight, "150000", "99999999", PNG, 150000, ExportItem::mostPixels, none, true, true},
        {Edit::tagOfFileType(WebP), Edit::OriginalSize, "", "", WebP, none, none, none, false, false},
        {Edit::tagOfFileType(BMP), Edit::Percentage, "50", "", BMP, none, none, 50, true, false},
    };
    Edit &edit = panel().editPanel();
    panel().setEditing(true);
    for (const Case &each : cases) {
        edit.start();
        edit.formatMenu().setCurrentIndex(edit.formatMenu().findData(each.format));
        edit.sizeMenu().setCurrentIndex(edit.sizeMenu().findData(each.size));
        edit.firstField().setText(QLatin1StringView(each.first));
        edit.secondField().setText(QLatin1StringView(each.second));
        const auto name = testing::Message() << each.format << " " << each.size << " " << each.first;
        EXPECT_EQ(edit.sizeMenu().isEnabled(), each.format != Edit::Original) << name;
        EXPECT_EQ(edit.firstField().isVisible(), each.hasFirst) << name;
        EXPECT_EQ(edit.secondField().isVisible(), each.hasSecond) << name;
        const ExportItem item = edit.item();
        EXPECT_EQ(item.imageFileType, each.type) << name;
        EXPECT_EQ(item.imageWidth, each.width) << name;
        EXPECT_EQ(item.imageHeight, each.height) << name;
        EXPECT_EQ(item.imagePercentage, each.percentage) << name;
        EXPECT_EQ(item.imageQuality.has_value(), each.type == WebP) << name;
    }
    edit.formatMenu().setCurrentIndex(edit.formatMenu().findData(int(Edit::Original)));
    edit.colorMenu().setCurrentIndex(edit.colorMenu().findData(5));
    edit.archiveBox().setChecked(true);
    for (auto *button : edit.findChildren<QPushButton *>()) {
        if (button->text() == QStringLiteral("Save")) {
            button->click();
        }
    }
    const ExportItem saved = panel().presets().items().last();
    EXPECT_EQ(saved.iconColor, 5);
    EXPECT_TRUE(saved.archive);
    EXPECT_EQ(saved.dragIcon.size(), PresetIcon::size);
    EXPECT_FALSE(panel().isEditing());
}

TEST_F(ExportPanelTest, APresetLikeAnotherHasItsFormat)
{
    ExportEditPanel &edit = panel().editPanel();
    panel().setEditing(true);
    QSet<int> tags;
    for (const int type : zqFileTypes()) {
        ExportItem like;
        like.imageFileType = type;
        like.imagePercentage = 25;
        edit.startWith(like);
        EXPECT_EQ(edit.item().imageFileType, type);
        EXPECT_EQ(edit.item().imagePercentage, 25) << type;
        tags.insert(edit.formatMenu().currentData().toInt());
        EXPECT_EQ(edit.formatMenu().currentText().contains(zqLocalized("extension kept")), !zqFileTypeNamesItself(type))
            << type;
    }
    EXPECT_EQ(tags.size(), zqFileTypes().size());
    edit.startWith(ExportItem());
    EXPECT_FALSE(edit.item().imageFileType);

    ExportItem bitmap;
    bitmap.imageFileType = BMP;
    EXPECT_EQ(ExportPresets::description(bitmap), QStringLiteral("BMP, Original size"));
    bitmap.imageFileType = 99;
    EXPECT_EQ(ExportPresets::description(bitmap), QStringLiteral("Other format, Original size"));
}

TEST_F(ExportPanelTest, ADropGoesBetweenTheCellsItIsNear)
{
    PresetsView &view = panel().presetsView();
    view.resize(264, view.heightForWidth(264)); // two columns, the first from 5 to 119, the second from 144 to 258
    const std::pair<QPoint, qsizetype> drops[] = {{{10, 70}, 0},  {{100, 70}, 1},  {{150, 70}, 1},  {{250, 70}, 2},
                                                  {{10, 200}, 2}, {{100, 200}, 3}, {{250, 200}, 3}, {{10, 900}, 2}};
    for (const auto &[point, index] : drops) {
        EXPECT_EQ(view.dropIndexAt(point), index) << point.x() << " " << point.y();
    }
    const auto places = [&view] {
        QList<QPoint> corners;
        for (const PresetCell *cell : view.cells()) {
            corners.append(cell->pos());
        }
        return corners;
    };
    const QList<QPoint> usual = places();
    view.setLayoutDirection(Qt::RightToLeft);
    const QList<QPoint> other = places();
    ASSERT_GE(usual.size(), 2);
    for (qsizetype i = 0; i < usual.size(); ++i) {
        EXPECT_EQ(other[i], QPoint(264 - PresetCell::cellSize.width() - usual[i].x(), usual[i].y())) << i;
    }
    for (const auto &[point, index] : drops) {
        EXPECT_EQ(view.dropIndexAt({263 - point.x(), point.y()}), index) << point.x() << " " << point.y();
    }
    view.setEditing(true); // so that they can have the focus
    view.cells()[0]->setFocus();
    QTest::keyClick(view.cells()[0], Qt::Key_Left);
    EXPECT_TRUE(view.cells()[1]->hasFocus()) << "the key goes where it points";
}

TEST_F(ExportPanelTest, WhatIsDraggedIsWholeWhenItIsGiven)
{
    select({QStringLiteral("red"), QStringLiteral("clear")});
    const QList<ZQObjectID> items = browser().selectedItems();
    const ExportItem preset = panel().presets().items()[1];
    const auto exporting = [&](const QString &place, QStringList *paths) {
        return ExportPanelViewController::exportItemsToURL(place, preset, items, paths);
    };
    const auto naming = [] { return QString(); };
    const PresetDrag plain(exporting, naming, nullptr);
    EXPECT_FALSE(plain.hasFormat(DirectSaveSource::format));
    const QList<QUrl> urls = plain.urls();
    ASSERT_EQ(urls.size(), 2);
    for (const QUrl &url : urls) {
        EXPECT_FALSE(QImage(url.toLocalFile()).isNull()) << qPrintable(url.toString());
    }
    EXPECT_EQ(plain.urls(), urls) << "exported once";

    const QString wanted = out() + QStringLiteral("/red.png");
    const PresetDrag saving(exporting, naming, std::make_unique<NamedPlace>(wanted));
    EXPECT_EQ(saving.data(DirectSaveSource::format), DirectSaveSource::saved);
    EXPECT_EQ(outFiles(), (QStringList{QStringLiteral("clear.png"), QStringLiteral("red.png")}));
    for (const QString &nowhere : {QString(), out() + QStringLiteral("/missing/red.png")}) {
        const PresetDrag lost(exporting, naming, std::make_unique<NamedPlace>(nowhere));
        EXPECT_EQ(lost.data(DirectSaveSource::format), DirectSaveSource::failed);
    }
    EXPECT_EQ(outFiles().size(), 2);
}

TEST_F(ExportPanelTest, AReceiverInTheWindowGetsThePathsBeforeTheExportEnds)
{
    select({QStringLiteral("red"), QStringLiteral("clear")});
    const QList<ZQObjectID> items = browser().selectedItems();
    const ExportItem preset = panel().presets().items()[1];
    QString refused; // where an export was not begun
    bool begins = true;
    PresetDrag drag(
        [&](const QString &place, QStringList *paths) {
            const QList<ZQObjectID> twice = items + items;
            refused = begins ? QString() : place;
            return ExportPanelViewController::exportItemsToURL(place, preset, begins ? twice : QList<ZQObjectID>(),
                                                               paths);
        },
        [] { return QString(); }, nullptr);
    Receiver receiver(&window());
    QWidget plain(&window());
    plain.setAcceptDrops(true);
    qApp->installEventFilter(&drag);
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        ExportManager::didFinishExportOperation, nullptr,
        [&receiver](const ZQNotification &) { receiver.heard.append({QStringLiteral("end")}); });

    EXPECT_FALSE(drops(plain, drag)) << "no widget that knows presets";
    QMimeData other;
    other.setData(PresetDrag::presetType, {});
    EXPECT_FALSE(drops(receiver, other)) << "another drag is none of its business";
    EXPECT_TRUE(receiver.heard.isEmpty());

    EXPECT_TRUE(drops(receiver, drag));
    ASSERT_EQ(receiver.heard.size(), 1) << "at once";
    ASSERT_TRUE(waitFor([&] { return receiver.heard.size() == 2; }));
    EXPECT_EQ(receiver.heard[1], QStringList{QStringLiteral("end")});
    const QStringList paths = receiver.heard[0];
    ASSERT_EQ(paths.size(), 2) << "each once";
    QStringList names;
    for (const QString &path : paths) {
        names.append(QFileInfo(path).fileName());
        EXPECT_FALSE(QImage(path).isNull()) << path.toStdString();
    }
    names.sort();
    EXPECT_EQ(names, (QStringList{QStringLiteral("clear.png"), QStringLiteral("red.png")}));

    begins = false;
    receiver.heard.clear();
    EXPECT_TRUE(drops(receiver, drag));
    EXPECT_EQ(receiver.heard, QList<QStringList>{QStringList()}) << "nothing will come";
    EXPECT_FALSE(refused.isEmpty());
    qApp->removeEventFilter(&drag);
}

TEST_F(ExportPanelTest, TheNameThatIsProposedIsThatOfTheFirstFile)
{
    select({QStringLiteral("red"), QStringLiteral("clear")});
    const QList<ZQObjectID> items = browser().selectedItems();
    const auto proposed = [&items](const ExportItem &preset) {
        return ExportManager::proposedName(ExportRequest::with(preset, items, {}));
    };
    const auto first = zqCast<ZQLibraryBaseItem>(context().existingObjectWithID(items[0]));
    const QString title = first->title();
    ASSERT_TRUE(QFile::remove(first->itemURL())) << "a drag begins without a look at files";
    ExportItem preset;
    EXPECT_EQ(proposed(preset), title + QStringLiteral(".png"));
    preset.imageFileType = JPEG;
    preset.imagePercentage = 50;
    preset.namePattern = QStringLiteral("{index} {title}");
    EXPECT_EQ(proposed(preset), QStringLiteral("1 ") + title + QStringLiteral(".jpg"));
    preset.archive = true;
    EXPECT_EQ(proposed(preset), QStringLiteral("Archive.zip"));
    EXPECT_TRUE(ExportManager::proposedName({}).isEmpty());
}

TEST(DirectSaveSource, OnlyFilesOfThisComputerAreWritten)
{
    const QByteArray here = QSysInfo::machineHostName().toUtf8();
    const std::pair<QByteArray, QString> addresses[] = {
        {"file:///tmp/b%C3%BCro%20%231.png\r\n", QStringLiteral("/tmp/büro #1.png")},
        {"file://localhost/tmp/a.png", QStringLiteral("/tmp/a.png")},
        {"file://" + here + "/tmp/a.png", QStringLiteral("/tmp/a.png")},
        {"file://elsewhere.example/tmp/a.png", QString()},
        {"sftp://localhost/tmp/a.png", QString()},
        {"red.png", QString()},
        {"", QString()},
    };
    for (const auto &[address, path] : addresses) {
        EXPECT_EQ(DirectSaveSource::pathOfAddress(address), path) << address.constData();
    }
}
