#include "Classes/Command/Commands.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModel.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {
// "key=value" as an attribute value of its type, or a message.
std::optional<QString> addMetadata(const QString &setting, QVariantMap &metadata)
{
    const qsizetype equals = setting.indexOf(u'=');
    const QString key = setting.left(equals);
    const ZQEntityDescription *entity = zqCurrentModel()->entity(ZQLibraryBaseItem::entityName());
    const ZQAttributeDescription *attribute = equals > 0 ? entity->attribute(key) : nullptr;
    if (!attribute || attribute->type == ZQAttributeType::Binary) {
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
    for (const auto &followUp : operation.followUps()) {
        addReports(*followUp, sum);
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
    context.print(count == 1 ? zqLocalized("1 item imported") : zqFormat(zqLocalized("%d items imported"), {count}));
    for (const DroppedFile &file : report.dropped()) {
        const QString format =
            file.isImportedInPart() ? zqLocalized("imported in part: %@: %@") : zqLocalized("not imported: %@: %@");
        context.print(zqFormat(format, {file.path, file.reason}));
    }
    for (const QString &text : report.notifications()) {
        context.print(text);
    }
}
} // namespace

int zqRunImport(const ImportRequest &request, CommandContext &context)
{
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
    ZQRef<ZQSidebarBaseItem> target = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context.store());
    if (!request.into.isEmpty()) {
        target = zqSidebarItemForReference(request.into, context);
        if (!target) {
            return 2;
        }
    }
    const quint32 index = request.index < 0 ? ImportOperation::appendIndex : static_cast<quint32>(request.index);
    const auto operation =
        AImportManager::sharedAImportManager().startImportOfFilesAtPaths(paths, target->objectID(), index, metadata);
    if (!operation) {
        return context.fail(zqLocalized("the library is not open"));
    }
    zqRunMainLoopUntil([&] { return operation->isWhollyFinished(); }, std::chrono::milliseconds(5));
    ImportReport report;
    addReports(*operation, report);
    printReport(report, context);
    if (operation->isAnyCancelled()) {
        return context.fail(report.imported().isEmpty()
                                ? zqLocalized("the import was cancelled; nothing was kept")
                                : zqLocalized("the import was cancelled; what is listed was imported before that"));
    }
    return 0;
}
