#include "Kit/Foundation/ZQFeatures.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

struct Feature
{
    ZQFeature feature;
    QLatin1StringView name;
    const char *title;
};

// The names are those that counts of older versions have.
constexpr Feature features[] = {
    {ZQFeature::AddExportPreset, QLatin1StringView("Add Export Preset"), zqKey("Add Export Preset")},
    {ZQFeature::DeleteExportPreset, QLatin1StringView("Delete Export Preset"), zqKey("Delete Export Preset")},
    {ZQFeature::MoveExportPreset, QLatin1StringView("Move Export Preset"), zqKey("Move Export Preset")},
    {ZQFeature::ExportItems, QLatin1StringView("Export Items"), zqKey("Export Items")},
    {ZQFeature::AddNewFolder, QLatin1StringView("Add New Folder"), zqKey("Add New Folder")},
    {ZQFeature::AddNewProject, QLatin1StringView("Add New Project"), zqKey("Add New Project")},
    {ZQFeature::UploadToDropbox, QLatin1StringView("Cloud Upload (Dropbox)"), zqKey("Cloud Upload (Dropbox)")},
    {ZQFeature::UploadElsewhere, QLatin1StringView("Cloud Upload (CloudApp)"), zqKey("Cloud Upload (other services)")},
};

template <class Is>
const Feature *find(Is is)
{
    const auto *const found = std::find_if(std::begin(features), std::end(features), is);
    return found == std::end(features) ? nullptr : found;
}

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

QString zqNameOfFeature(ZQFeature feature)
{
    const Feature *const found = find([feature](const Feature &each) { return each.feature == feature; });
    return found ? QString(found->name) : QString();
}

QString zqTitleOfFeature(const QString &name)
{
    const Feature *const found = find([&name](const Feature &each) { return name == each.name; });
    return found ? zqLocalized(found->title) : name;
}

void zqDidUseFeature(ZQFeature feature)
{
    const QString name = zqNameOfFeature(feature);
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
