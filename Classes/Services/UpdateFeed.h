#pragma once

#include "Classes/Services/UpdateVersion.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUrl>

#include <optional>

// What a feed of updates announces: one version of one channel. A feed is a JSON object of two texts in Base64:
// "announcement", the bytes that are signed, and "signature", that of exactly these bytes (Ed25519). The announcement
// is a JSON object: "program" ("zelto"), "channel", "version", "date" (ISO 8601), "page" (where the person gets it,
// https) and "notes" (plain text). What says which version is offered, for whom and since when is therefore all signed.
struct UpdateFeed
{
    UpdateVersion number;
    QString version;
    QDateTime date; // UTC
    QUrl page;
    QString notes;

    enum Error { NotAFeed = 1, WrongSignature, OtherChannel, Older };
    static inline const QString errorDomain = QStringLiteral("zelto.updates");
    static constexpr qint64 largest = 256 << 10; // bytes

    // What a feed has to be. `newestSeen`: the date of the newest that this channel has had; an older one is a feed
    // that somebody kept and brings again.
    struct Expected
    {
        QString channel;
        QByteArray publicKey; // 32 bytes
        QDateTime newestSeen = {};
    };
    // Nothing, with an error for the person, where it is not that.
    static std::optional<UpdateFeed> read(const QByteArray &bytes, const Expected &expected, ZQError *error);
};
