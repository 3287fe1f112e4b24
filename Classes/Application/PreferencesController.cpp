#include "Classes/Application/PreferencesController.h"

#include "Classes/Tags/DesktopMirror.h"
#include "Kit/Files/ZQUserDefaults.h"

namespace {
// A virtual key code of the main keyboard row and the modifier mask Command plus Option.
QVariantMap hotkey(int code)
{
    return {{QStringLiteral("code"), code}, {QStringLiteral("flags"), 1572864}};
}
} // namespace

QVariantMap PreferencesController::defaultPreferences()
{
    return {
        {QStringLiteral("AfterScreenshotGotToScreenshots"), true},
        {QStringLiteral("AfterScreenshotOpenZelto"), true},
        {QStringLiteral("QuitZeltoKunWhenZeltoQuit"), true},
        {QStringLiteral("ShowZeltoKun"), true},
        {QStringLiteral("ScreenshotSoundAndFlash"), true},
        {QStringLiteral("CopyItemInZeltoLibrary"), true},
        {QStringLiteral("UseBackgroundTextures"), true},
        {QStringLiteral("ShowLibraryItemsTitles"), true},
        {QStringLiteral("ShowLibraryItemsExtensions"), true},
        {QStringLiteral("BrowserFillsCells"), false},
        {QStringLiteral("UseDarkUI"), true},
        {QStringLiteral("SidebarDisplayBadges"), true},
        {QStringLiteral("ScreenshotAreaHotkey"), hotkey(18)},
        {QStringLiteral("ScreenshotWindowHotkey"), hotkey(19)},
        {QStringLiteral("ScreenshotFullScreenHotkey"), hotkey(20)},
        {QStringLiteral("ShowZeltoHotkey"), hotkey(21)},
        {QStringLiteral("ImportOpenMetaTags"), true},
        {QStringLiteral("ImportIPTCTags"), true},
        {QStringLiteral("ImportModernImages"), true},
        {QStringLiteral("UseAutoTagging"), true},
        {QStringLiteral("ShowRecentItemsAfterDropOnDock"), true},
        {QStringLiteral("IconTagSize"), 32},
        {QStringLiteral("SmallTagSize"), 128},
        {QStringLiteral("MediumTagSize"), 512},
        {QStringLiteral("ImportShowsAfter"), 500},                     // milliseconds
        {QStringLiteral("ArchiveMaximumTotalSize"), qint64(16) << 30}, // bytes
        {QStringLiteral("ArchiveMaximumEntryCount"), 100000},
        {QStringLiteral("ArchiveMaximumRatio"), 250},
        {QStringLiteral("ArchiveMaximumNestingDepth"), 8},
        {QStringLiteral("LiveFolderSweepMinutes"), 10},
        {QStringLiteral("BackupKeep"), 0},     // all
        {QStringLiteral("BackupInterval"), 0}, // days; never
        {DesktopMirror::preferenceKey, true},
    };
}

void PreferencesController::registerDefaultPreferences()
{
    ZQUserDefaults::standardUserDefaults().registerDefaults(defaultPreferences());
}
