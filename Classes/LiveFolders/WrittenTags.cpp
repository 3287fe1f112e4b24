#include "Classes/LiveFolders/WrittenTags.h"

#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileReference.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QFile>

#include <chrono>
#include <thread>

namespace {

// The clock for the dates of files stands still for no longer: two writes within that time may leave the same date.
constexpr std::chrono::milliseconds longestTick(20);
constexpr qint64 second = 1'000'000'000;

} // namespace

class WrittenTags::Reading
{
public:
    Reading() : m_queue(QStringLiteral("Written tags"), 1) {}

    void didWrite(const std::vector<File> &files)
    {
        m_queue.addOperationWithBlock([this, files, since = std::chrono::steady_clock::now()] {
            std::this_thread::sleep_until(since + longestTick);
            for (const File &file : files) {
                read(file);
            }
        });
    }
    QHash<QString, qint64> changes()
    {
        m_queue.waitUntilAllOperationsAreFinished();
        const ZQLockGuard lock(m_mutex);
        return m_changes;
    }

private:
    // The date first: what is written after it has another one.
    void read(const File &file)
    {
        const std::optional<ZQFoundFile> found = zqLookAtFile(QFile::encodeName(file.path));
        if (!found || found->change % second == 0) { // some file systems count seconds
            return;
        }
        const auto tags =
            FileTagsMerge::ofFile(file.path, file.tags, FileTagsMerge::Unknown::KeepsBoth, false, nullptr);
        if (tags && tags->isRecorded) {
            const ZQLockGuard lock(m_mutex);
            m_changes.insert(file.path, found->change);
        }
    }

    ZQMutex m_mutex;
    QHash<QString, qint64> m_changes ZQ_GUARDED_BY(m_mutex);
    ZQOperationQueue m_queue; // the last: what it still does uses all others
};

WrittenTags::WrittenTags() : m_reading(std::make_shared<Reading>()) {}

void WrittenTags::add(const std::vector<File> &files)
{
    if (!files.empty()) {
        TagFileWriter::sharedTagFileWriter().afterWrites([reading = m_reading, files] { reading->didWrite(files); });
    }
}

QHash<QString, qint64> WrittenTags::changes() const
{
    return m_reading->changes();
}
