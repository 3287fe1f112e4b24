#pragma once

#include "Kit/Operations/ZQOperationQueue.h"

#include <QString>
#include <QStringList>

#include <optional>

// The one serial queue on which items' tags and notes are written to their files, in the order of the requests. Any
// thread.
class TagFileWriter
{
public:
    static TagFileWriter &sharedTagFileWriter();
    ~TagFileWriter();

    // Queues the write and returns. Attributes that hold the same already are left alone. Notes of nothing leave the
    // file's comment as it is. Errors are logged; nobody waits for the answer.
    void writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes);
    // Before the process ends or a library is closed: returns when everything asked for is written.
    void waitUntilAllWritten();

private:
    TagFileWriter();
    ZQOperationQueue m_queue;
};
