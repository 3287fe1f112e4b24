#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/Commands.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Editing/LiveFolderEdits.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/DuplicateAnswer.h"
#include "Classes/Import/ForLiveFolder.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <memory>
#include <vector>

namespace {
// "key=value" as an attribute value of its type, or a message.
std::optional<QString> addMetadata(const QString &setting, QVariantMap &metadata)
{
    const qsizetype equals = setting.indexOf(u'=');
    const QString key = setting.left(equals);
    const ZQEntityDescription *entity = zqCurrentModel()->entity(ZQLibraryBaseItem::entityName());
    const ZQAttributeDescription *attribute = equals > 0 ? entity->attribute(key) : nullptr;
    if (!attribute || attribute->type == ZQAttributeType::Binary || BaseImportOperation::isFoundOut(key)) {
        return zqFormat(
            zqLocalized("“%@” sets nothing; write --set KEY=VALUE with an attribute such as license, notes or webURL"),
            {setting});
    }
    const QString text = setting.mid(equals + 1);
    bool isUnderstood = true;
    QVariant value(text);
    switch (attribute->type) {
    case ZQAttributeType::Boolean:
        isUnderstood = text == QStringLiteral("true") || text == QStringLiteral("false");
        value = text == QStringLiteral("true");
        break;
    case ZQAttributeType::Integer16:
    case ZQAttributeType::Integer32:
    case ZQAttributeType::Integer64:
        value = text.toLongLong(&isUnderstood);
        break;
    case ZQAttributeType::Float:
    case ZQAttributeType::Double:
        value = text.toDouble(&isUnderstood);
        break;
    case ZQAttributeType::Date:
        value = QDateTime::fromString(text, Qt::ISODate).toUTC();
        isUnderstood = value.toDateTime().isValid();
        break;
    case ZQAttributeType::String:
    case ZQAttributeType::Binary:
        break;
    }
    if (!isUnderstood) {
        return zqFormat(zqLocalized("“%@” is no value for %@"), {text, key});
    }
    metadata.insert(key, value);
    return std::nullopt;
}

// What became of a request and of all that followed from it.
void addReports(const ImportOperation &operation, ImportReport &sum)
{
    const ImportReport &report = operation.report();
    sum.setImported(sum.imported() + report.imported());
    for (const DroppedFile &file : report.dropped()) {
        sum.addDropped(file);
    }
    for (const QString &text : report.notifications()) {
        sum.addNotification(text);
    }
    if (report.isUnfinished()) {
        sum.setUnfinished();
    }
    for (const auto &followUp : operation.followUps()) {
        addReports(*followUp, sum);
    }
}

// Who cancels an import of thousands knows why they did not come, and wants to see the rest.
void printDropped(const QList<DroppedFile> &dropped, CommandContext &context)
{
    constexpr qsizetype mostByName = 5;
    const QString cancelled = cancelledImportReason();
    const qsizetype count = std::count_if(dropped.begin(), dropped.end(),
                                          [&](const DroppedFile &file) { return file.reason == cancelled; });
    for (const DroppedFile &file : dropped) {
        const QString format =
            file.isImportedInPart() ? zqLocalized("imported in part: %@: %@") : zqLocalized("not imported: %@: %@");
        if (count <= mostByName || file.reason != cancelled) {
            context.print(zqFormat(format, {file.path, file.reason}));
        }
    }
    if (count > mostByName) {
        context.print(zqFormat(zqLocalized("not imported: %d files: %@"), {count, cancelled}));
    }
}

void printReport(const ImportReport &report, CommandContext &context)
{
    if (context.json) {
        QJsonArray dropped;
        QJsonArray incomplete;
        for (const DroppedFile &file : report.dropped()) {
            QJsonArray &list = file.isImportedInPart() ? incomplete : dropped;
            list.append(QJsonObject{{QStringLiteral("path"), file.path}, {QStringLiteral("reason"), file.reason}});
        }
        context.printJSON(
            QJsonObject{{QStringLiteral("imported"), QJsonArray::fromStringList(report.imported())},
                        {QStringLiteral("dropped"), dropped},
                        {QStringLiteral("incomplete"), incomplete},
                        {QStringLiteral("notifications"), QJsonArray::fromStringList(report.notifications())}});
        return;
    }
    const qsizetype count = report.imported().size();
    context.print(zqCounted({"1 item imported", "%d items imported"}, count));
    printDropped(report.dropped(), context);
    for (const QString &text : report.notifications()) {
        context.print(text);
    }
}

// Without a target, as files that are opened: folders into PROJECTS, files into the library.
bool startImports(const ImportRequest &request, const QStringList &paths, const QVariantMap &metadata,
                  CommandContext &context, std::vector<std::shared_ptr<ImportOperation>> &operations)
{
    const quint32 index = request.index < 0 ? ImportOperation::appendIndex : static_cast<quint32>(request.index);
    const auto start = [&](const QStringList &list, const ZQRef<ZQSidebarBaseItem> &target) {
        if (!list.isEmpty() && target) {
            operations.push_back(AImportManager::sharedAImportManager().startImport(
                {.paths = list,
                 .target = target->objectID(),
                 .index = index,
                 .metadata = metadata,
                 .duplicates = duplicateAnswerNamed(request.duplicates)}));
        }
    };
    if (request.into.isEmpty()) {
        QStringList folders;
        QStringList files;
        for (const QString &path : paths) {
            const bool isFolder = QFileInfo(path).isDir() && !ImportQueries::fileAtPathIsSupported(path);
            (isFolder ? folders : files).append(path);
        }
        start(folders, ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context.store()));
        start(files, ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context.store()));
    } else {
        const ZQRef<ZQSidebarBaseItem> target = zqSidebarItemForReference(request.into, context);
        if (!target) {
            return false;
        }
        const SidebarTargetRules::Files kinds = ImportQueries::kindsOfFilesAtPaths(paths);
        // What nobody takes is told file by file, with the reason of each, by the import.
        const bool isForSomebody = kinds.hasSupported || kinds.hasFolder || kinds.hasArchive;
        const auto answer = SidebarTargetRules::files(
            isForSomebody ? kinds : SidebarTargetRules::Files{true, true, true}, target.get());
        if (!answer) {
            context.fail(zqFormat(zqLocalized("“%@” takes no files. %@"), {target->title(), answer.refusal}));
            return false;
        }
        start(paths, target);
    }
    if (operations.empty() || !operations.front()) {
        context.fail(zqLocalized("the library is not open"));
        return false;
    }
    return true;
}

QStringList itemsBelow(const ZQObjectID &id, CommandContext &context)
{
    QStringList bundleIDs;
    const auto root = zqCast<ZQSidebarWatchedFolder>(context.store().existingObjectWithID(id));
    QList<ZQRef<ZQSidebarWatchedFolder>> folders;
    if (root) {
        folders = root->orderedChildrenAndSubChildren();
        folders.prepend(root);
    }
    for (const auto &folder : std::as_const(folders)) {
        for (const auto &item : folder->items()) {
            bundleIDs.append(item->bundleID());
        }
    }
    return bundleIDs;
}

// There they lie on the disk, and no import of them is kept to go on with: synchronising makes their items.
int copyIntoLiveFolder(const QStringList &given, const ZQObjectID &folder, const QVariantMap &metadata,
                       CommandContext &context)
{
    const auto [paths, leftOut] = ForLiveFolder::of(given);
    for (const DroppedFile &file : leftOut) {
        context.fail(zqFormat(zqLocalized("“%@” was not copied. %@"), {file.path, file.reason}));
    }
    if (paths.isEmpty()) {
        return 2;
    }
    const QStringList before = itemsBelow(folder, context);
    const QByteArray output = context.output;
    CommandEdits edits(context);
    LiveFolderEdits(edits.context())
        .copyFiles(paths, folder,
                   {metadata.value(QStringLiteral("webURL")).toString(),
                    metadata.value(QStringLiteral("webPageURL")).toString()});
    const int status = edits.finish(
        paths.size(), ZQCountedKey{"1 file copied into the live folder", "%d files copied into the live folder"});
    if (context.json) {
        context.output = output; // the report says it
    }
    const auto report = [status, wasAll = leftOut.isEmpty(), folder,
                         known = QSet<QString>(before.begin(), before.end())](CommandContext &finished,
                                                                              bool wasCancelled) {
        QStringList made = itemsBelow(folder, finished);
        made.removeIf([&known](const QString &bundleID) { return known.contains(bundleID); });
        ImportReport sum;
        sum.setImported(made);
        if ((status == 0 && !wasCancelled) || !made.isEmpty()) {
            printReport(sum, finished);
        }
        return wasCancelled ? finished.fail(zqLocalized("it was cancelled; the copied files stay, and the next `zelto "
                                                        "sync` makes their items"))
                            : (wasAll ? status : 2);
    };
    LiveFolderManaging *const manager = context.delegate->liveFolderManager();
    return manager ? zqAfterLiveFolders(*manager, {folder}, context, report) : report(context, false);
}

// Waits for the imports and all that follows from them.
int reportImports(const std::vector<std::shared_ptr<ImportOperation>> &operations, CommandContext &context)
{
    const AbandonWatch watch(context, [&] {
        const bool mayAsk = std::any_of(operations.begin(), operations.end(),
                                        [](const auto &operation) { return operation->isAnyRunning(); });
        std::for_each(operations.begin(), operations.end(), [](const auto &operation) { operation->cancelWholly(); });
        if (mayAsk) { // not a question about what somebody else imports
            context.delegate->userInteraction().dismissQuestions();
        }
    });
    zqRunMainLoopUntil(
        [&] {
            return std::all_of(operations.begin(), operations.end(),
                               [](const auto &operation) { return operation->isWhollyFinished(); });
        },
        std::chrono::milliseconds(5));
    ImportReport report;
    bool isCancelled = false;
    for (const auto &operation : operations) {
        addReports(*operation, report);
        isCancelled = isCancelled || operation->isAnyCancelled();
    }
    printReport(report, context);
    if (isCancelled) {
        return context.fail(report.imported().isEmpty()
                                ? zqLocalized("the import was cancelled; nothing was kept")
                                : zqLocalized("the import was cancelled; what is listed was imported before that"));
    }
    return report.isUnfinished() ? 1 : 0;
}
} // namespace

void zqTellOfCutOffImports(CommandContext &context)
{
    const qsizetype count = AImportManager::sharedAImportManager().pendingImports().cutOff().size();
    if (count > 0) {
        const QString what = zqCounted({"an import was cut off", "%d imports were cut off"}, count);
        const QString which = AImportManager::sharedAImportManager().pendingImports().text();
        const QString text =
            zqFormat(zqLocalized("%@; zelto import --resume goes on with the missing files, zelto import --forget "
                                 "gives them up"),
                     {which.isEmpty() ? what : zqFormat(zqLocalized("%@: %@"), {what, which})});
        context.note(text);
    }
}

int zqRunImport(const ImportRequest &request, CommandContext &context)
{
    if (request.paths.isEmpty() && !request.resumes && !request.forgets) {
        return context.fail(zqLocalized("name what to import, or write --resume or --forget"));
    }
    if (request.resumes && request.forgets) {
        return context.fail(zqLocalized("--resume and --forget exclude each other"));
    }
    QVariantMap metadata;
    for (const QString &setting : request.metadata) {
        if (const auto problem = addMetadata(setting, metadata)) {
            return context.fail(*problem);
        }
    }
    QStringList paths;
    for (const QString &path : request.paths) {
        const QString absolute = QDir::cleanPath(context.absolutePath(path));
        if (!QFileInfo::exists(absolute) && !QFileInfo(absolute).isSymLink()) {
            return context.fail(zqFormat(zqLocalized("there is no file “%@”"), {absolute}));
        }
        paths.append(absolute);
    }
    if (!request.into.isEmpty() && !paths.isEmpty() && !request.resumes) {
        const auto target = zqSidebarItemForReference(request.into, context);
        if (!target) {
            return 2;
        }
        if (target->isWatchedFolder()) {
            return copyIntoLiveFolder(paths, target->objectID(), metadata, context);
        }
    }
    if (request.forgets) {
        AImportManager::sharedAImportManager().pendingImports().forget();
    }
    std::vector<std::shared_ptr<ImportOperation>> operations;
    qsizetype unreadable = 0;
    if (request.resumes) {
        for (const auto &operation : AImportManager::sharedAImportManager().pendingImports().resume(
                 &unreadable, duplicateAnswerNamed(request.duplicates))) {
            operations.push_back(operation);
        }
    }
    if (!paths.isEmpty() && !startImports(request, paths, metadata, context, operations)) {
        return 2;
    }
    const int status = reportImports(operations, context);
    return unreadable > 0 ? 2 : status;
}
