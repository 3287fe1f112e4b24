#include "Kit/Foundation/ZQSignalStack.h"

#include <csignal>
#include <cstddef>

namespace {
constexpr std::size_t size = 64 << 10; // bytes
} // namespace

ZQSignalStack::ZQSignalStack()
{
    stack_t before = {};
    if (::sigaltstack(nullptr, &before) != 0 || (before.ss_flags & SS_DISABLE) == 0) {
        return;
    }
    m_memory = std::make_unique_for_overwrite<char[]>(size);
    stack_t stack = {};
    stack.ss_sp = m_memory.get();
    stack.ss_size = size;
    if (::sigaltstack(&stack, nullptr) != 0) {
        m_memory.reset();
    }
}

ZQSignalStack::~ZQSignalStack()
{
    if (m_memory) {
        stack_t none = {};
        none.ss_flags = SS_DISABLE;
        ::sigaltstack(&none, nullptr);
    }
}
