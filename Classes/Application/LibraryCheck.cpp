#include "Classes/Application/LibraryCheck.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQMisnamedFile.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

namespace {

void checkItem(ZQLibraryBaseItem &item, bool deep, LibraryFindings &findings)
{
    QStringList &problems = findings.problems;
    const QString name = item.title() + QStringLiteral(" (") + item.bundleID() + u')';
    const QString path = item.findItemURL();
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        const QString misnamed = zqMisnamedFileOf(item);
        if (misnamed.isEmpty()) {
            problems.append(zqFormat(zqLocalized("%@: the file is missing"), {name}));
        } else {
            problems.append(
                zqFormat(zqLocalized("%@: the file has another name, “%@”; “zelto verify --repair” names it "
                                     "after its item"),
                         {name, QFileInfo(misnamed).fileName()}));
            findings.misnamed.append({item.objectID(), problems.last()});
        }
        return;
    }
    const QString thumb = item.thumbName().isEmpty() ? QString() : item.thumbURL();
    if (!thumb.isEmpty() && !QFileInfo::exists(thumb)) {
        problems.append(zqFormat(zqLocalized("%@: the thumbnail is missing"), {name}));
    }
    if (!deep) {
        return;
    }
    // A package's digest is that of its inner file.
    const QString digested = QFileInfo(path).isDir() ? path + QStringLiteral("/Data") : path;
    ZQError error;
    const QByteArray digest = zqSHA1OfFile(digested, &error);
    if (digest.isEmpty()) {
        problems.append(zqFormat(zqLocalized("%@: %@"), {name, error.localizedDescription()}));
    } else if (QString::fromLatin1(digest) != item.SHA1()) {
        problems.append(zqFormat(zqLocalized("%@: the file's content has changed since it was imported"), {name}));
    }
}

} // namespace

QStringList LibraryFindings::lines() const
{
    QStringList result = {zqCounted({"1 item checked", "%d items checked"}, items)};
    result += problems;
    const std::pair<const QStringList *, QString> kinds[] = {
        {&orphans, zqLocalized("belongs to no item; the next launch takes it back or removes it: %@")},
        {&otherNames, zqLocalized("is named like the folder of an item, in other letters, and stays as it is: %@")},
        {&links, zqLocalized("is a link and no folder of an item, and stays as it is: %@")},
    };
    for (const auto &[names, format] : kinds) {
        for (const QString &name : *names) {
            result.append(zqFormat(format, {name}));
        }
    }
    return result;
}

LibraryCheck::LibraryCheck(ZQManagedObjectContext &context, const QString &libraryDirectory)
    : m_context(context), m_libraryDirectory(libraryDirectory)
{
}

LibraryFindings LibraryCheck::run(bool deep, const std::stop_token &stop, const Progress &didCheck)
{
    m_findings = {};
    m_known.clear();
    m_findings.problems = m_context.persistentStoreCoordinator()->check(stop).problems;
    checkItems(deep, stop, didCheck);
    m_findings.isWhole = !stop.stop_requested();
    return m_findings;
}

void LibraryCheck::checkItems(bool deep, const std::stop_token &stop, const Progress &didCheck)
{
    ZQError error;
    const auto ids = m_context.fetchObjectIDs({ZQLibraryBaseItem::entityName()}, &error);
    if (!ids) {
        m_findings.problems.append(error.localizedDescription());
        return;
    }
    constexpr qsizetype atATime = 500;
    for (qsizetype first = 0; first < ids->size(); first += atATime) {
        QList<ZQRef<ZQLibraryBaseItem>> present;
        const QList<ZQObjectID> batch = ids->mid(first, atATime);
        const auto read = ZQLibraryBaseItem::itemsWithIDs(batch, m_context);
        if (read.size() < batch.size()) {
            m_findings.problems.append(
                zqFormat(zqLocalized("%d items can't be read, so that their files were not checked"),
                         {batch.size() - read.size()}));
        }
        for (const auto &item : read) {
            m_known.append(item->bundleID());
            const auto folder = item->watchingFolder();
            if (item->active() && !(folder && (folder->is_missing() || folder->is_trashed()))) {
                present.append(item);
            }
        }
        ZQLibraryBaseItem::lookForFiles(present);
        for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(present)) {
            if (stop.stop_requested()) {
                return;
            }
            checkItem(*item, deep, m_findings);
            ++m_findings.items;
        }
        if (didCheck) {
            didCheck(std::min(first + atATime, ids->size()), ids->size());
        }
    }
    checkDirectories();
}

void LibraryCheck::checkDirectories()
{
    const QSet<QString> known(m_known.begin(), m_known.end());
    QSet<QString> inAnyLetters;
    QDirIterator entries(m_libraryDirectory, {QStringLiteral("*.ztlibraryitem")}, QDir::Dirs | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        const QString bundleID = entries.fileInfo().completeBaseName();
        if (known.contains(bundleID) && entries.fileName().endsWith(ZQLibraryBaseItem::itemDirectoryExtension)) {
            continue;
        }
        if (inAnyLetters.isEmpty()) {
            for (const QString &name : known) {
                inAnyLetters.insert(name.toLower());
            }
        }
        if (entries.fileInfo().isSymLink()) {
            m_findings.links.append(entries.fileName());
        } else {
            (inAnyLetters.contains(bundleID.toLower()) ? m_findings.otherNames : m_findings.orphans)
                .append(entries.fileName());
        }
    }
    for (QStringList *names : {&m_findings.orphans, &m_findings.otherNames, &m_findings.links}) {
        names->sort();
    }
}
