#include "AudioCore/Output/PulseServer_p.h"

#include <pulse/pulseaudio.h>

namespace vantor {

static constexpr pa_usec_t attemptPeriod = 2 * PA_USEC_PER_SEC;

PulseServer::Lock::Lock(const PulseServer &server) : m_loop(server.m_loop.get()) {
    pa_threaded_mainloop_lock(m_loop);
}

PulseServer::Lock::~Lock() {
    pa_threaded_mainloop_unlock(m_loop);
}

struct PulseServer::Callbacks {
    static void attempt(pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        static_cast<PulseServer *>(data)->connect();
    }
    static void contextChanged(pa_context *, void *data) {
        static_cast<PulseServer *>(data)->contextChanged();
    }
};

void PulseServer::MainloopDeleter::operator()(pa_threaded_mainloop *loop) const {
    pa_threaded_mainloop_free(loop);
}

PulseServer::PulseServer() : m_loop(pa_threaded_mainloop_new()) {
    if (!m_loop)
        throw std::bad_alloc();
    pa_threaded_mainloop_set_name(m_loop.get(), "AudioOutput");
    if (pa_threaded_mainloop_start(m_loop.get()) < 0)
        throw std::bad_alloc();
}

PulseServer::~PulseServer() {
    pa_threaded_mainloop_stop(m_loop.get());
    dropContext();
    if (m_nextAttempt)
        api()->time_free(m_nextAttempt);
}

void PulseServer::start(Watcher watcher) {
    const Lock lock(*this);
    m_watcher = std::move(watcher);
    timeval now{};
    m_nextAttempt = api()->time_new(api(), pa_gettimeofday(&now), Callbacks::attempt, this);
}

pa_mainloop_api *PulseServer::api() const {
    return pa_threaded_mainloop_get_api(m_loop.get());
}

void PulseServer::dropContext() {
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
    m_context = nullptr;
}

void PulseServer::connect() {
    dropContext();
    m_context = pa_context_new(api(), "Vantor");
    if (!m_context) {
        failed();
        return;
    }
    pa_context_set_state_callback(m_context, Callbacks::contextChanged, this);
    // No autospawn: sessions that want a server start one by themselves, and where none is wanted a music
    // player must not leave one behind. A refusal may come by the callback, too.
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        failed();
}

void PulseServer::contextChanged() {
    const pa_context_state_t state = pa_context_get_state(m_context);
    if (state == PA_CONTEXT_READY) {
        m_isConnected = true;
        if (m_watcher)
            m_watcher(true);
    } else if (!PA_CONTEXT_IS_GOOD(state)) {
        failed();
    }
}

void PulseServer::failed() {
    timeval next{};
    pa_timeval_add(pa_gettimeofday(&next), attemptPeriod);
    api()->time_restart(m_nextAttempt, &next);
    m_isConnected = false;
    if (m_watcher)
        m_watcher(false);
}

void PulseServer::lookAgain() {
    if (m_isConnected && m_watcher)
        m_watcher(true);
}

void PulseServer::giveUp() {
    if (m_isConnected)
        pa_context_disconnect(m_context);
}

} // namespace vantor
