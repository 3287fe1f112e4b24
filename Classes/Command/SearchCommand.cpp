#include "Classes/Browsing/ContentBuilder.h"
#include "Classes/Browsing/SearchManager.h"
#include "Classes/Browsing/SearchToken.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/ItemListing.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QJsonObject>

namespace {

constexpr int tokenColumn = 36; // characters, wider than the longest token

// What the window shows of the sidebar entry; the whole library in the order of `zelto items` without one.
std::optional<ContentQuery> queryFor(const SearchRequest &request, CommandContext &context)
{
    if (!request.in.isEmpty()) {
        const auto item = zqSidebarItemForReference(request.in, context);
        return item ? std::optional(ContentQuery{
                          {item->objectID()}, request.text, ZQSortValue(item->sortKeys()), item->sortDirection()})
                    : std::nullopt;
    }
    ZQError error;
    const auto library = ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::Library, context.store(), &error);
    if (!library) {
        context.fail(error.isNull() ? zqLocalized("this library has no entry “Library”; `zelto verify` checks it")
                                    : error.localizedDescription());
        return std::nullopt;
    }
    return ContentQuery{{library->objectID()}, request.text, ZQSortValue::ImportDate, true};
}

// Names what is wrong with the text; whoever counts on what was found would count on something else.
bool hasMistakes(const QString &text, CommandContext &context)
{
    const QList<SearchPart> problems = SearchExpression::read(text, {}).problems();
    for (const SearchPart &problem : problems) {
        context.fail(zqFormat(zqLocalized("at character %ld of the search, “%@”: %@"),
                              {qint64(problem.position + 1), problem.text, problem.meaning}));
    }
    return !problems.isEmpty();
}

int explain(const ContentBuilder &builder, CommandContext &context)
{
    ZQError error;
    const auto predicate = builder.predicateString(&error);
    if (!predicate) {
        return context.fail(error.localizedDescription());
    }
    const QString shown = predicate->isEmpty() ? ZQPredicate().predicateFormat() : *predicate;
    if (context.json) {
        context.printJSON(QJsonObject{{QStringLiteral("predicate"), shown}});
    } else {
        context.print(shown);
    }
    return 0;
}

} // namespace

QString zqSearchLanguage()
{
    QString lines = zqLocalized("A word is looked for in titles, notes, extensions and tags. AND, + or nothing between "
                                "two words finds both,\nOR one of them; brackets group, - or NOT leaves out, double "
                                "quotes keep a text together. Dates are 25/12/2026,\n2026-12-25, 2026-12, 2026, today, "
                                "yesterday or 7d. Numbers and dates are compared by <, =, >, <= or >=.\n");
    for (const SearchToken &token : SearchToken::all()) {
        const QString comparison = token.compares() ? QStringLiteral("=") : QString();
        const QString hint = token.argumentHint().isEmpty() ? QString() : u' ' + token.argumentHint();
        const QString form = token.name() + comparison +
                             (token.shortName().isEmpty() ? QString() : QStringLiteral(", ") + token.shortName()) +
                             (token.shortName().isEmpty() ? QString() : comparison) + hint;
        lines += u'\n' + form.leftJustified(tokenColumn) + token.meaning();
    }
    return lines;
}

int zqRunSearch(const SearchRequest &request, CommandContext &context)
{
    if (hasMistakes(request.text, context)) {
        return 2;
    }
    const auto query = queryFor(request, context);
    if (!query) {
        return 2;
    }
    const ContentBuilder builder(*query, context.store());
    if (request.explains) {
        return explain(builder, context);
    }
    const auto content = builder.content([&context] { return !context.isAbandoned || !context.isAbandoned(); });
    if (!content) {
        return context.fail(zqLocalized("the search was given up"));
    }
    if (!content->error.isNull()) {
        return context.fail(content->error.localizedDescription());
    }
    const QList<ZQObjectID> &found = content->rows.related;
    if (request.counts) {
        context.print(QString::number(found.size()));
    } else {
        zqPrintItems(ZQLibraryBaseItem::itemsWithIDs(found, context.store()), context);
    }
    return 0;
}
