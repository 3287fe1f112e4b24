#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>
#include <optional>

// What a file, or a folder with all it holds, looked like: enough to see later whether anything was changed there. The
// contents are not read, dates of attributes and of folders do not count.
struct ZQTreeState
{
    struct Entry
    {
        bool operator==(const Entry &) const = default;
        quint32 type = 0; // of st_mode
        qint64 size = 0;  // 0 for a folder, as its date
        qint64 modified = 0;
    };
    bool operator==(const ZQTreeState &) const = default;
    QMap<QByteArray, Entry> entries; // by path below it; its own is empty

    static std::optional<ZQTreeState> of(const QString &path, ZQError *error = nullptr);
};

// A copy of a person's file or folder that can take its place: it was read back after it was written. Whoever commits
// to it has the disk flushed (`zqSyncFileSystem`). Any thread.
class ZQVerifiedCopy
{
public:
    // As `zqCopyFile`, but a link is not followed: it is refused. Nothing is left at `destination` after a failure.
    static std::optional<ZQVerifiedCopy> make(const QString &source, const QString &destination,
                                              ZQError *error = nullptr, const std::function<bool()> &isCancelled = {});

    // Flushes the disk and removes what was copied, and nothing else: with an error, and with everything still there,
    // when the source was changed until then; a file that is changed while others go stays, with those that would have
    // followed; what comes into a folder meanwhile stays with the folder.
    bool removeSource(ZQError *error = nullptr) const;
    const ZQTreeState &state() const { return m_state; }

private:
    QString m_source;
    QString m_destination;
    ZQTreeState m_state;
};
