#pragma once

#include <functional>
#include <memory>

struct pa_context;
struct pa_mainloop_api;
struct pa_threaded_mainloop;
struct pa_time_event;

namespace vantor {

/// The connection to the PulseAudio server (PipeWire is one too) and the library's thread that serves it. It
/// is made in the background and, while no server answers, tried again every two seconds. What the library
/// and others do with it is done with the lock.
class PulseServer {
  public:
    /// Called on the library's thread, with the lock, when the server answers, when it ceases to, and
    /// after every attempt that failed.
    using Watcher = std::function<void(bool connected)>;

    /// Throws std::bad_alloc when no thread can be had.
    PulseServer();
    ~PulseServer();

    /// Connects, which takes milliseconds, and keeps trying. Once.
    void start(Watcher watcher);

    /// Waits no longer than one callback of the library takes. The callbacks have the lock.
    class Lock {
      public:
        explicit Lock(const PulseServer &server);
        ~Lock();
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;

      private:
        pa_threaded_mainloop *m_loop;
    };

    /// With the lock. Null unless the server answers.
    [[nodiscard]] pa_context *context() const { return m_isConnected ? m_context : nullptr; }
    [[nodiscard]] pa_mainloop_api *api() const;
    /// With the lock: the watcher is told once more that the server answers, because what it has may be
    /// different.
    void lookAgain();
    /// With the lock: nobody is told from now on.
    void forgetWatcher() { m_watcher = nullptr; }
    /// With the lock: the server does not answer any more. The connection is dropped and made anew.
    void giveUp();

  private:
    struct Callbacks;
    struct MainloopDeleter {
        void operator()(pa_threaded_mainloop *loop) const;
    };

    void connect();
    void dropContext();
    void contextChanged();
    void failed();

    std::unique_ptr<pa_threaded_mainloop, MainloopDeleter> m_loop;
    // With the lock.
    pa_context *m_context = nullptr;
    pa_time_event *m_nextAttempt = nullptr;
    bool m_isConnected = false;
    Watcher m_watcher;
};

} // namespace vantor
