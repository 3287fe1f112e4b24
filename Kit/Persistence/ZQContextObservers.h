#pragma once

#include <functional>
#include <memory>
#include <vector>

struct ZQContextDidSave;

// Those who want to hear of one kind of event of a context, each until its token goes. On the context's thread.
class ZQContextObservers
{
public:
    using Observer = std::function<void(const ZQContextDidSave &)>;

    [[nodiscard]] std::shared_ptr<void> add(Observer observer);
    void notify(const ZQContextDidSave &notification); // an observer may add and remove observers

private:
    std::vector<std::weak_ptr<Observer>> m_observers;
};
