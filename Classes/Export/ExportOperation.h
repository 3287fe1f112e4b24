#pragma once

#include "Classes/Export/ExportRequest.h"
#include "Classes/Export/ExportWriter.h"
#include "Kit/Operations/ZQOperation.h"

#include <QString>

#include <memory>
#include <vector>

class UserInteraction;
class UserProgress;
class ZQPersistentStoreCoordinator;
struct ZQZipMember;

// One export: reads the items in a context of its own, names them, and has an ExportWriter copy or convert several at
// once. With an archive they go into a temporary folder first, which is gone at every end, and from there, or from the
// library when they stay as they are, into the archive.
//
// The names leave out items whose file is missing, and the i-th item takes the i-th name: behind a missing file items
// get the names made for those after them, and the last get none. Those are in the result as failed.
//
// Made on the main thread, runs on the background queue. A place that takes no more (a full or read-only disk, a folder
// that went) ends the export and is said once; whatever else fails costs the one file.
class ExportOperation : public ZQOperation
{
public:
    // The notifications of its end, on the main thread, without an object; also when it never began.
    static inline const QString didFinish = QStringLiteral("ExportManagerDidFinishExportOperation");
    static inline const QString didCancel = QStringLiteral("ExportManagerDidCancelExportOperation");

    explicit ExportOperation(const ExportRequest &request);
    ~ExportOperation() override;

    const ExportRequest &request() const { return m_request; }
    // Once it has finished.
    const ExportResult &result() const { return m_result; }

    void main() override;

private:
    void run();
    void exportAll();
    void takeOutcomes();
    void zip();
    QList<ZQZipMember> members() const;                    // of the archive
    bool leaveOut(qsizetype member, const ZQError &error); // one that could not be zipped
    void finish();
    void announceEnd();

    const ExportRequest m_request;
    const std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    UserInteraction &m_user;
    const QString m_library; // its bundle
    std::shared_ptr<UserProgress> m_progress;
    QString m_temporaryFolder; // empty without an archive
    std::vector<ExportSource> m_sources;
    std::vector<ExportOutcome> m_outcomes; // of the sources
    ExportResult m_result;
    bool m_hasStarted = false;
    ZQOperation::Token m_stateObserver;
};
