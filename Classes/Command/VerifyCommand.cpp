#include "Classes/Command/Commands.h"

#include "Classes/Application/LibraryCheck.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/WorkBeside.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQMisnamedFile.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// What was mended is no problem any more. False when one could not be, which was said.
bool nameFilesAfterItems(LibraryFindings &findings, CommandContext &context)
{
    CommandEdits edits(context);
    qsizetype count = 0;
    bool isWell = true;
    for (const LibraryFindings::Misnamed &each : std::as_const(findings.misnamed)) {
        const auto item = edits.context().libraryItem(each.item);
        ZQError error;
        if (item && zqNameFileAfterItem(*item, &error)) {
            findings.problems.removeOne(each.problem);
            ++count;
        } else {
            isWell = false;
            context.fail(zqFormat(zqLocalized("the file of “%@” can't be named after it: %@"),
                                  {item ? item->title() : QString(), error.localizedDescription()}));
        }
    }
    isWell = edits.context().save() && isWell;
    if (!context.json) {
        context.print(zqCounted({"1 file named after its item", "%d files named after their items"}, count));
    }
    return isWell;
}

int answer(LibraryFindings findings, bool repair, CommandContext &context)
{
    if (repair && !findings.misnamed.isEmpty() && !nameFilesAfterItems(findings, context)) {
        return 2;
    }
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("items"), findings.items},
                                      {QStringLiteral("problems"), QJsonArray::fromStringList(findings.problems)},
                                      {QStringLiteral("orphans"), QJsonArray::fromStringList(findings.orphans)},
                                      {QStringLiteral("otherNames"), QJsonArray::fromStringList(findings.otherNames)},
                                      {QStringLiteral("links"), QJsonArray::fromStringList(findings.links)}});
    } else {
        for (const QString &line : findings.lines()) {
            context.print(line);
        }
    }
    return findings.problems.isEmpty() ? 0 : 1;
}

} // namespace

int zqRunVerify(bool deep, bool repair, CommandContext &context)
{
    const auto check = [deep, directory = context.delegate->libraryDirectory()](ZQManagedObjectContext &store,
                                                                                const std::stop_token &stop) {
        return LibraryCheck(store, directory).run(deep, stop);
    };
    return WorkBeside<LibraryFindings>::run(context, check,
                                            [repair](const LibraryFindings &findings, CommandContext &finished) {
                                                return answer(findings, repair, finished);
                                            });
}
