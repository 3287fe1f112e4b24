#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// What the "Info.plist" of a ".snap" package says: a folder with a captured picture in it. Anybody may have made it, so
// nothing of it is to be trusted. Values; any thread.
struct ZQSnapInfo
{
    QString picture;  // its path in the package; empty: it names none
    QStringList tags; // trimmed
    QString url;      // of the captured page; empty: unknown

    // Nothing when the data is no such list.
    static std::optional<ZQSnapInfo> fromData(const QByteArray &data);
    // Whether the picture's path stays in the package, and no part of it is a link.
    bool isPictureInside(const QString &package) const;
};
