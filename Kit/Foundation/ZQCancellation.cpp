#include "Kit/Foundation/ZQCancellation.h"

#include <utility>

namespace {

thread_local std::shared_ptr<const ZQCancellation> currentOne;

} // namespace

ZQCancellation::Scope::Scope(std::shared_ptr<const ZQCancellation> cancellation)
    : m_previous(std::exchange(currentOne, std::move(cancellation)))
{
}

ZQCancellation::Scope::~Scope()
{
    currentOne = std::move(m_previous);
}

bool ZQCancellation::isCurrentCancelled()
{
    return currentOne && currentOne->isCancelled();
}

std::shared_ptr<const ZQCancellation> ZQCancellation::current()
{
    return currentOne;
}
