#include "Classes/Editing/ArrivedFiles.h"

#include "Classes/Editing/FileProblems.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <utility>

namespace {

// What cannot be taken from its place need not be copied.
bool canLeave(const QString &path, ZQError *error)
{
    const QString folder = QFileInfo(path).path();
    if (::access(QFile::encodeName(folder).constData(), W_OK) == 0) {
        return true;
    }
    zqSetError(error, ZQError::posix(errno, folder));
    return false;
}

} // namespace

ArrivedFiles::ArrivedFiles(std::function<bool()> isCancelled) : m_isCancelled(std::move(isCancelled)) {}

QString ArrivedFiles::copy(const QString &from, const QString &folder, const QString &name, ZQError *error)
{
    ZQTreeState state;
    const auto put = [&](const QString &path, ZQError *failure) {
        ZQOwnChange own(path);
        const auto copy = ZQVerifiedCopy::make(from, path, failure, m_isCancelled);
        if (copy) {
            state = copy->state();
            own.didChange();
            m_changes.push_back(std::move(own));
        }
        return copy.has_value();
    };
    const QString to = zqUnderFreeName(folder, name, put, error);
    if (!to.isEmpty()) {
        m_copied.append({{}, to, state});
    }
    return to;
}

QString ArrivedFiles::move(const QString &from, const QString &folder, const QString &name, ZQError *error)
{
    ZQError problem;
    const auto put = [&](const QString &path, ZQError *failure) {
        ZQOwnChange own(path);
        const bool isMoved = zqMoveNoted(from, path, failure);
        if (isMoved) {
            own.didChange();
            m_changes.push_back(std::move(own));
        }
        return isMoved;
    };
    QString to = zqUnderFreeName(folder, name, put, &problem);
    if (!to.isEmpty()) {
        m_renamed.add(from, to);
        return to;
    }
    if (problem.domain != ZQError::posixDomain || problem.code != EXDEV) {
        zqSetError(error, problem);
        return {};
    }
    to = canLeave(from, error) ? copy(from, folder, name, error) : QString();
    if (!to.isEmpty()) {
        m_copied.last().from = from;
    }
    return to;
}

QString ArrivedFiles::takeFromTrash(const QString &trashed, const QString &copy, const ZQTreeState &state,
                                    const QString &folder, const QString &name)
{
    const QFileInfo file(trashed);
    const bool isAsItWas =
        file.isFile() && !file.isSymLink() && ZQTreeState::of(trashed) == state && ZQTreeState::of(copy) == state;
    if (!isAsItWas) {
        return {};
    }
    const auto put = [&](const QString &path, ZQError *failure) {
        ZQOwnChange own(path);
        const bool isMoved = zqMoveNoted(trashed, path, failure);
        if (isMoved) {
            own.didChange();
            m_changes.push_back(std::move(own));
            m_changes.emplace_back(copy); // or an item would be made of it before it goes
        }
        return isMoved;
    };
    ZQError problem;
    const QString to = zqUnderFreeName(folder, name, put, &problem);
    if (!to.isEmpty()) {
        m_renamed.add(trashed, to);
        m_takenOut.append({trashed, to, copy, state});
    }
    return to;
}

std::optional<ArrivedFiles::Recycled> ArrivedFiles::recycledSource(const QString &path) const
{
    const auto found = m_recycled.constFind(path);
    return found == m_recycled.constEnd() ? std::nullopt : std::optional(*found);
}

// All went to one folder.
bool ArrivedFiles::flush(ZQError *error) const
{
    return (m_copied.isEmpty() || zqSyncFileSystem(m_copied.last().to, error)) &&
           (m_takenOut.isEmpty() || zqSyncFileSystem(m_takenOut.last().to, error));
}

void ArrivedFiles::takeBack()
{
    m_renamed.takeBack();
    for (const Copied &copied : std::as_const(m_copied)) {
        ZQError error;
        if (!ZQTrash::recycle(copied.to, nullptr, &error)) {
            qCWarning(zqLogFiles, "the copy %s stays: %s", qUtf8Printable(copied.to),
                      qUtf8Printable(error.localizedDescription()));
        }
    }
    m_copied.clear();
    m_takenOut.clear();
}

// Also a copy that is the same to the last byte goes to the trash, for it may have got tags of its own; one that was
// changed stays.
void ArrivedFiles::removeCopy(const TakenOut &taken, FileProblems &problems) const
{
    const QFileInfo copy(taken.copy);
    const QByteArray digest = zqSHA1OfFile(taken.to);
    ZQError error;
    if (!copy.exists()) {
        return;
    }
    if (!copy.isFile() || copy.isSymLink() || ZQTreeState::of(taken.copy) != taken.state || digest.isEmpty() ||
        zqSHA1OfFile(taken.copy) != digest) {
        error = zqExplainedFileError(EBUSY, zqFormat(zqLocalized("“%@” was changed while it was moved. Compare both, "
                                                                 "and delete the one you do not need."),
                                                     {taken.copy}));
    } else {
        ZQTrash::recycle(taken.copy, nullptr, &error);
    }
    if (!error.isNull()) {
        problems.add(copy.fileName(), error);
    }
}

void ArrivedFiles::removeSources(FileProblems &problems)
{
    for (const Copied &copied : std::as_const(m_copied)) {
        if (copied.from.isEmpty()) {
            continue;
        }
        ZQError error;
        const auto now = ZQTreeState::of(copied.from, &error);
        if (!now && !QFileInfo::exists(copied.from)) {
            continue; // somebody did it before
        }
        if (now && *now != copied.state) {
            error = zqExplainedFileError(EBUSY, zqFormat(zqLocalized("“%@” was changed while it was moved. Compare "
                                                                     "both, and delete the one you do not need."),
                                                         {copied.from}));
        } else if (QString trashed; now && ZQTrash::recycle(copied.from, &trashed, &error)) {
            m_recycled.insert(copied.to, {trashed, copied.state});
        }
        if (!error.isNull()) {
            problems.add(QFileInfo(copied.from).fileName(), error);
        }
    }
    m_copied.clear();
    for (const TakenOut &taken : std::exchange(m_takenOut, {})) {
        ZQTrash::didTakeOut(taken.trashed);
        removeCopy(taken, problems);
    }
}

void ArrivedFiles::keepSources(const ZQError &why, FileProblems &problems) const
{
    for (const Copied &copied : m_copied) {
        if (!copied.from.isEmpty()) {
            problems.add(QFileInfo(copied.from).fileName(), why);
        }
    }
    for (const TakenOut &taken : m_takenOut) {
        problems.add(QFileInfo(taken.copy).fileName(), why);
    }
}

void ArrivedFiles::addCopies(const ZQError &error, FileProblems &problems) const
{
    for (const Copied &copied : m_copied) {
        problems.add(QFileInfo(copied.to).fileName(), error);
    }
    for (const TakenOut &taken : m_takenOut) {
        problems.add(QFileInfo(taken.to).fileName(), error);
    }
}
