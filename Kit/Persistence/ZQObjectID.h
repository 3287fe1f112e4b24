#pragma once

#include <QHash>
#include <QMetaType>
#include <QString>
#include <QUuid>

class ZQEntityDescription;

// Names one object of one store. A value: cheap to copy, may cross threads, never loads anything.
//
// A new object has a temporary identifier (a negative key, unique in this process) until it is saved.
struct ZQObjectID
{
    const ZQEntityDescription *entity =
        nullptr;    // the object's own entity, or an entity above it when only that is known
    qint64 key = 0; // the row's primary key; 0 names nothing

    bool isNull() const { return key == 0; }
    bool isTemporary() const { return key < 0; }

    // `x-zelto://STORE-UUID/ENTITY/pN`, or `x-zelto:///ENTITY/tUUID` while temporary.
    QString URIRepresentation(const QUuid &storeUUID) const;

    // Two identifiers are equal when they name the same row, whichever entity of its family they carry.
    friend bool operator==(const ZQObjectID &a, const ZQObjectID &b)
    {
        return a.key == b.key && a.rootEntity() == b.rootEntity();
    }
    friend size_t qHash(const ZQObjectID &id, size_t seed = 0)
    {
        return ::qHash(id.key, seed) ^ ::qHash(id.rootEntity(), seed);
    }

    const ZQEntityDescription *rootEntity() const;
};
Q_DECLARE_METATYPE(ZQObjectID)
