#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

struct ZQFetchQuery;

// Carries out the fetch requests of a context: the store's answer, put right where unsaved changes of the context make
// it wrong and the request wants them to count. Nothing after an error. On the context's thread.
class ZQFetcher
{
public:
    using Object = ZQRef<ZQManagedObject>;

    explicit ZQFetcher(ZQManagedObjectContext::Private &context);

    std::optional<QList<Object>> objects(const ZQFetchRequest &request, ZQError *error);
    std::optional<QList<ZQObjectID>> objectIDs(const ZQFetchRequest &request, ZQError *error);
    std::optional<qint64> count(const ZQFetchRequest &request, ZQError *error);
    // Of the saved state only.
    std::optional<ZQRelatedIDs> objectIDsWithRelated(const ZQFetchRequest &request, const QString &relationship,
                                                     ZQError *error);
    std::optional<QList<QVariantMap>> dictionaries(const ZQFetchRequest &request, const QStringList &attributes,
                                                   ZQError *error);

private:
    // Leaves out of `query` what the store cannot know; `matching` is what belongs there instead.
    bool correct(const ZQFetchRequest &request, bool isOrdered, ZQFetchQuery &query, QList<Object> &matching,
                 ZQError *error);
    // Where in `ids`, which are in the order of the request, each of `sorted` belongs: the number of those before it.
    std::optional<QList<qsizetype>> placesAmong(const QList<ZQObjectID> &ids, const QList<Object> &sorted,
                                                const QList<ZQSortDescriptor> &descriptors, ZQError *error);
    // Keeps in memory what the places `low` to `high` are next compared with.
    QList<Object> readMiddles(const QList<ZQObjectID> &ids, const QList<qsizetype> &low, const QList<qsizetype> &high,
                              const QList<ZQSortDescriptor> &descriptors);

    ZQManagedObjectContext::Private &m_context;
};
