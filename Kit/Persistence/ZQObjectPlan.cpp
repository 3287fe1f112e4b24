#include "Kit/Persistence/ZQObjectPlan.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QDateTime>

#include <limits>

namespace {

template <class T>
T &slot(const ZQField &field, void *row)
{
    return *reinterpret_cast<T *>(static_cast<char *>(row) + field.offset);
}

template <class T>
const T &slot(const ZQField &field, const void *row)
{
    return *reinterpret_cast<const T *>(static_cast<const char *>(row) + field.offset);
}

// Calls `visit` with the slot as the C++ type its field type stands for.
template <class Row, class Visitor>
auto visitSlot(const ZQField &field, Row *row, Visitor &&visit)
{
    switch (field.isToOne ? ZQAttributeType::Integer64 : field.type) {
    case ZQAttributeType::String:
        return visit(slot<QString>(field, row));
    case ZQAttributeType::Boolean:
        return visit(slot<bool>(field, row));
    case ZQAttributeType::Integer16:
        return visit(slot<qint16>(field, row));
    case ZQAttributeType::Integer32:
        return visit(slot<qint32>(field, row));
    case ZQAttributeType::Float:
        return visit(slot<float>(field, row));
    case ZQAttributeType::Double:
        return visit(slot<double>(field, row));
    case ZQAttributeType::Date:
        return visit(slot<QDateTime>(field, row));
    case ZQAttributeType::Binary:
        return visit(slot<QByteArray>(field, row));
    case ZQAttributeType::Integer64:
        break;
    }
    return visit(slot<qint64>(field, row));
}

int fieldNamed(std::span<const ZQField> fields, const QString &name)
{
    for (size_t i = 0; i < fields.size(); ++i) {
        if (name == QLatin1String(fields[i].name)) {
            return int(i);
        }
    }
    return -1;
}

// A subclass may have no class of its own; its objects are then made as the parent's.
const ZQEntityClass *classFor(const ZQEntityDescription *entity)
{
    for (; entity; entity = entity->parent) {
        if (const ZQEntityClass *found = ZQEntityRegistry::classForEntity(entity->name)) {
            return found;
        }
    }
    return nullptr;
}

bool wholeNumber(const QVariant &value, qint64 low, qint64 high, QVariant &converted)
{
    bool isNumber = false;
    const int type = value.metaType().id();
    qint64 number = 0;
    if (type == QMetaType::Double || type == QMetaType::Float) {
        const double real = value.toDouble();
        isNumber = real >= -9.2e18 && real <= 9.2e18;
        number = isNumber ? qint64(real) : 0;
    } else if (type == QMetaType::Bool) {
        isNumber = true;
        number = value.toBool();
    } else {
        number = value.toLongLong(&isNumber);
    }
    if (!isNumber || number < low || number > high) {
        return false;
    }
    converted = QVariant::fromValue<qlonglong>(number);
    return true;
}

} // namespace

ZQModelPlan::ZQModelPlan(std::shared_ptr<const ZQManagedObjectModel> model) : m_model(std::move(model))
{
    for (const ZQEntityDescription *rootEntity : zqRootEntities(*m_model)) {
        auto root = std::make_unique<ZQRootPlan>();
        root->entity = rootEntity;
        for (const auto &entity : m_model->entities()) {
            const ZQEntityClass *entityClass = entity->root == rootEntity ? classFor(entity.get()) : nullptr;
            if (entityClass && root->fields.empty()) {
                root->fields = entityClass->fields;
            }
        }
        root->selection = QStringLiteral("t.\"id\", t.\"entity\", t.\"version\"");
        for (const ZQStoreColumn &column : zqColumnsOfFamily(*m_model, rootEntity)) {
            root->columns.push_back({column.name, -1, column.type, !column.referencedTable.isEmpty()});
            root->selection += QStringLiteral(", t.") + zqQuoted(column.name);
        }
        for (const auto &entity : m_model->entities()) {
            if (entity->root == rootEntity) {
                addEntity(*root, entity.get());
            }
        }
        m_roots.push_back(std::move(root));
    }
    for (const auto &root : m_roots) {
        for (const auto &plan : root->entities) {
            for (const ZQRelationshipDescription &relationship : plan->entity->relationships) {
                const auto &there = relationship.destination->relationships;
                plan->inverses.push_back(int(relationship.inverse - there.data()));
            }
        }
    }
}

void ZQModelPlan::addEntity(ZQRootPlan &root, const ZQEntityDescription *entity)
{
    auto plan = std::make_unique<ZQEntityPlan>();
    plan->entity = entity;
    plan->entityClass = classFor(entity);
    plan->root = &root;
    const auto addColumn = [&](const QString &property, const QString &column, ZQAttributeType type, bool isToOne) {
        const int field = fieldNamed(root.fields, property);
        if (field < 0) {
            qCInfo(zqLogStore, "the class of %s has no field for \"%s\"", qUtf8Printable(entity->name),
                   qUtf8Printable(property));
            return -1;
        }
        plan->columns.push_back({column, field, type, isToOne});
        plan->fieldMask |= quint64(1) << field;
        for (ZQPlanColumn &shared : root.columns) {
            if (shared.column == column) {
                shared.field = field;
            }
        }
        return field;
    };
    for (size_t i = 0; i < entity->attributes.size(); ++i) {
        const ZQAttributeDescription &attribute = entity->attributes[i];
        const int field = addColumn(attribute.name, attribute.columnName, attribute.type, false);
        plan->properties.insert(attribute.name, {false, int(i), field});
    }
    for (size_t i = 0; i < entity->relationships.size(); ++i) {
        const ZQRelationshipDescription &relationship = entity->relationships[i];
        const int field = relationship.toMany
                              ? -1
                              : addColumn(relationship.name, relationship.columnName, ZQAttributeType::Integer64, true);
        plan->properties.insert(relationship.name, {true, int(i), field});
        plan->relationshipFields.push_back(field);
    }
    QString columns = QStringLiteral("\"id\", \"entity\"");
    QString places = QStringLiteral("?, ?");
    for (const ZQPlanColumn &column : plan->columns) {
        columns += QStringLiteral(", ") + zqQuoted(column.column);
        places += QStringLiteral(", ?");
    }
    plan->insertStatement =
        QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(zqQuoted(entity->tableName), columns, places);
    m_byEntity.insert(entity, plan.get());
    m_byCode.insert(entity->code, plan.get());
    root.entities.push_back(std::move(plan));
}

qint64 &zqKeySlot(const ZQField &field, void *row)
{
    return slot<qint64>(field, row);
}

bool zqSlotIsNull(const ZQField &field, const void *row)
{
    if (field.isToOne) {
        return slot<qint64>(field, row) == 0;
    }
    switch (field.type) {
    case ZQAttributeType::String:
        return slot<QString>(field, row).isNull();
    case ZQAttributeType::Date:
        return !slot<QDateTime>(field, row).isValid();
    case ZQAttributeType::Binary:
        return slot<QByteArray>(field, row).isNull();
    default:
        return false;
    }
}

QVariant zqFieldValue(const ZQField &field, const void *row, bool isNull)
{
    if (isNull) {
        return {};
    }
    return visitSlot(field, row, [](const auto &value) -> QVariant {
        using V = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<V, qint16> || std::is_same_v<V, qint32>) {
            return int(value);
        } else {
            return QVariant::fromValue(value);
        }
    });
}

bool zqConvertFieldValue(const QVariant &value, ZQAttributeType type, QVariant &converted)
{
    if (!value.isValid() || value.isNull()) {
        converted = {};
        return true;
    }
    switch (type) {
    case ZQAttributeType::String:
        converted = value.toString();
        return value.canConvert<QString>();
    case ZQAttributeType::Boolean:
        converted = value.toBool();
        return value.canConvert<bool>();
    case ZQAttributeType::Integer16:
        return wholeNumber(value, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max(), converted);
    case ZQAttributeType::Integer32:
        return wholeNumber(value, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), converted);
    case ZQAttributeType::Integer64:
        return wholeNumber(value, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), converted);
    case ZQAttributeType::Float:
    case ZQAttributeType::Double: {
        bool isNumber = false;
        converted = value.toDouble(&isNumber);
        return isNumber;
    }
    case ZQAttributeType::Date:
        converted = value.toDateTime().toUTC();
        return value.toDateTime().isValid();
    case ZQAttributeType::Binary:
        converted = value.toByteArray();
        return value.canConvert<QByteArray>();
    }
    return false;
}

void zqStoreFieldValue(const ZQField &field, void *row, const QVariant &converted, bool &isNull)
{
    isNull = !converted.isValid();
    visitSlot(field, row, [&](auto &value) {
        using V = std::decay_t<decltype(value)>;
        value = converted.isValid() ? converted.value<V>() : V();
    });
    isNull = isNull || zqSlotIsNull(field, row);
}

void zqBindField(ZQSQLiteStatement &statement, int parameter, const ZQField &field, const void *row, bool isNull)
{
    if (isNull) {
        statement.bindNull(parameter);
        return;
    }
    visitSlot(field, row, [&](const auto &value) {
        using V = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<V, QDateTime>) {
            value.isValid() ? statement.bind(parameter, value.toMSecsSinceEpoch()) : statement.bindNull(parameter);
        } else if constexpr (std::is_same_v<V, float>) {
            statement.bind(parameter, double(value));
        } else if constexpr (std::is_integral_v<V>) {
            statement.bind(parameter, qint64(value));
        } else {
            statement.bind(parameter, value);
        }
    });
}

bool zqReadField(const ZQSQLiteStatement &statement, int column, const ZQField &field, void *row)
{
    const bool isNull = statement.isNull(column);
    visitSlot(field, row, [&](auto &value) {
        using V = std::decay_t<decltype(value)>;
        if (isNull) {
            value = V();
        } else if constexpr (std::is_same_v<V, QString>) {
            value = statement.text(column);
        } else if constexpr (std::is_same_v<V, QByteArray>) {
            value = statement.blob(column);
        } else if constexpr (std::is_same_v<V, QDateTime>) {
            value = QDateTime::fromMSecsSinceEpoch(statement.int64(column), Qt::UTC);
        } else if constexpr (std::is_same_v<V, bool>) {
            value = statement.int64(column) != 0;
        } else if constexpr (std::is_floating_point_v<V>) {
            value = static_cast<V>(statement.real(column));
        } else {
            value = static_cast<V>(statement.int64(column));
        }
    });
    return isNull;
}

QVariant zqColumnValue(const ZQSQLiteStatement &statement, int column, ZQAttributeType type)
{
    if (statement.isNull(column)) {
        return {};
    }
    switch (type) {
    case ZQAttributeType::String:
        return statement.text(column);
    case ZQAttributeType::Boolean:
        return statement.int64(column) != 0;
    case ZQAttributeType::Integer16:
    case ZQAttributeType::Integer32:
        return int(statement.int64(column));
    case ZQAttributeType::Integer64:
        return QVariant::fromValue<qint64>(statement.int64(column));
    case ZQAttributeType::Float:
        return QVariant::fromValue(float(statement.real(column)));
    case ZQAttributeType::Double:
        return statement.real(column);
    case ZQAttributeType::Date:
        return QDateTime::fromMSecsSinceEpoch(statement.int64(column), Qt::UTC);
    case ZQAttributeType::Binary:
        return statement.blob(column);
    }
    return {};
}
