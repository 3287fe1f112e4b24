#include "Classes/Application/PreferencesController.h"

#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <algorithm>
#include <iterator>

namespace {
// Those that mean something only once they are set; the parts that have them are below and above this one.
constexpr const char *withoutDefault[] = {"AlwaysMakeThumbsWhileImporting",
                                          "BackupDirectory",
                                          "BackupMadeIn",
                                          "BrowserListColumns",
                                          "ChecksForUpdates",
                                          "CloudAppAPIHost",
                                          "CloudAppWebHost",
                                          "CloudService",
                                          "CountsUsage",
                                          "CrashReportAddress",
                                          "CustomUploadServices",
                                          "DropboxAPIHost",
                                          "DropboxAppKey",
                                          "DropboxAuthorizeURL",
                                          "DropboxContentHost",
                                          "DropboxLoopbackPort",
                                          "ExportFolder",
                                          "ExportItems",
                                          "ExportPanelShown",
                                          "ImgurAPIHost",
                                          "ImgurClientID",
                                          "InfoPanelHidden",
                                          "LaunchAtLoginGranted",
                                          "MainWindowGeometry",
                                          "MainWindowPanes",
                                          "PartecipateToBeta",
                                          "PreferencesGeometry",
                                          "PreferencesPane",
                                          "ProtocolKnownPages",
                                          "RefineBarShown",
                                          "SecretAccounts",
                                          "SidebarHidden",
                                          "UpdateFeedAddress",
                                          "UpdateKey",
                                          "UpdateLastCheck",
                                          "UpdateNewestSeen",
                                          "UpdateSkippedVersion",
                                          "WebCaptureBrowser",
                                          "WebCaptureDouble",
                                          "WebCaptureGeometry",
                                          "WebCaptureLayered",
                                          "WebCaptureVisible",
                                          "WebCaptureWidth",
                                          "WebDAVAddress",
                                          "WebDAVFolder",
                                          "WebDAVPublicAddress",
                                          "WebDAVUser",
                                          "ZeltoCloudLatestUploads"};
} // namespace

bool PreferencesController::isKnown(const QString &key)
{
    return defaultPreferences().contains(key) ||
           std::any_of(std::begin(withoutDefault), std::end(withoutDefault),
                       [&key](const char *each) { return key == QLatin1StringView(each); });
}

QVariantMap PreferencesController::defaultPreferences()
{
    QVariantMap preferences{
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
        {QStringLiteral("TextScale"), 100}, // percent
        {QStringLiteral("ReduceMotion"), false},
        {QStringLiteral("HighContrast"), false},
        {QStringLiteral("UseDarkUI"), true},
        {QStringLiteral("SidebarDisplayBadges"), true},
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
    for (const HotKeyCommand &command : HotKeyCommand::all()) {
        preferences.insert(command.preference, command.defaultSetting());
    }
    return preferences;
}

void PreferencesController::registerDefaultPreferences()
{
    ZQUserDefaults::standardUserDefaults().registerDefaults(defaultPreferences());
}
