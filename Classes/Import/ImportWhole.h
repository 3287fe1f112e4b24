#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QList>
#include <QUuid>

#include <memory>
#include <optional>

class ImportPart;
class PendingImportFile;

// What the requests of one import share: the one a person made, and those for what came out of its archives, which are
// its parts. Any thread.
class ImportWhole
{
public:
    const QUuid &identifier() const { return m_identifier; }
    bool hasPartsToCome() const;

    // What the person wants done with all duplicates that are still to come. Noted with the requests of those parts, so
    // that it holds for them after a process that was killed, too; the thread of the batch that asked, since each of
    // them is idle until that one has ended. Small writes to the disk.
    void setDuplicates(DuplicateChoice choice);
    std::optional<DuplicateChoice> duplicates() const;

private:
    friend class ImportPart;

    const QUuid m_identifier = QUuid::createUuid();
    mutable ZQMutex m_mutex;
    QList<const ImportPart *> m_toCome ZQ_GUARDED_BY(m_mutex);
    std::optional<DuplicateChoice> m_duplicates ZQ_GUARDED_BY(m_mutex);
};

// A request for what came out of an archive: it is to come from here on, until it asks its questions or ends. Any
// thread.
class ImportPart
{
public:
    ImportPart(std::shared_ptr<ImportWhole> whole, std::shared_ptr<PendingImportFile> kept); // `kept` may be null
    ~ImportPart();
    ImportPart(const ImportPart &) = delete;
    ImportPart &operator=(const ImportPart &) = delete;

    void didCome(); // the first one counts

private:
    friend class ImportWhole;

    const std::shared_ptr<ImportWhole> m_whole;
    std::shared_ptr<PendingImportFile> m_kept; // guarded as the list of the whole; none once it did come
};
