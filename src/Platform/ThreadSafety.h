#pragma once

#include <condition_variable>
#include <mutex>

/// Clang's thread-safety attributes under short names, and a mutex that carries them: a member marked
/// VANTOR_GUARDED_BY(m_mutex) that is touched without the lock is a compile error. Other compilers see
/// nothing.
#if defined(__clang__)
#define VANTOR_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define VANTOR_THREAD_ATTRIBUTE(x)
#endif
#define VANTOR_GUARDED_BY(m) VANTOR_THREAD_ATTRIBUTE(guarded_by(m))
#define VANTOR_REQUIRES(...) VANTOR_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define VANTOR_EXCLUDES(...) VANTOR_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

namespace vantor {

/// std::mutex with a capability that the compiler can follow.
class VANTOR_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
  public:
    void lock() VANTOR_THREAD_ATTRIBUTE(acquire_capability()) { m_mutex.lock(); }
    void unlock() VANTOR_THREAD_ATTRIBUTE(release_capability()) { m_mutex.unlock(); }

  private:
    friend class MutexLock;
    std::mutex m_mutex;
};

/// Holds a Mutex for a scope; can wait on a std::condition_variable meanwhile.
class VANTOR_THREAD_ATTRIBUTE(scoped_lockable) MutexLock {
  public:
    explicit MutexLock(Mutex &mutex) VANTOR_THREAD_ATTRIBUTE(acquire_capability(mutex))
        : m_lock(mutex.m_mutex) {}
    ~MutexLock() VANTOR_THREAD_ATTRIBUTE(release_capability()) {}
    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

    /// Releases the mutex while waiting and holds it again on return. May wake without a notification.
    void wait(std::condition_variable &condition) { condition.wait(m_lock); }
    /// As wait(), at most for the given time.
    template <class Rep, class Period>
    void waitFor(std::condition_variable &condition, std::chrono::duration<Rep, Period> time) {
        condition.wait_for(m_lock, time);
    }

  private:
    std::unique_lock<std::mutex> m_lock;
};

} // namespace vantor
