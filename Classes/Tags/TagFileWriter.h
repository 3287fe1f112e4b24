#pragma once

#include "Classes/Tags/FileTags.h"
#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// The one serial queue on which items' tags, notes and ratings are written to their files, in the order of the
// requests. Any thread.
class TagFileWriter
{
public:
    static TagFileWriter &sharedTagFileWriter();
    ~TagFileWriter();

    // Queues the write and returns. Attributes that hold the same already are left alone. Notes of nothing leave the
    // file's comment as it is, a rating of nothing its rating. Errors are logged and nobody waits for the answer.
    void writeTagsToFile(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                         const std::optional<int> &rating = {});

    // The same for a file that the library keeps in step with: what other programs changed in it since the library last
    // wrote stays, and `adopt` hears of it, on the queue's thread.
    struct Merge
    {
        QString path;
        std::function<QString()> find; // gives the path, where it takes a search, on the queue's thread
        FileTags library;
        bool takesRating = false;   // the library knows of no rating: the file's stays
        bool ratingIsMeant = false; // the rating was given just now: it replaces the file's
        bool isLibrarysOwn = false; // in an item directory: a record tells that its item was saved once
        bool isFirst = false;       // nothing was seen of this file before, whatever its attributes say
        std::function<void()> willTouch;
        std::function<void(const FileTagsChange &)> adopt;
        std::function<void(const QString &path)> done; // an empty one: no file was found
    };
    void mergeWithFile(Merge merge);
    // Whether such a write was asked for, by its path, and is not done yet.
    bool isWaiting(const QString &path);

    // A rating with a fraction, which the library keeps rounded. Waits for its turn in the queue.
    ZQError writeRatingToFile(const QString &path, double rating);
    // What takes time and has to do with what was written: called on the queue's thread, after what was asked for
    // before.
    void afterWrites(std::function<void()> work);
    // For an operation that asks for many files: returns once at most `most` are left to be written, or `asking` was
    // cancelled (null: never). Not on the queue's thread.
    void waitUntilFewerWait(int most, ZQOperation *asking);
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
    void replace(const QString &path, const QStringList &tags, const std::optional<QString> &notes,
                 const std::optional<int> &rating);
    // Whether the file holds it, now or before.
    bool putTags(const QString &path, const QStringList &tags, const QStringList &present);
    bool putNotes(const QString &path, const QString &notes, const QString &present);
    bool putRating(const QString &path, int rating, double present);
    void merge(const Merge &merge);
    void mergeWithOneFile(const Merge &merge);
    void complain(const QString &path, const ZQError &error, bool isAboutSomething);
    bool report(const QString &path, const ZQError &error); // whether somebody was told, now or before

    ZQMutex m_mutex;
    ProblemHandler m_problemHandler ZQ_GUARDED_BY(m_mutex);
    QSet<quint64> m_toldDevices ZQ_GUARDED_BY(m_mutex);
    QHash<QString, int> m_waiting ZQ_GUARDED_BY(m_mutex); // merges, by path
    ZQOperationQueue m_queue;
};
