#include "Classes/Export/ExportOperation.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportReport.h"
#include "Classes/Export/ExportWriter.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQZipWriter.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace {
const QString progressText = QLatin1StringView(zqKey("Export operation"));
} // namespace

ExportOperation::ExportOperation(const ExportRequest &request)
    : m_request(request), m_coordinator(tamberin_AppDelegate::sharedDelegate()->persistentStoreCoordinator()),
      m_user(tamberin_AppDelegate::sharedDelegate()->userInteraction()),
      m_library(tamberin_AppDelegate::sharedDelegate()->libraryBundleDirectory())
{
    // One that is cancelled while it waits never begins, and has ended all the same.
    m_stateObserver = observe([this](Key key) {
        if (key == Key::IsFinished && !m_hasStarted) {
            m_result.isCancelled = true;
            announceEnd();
        }
    });
}

ExportOperation::~ExportOperation() = default;

void ExportOperation::main()
{
    m_hasStarted = true;
    run();
    finish();
}

void ExportOperation::run()
{
    m_result.refusal = ExportReport::refusalOfFolder(m_request.destinationURL);
    if (m_result.refusal.isNull()) {
        m_result.refusal = ExportReport::refusalWithinLibrary(m_request.destinationURL, m_library);
    }
    if (isCancelled() || !m_result.refusal.isNull()) {
        return;
    }
    const double steps = double(m_request.items.size()) * (m_request.archive ? 2 : 1);
    m_progress = m_user.beginProgress(zqLocalized(progressText), steps, [weak = weak_from_this()] {
        if (const auto running = weak.lock()) {
            running->cancel();
        }
    });
    if (m_progress && m_request.items.size() > 1 && !m_request.archive) {
        m_progress->setCountText(zqLocalized("Exporting %@ of %@"));
    }
    if (m_request.archive) {
        ZQError error;
        m_temporaryFolder = TemporaryArea::newFolder(&error);
        if (m_temporaryFolder.isEmpty()) {
            m_result.refusal = error.localizedDescription();
            return;
        }
    }
    TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(0, this); // copies take along what is on its way
    {
        ZQManagedObjectContext context(m_coordinator);
        m_sources = ExportSource::sources(m_request, context);
    }
    if (isCancelled()) {
        return;
    }
    exportAll();
    if (m_request.archive && !isCancelled() && m_result.refusal.isNull()) {
        zip();
    }
}

void ExportOperation::exportAll()
{
    QList<ExportNames::Source> named;
    named.reserve(qsizetype(m_sources.size()));
    for (const ExportSource &source : m_sources) {
        named.append(source.name(m_request));
        if (!source.hasFile()) {
            m_result.missing.append({source.title, source.bundleID,
                                     source.bundleID.isEmpty()
                                         ? zqLocalized("It is not in the library any more.")
                                         : zqLocalized("Its original file is missing. Look whether it was moved or "
                                                       "deleted, or whether its disk is there.")});
        }
    }
    const QString folder = m_request.archive ? m_temporaryFolder : m_request.destinationURL;
    const ExportNames::Names names = ExportNames::filenames(named, folder, m_request.fileFormat, m_request.namePattern);
    if (m_request.tellsPerson) {
        ExportReport::tellOfMissing(names.missing);
    }
    ExportWriter writer(m_request, folder, m_progress.get());
    m_outcomes = writer.write(m_sources, names.paths, *this);
    m_result.refusal = writer.refusal();
    takeOutcomes();
    if (m_request.fileFormat && !m_request.archive) {
        TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(0, this); // who hears of the end finds them there
    }
}

void ExportOperation::takeOutcomes()
{
    for (std::size_t i = 0; i < m_outcomes.size(); ++i) {
        const ExportOutcome &outcome = m_outcomes[i];
        if (!outcome.path.isEmpty()) {
            ++m_result.count;
            if (!m_request.archive) {
                m_result.written.append(outcome.path);
            }
            if (outcome.isIncomplete) {
                m_result.incomplete.append({m_sources[i].title, m_sources[i].bundleID,
                                            zqLocalized("Its file ends too early: the rest of the picture is empty.")});
            }
            for (const QString &note : outcome.notes) {
                m_result.notes.append({m_sources[i].title, m_sources[i].bundleID, note});
            }
        } else if (!outcome.reason.isEmpty() && m_sources[i].hasFile()) { // else it is among the missing
            m_result.failed.append({m_sources[i].title, m_sources[i].bundleID, outcome.reason});
        }
    }
}

QList<ZQZipMember> ExportOperation::members() const
{
    QList<ZQZipMember> members;
    for (const ExportOutcome &outcome : m_outcomes) {
        if (!outcome.path.isEmpty()) {
            members.append({outcome.content, outcome.name()});
        }
    }
    return members;
}

void ExportOperation::zip()
{
    int attempts = 5; // others may take the name while the archive is being written
    qsizetype added = 0;
    const auto willAdd = [this, &added](qsizetype index) {
        if (m_progress && index >= added) {
            added = index + 1;
            m_progress->advanceBy(1);
        }
        return !isCancelled();
    };
    ZQError error;
    while (m_result.count > 0) {
        const QString path = ExportNames::archiveName(m_request.destinationURL);
        error = {};
        qsizetype unreadable = -1;
        if (zqWriteZip(members(), path, willAdd, &error, &unreadable)) {
            m_result.written = {path};
            return;
        }
        const bool isTaken =
            unreadable < 0 && error.domain == ZQError::posixDomain && error.code == EEXIST && --attempts > 0;
        if (isCancelled() || (!isTaken && !leaveOut(unreadable, error))) {
            break;
        }
    }
    if (m_result.count > 0 && !isCancelled()) {
        const QString refusal = ExportReport::refusalAfterError(m_request.destinationURL, error);
        m_result.refusal = refusal.isNull() ? error.localizedDescription() : refusal;
    }
}

// Files as they are go into the archive from the library, where they may change or go meanwhile: the one costs no
// others.
bool ExportOperation::leaveOut(qsizetype member, const ZQError &error)
{
    if (member < 0) {
        return false;
    }
    for (std::size_t i = 0; i < m_outcomes.size(); ++i) {
        ExportOutcome &outcome = m_outcomes[i];
        if (outcome.path.isEmpty()) {
            continue;
        }
        if (member == 0 || !QFileInfo(outcome.content).isReadable()) {
            outcome.path.clear();
            --m_result.count;
            m_result.failed.append(
                {m_sources[i].title, m_sources[i].bundleID,
                 member == 0 ? error.localizedDescription()
                             : zqLocalized("Its file went, or could not be read any more. Look where it is, and "
                                           "export it again.")});
        }
        --member;
    }
    return true;
}

void ExportOperation::finish()
{
    if (!m_temporaryFolder.isEmpty() && !QDir(m_temporaryFolder).removeRecursively()) {
        qCInfo(zqLogFiles).noquote() << "The temporary folder" << m_temporaryFolder << "could not be removed";
    }
    m_result.isCancelled = isCancelled();
    if (m_request.archive && m_result.written.isEmpty()) {
        m_result.count = 0;
    }
    if (m_request.tellsPerson) {
        ExportReport::tell(m_request, m_result);
    }
    announceEnd();
    m_progress.reset();
}

void ExportOperation::announceEnd()
{
    ZQNotificationCenter::defaultCenter().postNotification(m_result.isCancelled ? didCancel : didFinish);
    zqOnMainThread([path = m_request.destinationURL] {
        const tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
        if (LiveFolderManaging *const manager = delegate ? delegate->liveFolderManager() : nullptr) {
            manager->syncFolderAtPath(path);
        }
    });
}
