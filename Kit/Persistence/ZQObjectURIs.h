#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

// Finds what the texts of `ZQObjectID::URIRepresentation` name in a context. On the context's thread.
class ZQObjectURIs
{
public:
    explicit ZQObjectURIs(ZQManagedObjectContext::Private &context) : m_context(context) {}

    // Null when it names nothing there can be. Saved objects are not looked up: there may be none, or one of another
    // entity of the family.
    ZQObjectID possibleID(const QString &uri) const;
    // What is there of many, with its own entity: a query for each root entity. Nothing after an error.
    std::optional<QList<ZQObjectID>> existingIDs(const QStringList &uris, ZQError *error);

private:
    ZQManagedObjectContext::Private &m_context;
};
