#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQFetchRequest.h"
#include "Kit/Persistence/ZQPredicateNode.h"

#include <map>

struct ZQFetchQuery;
struct ZQPendingCorrection;

// Which unsaved changes of a context can make the store's answer to one request wrong.
//
// A row's answer depends on its own values and on those of the objects that the request's key paths lead through. As
// long as none of them changed, the store is right; so the rows in question are the changed ones themselves and those
// from which a path, as it is stored, comes to a changed object. The latter are found from the changed objects
// backwards, by one query. The costs go with the number of changes, not with that of the rows.
class ZQPendingChanges
{
public:
    using Private = ZQManagedObjectContext::Private;
    using Object = ZQRef<ZQManagedObject>;

    // `isOrdered` says that the order counts as well, not only the condition.
    ZQPendingChanges(Private &context, const ZQFetchRequest &request, const ZQFetchQuery &query, bool isOrdered);

    // False after an error of the database.
    bool findCorrection(ZQPendingCorrection &correction, ZQError *error);

private:
    // One stop of the key paths: what leads there from the rows, and what is looked at of the objects there.
    struct Stop
    {
        std::vector<const ZQRelationshipDescription *> way;
        const ZQEntityDescription *entity = nullptr;
        quint64 fields = 0;
        QSet<int> lists;
        QList<qint64> changed; // saved objects there of which something looked at changed
    };
    // A part of the condition that must hold together with the others.
    struct Part
    {
        ZQPredicate predicate;
        QList<QStringList> paths;
    };

    void addPart(const ZQPredicateNodePtr &node);
    void addPath(const QStringList &keys);
    void lookAtChanges();
    bool isMeant(const ZQManagedObject &object) const;
    bool readsChanges(const Part &part) const;
    bool findAffectedRows(QList<Object> &affected, ZQError *error);
    void keepMatching(QList<Object> &candidates);

    Private &m_context;
    const ZQFetchRequest &m_request;
    const ZQFetchQuery &m_query;
    bool m_isOrdered;
    std::vector<Part> m_parts;
    std::map<QString, Stop> m_stops; // by the path; the empty one is the rows themselves
    QList<Object> m_candidates;
    QList<qint64> m_excluded;
};
