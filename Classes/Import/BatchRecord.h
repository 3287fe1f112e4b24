#pragma once

#include "Classes/Import/ImportBatch.h"
#include "Classes/Import/ImportReport.h"
#include "Classes/Import/UnfoldedArchive.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QList>
#include <QSet>
#include <QStringList>

#include <chrono>
#include <memory>

class UserInteraction;
class UserProgress;
class ZQOperation;

// What is told of the files of one batch while they are read: those that were dropped, why no further one can be taken,
// the archives that were unpacked, and how many are through. Any thread, except where stated.
class BatchRecord : public ImportBatch
{
public:
    ImportReport &report() { return m_report; }
    const ImportReport &report() const { return m_report; }

    // A path that was dropped is reported once, with the first reason.
    void fileDidDrop(const DroppedFile &file) override;
    void dropAll(const QStringList &paths, const QString &reason);
    void fileDidFinish() override;
    QString refusal() const override;
    void setRefusal(const QString &reason) override; // the first one counts
    void archiveDidUnfold(const UnfoldedArchive &archive) override;

    // The batch's thread. The person sees how far it is between the two, and may cancel it.
    void beginProgress(UserInteraction &user, qsizetype fileCount, const std::weak_ptr<ZQOperation> &operation);
    void showWholeProgress(); // those too that came too soon after the last to be shown by themselves
    void endProgress();
    bool hasUnfoldedArchives() const;
    QList<UnfoldedArchive> takeUnfoldedArchives();

private:
    ImportReport m_report;
    std::shared_ptr<UserProgress> m_progress;
    mutable ZQMutex m_mutex;
    QString m_refusal ZQ_GUARDED_BY(m_mutex);
    QList<UnfoldedArchive> m_unfoldedArchives ZQ_GUARDED_BY(m_mutex);
    QSet<QString> m_droppedPaths ZQ_GUARDED_BY(m_mutex);
    int m_unreportedProgress ZQ_GUARDED_BY(m_mutex) = 0;
    std::chrono::steady_clock::time_point m_lastProgress ZQ_GUARDED_BY(m_mutex);
};
