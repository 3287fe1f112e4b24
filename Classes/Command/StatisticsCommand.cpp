#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/LibraryStatistics.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/WorkBeside.h"

#include <QJsonArray>
#include <QJsonObject>

#include <utility>

namespace {

QJsonArray named(const QList<LibraryNumbers::Named> &list, bool hasBytes)
{
    QJsonArray array;
    for (const LibraryNumbers::Named &each : list) {
        QJsonObject object{{QStringLiteral("name"), each.name}, {QStringLiteral("items"), each.items}};
        if (hasBytes) {
            object.insert(QStringLiteral("bytes"), each.bytes);
        }
        array.append(object);
    }
    return array;
}

QJsonObject object(const LibraryNumbers &numbers)
{
    QJsonObject years;
    for (const auto &[year, items] : numbers.years) {
        years.insert(QString::number(year), items);
    }
    QJsonObject object{{QStringLiteral("items"), numbers.items},
                       {QStringLiteral("deleted"), numbers.deleted},
                       {QStringLiteral("managed"), numbers.managed},
                       {QStringLiteral("untagged"), numbers.untagged},
                       {QStringLiteral("unrated"), numbers.unrated},
                       {QStringLiteral("duplicates"), numbers.duplicates},
                       {QStringLiteral("duplicateGroups"), numbers.duplicateGroups},
                       {QStringLiteral("kinds"), named(numbers.kinds, numbers.hasSizes)},
                       {QStringLiteral("folders"), named(numbers.folders, false)},
                       {QStringLiteral("years"), years}};
    if (numbers.hasSizes) {
        object.insert(QStringLiteral("bytes"), numbers.bytes);
        object.insert(QStringLiteral("thumbnailBytes"), numbers.thumbnailBytes);
        object.insert(QStringLiteral("missing"), numbers.missing);
        object.insert(QStringLiteral("largest"), named(numbers.largest, true));
    }
    return object;
}

} // namespace

int zqRunStatistics(bool withSizes, CommandContext &context)
{
    using Answer = std::pair<std::optional<LibraryNumbers>, ZQError>;
    const auto count = [withSizes, directory = context.delegate->libraryDirectory()](ZQManagedObjectContext &store,
                                                                                     const std::stop_token &stop) {
        Answer answer;
        answer.first = LibraryStatistics(store, directory).count(withSizes, &answer.second, stop);
        return answer;
    };
    return WorkBeside<Answer>::run(context, count, [](const Answer &answer, CommandContext &finished) {
        const auto &[numbers, error] = answer;
        if (!numbers) {
            return finished.fail(error.localizedDescription());
        }
        if (finished.json) {
            finished.printJSON(object(*numbers));
            return 0;
        }
        for (const QString &line : numbers->lines()) {
            finished.print(line);
        }
        return 0;
    });
}
