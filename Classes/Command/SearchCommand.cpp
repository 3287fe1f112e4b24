#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Browsing/Search/SearchToken.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/Commands.h"
#include "Classes/Command/ItemListing.h"
#include "Classes/Editing/SidebarCommands.h"
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

QString tooLong()
{
    return zqFormat(zqLocalized("a search has at most %d characters"), {SearchManager::longestText});
}

int makeSmartFolder(const QString &title, const QString &text, const QString &in, CommandContext &context)
{
    if (title.isEmpty()) {
        return context.fail(zqLocalized("a smart folder needs a title"));
    }
    if (text.size() > SearchManager::longestText) {
        return context.fail(tooLong());
    }
    ZQObjectID folder;
    if (!in.isEmpty()) {
        const auto item = zqSidebarItemForReference(in, context);
        if (!item) {
            return 2;
        }
        const bool isPlace =
            item->isFolder() && ZQSidebarKind(item->kind()) != ZQSidebarKind::WatchedFoldersLabel && !item->isTag();
        if (!isPlace) {
            return context.fail(
                zqFormat(zqLocalized("“%@” holds no smart folders; name PROJECTS or a folder in it"), {item->title()}));
        }
        folder = item->objectID();
    }
    CommandEdits edits(context);
    const auto place = folder.isNull() ? ZQRef<ZQSidebarBaseItem>() : edits.context().sidebarItem(folder);
    if (!SidebarCommands(edits.context()).addSmartFolder(text, title, place)) {
        return context.fail(zqLocalized("this library has no entry “PROJECTS”; `zelto verify` checks it"));
    }
    return edits.finish(1, ZQCountedKey{"1 smart folder made", "%d smart folders made"});
}

int changeSmartFolder(const QString &reference, const QString &text, CommandContext &context)
{
    const auto item = zqSidebarItemForReference(reference, context);
    if (!item) {
        return 2;
    }
    if (text.size() > SearchManager::longestText) {
        return context.fail(tooLong());
    }
    if (!item->isSmartFolder()) {
        return context.fail(zqFormat(zqLocalized("“%@” is no smart folder; `zelto sidebar` shows them with their text"),
                                     {item->title()}));
    }
    CommandEdits edits(context);
    SidebarCommands(edits.context()).setSearchText(edits.context().sidebarItem(item->objectID()), text);
    return edits.finish(1, ZQCountedKey{"1 smart folder changed", "%d smart folders changed"});
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
    const ContentBuilder builder(*query, context.store(), context.readyIndex());
    if (request.explains) {
        return explain(builder, context);
    }
    const auto content = builder.content([&context] { return context.isWanted(); });
    if (!content) {
        return context.fail(zqLocalized("the search was given up"));
    }
    if (!content->error.isNull()) {
        return context.fail(content->error.localizedDescription());
    }
    const QList<ZQObjectID> &found = content->rows.related;
    if (request.counts) {
        context.print(QString::number(found.size()));
    } else if (!zqPrintItems(found, context)) {
        return 2;
    }
    return 0;
}

int zqRunSmartFolder(const SmartFolderRequest &request, CommandContext &context)
{
    const bool isNew = request.change.isEmpty();
    const QString text = request.words.mid(isNew ? 1 : 0).join(u' ');
    if (hasMistakes(text, context)) {
        return 2;
    }
    if (SearchExpression::read(text, {}).predicateString.isEmpty()) {
        return context.fail(isNew ? zqLocalized("there is nothing to search for; give a text behind the title")
                                  : zqLocalized("there is nothing to search for; give a text"));
    }
    return isNew ? makeSmartFolder(request.words.value(0).simplified(), text, request.in, context)
                 : changeSmartFolder(request.change, text, context);
}
