#pragma once

#include "Classes/Browsing/Content/Content.h"
#include "Classes/Browsing/Content/ContentBuilder.h"
#include "Classes/Browsing/Content/Facets.h"
#include "Classes/Browsing/Index/LibraryIndex.h"

#include <map>
#include <optional>

// Counts the items a tab shows by what they can be refined by. A chosen value of a facet is left out when that facet is
// counted, where another one would take its place, so that each count is what is shown once its value is chosen.
class FacetCounts
{
public:
    // On the thread of the context, with the index it belongs to. Nothing while that is not ready, or when it was given
    // up.
    static std::optional<QList<Facet>> of(const ContentQuery &query, ZQManagedObjectContext &context,
                                          LibraryIndex &index, const ContentBuilder::IsWanted &isWanted);

private:
    FacetCounts(const QString &text, ContentBuilder::Scope scope);
    void prepare(const QString &text); // its condition, before the index is read
    // Afterwards `m_unprepared` has the texts that came up meanwhile, and were counted as none.
    std::optional<QList<Facet>> count(const LibraryIndex::Reading &reading, const ContentBuilder::IsWanted &isWanted);
    const ZQPredicate *conditionOf(const QString &text);
    std::optional<ZQRowSet> content(const LibraryIndex::Reading &reading) const;
    const ZQRowSet &rowsFor(FacetKind kind, const LibraryIndex::Reading &reading);
    QList<FacetValue> values(FacetKind kind, const LibraryIndex::Reading &reading);
    QString tokenOfKind(const QString &word, const QString &extension) const;
    QList<FacetValue> kinds(const LibraryIndex::Reading &reading);
    QList<FacetValue> colors(const LibraryIndex::Reading &reading);
    QList<FacetValue> ratings(const LibraryIndex::Reading &reading);
    QList<FacetValue> sizes(const LibraryIndex::Reading &reading);
    QList<FacetValue> dates(const LibraryIndex::Reading &reading);
    QList<FacetValue> names(FacetKind kind, const LibraryIndex::Reading &reading);
    void add(FacetKind kind, const FacetValue &value, QList<FacetValue> &values) const;
    void addTyped(FacetKind kind, QList<FacetValue> &values, const LibraryIndex::Reading &reading);
    qint64 countOf(const QString &token, FacetKind kind, const LibraryIndex::Reading &reading);

    QString m_text;
    FacetText m_read;
    ContentBuilder::Scope m_scope;
    std::map<QString, ZQPredicate> m_conditions; // by text
    QStringList m_unprepared;
    std::map<QString, ZQRowSet> m_rows;
    ZQRowSet m_content;
    bool m_isComplete = true; // the index had an answer to all
};
