#include "Kit/Foundation/ZQCancellation.h"

#include <utility>

namespace {

thread_local std::shared_ptr<const ZQCancellation> current;

} // namespace

ZQCancellation::Scope::Scope(std::shared_ptr<const ZQCancellation> cancellation)
    : m_previous(std::exchange(current, std::move(cancellation)))
{
}

ZQCancellation::Scope::~Scope()
{
    current = std::move(m_previous);
}

bool ZQCancellation::isCurrentCancelled()
{
    return current && current->isCancelled();
}
