#include "Classes/Browsing/Search/SearchQueries.h"

#include "Classes/Browsing/Index/KindNames.h"
#include "Classes/Browsing/Search/SearchSpan.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"

#include <algorithm>

namespace {

const QString either = QStringLiteral(" OR ");

struct Clause
{
    SearchField field;
    const char *format; // %1: what leads to the item, %2: the argument
};
constexpr Clause clauses[] = {
    {SearchField::Word, "%1title contains[cd] \"%2\" OR %1notes contains[cd] \"%2\" OR %1extension contains[cd] \"%2\" "
                        "OR ANY %1tags.title contains[cd] \"%2\""},
    {SearchField::Title, "%1title contains[cd] \"%2\""},
    {SearchField::Notes, "%1notes contains[cd] \"%2\""},
    {SearchField::Extension, "%1extension LIKE[cd] \"%2\""},
    {SearchField::Tag, "ANY %1tags.title LIKE[cd] \"%2\""},
    {SearchField::Project, "ANY %1projectsItems.project.title contains[cd] \"%2\""},
    {SearchField::Hash, "%1SHA1 == \"%2\""},
    {SearchField::Live, "%1managed == NO"},
    {SearchField::Untagged, "ALL %1tags.is_Special == YES"},
    {SearchField::NoTag, "%1tags.@count == 0"},
    {SearchField::NoProject, "%1projectsItems.@count == 0 OR ALL %1projectsItems.project.active == NO"},
};

double sinceReferenceDate(const QDateTime &date)
{
    constexpr qint64 referenceDate = 978307200; // 2001-01-01T00:00Z
    return double(date.toMSecsSinceEpoch() - referenceDate * 1000) / 1000;
}

QString dateQuery(const QString &field, const QString &method, const SearchSpan &span)
{
    if (method == u"==") {
        return zqFormat(QStringLiteral("%@ >= CAST(%f, \"NSDate\") AND (%@ <= CAST(%f, \"NSDate\"))"),
                        {field, sinceReferenceDate(span.start), field, sinceReferenceDate(span.end)});
    }
    const QDateTime &bound = method == u"<=" ? span.end : span.start;
    return zqFormat(QStringLiteral("%@ %@ CAST(%f, \"NSDate\")"), {field, method, sinceReferenceDate(bound)});
}

QString inBrackets(const QStringList &parts)
{
    return QStringLiteral("( ") + parts.join(QStringLiteral(" ) OR ( ")) + QStringLiteral(" )");
}

} // namespace

QString SearchQueries::safeSearchString(const QString &text)
{
    QString safe = text;
    safe.remove(u'"');
    return safe.replace(u'\\', QStringLiteral("\\\\"));
}

QString SearchQueries::composeQueryStringWithQuery(const QString &query, const QString &operand, bool exclude)
{
    return zqFormat(QStringLiteral("%@ ( %@ ( %@ ) )"), {operand, exclude ? QStringLiteral("NOT") : QString(), query});
}

QString SearchQueries::methodForWithOrHeight(const QString &token)
{
    struct Ending
    {
        QStringView text;
        const char *method;
    };
    static constexpr Ending endings[] = {{u"<=", "<="}, {u"=<", "<="}, {u">=", ">="}, {u"=>", ">="},
                                         {u"<", "<"},   {u"=", "=="},  {u">", ">"}};
    for (const Ending &ending : endings) {
        if (token.endsWith(ending.text)) {
            return QLatin1StringView(ending.method);
        }
    }
    return {};
}

QString SearchQueries::queryForField(SearchField field, const QString &argument, ZQListRows rows)
{
    const QString prefix = zqItemKeyPath(rows, QString());
    for (const Clause &clause : clauses) {
        if (clause.field == field) {
            const QString format = QLatin1StringView(clause.format);
            return format.contains(u"%2") ? format.arg(prefix, safeSearchString(argument)) : format.arg(prefix);
        }
    }
    return {};
}

QString SearchQueries::numberQuery(const QString &field, const QString &method, qint64 value)
{
    return zqFormat(QStringLiteral("%@ %@ %ld"), {field, method, value});
}

QString SearchQueries::colorQuery(int color, ZQListRows rows)
{
    const QString field = zqItemKeyPath(rows, QStringLiteral("mainColor"));
    return color > 0 ? numberQuery(field, QStringLiteral("=="), color)
                     : QStringLiteral("NOT ( %1 BETWEEN {1000, 1009} )").arg(field);
}

QString SearchQueries::resemblanceQuery(const QString &key, const QStringList &texts, ZQListRows rows)
{
    if (texts.isEmpty()) {
        return QStringLiteral("FALSEPREDICATE");
    }
    const QString before = zqItemKeyPath(rows, key) + QStringLiteral(" RESEMBLES \"");
    QStringList parts;
    for (const QString &text : texts) {
        parts.append(before + safeSearchString(text) + u'"');
    }
    return parts.join(either);
}

QString SearchQueries::kindQuery(const QString &kind, ZQListRows rows)
{
    QStringList extensions = KindNames::extensionsOfKind(kind);
    for (QString &extension : extensions) {
        extension = u'"' + safeSearchString(extension) + u'"';
    }
    return zqFormat(QStringLiteral("%@ IN[cd] {%@}"),
                    {zqItemKeyPath(rows, QStringLiteral("extension")), extensions.join(QStringLiteral(", "))});
}

QString SearchQueries::searchForDate(const QString &date, const QString &method, bool exclude, const QString &field,
                                     const QString &operand, const QDate &today)
{
    const auto span = SearchSpan::forText(date, today);
    return span ? composeQueryStringWithQuery(dateQuery(field, method, *span), operand, exclude) : QString();
}

QString SearchQueries::folderSearchForString(const QString &text, bool exclude, const QString &operand, ZQListRows rows,
                                             int depth)
{
    // Above the live folders stands their label, whose title is nobody's folder.
    const bool meansLabel = zqFold(zqLocalized("LIVE FOLDERS")).contains(zqFold(text));
    QString path = zqItemKeyPath(rows, QStringLiteral("watchingFolder."));
    QStringList levels;
    for (int level = 0; level < std::clamp(depth, 1, deepestFolder); ++level) {
        const QString condition =
            zqFormat(QStringLiteral("%@title contains[cd] \"%@\""), {path, safeSearchString(text)});
        levels.append(meansLabel ? condition + QStringLiteral(" AND ") + path + QStringLiteral("is_Label == NO")
                                 : condition);
        path += QStringLiteral("father.");
    }
    return composeQueryStringWithQuery(inBrackets(levels), operand, exclude);
}

QString SearchQueries::duplicateQuery(const QStringList &hashes, ZQListRows rows)
{
    if (hashes.isEmpty()) {
        return QStringLiteral("FALSEPREDICATE");
    }
    const QString before = zqItemKeyPath(rows, QStringLiteral("SHA1")) + QStringLiteral(" == \"");
    QStringList parts;
    parts.reserve(hashes.size());
    for (const QString &hash : hashes) {
        parts.append(before + safeSearchString(hash) + u'"');
    }
    return parts.join(either);
}

QString SearchQueries::duplicatesSearchWithArrayController(const QString &content, bool exclude, const QString &operand,
                                                           const QString &hashes, ZQListRows rows)
{
    if (hashes.isEmpty()) {
        return composeQueryStringWithQuery(content, operand, exclude);
    }
    const QString these = duplicateQuery(hashes.split(u'_', Qt::SkipEmptyParts), rows);
    return composeQueryStringWithQuery(zqFormat(QStringLiteral("( %@ ) AND ( %@ )"), {content, these}), operand,
                                       exclude);
}

QStringList SearchQueries::repeatedHashes(const QMap<QString, qint64> &counts)
{
    QStringList repeated;
    for (auto each = counts.cbegin(); each != counts.cend(); ++each) {
        if (each.value() > 1 && !each.key().isEmpty() && each.key() != u"0") {
            repeated.append(each.key());
        }
    }
    return repeated;
}
