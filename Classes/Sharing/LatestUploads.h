#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// A file that was uploaded.
struct LatestUpload
{
    QString url;
    QString filename; // as it was named for the upload
    QDateTime date;
    bool operator==(const LatestUpload &) const = default;
};

// The uploads that the cloud menu lists, newest first, kept in the user defaults. Main thread.
namespace LatestUploads {

inline const QString storageKey = QStringLiteral("ZeltoCloudLatestUploads");
constexpr qsizetype most = 10;

QList<LatestUpload> all();                    // entries that are none are left out
void add(const QList<LatestUpload> &uploads); // the oldest first
void synchronize();                           // waits for the disk

} // namespace LatestUploads
