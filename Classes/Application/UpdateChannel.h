#pragma once

#include <QString>

// Who wants which new versions: "release", "beta" or "test".
struct UpdateChannel
{
    // Where a channel announces its versions, below the address of the feeds: "updates/beta/feed.json".
    static QString feedOf(const QString &channel);
    static QString channelOf(const QString &feed); // of such a place
    static QString chosen(bool testKeysHeld);      // by the preferences

    static inline const QString betaKey = QStringLiteral("PartecipateToBeta"); // the preference, off at first
};
