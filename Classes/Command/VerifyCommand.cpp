#include "Classes/Command/Commands.h"

#include "Classes/Application/LibraryCheck.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandEdits.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQMisnamedFile.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// False when one could not be, which was said.
bool nameFilesAfterItems(const QList<ZQObjectID> &items, CommandContext &context)
{
    CommandEdits edits(context);
    qsizetype count = 0;
    bool isWell = true;
    for (const ZQObjectID &id : items) {
        const auto item = edits.context().libraryItem(id);
        ZQError error;
        if (item && zqNameFileAfterItem(*item, &error)) {
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

} // namespace

int zqRunVerify(bool deep, bool repair, CommandContext &context)
{
    const auto look = [&] { return LibraryCheck(context.store(), context.delegate->libraryDirectory()).run(deep); };
    LibraryFindings findings = look();
    if (repair && !findings.misnamed.isEmpty()) {
        if (!nameFilesAfterItems(findings.misnamed, context)) {
            return 2;
        }
        findings = look();
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
