#include "Classes/Import/BatchRecord.h"

#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQOperation.h"

#include <utility>

void BatchRecord::beginProgress(UserInteraction &user, qsizetype fileCount, const std::weak_ptr<ZQOperation> &operation)
{
    m_progress = user.beginProgress(zqLocalized("Importing…"), double(fileCount), [operation] {
        if (const auto running = operation.lock()) {
            running->cancel();
        }
    });
    if (m_progress && fileCount > 1) {
        m_progress->setCountText(zqLocalized("Importing %@ of %@"));
    }
    const ZQLockGuard lock(m_mutex);
    m_lastProgress = std::chrono::steady_clock::now();
}

void BatchRecord::showWholeProgress()
{
    int amount = 0;
    {
        const ZQLockGuard lock(m_mutex);
        amount = std::exchange(m_unreportedProgress, 0);
    }
    if (m_progress && amount > 0) {
        m_progress->advanceBy(amount);
    }
}

void BatchRecord::endProgress()
{
    m_progress.reset();
}

void BatchRecord::fileDidDrop(const DroppedFile &file)
{
    if (file.telling != DroppedFile::Telling::InWindowIncomplete) {
        const ZQLockGuard lock(m_mutex);
        if (m_droppedPaths.contains(file.path)) {
            return;
        }
        m_droppedPaths.insert(file.path);
    }
    m_report.addDropped(file);
}

void BatchRecord::dropAll(const QStringList &paths, const QString &reason)
{
    for (const QString &path : paths) {
        fileDidDrop({path, reason});
    }
}

void BatchRecord::archiveDidUnfold(const UnfoldedArchive &archive)
{
    const ZQLockGuard lock(m_mutex);
    m_unfoldedArchives.append(archive);
}

bool BatchRecord::hasUnfoldedArchives() const
{
    const ZQLockGuard lock(m_mutex);
    return !m_unfoldedArchives.isEmpty();
}

QList<UnfoldedArchive> BatchRecord::takeUnfoldedArchives()
{
    const ZQLockGuard lock(m_mutex);
    return std::exchange(m_unfoldedArchives, {});
}

// The bar moves a few times a second; a call for each of many small files would cost more than the files.
void BatchRecord::fileDidFinish()
{
    constexpr std::chrono::milliseconds interval(60);
    int amount = 0;
    {
        const ZQLockGuard lock(m_mutex);
        ++m_unreportedProgress;
        const auto now = std::chrono::steady_clock::now();
        if (now - m_lastProgress < interval) {
            return;
        }
        m_lastProgress = now;
        amount = std::exchange(m_unreportedProgress, 0);
    }
    if (m_progress) {
        m_progress->advanceBy(amount);
    }
}

QString BatchRecord::refusal() const
{
    const ZQLockGuard lock(m_mutex);
    return m_refusal;
}

void BatchRecord::setRefusal(const QString &reason)
{
    const ZQLockGuard lock(m_mutex);
    if (m_refusal.isEmpty()) {
        m_refusal = reason;
    }
}
