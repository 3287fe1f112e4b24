#include "Kit/Persistence/ZQContextObservers.h"

std::shared_ptr<void> ZQContextObservers::add(Observer observer)
{
    auto token = std::make_shared<Observer>(std::move(observer));
    m_observers.push_back(token);
    return token;
}

void ZQContextObservers::notify(const ZQContextDidSave &notification)
{
    std::erase_if(m_observers, [](const auto &observer) { return observer.expired(); });
    for (const std::weak_ptr<Observer> &observer : std::vector(m_observers)) {
        if (const auto alive = observer.lock()) {
            (*alive)(notification);
        }
    }
}
