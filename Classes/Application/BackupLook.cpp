#include "Classes/Application/BackupLook.h"

#include "Classes/Application/BackupFolder.h"
#include "Classes/Application/LibraryBackup.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <thread>
#include <utility>

BackupLook::BackupLook(Read read) : m_read(std::move(read)) {}

BackupLook::Found BackupLook::read(const Place &place)
{
    if (place.directory.isEmpty()) {
        return {};
    }
    Found found;
    const QString library = LibraryBackup::libraryName(place.bundle);
    found.folder = QDir(place.directory).absoluteFilePath(library);
    found.isAbsent = place.madeIn == found.folder && !QFileInfo(found.folder).isDir();
    auto backups = BackupFolder::backupsIn(place.directory, library, place.store);
    backups.removeIf([of = BackupRecord::placeOf(place.bundle)](const auto &backup) {
        return !backup.record.isOf(of); // another computer may keep its copy's there
    });
    if (!backups.isEmpty()) {
        found.last = backups.last().record;
    }
    return found;
}

void BackupLook::find(const Place &place, Then then)
{
    Looking &looking = m_looking[place.directory];
    if (looking.isRunning) {
        looking.askedLate.push_back(std::move(then));
        looking.late = place;
        return;
    }
    looking.asked.push_back(std::move(then));
    start(place);
}

void BackupLook::start(const Place &place)
{
    m_looking[place.directory].isRunning = true;
    std::thread([self = QPointer(this), read = m_read, place] {
        const Found found = read(place);
        zqOnMainThread([self, directory = place.directory, found] {
            if (self) {
                self->end(directory, found);
            }
        });
    }).detach();
}

void BackupLook::end(const QString &directory, const Found &found)
{
    Looking ended = m_looking.take(directory);
    if (!ended.askedLate.empty()) {
        m_looking[directory].asked = std::move(ended.askedLate);
        start(ended.late);
    }
    const QPointer self(this);
    for (const Then &then : ended.asked) {
        if (self) {
            then(found);
        }
    }
}
