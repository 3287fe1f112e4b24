#include "Kit/Foundation/ZQFeatures.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <utility>

namespace {
struct Observing
{
    ZQMutex lock;
    std::function<void(const QString &)> observer ZQ_GUARDED_BY(lock);
};

Observing &observing()
{
    static Observing it;
    return it;
}
} // namespace

void zqDidUseFeature(const QString &name)
{
    qCInfo(zqLogFeatures, "%s", qUtf8Printable(name));
    std::function<void(const QString &)> observer;
    {
        const ZQLockGuard guard(observing().lock);
        observer = observing().observer;
    }
    if (observer) {
        observer(name);
    }
}

void zqSetFeatureObserver(std::function<void(const QString &name)> observer)
{
    const ZQLockGuard guard(observing().lock);
    observing().observer = std::move(observer);
}
