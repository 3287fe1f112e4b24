#pragma once

#include "Classes/Command/CommandContext.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QStringList>
#include <QVariantMap>

class LiveFolderManaging;

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
QStringList zqExportFormats();
// 1 when some could not be exported.
int zqRunExport(const ExportCommandRequest &request, CommandContext &context);

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
// `reference` empty: all that are enabled.
int zqRunSyncLiveFolders(const QString &reference, CommandContext &context);
// Until what the manager does of these is done, with progress. False when it was cancelled.
bool zqWaitForLiveFolders(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context);

int zqRunVerify(bool deep, CommandContext &context);
// `library` empty: the remembered one. 1 when somebody has it open.
int zqRunRecover(const QString &library, CommandContext &context);

int zqRunDefaultsRead(const QString &key, CommandContext &context);
int zqRunDefaultsWrite(const QString &key, const QString &value, CommandContext &context);
int zqRunDefaultsDelete(const QString &key, CommandContext &context);
