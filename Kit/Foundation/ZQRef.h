#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

// A counted pointer to an object that keeps its own count (`retain()` and `release()`).
//
// The count is not atomic: an object and every `ZQRef` to it belong to one thread. Converts to a raw pointer by `get()`
// only, so that keeping an object alive is always visible in the code.
template <class T>
class ZQRef
{
public:
    ZQRef() = default;
    ZQRef(std::nullptr_t) {}
    explicit ZQRef(T *object) : m_object(object)
    {
        if (m_object) {
            m_object->retain();
        }
    }
    ZQRef(const ZQRef &other) : ZQRef(other.m_object) {}
    ZQRef(ZQRef &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U *, T *> ZQRef(const ZQRef<U> &other) : ZQRef(static_cast<T *>(other.get())) {}
    ~ZQRef()
    {
        if (m_object) {
            m_object->release();
        }
    }
    ZQRef &operator=(ZQRef other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    T *get() const { return m_object; }
    T *operator->() const { return m_object; }
    T &operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    template <class U>
    bool operator==(const ZQRef<U> &other) const
    {
        return m_object == other.get();
    }
    bool operator==(std::nullptr_t) const { return m_object == nullptr; }

private:
    T *m_object = nullptr;
};

template <class T>
size_t qHash(const ZQRef<T> &ref, size_t seed = 0)
{
    return std::hash<T *>{}(ref.get()) ^ seed;
}

// `ref` as a `T`, or null when the object is of another class.
template <class T, class U>
ZQRef<T> zqCast(const ZQRef<U> &ref)
{
    return ZQRef<T>(dynamic_cast<T *>(ref.get()));
}
