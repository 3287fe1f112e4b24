#include "Classes/Interface/Preferences/PreferencesPanes.h"

#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Classes/Interface/TextScale.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QCheckBox>

namespace {

void fillGeneral(PreferencesPane &pane)
{
    pane.addChoices(QStringLiteral("UseDarkUI"), zqLocalized("THEME"),
                    {{true, zqLocalized("&Dark")}, {false, zqLocalized("&Light")}});
    pane.addSwitch(QStringLiteral("HighContrast"), zqLocalized("High &contrast"));
    pane.addSwitch(QStringLiteral("ReduceMotion"), zqLocalized("&Reduce motion"),
                   zqLocalized("Both are also on while the desktop asks for them."));
    pane.addNumber(QStringLiteral("TextScale"), zqLocalized("Size of text and &pictures of the window"),
                   {TextScale::smallest, TextScale::largest, 1, zqLocalized(" %")});
    pane.addNote(zqLocalized("From the next start on."));
    pane.addHeading(zqLocalized("ITEMS"));
    const QCheckBox *titles =
        pane.addSwitch(QStringLiteral("ShowLibraryItemsTitles"), zqLocalized("Show &titles below thumbnails"));
    QCheckBox *extensions =
        pane.addSwitch(QStringLiteral("ShowLibraryItemsExtensions"), zqLocalized("Show e&xtensions"));
    extensions->setEnabled(titles->isChecked());
    QObject::connect(titles, &QCheckBox::toggled, extensions, &QWidget::setEnabled);
    pane.addSwitch(QStringLiteral("BrowserFillsCells"), zqLocalized("&Enlarge pictures smaller than their cell"),
                   zqLocalized("By whole factors, so that pixels stay sharp."));
    pane.addHeading(zqLocalized("SIDEBAR"));
    pane.addSwitch(QStringLiteral("SidebarDisplayBadges"), zqLocalized("Show how &many items each row has"));
    pane.addSwitch(QStringLiteral("removeFromSidebarAlertSuppress"), zqLocalized("&Ask before a row is removed"), {},
                   false);
    pane.addSwitch(QStringLiteral("removeFromSidebarAndContentAlertSuppress"),
                   zqLocalized("Ask before a row is removed with the &items in it"), {}, false);
}

void fillImport(PreferencesPane &pane)
{
    pane.addHeading(zqLocalized("KINDS OF FILES"));
    pane.addSwitch(QStringLiteral("ImportModernImages"), zqLocalized("&Take today's picture formats, too"),
                   zqLocalized("WebP, HEIC, AVIF, JPEG XL, and Sketch documents that are single files."));
    pane.addHeading(zqLocalized("FROM EACH FILE"));
    pane.addSwitch(QStringLiteral("ImportIPTCTags"), zqLocalized("Take the &keywords of pictures as tags"));
    pane.addSwitch(QStringLiteral("AlwaysMakeThumbsWhileImporting"),
                   zqLocalized("&Make a thumbnail of small pictures, too"),
                   zqLocalized("Otherwise pictures of up to 256 KiB are shown from their own file."));
    pane.addHeading(zqLocalized("FILES OPENED WITH ZELTO"));
    pane.addSwitch(QStringLiteral("ShowRecentItemsAfterDropOnDock"), zqLocalized("&Show them in Recent"));
    pane.addHeading(zqLocalized("ARCHIVES"));
    pane.addNote(zqLocalized("An archive that holds more is not unpacked."));
    constexpr int largest = 1'000'000'000;
    pane.addNumber(QStringLiteral("ArchiveMaximumTotalSize"), zqLocalized("&Unpacked size, at most"),
                   {1, 1 << 20, qint64(1) << 30, zqLocalized(" GiB")});
    pane.addNumber(QStringLiteral("ArchiveMaximumEntryCount"), zqLocalized("&Files and folders, at most"),
                   {1, largest});
    pane.addNumber(QStringLiteral("ArchiveMaximumRatio"), zqLocalized("&Packed how many times smaller, at most"),
                   {1, largest});
    pane.addNumber(QStringLiteral("ArchiveMaximumNestingDepth"), zqLocalized("&Archives in archives, at most"),
                   {1, 100});
}

void fillTags(PreferencesPane &pane)
{
    pane.addHeading(zqLocalized("IN FILES"));
    pane.addSwitch(QStringLiteral("ImportOpenMetaTags"), zqLocalized("&Keep tags, notes and ratings in the files"),
                   zqLocalized("They travel with a file, and an import takes those it brings."));
    pane.addSwitch(DesktopMirror::preferenceKey, zqLocalized("&Write them for the file manager, too"));
    pane.addHeading(zqLocalized("TAGS THAT ZELTO ADDS"));
    pane.addSwitch(QStringLiteral("UseAutoTagging"), zqLocalized("&Tag what is imported by color and size"));
    pane.addNote(zqLocalized("The longer side of each size, at most. Everything above is large."));
    constexpr int largest = 1'000'000;
    const QString pixels = zqLocalized(" px");
    pane.addNumber(QStringLiteral("IconTagSize"), zqLocalized("&Icon"), {1, largest, 1, pixels});
    pane.addNumber(QStringLiteral("SmallTagSize"), zqLocalized("&Small"), {1, largest, 1, pixels});
    pane.addNumber(QStringLiteral("MediumTagSize"), zqLocalized("&Medium"), {1, largest, 1, pixels});
}

void fillLiveFolders(PreferencesPane &pane)
{
    pane.addHeading(zqLocalized("FOLDERS OF THE DISK"));
    pane.addNote(zqLocalized("Their files stay where they are, and are followed as they change. What many files leave "
                             "at once is asked about, and what is on a disk that is away is kept until it is back. "
                             "Keywords, tags and thumbnails are as set for imports."));
    pane.addHeading(zqLocalized("DISKS THAT TELL OF NO CHANGES"));
    pane.addNote(zqLocalized(
        "Folders on a network, for example, are looked at in intervals, and a clock marks them in the sidebar. That "
        "shows which files came and went; files that changed within are seen every hour."));
    constexpr int aDay = 24 * 60;
    pane.addNumber(QStringLiteral("LiveFolderSweepMinutes"), zqLocalized("&Look again after"),
                   {1, aDay, 1, zqLocalized(" min")});
}

} // namespace

const QList<PreferencesPanes::Plan> &PreferencesPanes::all()
{
    static const QList<Plan> plans = {
        {zqKey("General"), "settings", &fillGeneral},
        {zqKey("Import"), "import", &fillImport},
        {zqKey("Tags"), "tag", &fillTags},
        {zqKey("Live folders"), "live", &fillLiveFolders},
    };
    return plans;
}
