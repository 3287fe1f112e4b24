#include "Classes/Command/Commands.h"

#include "Classes/Application/LibraryCheck.h"
#include "Classes/Application/tamberin_AppDelegate.h"

#include <QJsonArray>
#include <QJsonObject>

int zqRunVerify(bool deep, CommandContext &context)
{
    const LibraryFindings findings = LibraryCheck(context.store(), context.delegate->libraryDirectory()).run(deep);
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
