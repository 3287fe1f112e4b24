#include "Models/DataModel/ZQModel.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QFile>
#include <QHash>

namespace {

const QString currentVersion = QStringLiteral("Version10");

std::shared_ptr<const ZQManagedObjectModel> readModel(const QString &identifier)
{
    QFile file(QStringLiteral(":/model/%1.json").arg(identifier));
    if (!file.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    ZQError error;
    auto model = ZQManagedObjectModel::modelFromJSON(file.readAll(), &error);
    if (!model) {
        qCCritical(zqLogStore, "Model %s cannot be read: %s", qUtf8Printable(identifier),
                   qUtf8Printable(error.localizedDescription()));
    }
    return model;
}

} // namespace

// Outside any namespace, as the resource system asks. Called by name because nothing else in a static library keeps its
// resources alive.
static void initModelResources()
{
    Q_INIT_RESOURCE(ZQModelResources);
}

std::shared_ptr<const ZQManagedObjectModel> zqModelVersion(const QString &identifier)
{
    static ZQMutex mutex;
    static QHash<QString, std::shared_ptr<const ZQManagedObjectModel>> models ZQ_GUARDED_BY(mutex);
    const ZQLockGuard lock(mutex);
    const auto found = models.constFind(identifier);
    if (found != models.constEnd()) {
        return *found;
    }
    initModelResources();
    auto model = readModel(identifier);
    if (model) {
        models.insert(identifier, model);
    }
    return model;
}

std::shared_ptr<const ZQManagedObjectModel> zqCurrentModel()
{
    auto model = zqModelVersion(currentVersion);
    Q_ASSERT_X(model, "zqCurrentModel", "Managed object model is nil");
    return model;
}
