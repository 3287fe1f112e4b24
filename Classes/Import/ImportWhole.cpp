#include "Classes/Import/ImportWhole.h"

#include "Classes/Import/DuplicateAnswer.h"
#include "Classes/Import/PendingImport.h"
#include "Kit/Foundation/ZQLog.h"

#include <utility>

bool ImportWhole::hasPartsToCome() const
{
    const ZQLockGuard lock(m_mutex);
    return !m_toCome.isEmpty();
}

void ImportWhole::setDuplicates(DuplicateChoice choice)
{
    QList<std::shared_ptr<PendingImportFile>> kept;
    {
        const ZQLockGuard lock(m_mutex);
        m_duplicates = choice;
        for (const ImportPart *part : std::as_const(m_toCome)) {
            kept.append(part->m_kept);
        }
    }
    for (const auto &each : std::as_const(kept)) {
        ZQError error;
        if (each && !noteDuplicateAnswer(choice, *each, &error)) {
            qCWarning(zqLogImport).noquote()
                << "An answer about duplicates would be asked for again:" << error.localizedDescription();
        }
    }
}

std::optional<DuplicateChoice> ImportWhole::duplicates() const
{
    const ZQLockGuard lock(m_mutex);
    return m_duplicates;
}

ImportPart::ImportPart(std::shared_ptr<ImportWhole> whole, std::shared_ptr<PendingImportFile> kept)
    : m_whole(std::move(whole)), m_kept(std::move(kept))
{
    const ZQLockGuard lock(m_whole->m_mutex);
    m_whole->m_toCome.append(this);
}

ImportPart::~ImportPart()
{
    didCome();
}

void ImportPart::didCome()
{
    std::shared_ptr<PendingImportFile> kept; // its end is not to be under the lock
    const ZQLockGuard lock(m_whole->m_mutex);
    m_whole->m_toCome.removeOne(this);
    kept.swap(m_kept);
}
