// The driver's mutex and its guard. Clang checks at compile time that a member is touched only under its lock; the
// thread sanitizer is told of every lock and unlock, because Qt itself is not built for it.
#ifndef VORNEX_DRIVER_MUTEX_H
#define VORNEX_DRIVER_MUTEX_H

#include <QtCore/QMutex>

#if defined(__clang__)
#define VORNEX_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define VORNEX_THREAD_ATTRIBUTE(x)
#endif
#define CAPABILITY(x) VORNEX_THREAD_ATTRIBUTE(capability(x))
#define SCOPED_CAPABILITY VORNEX_THREAD_ATTRIBUTE(scoped_lockable)
#define GUARDED_BY(x) VORNEX_THREAD_ATTRIBUTE(guarded_by(x))
#define ACQUIRED_BEFORE(...) VORNEX_THREAD_ATTRIBUTE(acquired_before(__VA_ARGS__))
#define ACQUIRE(...) VORNEX_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) VORNEX_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define REQUIRES(...) VORNEX_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) VORNEX_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
// For access that another rule makes safe; the rule stands beside it.
#define NO_THREAD_SAFETY_ANALYSIS VORNEX_THREAD_ATTRIBUTE(no_thread_safety_analysis)

#if defined(__SANITIZE_THREAD__)
#define VORNEX_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VORNEX_THREAD_SANITIZER 1
#endif
#endif
#ifdef VORNEX_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#define VORNEX_TSAN(call) call
#else
#define VORNEX_TSAN(call) static_cast<void>(0)
#endif

// Not recursive. Adds no member: the driver object keeps the layout it has with plain QMutex members.
class CAPABILITY("mutex") Driver_Mutex : public QMutex {
public:
    Driver_Mutex() { VORNEX_TSAN(__tsan_mutex_create(this, 0)); }
    ~Driver_Mutex() { VORNEX_TSAN(__tsan_mutex_destroy(this, 0)); }

    void lock() ACQUIRE() {
        VORNEX_TSAN(__tsan_mutex_pre_lock(this, 0));
        QMutex::lock();
        VORNEX_TSAN(__tsan_mutex_post_lock(this, 0, 0));
    }
    void unlock() RELEASE() {
        VORNEX_TSAN(__tsan_mutex_pre_unlock(this, 0));
        QMutex::unlock();
        VORNEX_TSAN(__tsan_mutex_post_unlock(this, 0));
    }
};

// Holds the mutex from here to the end of the block.
class SCOPED_CAPABILITY Mutex_Lock {
public:
    explicit Mutex_Lock(Driver_Mutex& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~Mutex_Lock() RELEASE() { mutex_.unlock(); }

private:
    Mutex_Lock(const Mutex_Lock&);
    Mutex_Lock& operator=(const Mutex_Lock&);

    Driver_Mutex& mutex_;
};

#endif
