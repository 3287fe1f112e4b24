#include "Classes/LiveFolders/LiveFolderRecords.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {
const QString ending = QStringLiteral(".folder");
} // namespace

LiveFolderRecords::LiveFolderRecords(const QString &bundle, const QByteArray &store)
    : m_bundle(bundle), m_folder(bundle + QStringLiteral("/live-folders")), m_store(store)
{
}

QString LiveFolderRecords::fileOf(qint64 rootKey) const
{
    return m_folder + u'/' + QString::number(rootKey) + ending;
}

LiveFolderRecord *LiveFolderRecords::recordOfRoot(qint64 rootKey, qint64 stamp)
{
    if (!m_records.contains(rootKey)) {
        if (auto record = LiveFolderRecord::readFrom(fileOf(rootKey), m_store, rootKey)) {
            m_records.insert_or_assign(rootKey, *std::move(record));
        }
    }
    LiveFolderRecord *const record = recordOfRootInMemory(rootKey);
    return record && record->stamp() == stamp ? record : nullptr;
}

LiveFolderRecord &LiveFolderRecords::newRecordOfRoot(qint64 rootKey)
{
    return m_records.insert_or_assign(rootKey, LiveFolderRecord(rootKey)).first->second;
}

LiveFolderRecord *LiveFolderRecords::recordOfRootInMemory(qint64 rootKey)
{
    const auto place = m_records.find(rootKey);
    return place == m_records.end() ? nullptr : &place->second;
}

void LiveFolderRecords::write(qint64 rootKey)
{
    const LiveFolderRecord *const record = recordOfRootInMemory(rootKey);
    ZQError error;
    if (record && (!zqMakeFolder(m_folder) || !record->writeTo(fileOf(rootKey), m_store, &error))) {
        qCWarning(zqLogFiles).noquote() << "What was seen of a live folder is not kept, so that it is compared in full "
                                           "the next time:"
                                        << error.localizedDescription();
    }
}

void LiveFolderRecords::forget(qint64 rootKey)
{
    m_records.erase(rootKey);
}

void LiveFolderRecords::keep(qint64 rootKey, const Kept &kept)
{
    Kept &all = m_kept[rootKey];
    all.what = kept.what;
    all.count = kept.count;
    all.reason = kept.reason;
    all.folders += kept.folders;
}

void LiveFolderRecords::askAgain(qint64 rootKey)
{
    if (const auto kept = m_kept.find(rootKey); kept != m_kept.end()) {
        kept->what = 0;
    }
}

bool LiveFolderRecords::endKept(qint64 rootKey, qint64 folderKey)
{
    const auto kept = m_kept.find(rootKey);
    if (kept == m_kept.end() || !kept->folders.remove(folderKey) || !kept->folders.isEmpty()) {
        return false;
    }
    m_kept.erase(kept);
    return true;
}

bool LiveFolderRecords::endRefusal(qint64 folderKey)
{
    const auto folder = m_refused.constFind(folderKey);
    if (folder == m_refused.constEnd()) {
        return false;
    }
    const qint64 root = *folder;
    m_refused.erase(folder);
    return std::none_of(m_refused.cbegin(), m_refused.cend(), [root](qint64 other) { return other == root; });
}

void LiveFolderRecords::removeAllBut(const QSet<qint64> &rootKeys)
{
    std::erase_if(m_records, [&rootKeys](const auto &entry) { return !rootKeys.contains(entry.first); });
    const QStringList files = QDir(m_folder).entryList({u'*' + ending}, QDir::Files);
    for (const QString &file : files) {
        bool isNumber = false;
        const qint64 key = file.chopped(ending.size()).toLongLong(&isNumber);
        if (isNumber && !rootKeys.contains(key)) {
            QFile::remove(m_folder + u'/' + file);
        }
    }
}
