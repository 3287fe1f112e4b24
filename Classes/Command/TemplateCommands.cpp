#include "Classes/Command/Commands.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportReport.h"
#include "Classes/Import/Templates.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QJsonArray>
#include <QJsonObject>

int zqRunTemplates(CommandContext &context)
{
    QJsonArray rows;
    for (const TemplateFile &each : Templates::inFolder(context.delegate->templateDirectory())) {
        rows.append(QJsonObject{{QStringLiteral("title"), each.title},
                                {QStringLiteral("path"), each.path},
                                {QStringLiteral("file"), each.file}});
        if (!context.json) {
            context.print(each.title + u'\t' + each.path);
        }
    }
    if (context.json) {
        context.printJSON(rows);
    }
    return 0;
}

int zqRunNewFromTemplate(const QString &title, const QString &into, CommandContext &context)
{
    ZQError error;
    const auto source = Templates::named(title, context.delegate->templateDirectory(), &error);
    if (!source) {
        return context.fail(error.localizedDescription());
    }
    const auto target = into.isEmpty() ? ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context.store())
                                       : zqSidebarItemForReference(into, context);
    if (!target) {
        return 2;
    }
    const auto answer = SidebarTargetRules::files({true, false, false}, target.get());
    if (!answer || target->isWatchedFolder()) {
        const QString reason =
            answer ? zqLocalized("Copy the template's file there with `zelto import`.") : answer.refusal;
        return context.fail(zqFormat(zqLocalized("“%@” takes no templates. %@"), {target->title(), reason}));
    }
    const auto operation = Templates::makeAsset(*source, *target, &error);
    if (!operation) {
        return context.fail(error.isNull() ? zqLocalized("the library is not open") : error.localizedDescription());
    }
    zqRunMainLoopUntil([&operation] { return operation->isWhollyFinished(); }, std::chrono::milliseconds(5));
    const ImportReport &report = operation->report();
    for (const DroppedFile &file : report.dropped()) {
        context.fail(zqFormat(zqLocalized("the template “%@” became no asset: %@"), {source->title, file.reason}));
    }
    for (const QString &bundleID : report.imported()) {
        context.print(bundleID);
    }
    return report.imported().isEmpty() ? 2 : 0;
}
