// The info panel: what it says of none, one and many, and what each of its fields does.

#include "Classes/Editing/ItemEdits.h"
#include "Classes/Interface/InfoPanel/ColorSwatch.h"
#include "Classes/Interface/InfoPanel/DocumentSize.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Classes/Interface/InfoPanel/TagField.h"
#include "Classes/Interface/RatingField.h"
#include "Classes/Tags/OpenMetaPrefs.h"
#include "Kit/Imaging/ZQPaletteFiles.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QClipboard>
#include <QCompleter>
#include <QContextMenuEvent>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStyledItemDelegate>
#include <QtTest/QSignalSpy>

namespace {

class InfoPanelTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        panel = window().findChild<InfoPanelViewController *>();
        rating = panel->findChild<RatingField *>();
        tags = panel->findChild<TagField *>();
        notes = panel->findChild<QPlainTextEdit *>();
    }
    QLineEdit *field(const char *name) { return named<QLineEdit>(name); }
    // "title|kind|size" and so on: what can be read, from the top.
    QString values()
    {
        QStringList parts = {field("Title")->text()};
        for (const QLabel *label : panel->findChildren<QLabel *>()) {
            if (label->isVisible() && label->objectName() == QStringLiteral("Small")) {
                parts.append(label->text());
            }
        }
        return parts.join(u'|');
    }
    QString kind() { return panel->findChild<QLabel *>(QStringLiteral("SmallMuted"))->text(); }
    QString notice()
    {
        const auto *label = panel->findChild<QLabel *>(QStringLiteral("Muted"));
        return label->isVisible() ? label->text() : QString();
    }
    QStringList swatches()
    {
        QStringList names;
        for (const ColorSwatch *swatch : panel->findChildren<ColorSwatch *>()) {
            if (swatch->isVisible()) {
                names.append(swatch->accessibleName());
            }
        }
        return names;
    }

    InfoPanelViewController *panel = nullptr;
    RatingField *rating = nullptr;
    TagField *tags = nullptr;
    QPlainTextEdit *notes = nullptr;
};

const QString red = QStringLiteral("red");
const QString clear = QStringLiteral("clear");

} // namespace

TEST_F(InfoPanelTest, SaysWhatIsKnownOfNoneOneAndMany)
{
    EXPECT_EQ(notice(), QStringLiteral("Nothing selected"));
    EXPECT_FALSE(field("Title"));
    auto first = image(red);
    first->setImport_date(QDateTime(QDate(2020, 5, 4), QTime(12, 0)));
    first->setModification_date({});
    first->setWebPageURL({});
    first->setWebURL(QStringLiteral("https://example.org/red.png"));
    first->setLicense(QStringLiteral("CC0"));
    first->setRating(2);
    first->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
    image(clear)->setImport_date(QDateTime(QDate(2021, 5, 4), QTime(12, 0)));
    delegate->saveAction();
    select({red});
    EXPECT_EQ(notice(), QString());
    EXPECT_EQ(values(), QStringLiteral("red|80 × 60|4 May 2020|Unknown"));
    EXPECT_EQ(kind(), QStringLiteral("PNG image · ") +
                          QLocale().formattedDataSize(first->byteSize(), 1, QLocale::DataSizeSIFormat));
    EXPECT_FALSE(field("Title")->isReadOnly());
    EXPECT_EQ(field("Title")->focusPolicy(), Qt::StrongFocus);
    EXPECT_EQ(field("Source")->text(), QStringLiteral("https://example.org/red.png"));
    EXPECT_EQ(field("License")->text(), QStringLiteral("CC0"));
    EXPECT_EQ(rating->accessibleName(), QStringLiteral("Rating: 2 of 5"));
    EXPECT_EQ(tags->tags(), QStringList{QStringLiteral("mine")});
    EXPECT_EQ(swatches(), QStringList{"#ff0000"});

    select({red, clear});
    EXPECT_EQ(values(), QStringLiteral("2 items|Multiple values|Multiple values|Multiple values"));
    EXPECT_TRUE(field("Title")->isReadOnly());
    EXPECT_EQ(field("Title")->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(field("Source")->text(), QString());
    EXPECT_EQ(field("Source")->placeholderText(), QStringLiteral("Multiple values"));
    EXPECT_EQ(field("License")->placeholderText(), QStringLiteral("Multiple values"));
    EXPECT_EQ(rating->accessibleName(), QStringLiteral("Rating: Multiple values"));
    EXPECT_EQ(tags->tags(), QStringList());
    EXPECT_TRUE(tags->height() > 20);
    EXPECT_TRUE(swatches().isEmpty()) << "colours are of one";
    select({QStringLiteral("pages")});
    EXPECT_EQ(field("License")->placeholderText(), QStringLiteral("None given"));
    EXPECT_EQ(field("License")->text(), QString());
    ASSERT_TRUE(QFile::remove(first->itemURL()));
    select({red});
    EXPECT_EQ(kind(), QStringLiteral("PNG image · the file is missing"));
    select({red, clear});
    EXPECT_TRUE(kind().endsWith(QStringLiteral(" · 1 file is missing")));
    ASSERT_TRUE(QFile::remove(image(clear)->itemURL()));
    select({red, clear, QStringLiteral("pages")});
    EXPECT_TRUE(kind().endsWith(QStringLiteral(" · 2 files are missing")));
    select({});
    EXPECT_EQ(notice(), QStringLiteral("Nothing selected"));
    EXPECT_FALSE(field("Title"));
    browser().rate(4);
    EXPECT_FALSE(isEnabled(CommandID::Undo));

    EXPECT_TRUE(panel->widgetResizable());
    EXPECT_EQ(panel->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(notes->height(), 72);
}

TEST_F(InfoPanelTest, EveryFieldIsAStepThatCanBeTakenBack)
{
    select({red, clear});
    image(clear)->setLicense(QStringLiteral("old"));
    delegate->saveAction();
    settle();
    const auto both = [this](const auto &get) { return get(*image(red)) + u'|' + get(*image(clear)); };
    const auto license = [](const ZQLibraryBaseItem &item) { return item.license(); };
    const auto source = [](const ZQLibraryBaseItem &item) { return item.webPageURL(); };
    const auto said = [](const ZQLibraryBaseItem &item) { return item.notes(); };
    const auto stars = [](const ZQLibraryBaseItem &item) { return QString::number(item.rating()); };
    const auto tagged = [](const ZQLibraryBaseItem &item) { return item.userTagTitles().join(u','); };

    field("License")->setFocus();
    type(QStringLiteral(" CC0 "));
    press(Qt::Key_Return);
    EXPECT_EQ(both(license), QStringLiteral("CC0|CC0"));
    settle();
    EXPECT_EQ(field("License")->text(), QStringLiteral("CC0"));
    field("License")->setFocus();
    press(Qt::Key_Tab); // left without a change
    field("Source")->setFocus();
    type(QStringLiteral("https://example.org"));
    grid().setFocus(); // leaving it is enough
    EXPECT_EQ(both(source), QStringLiteral("https://example.org|https://example.org"));
    notes->setFocus();
    type(QStringLiteral("both"));
    press(Qt::Key_Tab); // does not type one
    EXPECT_EQ(both(said), QStringLiteral("both|both"));
    rating->setFocus();
    press(Qt::Key_5);
    EXPECT_EQ(both(stars), QStringLiteral("5|5"));
    QTest::keyClicks(field("Add tag"), QStringLiteral("one,mine,"));
    EXPECT_EQ(both(tagged), QStringLiteral("mine,one|mine,one"));
    EXPECT_EQ(OpenMetaPrefs::recentTags().mid(0, 1), QStringList{QStringLiteral("mine")});
    grid().setFocus();
    struct Undo
    {
        const char *text;
        std::function<QString()> value;
        const char *after;
    };
    for (const Undo &each : {Undo{"edit tags", [&] { return both(tagged); }, "one|one"},
                             {"edit tags", [&] { return both(tagged); }, "|"},
                             {"rate", [&] { return both(stars); }, "0|0"},
                             {"edit notes", [&] { return both(said); }, "|"},
                             {"edit source", [&] { return both(source); }, "|"},
                             {"edit license", [&] { return both(license); }, "|old"}}) {
        EXPECT_EQ(controller->undoStack().undoText(), QLatin1StringView(each.text));
        run(CommandID::Undo);
        EXPECT_EQ(each.value(), QLatin1StringView(each.after)) << each.text;
    }
    EXPECT_FALSE(controller->undoStack().canUndo());
    settle();
    EXPECT_EQ(field("License")->placeholderText(), QStringLiteral("Multiple values"));
    EXPECT_EQ(notes->toPlainText(), QString());
}

TEST_F(InfoPanelTest, EscapeLeavesAFieldAsItWas)
{
    image(red)->setLicense(QStringLiteral("CC0"));
    image(red)->setWebPageURL(QStringLiteral("https://a"));
    delegate->saveAction();
    select({red});
    for (const char *name : {"License", "Source", "Title"}) {
        QLineEdit *edited = field(name);
        const QString before = edited->text();
        edited->setFocus();
        edited->selectAll();
        type(QStringLiteral("x"));
        press(Qt::Key_Escape);
        EXPECT_EQ(edited->text(), before) << name;
        EXPECT_EQ(QApplication::focusWidget(), &grid()) << name;
        grid().setFocus();
        edited->setFocus();
        grid().setFocus();
    }
    EXPECT_FALSE(controller->undoStack().canUndo());
    // What arrives while somebody types does not take it away.
    QLineEdit *license = field("License");
    license->setFocus();
    license->selectAll();
    type(QStringLiteral("typed"));
    image(red)->setLicense(QStringLiteral("arrived"));
    delegate->saveAction();
    settle();
    EXPECT_EQ(license->text(), QStringLiteral("typed"));
    grid().setFocus();
    EXPECT_EQ(image(red)->license(), QStringLiteral("typed"));
    image(red)->setLicense(QStringLiteral("again"));
    delegate->saveAction();
    settle();
    EXPECT_EQ(license->text(), QStringLiteral("again"));
}

TEST_F(InfoPanelTest, ItsSectionsStandInTheirOrder)
{
    select({red});
    QMap<int, QString> captions;
    for (const QLabel *label : panel->findChildren<QLabel *>(QStringLiteral("Caption"))) {
        if (label->isVisible()) {
            captions.insert(label->mapTo(panel, QPoint()).y(), label->text());
        }
    }
    EXPECT_EQ(captions.values(),
              (QStringList{QStringLiteral("COLORS"), QStringLiteral("TAGS"), QStringLiteral("NOTES")}));
}

TEST_F(InfoPanelTest, TitlesThatCannotBeTakenComeBack)
{
    select({red});
    field("Title")->setFocus();
    field("Title")->selectAll();
    press(Qt::Key_Backspace);
    EXPECT_FALSE(controller->commitEditing());
    EXPECT_EQ(field("Title")->text(), red);
    EXPECT_TRUE(controller->commitEditing());
    field("Title")->selectAll();
    type(QStringLiteral("scarlet"));
    notes->setPlainText(QStringLiteral("kept"));
    controller->savePersistentState();
    EXPECT_TRUE(image(QStringLiteral("scarlet")));
    EXPECT_EQ(image(QStringLiteral("scarlet"))->notes(), QStringLiteral("kept"));
    settle();
    select({QStringLiteral("scarlet"), clear});
    EXPECT_TRUE(controller->commitEditing()) << "there is no title of several";
    EXPECT_EQ(controller->undoStack().count(), 2);
}

TEST_F(InfoPanelTest, OnlyAddressesOfPagesOpen)
{
    select({red});
    auto *source = field("Source");
    ASSERT_EQ(source->actions().size(), 1);
    QAction *open = source->actions().first();
    EXPECT_FALSE(open->isVisible());
    struct Case
    {
        const char *text;
        bool opens;
    };
    for (const Case &each : {Case{"https://example.org/a", true},
                             {" http://example.org ", true},
                             {"example.org", false},
                             {"https://", false},
                             {"file:///etc/passwd", false},
                             {"", false}}) {
        source->setText(QLatin1StringView(each.text));
        EXPECT_EQ(open->isVisible(), each.opens) << each.text;
        if (each.opens) {
            EXPECT_EQ(open->toolTip(), QStringLiteral("Open example.org"));
        }
    }
}

TEST_F(InfoPanelTest, TagsAreComparedAsTheyAreKept)
{
    const QList<ZQObjectID> items = {image(red)->objectID(), image(clear)->objectID()};
    select({red, clear});
    EXPECT_FALSE(panel->tagItems(items, {QStringLiteral("Multiple values"), QString()}));
    EXPECT_FALSE(panel->tagItems(items, {}));
    EXPECT_EQ(controller->undoStack().count(), 0);
    EXPECT_TRUE(panel->tagItems(items, {QStringLiteral("a"), QStringLiteral("a\n"), QStringLiteral("b")}));
    EXPECT_EQ(panel->commonTagsForItems(items), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_FALSE(panel->tagItems(items, {QStringLiteral("b"), QStringLiteral("a")}));
    EXPECT_TRUE(panel->tagItems({items[0]}, {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(panel->commonTagsForItems(items), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_TRUE(panel->tagItems(items, {QStringLiteral("b")}));
    EXPECT_EQ(panel->commonTagsForItems({items[0]}), (QStringList{QStringLiteral("b"), QStringLiteral("c")}))
        << "what only some have stays";
    settle();
    auto *edit = field("Add tag");
    QStringList known;
    for (int i = 0; edit->completer()->setCurrentRow(i); ++i) {
        known.append(edit->completer()->currentCompletion());
    }
    for (const char *name : {"a", "b", "c", "mine"}) {
        EXPECT_EQ(known.count(QLatin1StringView(name)), 1) << name;
    }
    edit->setFocus();
    press(Qt::Key_Backspace);
    EXPECT_EQ(panel->commonTagsForItems(items), QStringList());
    EXPECT_EQ(controller->undoStack().undoText(), QStringLiteral("edit tags"));
}

TEST_F(InfoPanelTest, ColoursAreTheMainOneAndThoseOfItsTags)
{
    auto item = image(red);
    item->setPalette({}); // as before it was looked at
    item->setMainColor(1003);
    const auto green = ZQSidebarTag::tagForColor(1006, context());
    const auto again = ZQSidebarTag::tagForColor(1003, context());
    for (const auto &each : {green, again}) {
        item->addTagsObject(each.get());
    }
    item->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
    delegate->saveAction();
    select({red});
    EXPECT_EQ(swatches(), (QStringList{ZQSidebarTag::colorNameForValue(1003), ZQSidebarTag::colorNameForValue(1006)}));
    auto *swatch = named<ColorSwatch>(qPrintable(swatches().first()));
    EXPECT_EQ(swatch->grab().toImage().pixelColor(11, 11), ZQTheme::swatch(1003));
    auto *field = window().findChild<QLineEdit *>(QStringLiteral("Search"));
    QTest::mouseClick(swatch, Qt::LeftButton);
    EXPECT_EQ(field->text(), QStringLiteral("#color red"));
    settle();
    swatch = named<ColorSwatch>("green");
    swatch->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(field->text(), QStringLiteral("#color green")) << "a picture has one main color";
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("clear")});
    field->clear();
    settle();
    select({red});
    EXPECT_EQ(panel->findChild<QLabel *>()->parentWidget()->isVisible(), true);
    item->setMainColor(0);
    delegate->saveAction();
    settle();
    EXPECT_TRUE(swatches().isEmpty());
}

TEST_F(InfoPanelTest, ThePaletteIsSearchedCopiedAndSaved)
{
    const ZQPalette palette{{{qRgb(0xff, 0, 0), 200}, {qRgb(0x33, 0x66, 0xcc), 55}}};
    image(red)->setPalette(palette.bytes());
    delegate->saveAction();
    select({red});
    settle();
    EXPECT_EQ(swatches(), (QStringList{"#ff0000", "#3366cc"})) << "the largest share first";
    auto *field = window().findChild<QLineEdit *>(QStringLiteral("Search"));
    QTest::mouseClick(named<ColorSwatch>("#3366cc"), Qt::LeftButton);
    EXPECT_EQ(field->text(), QStringLiteral("#color #3366cc"));
    settle();
    QTest::mouseClick(named<ColorSwatch>("#ff0000"), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(field->text(), QStringLiteral("#color #3366cc #color #ff0000"));
    settle();
    QTest::mouseClick(named<ColorSwatch>("#ff0000"), Qt::LeftButton);
    EXPECT_EQ(field->text(), QStringLiteral("#color #ff0000")) << "alone";
    settle();
    const auto choose = [this](const char *entry) {
        whenMenuOpens(QString::fromUtf8(entry));
        ColorSwatch *swatch = named<ColorSwatch>("#3366cc");
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), swatch->mapToGlobal(QPoint()));
        QApplication::sendEvent(swatch, &event);
    };
    choose("Copy #3366cc");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("#3366cc"));
    const QString saved = world.filePath(QStringLiteral("red.gpl"));
    person.fileToSave = saved;
    choose("Save Palette for GIMP and Inkscape (GPL)…");
    QFile file(saved);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), zqGPLPalette(palette, red));
    EXPECT_EQ(person.choices.last().suggestedName, QStringLiteral("red.gpl"));

    auto *swatch = named<ColorSwatch>("#3366cc");
    QAccessibleInterface *heard = QAccessible::queryAccessibleInterface(swatch);
    EXPECT_EQ(heard->role(), QAccessible::Button);
    EXPECT_TRUE(heard->text(QAccessible::Description).contains(QStringLiteral("22 % of the picture")));
    QSignalSpy menus(swatch, &ColorSwatch::menuRequested);
    whenMenuOpens(QStringLiteral("Copy #3366cc"));
    heard->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(waitFor([&] { return menus.size() == 1; }));
    QSignalSpy chosen(swatch, &ColorSwatch::chosen);
    heard->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(waitFor([&] { return chosen.size() == 1; }));
}

TEST_F(InfoPanelTest, ThePreviewShowsTheSelectedInItsShape)
{
    select({red});
    auto *preview = named("Preview");
    EXPECT_EQ(preview->height(), 176);
    const auto at = [&](const QPoint &from) {
        return preview->grab().toImage().pixelColor(preview->rect().center() + from);
    };
    EXPECT_TRUE(waitFor([&] { return at({}).red() > 250 && at({}).green() < 10; }));
    const int half = (preview->height() - 26) * 80 / 60 / 2;
    EXPECT_GT(at({half - 4, 0}).red(), 250);
    EXPECT_EQ(at({half + 4, 0}), zqColor(ZQColorRole::Cell));
    EXPECT_EQ(at({0, -(preview->height() / 2) + 8}), zqColor(ZQColorRole::Cell));
    select({QStringLiteral("pages")});
    EXPECT_TRUE(waitFor([&] { return at({}).blue() > 250 && at({}).red() < 10; }));
}

TEST_F(InfoPanelTest, WhatIsTypedWhileAnEditRunsIsOneEditAndStays)
{
    select({QStringLiteral("red")});
    const auto gate = std::make_unique<EditQueueGate>(delegate->editQueue());
    notes->setFocus();
    for (const QChar letter : QStringLiteral("precious")) {
        type(letter);
        zqRunMainLoopFor(std::chrono::milliseconds(1));
        panel->refresh(); // as after each batch
    }
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("precious"));
    EXPECT_EQ(delegate->editQueue().operationCount(), 1) << "nothing is asked for before the field is left";
    field("License")->setFocus();
    type(QStringLiteral("CC0"));
    panel->refresh();
    EXPECT_EQ(field("License")->text(), QStringLiteral("CC0"));
    grid().setFocus();
    EXPECT_EQ(delegate->editQueue().operationCount(), 3);
    gate->open();
    settle();
    EXPECT_EQ(image(QStringLiteral("red"))->notes(), QStringLiteral("precious"));
    EXPECT_EQ(image(QStringLiteral("red"))->license(), QStringLiteral("CC0"));
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("precious"));
}

TEST_F(InfoPanelTest, SavingTakesNothingThatNobodyTyped)
{
    select({QStringLiteral("red")});
    run(CommandID::Rename);
    type(QStringLiteral("first"));
    press(Qt::Key_Return);
    press(Qt::Key_Z, Qt::ControlModifier); // right after Enter, where the caret still is
    delegate->saveAction();
    settle();
    EXPECT_EQ(field("Title")->text(), QStringLiteral("red"));
    EXPECT_TRUE(image(QStringLiteral("red")));
    EXPECT_EQ(controller->undoStack().index(), 0);
    auto *const typed = panel->findChild<TagField *>()->findChild<QLineEdit *>();
    typed->setFocus();
    type(QStringLiteral("hal"));
    select({QStringLiteral("clear")});
    EXPECT_EQ(typed->text(), QString()) << "it was meant for the other one";
    EXPECT_EQ(image(QStringLiteral("clear"))->userTagTitles(), QStringList());
}

TEST_F(InfoPanelTest, TitlesThatWaitForAnEditStayAndAreEachOneStep)
{
    select({QStringLiteral("red")});
    const auto gate = std::make_unique<EditQueueGate>(delegate->editQueue());
    for (const char *title : {"first", "second"}) {
        run(CommandID::Rename);
        panel->refresh(); // as after each batch
        type(QLatin1StringView(title));
        press(Qt::Key_Return);
        EXPECT_TRUE(controller->commitEditing()) << "it waits, and is not refused";
        panel->refresh();
        EXPECT_EQ(field("Title")->text(), QLatin1StringView(title));
    }
    EXPECT_EQ(delegate->editQueue().operationCount(), 3);
    gate->open();
    settle();
    EXPECT_EQ(field("Title")->text(), QStringLiteral("second"));
    const auto item = image(QStringLiteral("second"));
    ASSERT_TRUE(item);
    EXPECT_EQ(QFileInfo(item->findItemURL()).fileName(), QStringLiteral("second.png"));
    for (const char *title : {"first", "red"}) {
        controller->undoStack().undo();
        settle();
        EXPECT_EQ(QFileInfo(item->findItemURL()).completeBaseName(), QLatin1StringView(title));
        EXPECT_EQ(field("Title")->text(), QLatin1StringView(title));
    }
}

TEST_F(InfoPanelTest, ManyAreSummedUpBesideTheWindow)
{
    QList<ZQRef<ZQLibraryBaseItem>> made;
    for (int i = 0; i < int(ItemEdits::mostAtOnce) + 1; ++i) {
        const auto item = context().insertNewObject<ZQLibraryImage>();
        item->setTitle(QStringLiteral("many"));
        item->setExtension(QStringLiteral("png"));
        item->setActive(true);
        made.append(item);
    }
    b->addItems(made);
    delegate->saveAction();
    show(b);
    ASSERT_EQ(shown().size(), made.size());
    grid().setFocus();
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([this] { return notice() == QStringLiteral("201 items selected"); }));
    EXPECT_TRUE(waitFor([this] { return notice().isEmpty(); }));
    EXPECT_EQ(field("Title")->text(), QStringLiteral("201 items"));
    press(Qt::Key_4);
    EXPECT_EQ(rating->accessibleName(), QStringLiteral("Rating: 4 of 5"));
    panel->tagItems(browser().selectedItems(), {QStringLiteral("all")});
    settle();
    EXPECT_TRUE(waitFor([this] { return tags->tags() == QStringList{QStringLiteral("all")}; }));
    EXPECT_EQ(made.last()->rating(), 4);
    EXPECT_FALSE(panel->tagItems(browser().selectedItems(), {QStringLiteral("all")}));
    run(CommandID::Undo);
    settle();
    EXPECT_TRUE(waitFor([this] { return tags->tags().isEmpty(); }));
    EXPECT_EQ(panel->commonTagsForItems(browser().selectedItems()), QStringList());
    closeWindow();
    EXPECT_EQ(made.first()->rating(), 4);
    made.clear();
}

TEST_F(InfoPanelTest, ADocumentSaysItsPagesAndTheirSizeOnPaper)
{
    EXPECT_TRUE(DocumentSize::isDocument(QStringLiteral("/in/brochure.PDF")));
    EXPECT_FALSE(DocumentSize::isDocument(QStringLiteral("/in/icon.svg"))) << "a drawing has no pages";
    select({QStringLiteral("pages")});
    image(QStringLiteral("pages"))->setPixelWidth(0);
    delegate->saveAction();
    select({red});
    EXPECT_TRUE(values().startsWith(QStringLiteral("red|80 × 60|")));
    select({QStringLiteral("pages")});
    EXPECT_TRUE(waitFor([this] { return values().startsWith(QStringLiteral("pages|3 pages · 71 × 35 mm|")); }))
        << qPrintable(values());
    select({red});
    select({QStringLiteral("pages")});
    EXPECT_TRUE(waitFor([this] { return values().startsWith(QStringLiteral("pages|3 pages · 71 × 35 mm|")); }));
}

TEST_F(InfoPanelTest, ASwatchSearchesItsColour)
{
    select({red});
    auto *swatch = panel->findChild<ColorSwatch *>();
    ASSERT_TRUE(swatch);
    swatch->setFocus();
    press(Qt::Key_Space);
    settle();
    ASSERT_EQ(panel->findChild<ColorSwatch *>(), swatch) << "it stays where nothing else is to be shown";
    EXPECT_EQ(QApplication::focusWidget(), swatch);
    EXPECT_EQ(browser().content().filter(), QStringLiteral("#color ") + swatch->accessibleName());
    EXPECT_EQ(window().findChild<QLineEdit *>(QStringLiteral("Search"))->text(), browser().content().filter());
    EXPECT_TRUE(shown().contains(red));
    EXPECT_FALSE(shown().contains(QStringLiteral("clear")));
}

TEST_F(InfoPanelTest, AClickOnWhatDiffersBeginsATag)
{
    ASSERT_TRUE(panel->tagItems({image(red)->objectID()}, {QStringLiteral("mine")}));
    select({red, clear});
    QWidget *others = nullptr;
    for (QWidget *child : tags->findChildren<QWidget *>()) {
        others = child->isVisible() && child != field("Add tag") ? child : others;
    }
    ASSERT_TRUE(others) << "the chip of those that only some have";
    grid().setFocus();
    QTest::mouseClick(others, Qt::LeftButton);
    EXPECT_EQ(QApplication::focusWidget(), field("Add tag"));
    const QAbstractItemView *popup = field("Add tag")->completer()->popup();
    EXPECT_EQ(popup->objectName(), QStringLiteral("Completion"));
    EXPECT_TRUE(qobject_cast<QStyledItemDelegate *>(popup->itemDelegate())) << "the other kind has its own look";
}
