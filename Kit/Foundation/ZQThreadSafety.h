#pragma once

#include <condition_variable>
#include <mutex>
#include <shared_mutex>

// Mutexes whose use the compiler checks: what is ZQ_GUARDED_BY a mutex may only be touched by code that holds it, and
// what ZQ_REQUIRES one may only be called by such code. `./dev lint` has clang look; for other compilers the words mean
// nothing. The classes add nothing to what the standard ones cost.
//
// A function that is written inside another (a condition of a wait, a comparison) does not inherit the locks held
// around it: it says ZQ_REQUIRES itself.
#if defined(__clang__)
#define ZQ_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define ZQ_THREAD_SAFETY(attribute)
#endif

#define ZQ_CAPABILITY(name) ZQ_THREAD_SAFETY(capability(name))
#define ZQ_SCOPED_CAPABILITY ZQ_THREAD_SAFETY(scoped_lockable)
#define ZQ_GUARDED_BY(mutex) ZQ_THREAD_SAFETY(guarded_by(mutex))
#define ZQ_REQUIRES(...) ZQ_THREAD_SAFETY(requires_capability(__VA_ARGS__))
#define ZQ_ACQUIRE(...) ZQ_THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define ZQ_RELEASE(...) ZQ_THREAD_SAFETY(release_capability(__VA_ARGS__))
#define ZQ_ACQUIRE_SHARED(...) ZQ_THREAD_SAFETY(acquire_shared_capability(__VA_ARGS__))
#define ZQ_RELEASE_SHARED(...) ZQ_THREAD_SAFETY(release_shared_capability(__VA_ARGS__))
#define ZQ_RETURN_CAPABILITY(mutex) ZQ_THREAD_SAFETY(lock_returned(mutex))
// For what the check cannot follow, such as calling a condition that was handed in.
#define ZQ_NO_THREAD_SAFETY_ANALYSIS ZQ_THREAD_SAFETY(no_thread_safety_analysis)

// A std::mutex. Any thread.
class ZQ_CAPABILITY("mutex") ZQMutex
{
public:
    void lock() ZQ_ACQUIRE() { m_mutex.lock(); }
    void unlock() ZQ_RELEASE() { m_mutex.unlock(); }

private:
    friend class ZQCondition;
    std::mutex m_mutex;
};

// A std::recursive_mutex: who holds it may take it again. Any thread.
class ZQ_CAPABILITY("mutex") ZQRecursiveMutex
{
public:
    void lock() ZQ_ACQUIRE() { m_mutex.lock(); }
    void unlock() ZQ_RELEASE() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

// Holds a mutex until its block ends.
class ZQ_SCOPED_CAPABILITY ZQLockGuard
{
public:
    explicit ZQLockGuard(ZQMutex &mutex) ZQ_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~ZQLockGuard() ZQ_RELEASE() { m_mutex.unlock(); }
    ZQLockGuard(const ZQLockGuard &) = delete;
    ZQLockGuard &operator=(const ZQLockGuard &) = delete;

private:
    ZQMutex &m_mutex;
};

// Lets go of a mutex that is held, and takes it again when its block ends, also by an exception.
class ZQ_SCOPED_CAPABILITY ZQUnlockGuard
{
public:
    explicit ZQUnlockGuard(ZQMutex &mutex) ZQ_RELEASE(mutex) : m_mutex(mutex) { m_mutex.unlock(); }
    ~ZQUnlockGuard() ZQ_RELEASE() { m_mutex.lock(); } // the word for the end of any block
    ZQUnlockGuard(const ZQUnlockGuard &) = delete;
    ZQUnlockGuard &operator=(const ZQUnlockGuard &) = delete;

private:
    ZQMutex &m_mutex;
};

// What threads that hold a mutex wait for. Waits end now and then without a reason: they stand in a loop that looks at
// what is waited for.
class ZQCondition
{
public:
    void wait(ZQMutex &mutex) ZQ_REQUIRES(mutex)
    {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        m_condition.wait(lock);
        lock.release();
    }
    // False when the time was over.
    template <class Clock, class Duration>
    bool waitUntil(ZQMutex &mutex, const std::chrono::time_point<Clock, Duration> &latest) ZQ_REQUIRES(mutex)
    {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        const bool isInTime = m_condition.wait_until(lock, latest) == std::cv_status::no_timeout;
        lock.release();
        return isInTime;
    }
    template <class Rep, class Period>
    bool waitFor(ZQMutex &mutex, const std::chrono::duration<Rep, Period> &time) ZQ_REQUIRES(mutex)
    {
        return waitUntil(mutex, std::chrono::steady_clock::now() + time);
    }
    void notifyOne() { m_condition.notify_one(); }
    void notifyAll() { m_condition.notify_all(); }

private:
    std::condition_variable m_condition;
};

// A std::shared_mutex: one thread writes, or any number read. Any thread.
class ZQ_CAPABILITY("mutex") ZQSharedMutex
{
public:
    void lock() ZQ_ACQUIRE() { m_mutex.lock(); }
    void unlock() ZQ_RELEASE() { m_mutex.unlock(); }
    void lockShared() ZQ_ACQUIRE_SHARED() { m_mutex.lock_shared(); }
    void unlockShared() ZQ_RELEASE_SHARED() { m_mutex.unlock_shared(); }

private:
    std::shared_mutex m_mutex;
};

// Holds one for writing until its block ends.
class ZQ_SCOPED_CAPABILITY ZQWriteGuard
{
public:
    explicit ZQWriteGuard(ZQSharedMutex &mutex) ZQ_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~ZQWriteGuard() ZQ_RELEASE() { m_mutex.unlock(); }
    ZQWriteGuard(const ZQWriteGuard &) = delete;
    ZQWriteGuard &operator=(const ZQWriteGuard &) = delete;

private:
    ZQSharedMutex &m_mutex;
};

// Holds one for reading as long as it lives, in whatever object that is; nothing of it is checked.
class ZQReadHold
{
public:
    explicit ZQReadHold(ZQSharedMutex &mutex) ZQ_NO_THREAD_SAFETY_ANALYSIS : m_mutex(mutex) { m_mutex.lockShared(); }
    ~ZQReadHold() ZQ_NO_THREAD_SAFETY_ANALYSIS { m_mutex.unlockShared(); }
    ZQReadHold(const ZQReadHold &) = delete;
    ZQReadHold &operator=(const ZQReadHold &) = delete;

private:
    ZQSharedMutex &m_mutex;
};
