#pragma once

#include "Classes/Export/ExportSource.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

class UserProgress;
class ZQOperation;
struct ExportRequest;
struct ZQError;
struct ZQExportedImage;

// What became of one item.
struct ExportOutcome
{
    QString path;    // of the file that is there now; empty when none is
    QString content; // where its bytes are: the same, or, for an archive of files as they are, the item's own file
    QString reason;  // why there is none: localized; null when nothing was to be written
    bool isIncomplete = false; // only a part of the picture was in its file
    QStringList notes = {};    // what the conversion left out: localized

    QString name() const { return path.mid(path.lastIndexOf(u'/') + 1); }
};

// Writes the files of an export, several at once. A file appears under its name only when it is whole, and takes the
// next free one when its name was taken since it was chosen.
class ExportWriter
{
public:
    // `progress` may be null.
    ExportWriter(const ExportRequest &request, const QString &folder, UserProgress *progress);

    // The outcomes, in the order of the sources; the i-th takes the i-th path. Ends early when `operation` is cancelled
    // or the folder takes no more. Waits; not on the main thread.
    std::vector<ExportOutcome> write(const std::vector<ExportSource> &sources, const QStringList &paths,
                                     ZQOperation &operation);
    QString refusal() const; // why the folder takes no more; null when it does

private:
    void writeNext(const std::vector<ExportSource> &sources, const QStringList &paths, ZQOperation &operation,
                   std::vector<ExportOutcome> &outcomes);
    ExportOutcome exportItem(const ExportSource &source, const QString &destinationURL);
    ExportOutcome copy(const ExportSource &source, const QString &path);
    ExportOutcome convert(const ExportSource &source, const QString &path);
    std::optional<ZQExportedImage> encode(const ExportSource &source, const QString &path, ZQError *error) const;
    ExportOutcome put(const QString &path, const std::function<bool(const QString &path, ZQError *error)> &write);
    void refuse(const QString &reason);
    bool isRefused() const;

    const ExportRequest &m_request;
    const QString m_folder;
    UserProgress *const m_progress;
    std::atomic<qsizetype> m_next = 0;
    mutable ZQMutex m_mutex;
    QString m_refusal ZQ_GUARDED_BY(m_mutex);
};
