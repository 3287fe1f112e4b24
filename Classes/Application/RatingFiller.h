#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <functional>

// Takes the ratings that files carry into the store of a library from before the store had them. A rating the store
// has is left alone. Goes on where it stopped, across launches. Any thread, one at a time.
class RatingFiller
{
public:
    static inline const QString version = QStringLiteral("Version8"); // as the store notes it as pending

    // `saved` is told of every save, on the thread that runs.
    RatingFiller(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator,
                 std::function<void(const ZQContextDidSave &)> saved)
        : m_coordinator(std::move(coordinator)), m_saved(std::move(saved))
    {
    }
    // True when nothing is left to do. `goesOn` is asked between files.
    bool run(const std::function<bool()> &goesOn);

private:
    enum class Result { Done, Stopped, Failed };
    bool fillInAttempts(const QList<ZQObjectID> &batch, ZQManagedObjectContext &context,
                        const std::function<bool()> &goesOn);
    Result fill(const QList<ZQObjectID> &batch, ZQManagedObjectContext &context, const std::function<bool()> &goesOn);
    bool isToDo() const;

    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::function<void(const ZQContextDidSave &)> m_saved;
};
