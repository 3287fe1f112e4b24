#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/Commands.h"
#include "Classes/Export/ExportItem.h"
#include "Classes/Export/ExportManager.h"
#include "Classes/Export/ExportNames.h"
#include "Classes/Export/ExportOperation.h"
#include "Classes/Export/ExportReport.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <array>

namespace {

struct Format
{
    const char *name;
    std::optional<int> fileType;
};
const std::array formats = {Format{"keep", {}},      Format{"jpeg", JPEG}, Format{"png", PNG},
                            Format{"tiff", TIFF},    Format{"bmp", BMP},   Format{"gif", GIF},
                            Format{"jp2", JPEG2000}, Format{"webp", WebP}, Format{"avif", AVIF}};

std::optional<int> fileTypeNamed(const QString &name)
{
    const auto found = std::find_if(formats.begin(), formats.end(),
                                    [&name](const Format &each) { return name == QLatin1StringView(each.name); });
    return found == formats.end() ? std::nullopt : found->fileType;
}

// Null, or what is wrong.
QString problemOf(const ExportCommandRequest &request)
{
    const std::optional<int> fileType = fileTypeNamed(request.format);
    const bool hasSize = request.width > 0 || request.height > 0;
    if (request.items.isEmpty() && request.in.isEmpty()) {
        return zqLocalized("name the items to export, or write --in with a sidebar entry");
    }
    if (request.preset == 0 && !fileType && (hasSize || request.percent > 0)) {
        return zqLocalized("files as they are keep their size; choose a --format to scale them");
    }
    if (hasSize && request.percent > 0) {
        return zqLocalized("--percent and --width or --height exclude each other");
    }
    if (request.quality > 0 && !ExportItem::hasQuality(fileType)) {
        return zqFormat(zqLocalized("--quality is for --format %@"), {zqExportFormatsWithQuality()});
    }
    if (fileType && !zqCanEncode(*fileType)) {
        return zqFormat(zqLocalized("%@ cannot be written here; choose another --format"), {request.format});
    }
    return ExportNames::problemOfPattern(request.namePattern);
}

// Nothing, with a message, for a preset that is none.
std::optional<ExportRequest> exportRequest(const ExportCommandRequest &request, const QList<ZQObjectID> &items,
                                           CommandContext &context)
{
    const QString folder = QDir::cleanPath(context.absolutePath(request.to));
    ExportRequest result;
    if (request.preset > 0) {
        const auto preset = zqExportPreset(request.preset, context);
        if (!preset) {
            return std::nullopt;
        }
        result = ExportRequest::with(*preset, items, folder);
    } else {
        result.items = items;
        result.destinationURL = folder;
        result.fileFormat = fileTypeNamed(request.format);
        result.namesByType = true;
        if (request.percent > 0) {
            result.imageSizePercentage = request.percent;
        } else if (request.width > 0 || request.height > 0) {
            result.imageSize = QSizeF(request.width, request.height);
        }
        result.imageQuality = request.quality > 0 ? std::optional(request.quality) : std::nullopt;
    }
    result.archive = result.archive || request.zip;
    if (!request.namePattern.isEmpty()) {
        result.namePattern = request.namePattern;
    }
    result.tellsPerson = false; // it is in the answer
    return result;
}

QJsonArray arrayOf(const QList<ExportResult::Problem> &problems)
{
    QJsonArray array;
    for (const ExportResult::Problem &problem : problems) {
        array.append(QJsonObject{{QStringLiteral("title"), problem.title},
                                 {QStringLiteral("bundleID"), problem.bundleID},
                                 {QStringLiteral("reason"), problem.reason}});
    }
    return array;
}

void printResult(const ExportRequest &request, const ExportResult &result, CommandContext &context)
{
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("written"), QJsonArray::fromStringList(result.written)},
                                      {QStringLiteral("count"), result.count},
                                      {QStringLiteral("missing"), arrayOf(result.missing)},
                                      {QStringLiteral("incomplete"), arrayOf(result.incomplete)},
                                      {QStringLiteral("notes"), arrayOf(result.notes)},
                                      {QStringLiteral("failed"), arrayOf(result.failed)},
                                      {QStringLiteral("cancelled"), result.isCancelled}});
        return;
    }
    if (request.archive && !result.written.isEmpty()) {
        context.print(zqCounted({"%d file exported into %@", "%d files exported into %@"}, result.count,
                                {result.written.first()}));
    } else {
        context.print(zqCounted({"%d file exported", "%d files exported"}, result.count));
    }
    for (const ExportResult::Problem &problem : result.missing) {
        context.print(zqFormat(zqLocalized("missing: %@: %@"), {problem.title, problem.reason}));
    }
    for (const ExportResult::Problem &problem : result.incomplete) {
        context.print(zqFormat(zqLocalized("exported in part: %@: %@"), {problem.title, problem.reason}));
    }
    for (const ExportResult::Problem &note : result.notes) {
        context.print(zqFormat(zqLocalized("note: %@: %@"), {note.title, note.reason}));
    }
    for (const ExportResult::Problem &problem : result.failed) {
        context.print(zqFormat(zqLocalized("not exported: %@: %@"), {problem.title, problem.reason}));
    }
}

} // namespace

std::optional<QList<ZQObjectID>> zqItemsNamed(const QStringList &items, const QString &in, CommandContext &context)
{
    QList<ZQObjectID> ids;
    if (!in.isEmpty()) {
        const auto shown = zqItemsFor({in, false}, context);
        if (!shown) {
            return std::nullopt;
        }
        ids = *shown;
    }
    if (!items.isEmpty()) {
        const auto named = zqItemsForReferences(items, context);
        if (!named) {
            return std::nullopt;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *named) {
            ids.append(item->objectID());
        }
    }
    QSet<ZQObjectID> known;
    ids.removeIf([&known](const ZQObjectID &id) {
        const bool isKnown = known.contains(id);
        known.insert(id);
        return isKnown;
    });
    return ids;
}

std::optional<ExportItem> zqExportPreset(int number, CommandContext &context)
{
    const QList<ExportItem> presets = ExportItem::exportItems();
    if (number < 1 || number > presets.size()) {
        context.fail(
            zqFormat(zqLocalized("there are %d presets; the panel Quick export makes more"), {presets.size()}));
        return std::nullopt;
    }
    return presets.at(number - 1);
}

QStringList zqExportFormats()
{
    QStringList names;
    for (const Format &format : formats) {
        names.append(QString::fromLatin1(format.name));
    }
    return names;
}

QString zqExportFormatsWithQuality()
{
    QStringList names;
    for (const Format &format : formats) {
        if (ExportItem::hasQuality(format.fileType)) {
            names.append(QString::fromLatin1(format.name));
        }
    }
    return names.join(QStringLiteral(" and "));
}

int zqRunExport(const ExportCommandRequest &request, CommandContext &context)
{
    const QString problem = problemOf(request);
    if (!problem.isNull()) {
        return context.fail(problem);
    }
    const QString folder = context.absolutePath(request.to);
    if (QFileInfo(folder).isFile()) {
        return context.fail(ExportReport::refusalOfFolder(folder));
    }
    const auto items = zqItemsNamed(request.items, request.in, context);
    if (items && items->isEmpty()) {
        return context.fail(
            zqLocalized("there are no items to export there; of a folder of projects name one of the projects"));
    }
    const auto asked = items ? exportRequest(request, *items, context) : std::nullopt;
    if (!asked) {
        return 2;
    }
    const auto operation = ExportManager::sharedExportManager().exportItems(*asked);
    if (!operation) {
        return context.fail(zqLocalized("the library is not open"));
    }
    const AbandonWatch watch(context, [&operation] { operation->cancel(); });
    zqRunMainLoopUntil([&operation] { return operation->isFinished(); }, std::chrono::milliseconds(5));
    operation->waitUntilFinished();
    const ExportResult &result = operation->result();
    printResult(*asked, result, context);
    if (!result.refusal.isNull()) {
        return context.fail(ExportReport::stopped(*asked, result).localizedDescription());
    }
    if (result.isCancelled) {
        return context.fail(result.written.isEmpty()
                                ? zqLocalized("the export was cancelled; nothing was written")
                                : zqLocalized("the export was cancelled; what was written before that stays"));
    }
    return result.isComplete() ? 0 : 1;
}
