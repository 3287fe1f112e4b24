#pragma once

#include "Classes/Browsing/Search/SearchContext.h"
#include "Classes/Browsing/Search/SearchToken.h"

#include <optional>

// The clauses of a search in the format language of `ZQPredicate`. Arguments have been looked at already. Any thread.
class SearchQueries
{
public:
    // What may stand inside the quotes of a format: without double quotes, with backslashes doubled.
    static QString safeSearchString(const QString &text);
    // "OPERAND ( NOT ( QUERY ) )".
    static QString composeQueryStringWithQuery(const QString &query, const QString &operand, bool exclude);
    // The comparison at the end of a token ("#w>"): "<", "<=", "==", ">=" or ">"; empty for none.
    static QString methodForWithOrHeight(const QString &token);

    // The condition of a token, or of a word, whose clause is one format. `argument` as typed.
    static QString queryForField(SearchField field, const QString &argument, ZQListRows rows);
    static QString numberQuery(const QString &field, const QString &method, qint64 value);
    // Of a main colour's code; 0: those that are none.
    static QString colorQuery(int color, ZQListRows rows);
    // Items whose data at `key` resemble one of these texts. None: a condition that nothing meets.
    static QString resemblanceQuery(const QString &key, const QStringList &texts, ZQListRows rows);
    static QString kindQuery(const QString &kind, ZQListRows rows);

    // `date` as `SearchSpan` reads it; an empty text when it is none.
    static QString searchForDate(const QString &date, const QString &method, bool exclude, const QString &field,
                                 const QString &operand, const QDate &today = QDate::currentDate());
    // Items of the live folders whose name contains `text` and of the folders below them, `depth` levels in all.
    static QString folderSearchForString(const QString &text, bool exclude, const QString &operand, ZQListRows rows,
                                         int depth);
    static constexpr int deepestFolder = 32; // a statement joins no more tables

    // Items with one of these digests. None: a condition that nothing meets.
    static QString duplicateQuery(const QStringList &hashes, ZQListRows rows);
    // Items whose SHA-1 occurs more than once, which is the condition `content`; when `hashes` is not empty, those of
    // its digests, which are joined by "_".
    static QString duplicatesSearchWithArrayController(const QString &content, bool exclude, const QString &operand,
                                                       const QString &hashes, ZQListRows rows);
    // The digests of more than one item. "0", which stands for a digest that could not be had, is none.
    static QStringList repeatedHashes(const QMap<QString, qint64> &counts);
};
