#include "Classes/Tags/OpenMetaPrefs.h"

#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"

#include <QHash>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds aWhile{10};

struct State
{
    std::mutex mutex;
    std::unique_ptr<ZQUserDefaults> domain; // null: the application's own
    std::optional<Clock::time_point> lastSynch;

    ZQUserDefaults &defaults() { return domain ? *domain : ZQUserDefaults::standardUserDefaults(); }
    void synch()
    {
        defaults().synchronize();
        lastSynch = Clock::now();
    }
    bool synchIfItsBeenAWhile()
    {
        if (lastSynch && Clock::now() - *lastSynch < aWhile) {
            return false;
        }
        synch();
        return true;
    }
    QStringList stored() { return defaults().objectForKey(OpenMetaPrefs::recentTagsKey).toStringList(); }
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
    const std::lock_guard lock(prefs.mutex);
    prefs.domain = name.isEmpty() ? nullptr
                                  : std::make_unique<ZQUserDefaults>(ZQPaths::configHome() + QStringLiteral("/Zelto/") +
                                                                     name + QStringLiteral(".json"));
    prefs.lastSynch.reset();
}

bool OpenMetaPrefs::synchPrefsIfItsBeenAWhile()
{
    State &prefs = state();
    const std::lock_guard lock(prefs.mutex);
    return prefs.synchIfItsBeenAWhile();
}

QStringList OpenMetaPrefs::recentTags()
{
    State &prefs = state();
    const std::lock_guard lock(prefs.mutex);
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
    const std::lock_guard lock(prefs.mutex);
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
