#include "Classes/Services/UpdateCheck.h"

#include "Classes/Application/UpdateChannel.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>

using namespace std::chrono_literals;

namespace {

const QString newestSeenKey = QStringLiteral("UpdateNewestSeen"); // a date for each channel

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

QString setOr(const char *key, const char *builtIn)
{
    const QString set = defaults().stringForKey(QLatin1StringView(key));
    return set.isEmpty() ? QString::fromLatin1(builtIn) : set;
}

ZQHTTPRequest requestFor(const UpdateCheck::Settings &settings)
{
    ZQHTTPRequest request;
    request.url = settings.feed;
    request.maximumSize = UpdateFeed::largest;
    request.connectTime = 15s;
    request.stallTime = 15s;
    request.wholeTime = 40s;
    request.mostRedirects = 3;
    request.mayGoTo = [](const QUrl &url) {
        return zqIsSafeOnTheWay(url)
                   ? ZQError()
                   : ZQError::with(UpdateFeed::errorDomain, UpdateFeed::NotAFeed,
                                   zqLocalized("The server of the announcements leads to an address that is not "
                                               "encrypted, which Zelto does not go to. Check again later."));
    };
    return request;
}

} // namespace

QString UpdateAnswer::text() const
{
    switch (kind) {
    case Kind::Newer:
        return zqFormat(zqLocalized("Zelto %@ is there; this is %@."), {feed->version, version});
    case Kind::UpToDate:
        return zqFormat(zqLocalized("Zelto %@ is the newest version."), {version});
    case Kind::Failed:
        break;
    }
    return error.localizedDescription();
}

UpdateCheck::Settings UpdateCheck::settingsFor(const QString &appCastURL)
{
    QString address = setOr("UpdateFeedAddress", ZELTO_UPDATE_FEED);
    if (!address.isEmpty() && !address.endsWith(u'/')) {
        address += u'/'; // what is below it is meant, and not what is beside it
    }
    return {.feed = address.isEmpty() ? QUrl() : QUrl(address).resolved(QUrl(appCastURL)),
            .channel = UpdateChannel::channelOf(appCastURL),
            .publicKey = QByteArray::fromBase64(setOr("UpdateKey", ZELTO_UPDATE_KEY).toLatin1()),
            .version = QCoreApplication::applicationVersion()};
}

std::shared_ptr<void> UpdateCheck::start(const Settings &settings, std::function<void(const UpdateAnswer &)> done)
{
    struct Running
    {
        std::shared_ptr<ZQHTTPTask> task;
        ~Running() { task->cancel(); }
    };
    const auto running = std::make_shared<Running>();
    running->task = ZQHTTPTask::start(requestFor(settings), [weak = std::weak_ptr<Running>(running), settings,
                                                             done = std::move(done)](const ZQHTTPResponse &response) {
        zqOnMainThread([weak, settings, done, response] {
            if (!weak.expired()) {
                done(judge(response, settings));
            }
        });
    });
    return running;
}

UpdateAnswer UpdateCheck::perform(const Settings &settings)
{
    return judge(ZQHTTPTask::perform(requestFor(settings)), settings);
}

UpdateAnswer UpdateCheck::judge(const ZQHTTPResponse &response, const Settings &settings)
{
    UpdateAnswer answer{.version = settings.version};
    if (!response.isWhole()) {
        answer.error = response.error;
        return answer;
    }
    QVariantMap seen = defaults().objectForKey(newestSeenKey).toMap();
    const QDateTime newest = seen.value(settings.channel).toDateTime();
    answer.feed = UpdateFeed::read(response.body, {settings.channel, settings.publicKey, newest}, &answer.error);
    if (!answer.feed) {
        return answer;
    }
    if (!newest.isValid() || newest < answer.feed->date) {
        seen.insert(settings.channel, answer.feed->date);
        defaults().setObjectForKey(seen, newestSeenKey);
    }
    const auto running = UpdateVersion::parse(settings.version);
    answer.kind = running && answer.feed->number > *running ? UpdateAnswer::Kind::Newer : UpdateAnswer::Kind::UpToDate;
    return answer;
}
