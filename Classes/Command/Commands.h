#pragma once

#include "Classes/Command/CommandContext.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QStringList>
#include <QVariantMap>

class LiveFolderManaging;
struct ExportItem;

// What each command does, apart from how it is written on a command line. Each answers the exit status: 0, 1 when
// `verify` found something, 2 after an error that changed nothing.

struct ImportRequest
{
    QStringList paths;
    QString into;         // REF; empty: PROJECTS for folders, the Library for files
    qint64 index = -1;    // negative: at the end
    QStringList metadata; // "key=value"
    bool resumes = false; // goes on with imports that were cut off, before anything else
    bool forgets = false; // gives them up
    QString duplicates;   // keep, discard or relink; empty: what is kept with the import, or the person, decides
};
int zqRunImport(const ImportRequest &request, CommandContext &context);
// Says on the errors' side that there are imports which were cut off.
void zqTellOfCutOffImports(CommandContext &context);

struct ItemsRequest
{
    QString in; // REF; empty: the whole library
    bool deleted = false;
};
int zqRunItems(const ItemsRequest &request, CommandContext &context);
// Nothing after an error, which is in `context`.
std::optional<QList<ZQObjectID>> zqItemsFor(const ItemsRequest &request, CommandContext &context);
int zqRunSidebar(CommandContext &context);

struct SearchRequest
{
    QString text;
    QString in; // REF; empty: the whole library
    bool counts = false;
    bool explains = false;
};
int zqRunSearch(const SearchRequest &request, CommandContext &context);

// The items that look most like one, nearest first.
int zqRunSimilar(const QString &item, int limit, CommandContext &context);
// Groups of items that look alike, each with the one that is best to keep.
int zqRunNearDuplicates(CommandContext &context);

struct SmartFolderRequest
{
    QStringList words; // the title and behind it the text; only the text for one that is changed
    QString in;        // REF of a folder; empty: PROJECTS
    QString change;    // REF of the smart folder that gets the text; empty: a new one
};
int zqRunSmartFolder(const SmartFolderRequest &request, CommandContext &context);
QString zqSearchLanguage(); // what can be searched for, a line each token

struct ExportCommandRequest
{
    QStringList items = {};
    QString in = {};     // REF; empty: none but `items`
    QString to = {};     // a folder
    int preset = 0;      // of the Quick export panel, from 1 on; 0: none
    QString format = {}; // of `zqExportFormats`; empty: the files as they are
    double width = 0;    // pixels; 0: not given, as of the next two
    double height = 0;
    double percent = 0;
    int quality = 0;
    QString namePattern = {};
    bool zip = false;
};
// The items of both, each once. Nothing after an error, which is in `context`, as of the next.
std::optional<QList<ZQObjectID>> zqItemsNamed(const QStringList &items, const QString &in, CommandContext &context);
std::optional<ExportItem> zqExportPreset(int number, CommandContext &context); // from 1 on
QStringList zqExportFormats();
QString zqExportFormatsWithQuality(); // "webp and avif"
// 1 when some could not be exported.
int zqRunExport(const ExportCommandRequest &request, CommandContext &context);

struct ShareRequest
{
    QStringList items = {};
    QString in = {};      // REF; empty: none but `items`
    int preset = 0;       // of the Quick export panel, from 1 on; 0: the files as they are
    QString service = {}; // identifier; empty: the one in use
};
// 1 when some could not be shared, 2 when the upload failed or was cancelled: what is printed was shared before that.
int zqRunShare(const ShareRequest &request, CommandContext &context);

int zqRunDelete(const QStringList &items, CommandContext &context);
int zqRunRestore(const QStringList &items, CommandContext &context);
int zqRunPurge(CommandContext &context);

struct TagRequest
{
    QStringList items;
    QStringList add;
    QStringList remove;
};
int zqRunTag(const TagRequest &request, CommandContext &context);
int zqRunNote(const QStringList &itemsAndText, CommandContext &context);   // the text comes last
int zqRunRate(const QStringList &itemsAndRating, CommandContext &context); // the rating comes last
int zqRunTags(CommandContext &context);
int zqRunAttributes(const QStringList &paths, CommandContext &context);

// The live folders, in order. `reference` of the others: REF, or the path of a live folder.
int zqRunLiveFolders(CommandContext &context);
int zqRunAddLiveFolders(const QStringList &paths, CommandContext &context);
int zqRunRemoveLiveFolder(const QString &reference, CommandContext &context);
// What lies in the place of a missing one, for it. Without `yes` only where no item could go.
int zqRunUseLiveFolder(const QString &reference, bool yes, CommandContext &context);
// `reference` empty: all that are enabled. `removesMissing`: also where so much is gone that it would be kept.
int zqRunSyncLiveFolders(const QString &reference, bool removesMissing, CommandContext &context);
// Does `then` once what the manager does of these is done, with progress until then; answers its status.
using AfterLiveFolders = std::function<int(CommandContext &context, bool wasCancelled)>;
int zqAfterLiveFolders(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context,
                       AfterLiveFolders then);

struct PsdRequest
{
    QString size;       // "WxH"
    QStringList layers; // "FILE[@x,y[,opacity[,name]]]", the bottom one first
    QString out;
    bool force = false; // over a file that is there
};
int zqRunPsd(const PsdRequest &request, CommandContext &context);

struct ThumbnailRequest
{
    QString file; // or a library
    QString out;  // a PNG file
    int size = 256;
    bool force = false; // over a file that is there
};
int zqRunThumbnail(const ThumbnailRequest &request, CommandContext &context);

enum class SnapKind { Area, Window, FullScreen };
// A capture into Screenshots, once the person has taken it; 1 when it was called off.
int zqRunSnap(SnapKind kind, CommandContext &context);

struct SnapWebRequest
{
    QString url;
    int width = 1280;     // pixels of the page
    bool layered = false; // as a PSD document, each visible element a layer
    bool visible = false; // only what a window of that width shows at first, not the whole page
};
int zqRunSnapWeb(const SnapWebRequest &request, CommandContext &context);

struct DownloadCommandRequest
{
    QStringList urls;
    QString page;            // address of the page
    QString title;           // of the page
    bool all = false;        // into a project titled so
    bool isFromPage = false; // which named the addresses, and no person did
};
// 1 when some could not be downloaded or imported, 2 when nothing came.
int zqRunDownload(const DownloadCommandRequest &request, CommandContext &context);
struct OpenURLRequest
{
    QString url;           // that a browser hands over: `zelto:snap:…`, `zelto:import:…`
    bool isAgreed = false; // to images that the person would be asked about
};
// Images are imported as by `zqRunDownload`, unless the window has to ask about them first; it does captures, too.
int zqRunOpenURL(const OpenURLRequest &request, CommandContext &context);

// The templates, by title.
int zqRunTemplates(CommandContext &context);
// Makes an asset of the template of that title, or file name, in the entry; `into` empty: in the library.
int zqRunNewFromTemplate(const QString &title, const QString &into, CommandContext &context);

int zqRunVerify(bool deep, bool repair, CommandContext &context);

struct BackupRequest
{
    QString directory;
    int keep = 0; // 0: all
    bool verifiesAll = false;
};
// 1 when something of the library is not in it as it should be.
int zqRunBackup(const BackupRequest &request, CommandContext &context);
int zqRunStatistics(bool withSizes, CommandContext &context);
// 1 when some pictures are not there now.
int zqRunFingerprints(CommandContext &context);
// `library` empty: the remembered one. 1 when somebody has it open.
int zqRunRecover(const QString &library, CommandContext &context);

// `channel` empty: that of the preferences. 1 when there is a newer version.
int zqRunUpdatesCheck(const QString &channel, CommandContext &context);
int zqRunReportsList(CommandContext &context);
int zqRunReportsShow(CommandContext &context);
int zqRunReportsErase(CommandContext &context);
int zqRunUsageShow(CommandContext &context);
int zqRunUsageErase(CommandContext &context);
int zqRunAutostartShow(CommandContext &context);
int zqRunAutostartSet(bool isOn, CommandContext &context);

int zqRunDefaultsRead(const QString &key, CommandContext &context);
int zqRunDefaultsWrite(const QString &key, const QString &value, CommandContext &context);
int zqRunDefaultsDelete(const QString &key, CommandContext &context);
