#pragma once

#include "Classes/Application/BackupRecord.h"

#include <QHash>
#include <QObject>

#include <functional>
#include <vector>

// Looks at the folder where the backups of a library lie. A folder on a network that is gone may answer after minutes
// or never, so it is read on a thread that nobody waits for, one for each folder at a time. Main thread.
class BackupLook : public QObject
{
public:
    struct Place
    {
        QString directory; // where backups are put; empty: nowhere
        QString bundle;    // of the library
        QUuid store;
        QString madeIn; // the folder of the last backup that was made; empty: none was
    };
    struct Found
    {
        QString folder; // of the backups of that library
        // A backup was made in that folder and it is gone: the disk is absent, and what lies at its place would take
        // the next one.
        bool isAbsent = false;
        std::optional<BackupRecord> last;
    };
    using Then = std::function<void(const Found &found)>;
    using Read = std::function<Found(const Place &place)>;

    explicit BackupLook(Read read = &BackupLook::read);

    // Calls `then` on the main thread, later, with what the folder has after now; never when this is gone before.
    void find(const Place &place, Then then);

    static Found read(const Place &place); // reads the disk; any thread

private:
    struct Looking
    {
        bool isRunning = false;
        std::vector<Then> asked;     // before what runs began
        std::vector<Then> askedLate; // may want what it did not see any more
        Place late;
    };
    void start(const Place &place);
    void end(const QString &directory, const Found &found);

    Read m_read;
    QHash<QString, Looking> m_looking; // by directory
};
