#include "Classes/Tags/OpenMetaPrefs.h"

#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QHash>

#include <chrono>
#include <memory>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds aWhile{10};

struct State
{
    ZQMutex mutex;
    std::unique_ptr<ZQUserDefaults> domain ZQ_GUARDED_BY(mutex); // null: the application's own
    std::optional<Clock::time_point> lastSynch ZQ_GUARDED_BY(mutex);

    ZQUserDefaults &defaults() ZQ_REQUIRES(mutex) { return domain ? *domain : ZQUserDefaults::standardUserDefaults(); }
    void synch() ZQ_REQUIRES(mutex)
    {
        defaults().synchronize();
        lastSynch = Clock::now();
    }
    bool synchIfItsBeenAWhile() ZQ_REQUIRES(mutex)
    {
        if (lastSynch && Clock::now() - *lastSynch < aWhile) {
            return false;
        }
        synch();
        return true;
    }
    QStringList stored() ZQ_REQUIRES(mutex)
    {
        return defaults().objectForKey(OpenMetaPrefs::recentTagsKey).toStringList();
    }
};

State &state()
{
    static State instance;
    return instance;
}

} // namespace

void OpenMetaPrefs::setPrefsFile(const QString &domain)
{
    QString name = domain;
    name.replace(u'/', u'_');
    State &prefs = state();
    const ZQLockGuard lock(prefs.mutex);
    prefs.domain = name.isEmpty() ? nullptr
                                  : std::make_unique<ZQUserDefaults>(ZQPaths::configHome() + QStringLiteral("/Zelto/") +
                                                                     name + QStringLiteral(".json"));
    prefs.lastSynch.reset();
}

bool OpenMetaPrefs::synchPrefsIfItsBeenAWhile()
{
    State &prefs = state();
    const ZQLockGuard lock(prefs.mutex);
    return prefs.synchIfItsBeenAWhile();
}

QStringList OpenMetaPrefs::recentTags()
{
    State &prefs = state();
    const ZQLockGuard lock(prefs.mutex);
    prefs.synchIfItsBeenAWhile();
    return prefs.stored();
}

void OpenMetaPrefs::updatePrefsRecentTags(const QStringList &oldTags, const QStringList &newTags)
{
    QStringList entered;
    for (const QString &tag : newTags) {
        if (!oldTags.contains(tag)) {
            entered.append(tag);
        }
    }
    if (entered.isEmpty()) {
        return;
    }
    State &prefs = state();
    const ZQLockGuard lock(prefs.mutex);
    prefs.synch();
    const QStringList stored = prefs.stored();
    QHash<QString, QString> spelling;
    for (const QString &tag : stored + entered) {
        spelling.insert(tag.toLower(), tag);
    }
    QStringList recent;
    for (const QString &tag : entered + stored) {
        if (recent.size() == longestList) {
            break;
        }
        const QString spelled = spelling.take(tag.toLower());
        if (!spelled.isNull()) {
            recent.append(spelled);
        }
    }
    prefs.defaults().setObjectForKey(recent, recentTagsKey);
    prefs.synch();
}
