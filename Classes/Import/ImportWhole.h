#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QUuid>

#include <atomic>
#include <optional>

// What the parts of one import share: the request a person made, and those for what came out of its archives. Any
// thread.
class ImportWhole
{
public:
    const QUuid &identifier() const { return m_identifier; }

    // Of the requests for what came out of archives: one that is made, and one that asks its questions or ended before.
    void expectPart() { ++m_expected; }
    void partDidCome() { --m_expected; }
    bool hasPartsToCome() const { return m_expected > 0; }

    // What the person wants done with all duplicates that are still to come.
    void setDuplicates(DuplicateChoice choice)
    {
        const ZQLockGuard lock(m_mutex);
        m_duplicates = choice;
    }
    std::optional<DuplicateChoice> duplicates() const
    {
        const ZQLockGuard lock(m_mutex);
        return m_duplicates;
    }

private:
    const QUuid m_identifier = QUuid::createUuid();
    std::atomic<int> m_expected = 0;
    mutable ZQMutex m_mutex;
    std::optional<DuplicateChoice> m_duplicates ZQ_GUARDED_BY(m_mutex);
};
