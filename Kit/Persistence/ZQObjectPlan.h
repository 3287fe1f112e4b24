#pragma once

#include "Kit/Persistence/ZQEntityClass.h"

#include <QHash>

#include <memory>
#include <vector>

class ZQSQLiteStatement;

// How the model's properties meet the fields of the registered classes; made once for a context, then only read.

struct ZQPlanColumn
{
    QString column;
    int field = -1;
    ZQAttributeType type = ZQAttributeType::Integer64;
    bool isToOne = false;
};

struct ZQPlanProperty
{
    bool isRelationship = false;
    int index = -1; // among the entity's attributes or relationships
    int field = -1; // -1 for a to-many, or when the class has no field of this name
};

struct ZQRootPlan;

struct ZQEntityPlan
{
    const ZQEntityDescription *entity = nullptr;
    const ZQEntityClass *entityClass = nullptr; // null: objects of it cannot be made
    const ZQRootPlan *root = nullptr;
    QHash<QString, ZQPlanProperty> properties;
    std::vector<int> relationshipFields; // by relationship; -1 for a to-many
    std::vector<int> inverses;           // by relationship: the inverse's position at the destination
    std::vector<ZQPlanColumn> columns;   // this entity's own and inherited ones
    quint64 fieldMask = 0;               // the fields of `columns`
    QString insertStatement;             // id, entity, then `columns`; version 1
};

struct ZQRootPlan
{
    const ZQEntityDescription *entity = nullptr;
    std::span<const ZQField> fields;
    std::vector<ZQPlanColumn> columns; // of the whole family
    QString selection;                 // t.id, t.entity, t.version, then `columns`, of the table aliased "t"
    std::vector<std::unique_ptr<ZQEntityPlan>> entities;
};

class ZQModelPlan
{
public:
    explicit ZQModelPlan(std::shared_ptr<const ZQManagedObjectModel> model);

    const ZQManagedObjectModel &model() const { return *m_model; }
    const std::vector<std::unique_ptr<ZQRootPlan>> &roots() const { return m_roots; }
    const ZQEntityPlan *planFor(const ZQEntityDescription *entity) const { return m_byEntity.value(entity); }
    const ZQEntityPlan *planForCode(int code) const { return m_byCode.value(code); }

private:
    void addEntity(ZQRootPlan &root, const ZQEntityDescription *entity);

    std::shared_ptr<const ZQManagedObjectModel> m_model;
    std::vector<std::unique_ptr<ZQRootPlan>> m_roots;
    QHash<const ZQEntityDescription *, const ZQEntityPlan *> m_byEntity;
    QHash<int, const ZQEntityPlan *> m_byCode;
};

// Values of one field of a row. `nulls` is the object's null mask.
QVariant zqFieldValue(const ZQField &field, const void *row, bool isNull);
// Converts to the field's type. False when the value does not fit; nothing changes then. An invalid variant is null.
bool zqConvertFieldValue(const QVariant &value, ZQAttributeType type, QVariant &converted);
void zqStoreFieldValue(const ZQField &field, void *row, const QVariant &converted, bool &isNull);
// Whether the slot itself says null (texts, dates, bytes and references).
bool zqSlotIsNull(const ZQField &field, const void *row);
void zqBindField(ZQSQLiteStatement &statement, int parameter, const ZQField &field, const void *row, bool isNull);
// Reads a column into the slot; the answer is whether it was null.
bool zqReadField(const ZQSQLiteStatement &statement, int column, const ZQField &field, void *row);
QVariant zqColumnValue(const ZQSQLiteStatement &statement, int column, ZQAttributeType type);
qint64 &zqKeySlot(const ZQField &field, void *row);
