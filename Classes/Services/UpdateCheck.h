#pragma once

#include "Classes/Services/UpdateFeed.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQPrivateAddress.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

// What a check found.
struct UpdateAnswer
{
    enum class Kind : quint8 { Newer, UpToDate, Failed };
    Kind kind = Kind::Failed;
    QString version;                     // that runs
    std::optional<UpdateFeed> feed = {}; // null when it failed
    ZQError error = {};
    QString text() const; // one sentence
};

// Asks a feed which version is the newest. Nothing is sent but the request itself.
class UpdateCheck
{
public:
    struct Settings
    {
        QUrl feed;
        QString channel; // "release", "beta" or "test"
        QByteArray publicKey;
        QString version; // that runs
        bool isComplete() const { return zqIsSafeOnTheWay(feed) && !publicKey.isEmpty(); }
    };
    // For a place below the address of the feeds, see `UpdateChannel`: the address and the key are those that
    // the program was built with, or what the preferences "UpdateFeedAddress" and "UpdateKey" (Base64) name instead.
    static Settings settingsFor(const QString &appCastURL);

    // `done` is called on the main thread. Let go before that, the request is cancelled and nothing is called.
    static std::shared_ptr<void> start(const Settings &settings, std::function<void(const UpdateAnswer &answer)> done);
    static UpdateAnswer perform(const Settings &settings); // waits; not on the network's thread

private:
    static UpdateAnswer judge(const ZQHTTPResponse &response, const Settings &settings);
};
