#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>
#include <optional>

// The one serial queue on which items' tags and notes are written to their files, in the order of the requests. Any
// thread.
class TagFileWriter
{
public:
    static TagFileWriter &sharedTagFileWriter();
    ~TagFileWriter();

    // Queues the write and returns. Attributes that hold the same already are left alone. Notes of nothing leave the
    // file's comment as it is. Errors are logged and nobody waits for the answer; `done` is called on the queue's
    // thread, whatever came of it.
    void writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                         std::function<void()> done = {});
    // The star rating lives in the file alone, so the caller waits for its turn in the queue and hears what came of it.
    ZQError writeRatingToFile(const QString &path, double rating);
    // Before the process ends or a library is closed: returns when everything asked for is written.
    void waitUntilAllWritten();

    // Hears that files of some place cannot carry their tags (no support for attributes, no room, no permission), once
    // for each file system while the process runs; on the queue's thread. The library keeps the tags, and the next
    // write to such a file tries again.
    using ProblemHandler = std::function<void(const ZQError &)>;
    void setProblemHandler(ProblemHandler handler);

    static inline const QString errorDomain = QStringLiteral("TagFileWriter");

private:
    TagFileWriter();
    void writeTags(const QString &path, const QStringList &tags);
    void writeNotes(const QString &path, const QString &notes);
    bool report(const QString &path, const ZQError &error); // whether somebody was told, now or before

    std::mutex m_mutex;
    ProblemHandler m_problemHandler;
    QSet<quint64> m_toldDevices;
    ZQOperationQueue m_queue;
};
