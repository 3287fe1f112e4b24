#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/UserInteraction.h"

#include <QList>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>

class ImportOperation;
class ImportOwner;
class ImportWhole;
class PendingImportFile;
struct KeptRequest;
struct BatchRequest;
struct UnfoldedArchive;

// The requests that the bundle keeps until they end: notes new ones, puts them on the background queue, and knows those
// that an earlier process did not end, which can go on or be given up. What they have saved stays either way.
//
// Main thread, except where stated. Listing reads a folder; the texts and the traces read the requests, which for large
// ones takes a while. A request that cannot be noted is imported all the same, and one that cannot be read is told to
// the person and stays.
class PendingImports
{
public:
    explicit PendingImports(ImportOwner &owner) : m_owner(owner) {}

    // A new request on the background queue. Null without a library.
    std::shared_ptr<ImportOperation> start(const BatchRequest &request);

    QStringList cutOff() const; // by the names of their files, oldest first
    // Which those are, in a few words; empty when none can be read.
    QString text() const;
    // Goes on with all of them. `unreadable`: how many requests cannot be read. `duplicates` replaces the answer that
    // is kept with each.
    QList<std::shared_ptr<ImportOperation>> resume(qsizetype *unreadable = nullptr,
                                                   std::optional<DuplicateChoice> duplicates = {});
    // See `ImportOwner`.
    std::shared_ptr<ImportOperation> resumeArchive(const UnfoldedArchive &archive,
                                                   const std::shared_ptr<PendingImportFile> &pending,
                                                   const std::shared_ptr<ImportWhole> &whole);
    void forget();
    void offerToResume(); // asks the person

    // What they tell about item directories that no item names; see `ImportManaging`.
    std::optional<QDateTime> cutOffSince() const;
    std::function<CutOffImports(const QSet<QString> &bundleIDs)> traces() const;
    void didLookThroughLeftovers(const QDateTime &launch) const;

    void setKeepsCancelled(bool keeps) { m_keepsCancelled = keeps; }
    bool keepsCancelled() const { return m_keepsCancelled; } // any thread

private:
    static QString folder();
    std::shared_ptr<ImportOperation> queue(const BatchRequest &request, const KeptRequest &kept);
    bool endBeforeItsTurn(const BatchRequest &request, const std::shared_ptr<PendingImportFile> &pending) const;
    std::shared_ptr<ImportOperation> resumeOne(const QString &name, std::optional<DuplicateChoice> duplicates);

    ImportOwner &m_owner;
    std::atomic<bool> m_keepsCancelled = false;
};
