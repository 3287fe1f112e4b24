#include "Classes/Command/Commands.h"

#include "Classes/Application/LibraryCheck.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/WorkBeside.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

int answer(const LibraryFindings &findings, CommandContext &context)
{
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

int zqRunVerify(bool deep, CommandContext &context)
{
    const auto check = [deep, directory = context.delegate->libraryDirectory()](ZQManagedObjectContext &store,
                                                                                const std::stop_token &stop) {
        return LibraryCheck(store, directory).run(deep, stop);
    };
    return WorkBeside<LibraryFindings>::run(context, check, &answer);
}
