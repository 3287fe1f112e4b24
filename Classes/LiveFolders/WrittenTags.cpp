#include "Classes/LiveFolders/WrittenTags.h"

#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQFileReference.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QFile>
#include <QHash>

#include <chrono>
#include <iterator>
#include <thread>
#include <utility>

namespace {

// The system's clock for the dates of files stands still for as long: two writes within it leave the same date.
constexpr std::chrono::milliseconds longestTick(20);
constexpr qint64 second = 1'000'000'000;

} // namespace

// On the writer's queue, one call after the other, but for what the mutex guards.
class WrittenTags::Reading
{
public:
    void add(const std::vector<File> &files)
    {
        if (Clock::now() >= m_lastWrite + longestTick) {
            readWaiting();
        }
        m_waiting.insert(m_waiting.end(), files.begin(), files.end());
        m_lastWrite = Clock::now();
    }
    void finish()
    {
        if (!m_waiting.empty()) {
            std::this_thread::sleep_until(m_lastWrite + longestTick);
            readWaiting();
        }
    }
    std::optional<qint64> changeOf(const QString &path) const
    {
        const ZQLockGuard lock(m_mutex);
        const auto change = m_changes.constFind(path);
        return change == m_changes.cend() ? std::nullopt : std::optional(*change);
    }

private:
    using Clock = std::chrono::steady_clock;

    void readWaiting()
    {
        for (const File &file : std::exchange(m_waiting, {})) {
            read(file);
        }
    }
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

    std::vector<File> m_waiting;
    Clock::time_point m_lastWrite; // of those, or later
    mutable ZQMutex m_mutex;
    QHash<QString, qint64> m_changes ZQ_GUARDED_BY(m_mutex);
};

WrittenTags::WrittenTags() : m_reading(std::make_shared<Reading>()) {}

void WrittenTags::add(std::vector<File> files)
{
    if (!files.empty()) {
        TagFileWriter::sharedTagFileWriter().afterWrites(
            [reading = m_reading, files = std::move(files)] { reading->add(files); });
    }
}

void WrittenTags::finish()
{
    TagFileWriter::sharedTagFileWriter().afterWrites([reading = m_reading] { reading->finish(); });
}

std::optional<qint64> WrittenTags::changeOf(const QString &path) const
{
    return m_reading->changeOf(path);
}
