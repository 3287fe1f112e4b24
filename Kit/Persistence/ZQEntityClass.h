#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <cstddef>
#include <span>

class ZQManagedObject;

// One stored field of a row: the single place that ties an attribute's or a to-one relationship's name to its memory.
// The generator writes one constant table of these for each root entity; key-value access, SQL binding, predicates,
// sorting, copying by name and JSON all walk it.
//
// The C++ type behind `offset` follows from `type`: String QString, Boolean bool, Integer16 qint16, Integer32 qint32,
// Integer64 qint64, Float float, Double double, Date QDateTime (UTC, milliseconds), Binary QByteArray. A to-one
// relationship is a qint64 holding the target's key (negative while temporary, 0 for none).
//
// A null String is a null QString, a null Date an invalid QDateTime, a null Binary a null QByteArray; a number or
// boolean is null by its bit in the object's null mask and reads as 0 then. A field's position in the table is its bit:
// at most 64.
struct ZQField
{
    const char *name;
    ZQAttributeType type;
    bool isToOne;
    std::size_t offset;
};

// How the context makes objects of an entity. Registered once at start-up by generated code, before any context exists.
struct ZQEntityClass
{
    const char *entityName;
    std::span<const ZQField> fields; // of the root entity's row, shared by its whole family
    ZQManagedObject *(*create)();    // a new object with all fields null
};

class ZQEntityRegistry
{
public:
    // Registering a name again replaces it (tests use this). Not thread-safe: call before contexts exist.
    static void registerClass(const ZQEntityClass &entityClass);
    static const ZQEntityClass *classForEntity(const QString &entityName); // null when none is registered
};
