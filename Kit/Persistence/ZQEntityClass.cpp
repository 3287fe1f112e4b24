#include "Kit/Persistence/ZQEntityClass.h"

#include <QHash>

namespace {
QHash<QString, ZQEntityClass> &classes()
{
    static QHash<QString, ZQEntityClass> registered;
    return registered;
}
} // namespace

void ZQEntityRegistry::registerClass(const ZQEntityClass &entityClass)
{
    Q_ASSERT(entityClass.fields.size() <= 64);
    classes().insert(QString::fromLatin1(entityClass.entityName), entityClass);
}

const ZQEntityClass *ZQEntityRegistry::classForEntity(const QString &entityName)
{
    const QHash<QString, ZQEntityClass> &registered = classes();
    const auto found = registered.constFind(entityName);
    return found == registered.cend() ? nullptr : &*found;
}
