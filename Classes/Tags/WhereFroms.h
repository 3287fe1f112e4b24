#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// Where a downloaded file came from, as the file itself says: what this application noted (`zeltoWhereFroms`) above
// the list of other desktops (`kMDItemWhereFroms`) above the two addresses of this one (`user.xdg.origin.url`,
// `user.xdg.referrer.url`). Any thread.
struct WhereFroms
{
    QString webURL;     // of the file; empty: unknown
    QString webPageURL; // of the page it was found on; empty: unknown

    static inline const QString ownKey = QStringLiteral("zeltoWhereFroms");
    static inline const QString originName = QStringLiteral("xdg.origin.url");
    static inline const QString referrerName = QStringLiteral("xdg.referrer.url");

    static WhereFroms urlsOfFile(const QString &path);
    // Notes it in the file; nothing of an origin that is unknown. A null error on success.
    ZQError noteInFile(const QString &path) const;
};
