#include "AudioCore/Output/PulseAudioOutput.h"

#include "AudioCore/AudioCoreError.h"

#include <pulse/pulseaudio.h>

#include <chrono>

namespace vantor {

// A server on this machine answers in milliseconds; one that hangs must not hang the player.
static constexpr pa_usec_t answerTimeout = 1 * PA_USEC_PER_SEC;
// Short enough that pause, seek and volume feel immediate, long enough to outlast a busy moment.
static constexpr pa_usec_t targetLatency = 80 * PA_USEC_PER_MSEC;
static constexpr int fallbackRate = 48000;
static constexpr std::size_t frameBytes = 2 * sizeof(float);

static std::int64_t monotonicNanoseconds() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

class PulseAudioOutput::Lock {
  public:
    explicit Lock(pa_threaded_mainloop *loop) : m_loop(loop) { pa_threaded_mainloop_lock(loop); }
    ~Lock() { pa_threaded_mainloop_unlock(m_loop); }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

  private:
    pa_threaded_mainloop *m_loop;
};

// What the library calls back, on its own thread and with the loop's lock.
struct PulseAudioOutput::Callbacks {
    static PulseAudioOutput &self(void *data) { return *static_cast<PulseAudioOutput *>(data); }

    static void contextChanged(pa_context *context, void *data) {
        if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context)))
            self(data).reportLoss();
        pa_threaded_mainloop_signal(self(data).m_loop.get(), 0);
    }
    static void streamChanged(pa_stream *stream, void *data) {
        if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream)))
            self(data).reportLoss();
        pa_threaded_mainloop_signal(self(data).m_loop.get(), 0);
    }
    static void wantsSound(pa_stream *, std::size_t bytes, void *data) { self(data).fillBuffer(bytes); }
};

void PulseAudioOutput::MainloopDeleter::operator()(pa_threaded_mainloop *loop) const {
    pa_threaded_mainloop_stop(loop);
    pa_threaded_mainloop_free(loop);
}

PulseAudioOutput::PulseAudioOutput() : m_loop(pa_threaded_mainloop_new()) {
    if (!m_loop || pa_threaded_mainloop_start(m_loop.get()) < 0)
        throw AudioCoreError::engineStart(QStringLiteral("no thread for the sound server"));
    const Lock lock(m_loop.get());
    try {
        connectContext();
        findSampleRate();
    } catch (...) {
        dropContext();
        throw;
    }
}

PulseAudioOutput::~PulseAudioOutput() {
    stop();
    const Lock lock(m_loop.get());
    dropContext();
}

void PulseAudioOutput::dropContext() {
    if (!m_context)
        return;
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
    m_context = nullptr;
}

void PulseAudioOutput::throwStartError() const {
    const int code = m_context ? pa_context_errno(m_context) : PA_ERR_UNKNOWN;
    // A wait that ran out leaves no error behind.
    throw AudioCoreError::engineStart(QString::fromUtf8(pa_strerror(code == PA_OK ? PA_ERR_TIMEOUT : code)));
}

// Lets the library's thread work until `done` holds, the connection breaks or the time is up.
template <class Done>
void PulseAudioOutput::waitUntil(Done done) {
    struct Timeout {
        pa_threaded_mainloop *loop;
        bool passed = false;
    } timeout{m_loop.get()};
    const auto onTimeout = [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        auto *const self = static_cast<Timeout *>(data);
        self->passed = true;
        pa_threaded_mainloop_signal(self->loop, 0);
    };
    pa_time_event *const timer =
        pa_context_rttime_new(m_context, pa_rtclock_now() + answerTimeout, onTimeout, &timeout);
    while (!done() && !timeout.passed && PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context)))
        pa_threaded_mainloop_wait(m_loop.get());
    pa_threaded_mainloop_get_api(m_loop.get())->time_free(timer);
}

void PulseAudioOutput::connectContext() {
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop.get()), "Vantor");
    if (!m_context)
        throwStartError();
    pa_context_set_state_callback(m_context, Callbacks::contextChanged, this);
    // No autospawn: sessions that want a server start one by themselves, and where none is wanted a music
    // player must not leave one behind.
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        throwStartError();
    const auto isReady = [this] { return pa_context_get_state(m_context) == PA_CONTEXT_READY; };
    waitUntil(isReady);
    if (!isReady())
        throwStartError();
}

// Resampling once, in the decoder, is better than a second time in the server.
void PulseAudioOutput::findSampleRate() {
    struct Answer {
        pa_threaded_mainloop *loop;
        int rate = 0;
    } answer{m_loop.get()};
    const auto onSink = [](pa_context *, const pa_sink_info *info, int, void *data) {
        auto *const self = static_cast<Answer *>(data);
        if (info)
            self->rate = static_cast<int>(info->sample_spec.rate);
        pa_threaded_mainloop_signal(self->loop, 0);
    };
    pa_operation *const query =
        pa_context_get_sink_info_by_name(m_context, "@DEFAULT_SINK@", onSink, &answer);
    if (!query)
        throwStartError();
    waitUntil([query] { return pa_operation_get_state(query) != PA_OPERATION_RUNNING; });
    pa_operation_cancel(query);
    pa_operation_unref(query);
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context)) || answer.rate == 0)
        throwStartError();
    m_sampleRate = answer.rate >= 8000 && answer.rate <= 384000 ? answer.rate : fallbackRate;
}

void PulseAudioOutput::start(Render render, std::function<void(const QString &reason)> onLost) {
    stop();
    const Lock lock(m_loop.get());
    m_render = std::move(render);
    m_onLost = std::move(onLost);

    const pa_sample_spec spec{
        .format = PA_SAMPLE_FLOAT32NE, .rate = static_cast<std::uint32_t>(m_sampleRate), .channels = 2};
    pa_proplist *const properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "music");
    m_stream = pa_stream_new_with_proplist(m_context, "Music", &spec, nullptr, properties);
    pa_proplist_free(properties);
    if (!m_stream)
        throwStartError();
    pa_stream_set_state_callback(m_stream, Callbacks::streamChanged, this);
    pa_stream_set_write_callback(m_stream, Callbacks::wantsSound, this);

    constexpr std::uint32_t serverChooses = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffer{.maxlength = serverChooses,
                                .tlength = static_cast<std::uint32_t>(pa_usec_to_bytes(targetLatency, &spec)),
                                .prebuf = serverChooses,
                                .minreq = serverChooses,
                                .fragsize = serverChooses};
    const auto flags =
        static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY |
                                       PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
    const auto state = [this] { return pa_stream_get_state(m_stream); };
    if (pa_stream_connect_playback(m_stream, nullptr, &buffer, flags, nullptr, nullptr) == 0)
        waitUntil([&state] { return state() != PA_STREAM_CREATING; });
    if (state() != PA_STREAM_READY) {
        dropStream();
        throwStartError();
    }
    m_reportsLoss = true;
}

void PulseAudioOutput::stop() {
    const Lock lock(m_loop.get());
    dropStream();
}

void PulseAudioOutput::dropStream() {
    m_reportsLoss = false;
    if (m_stream) {
        pa_stream_set_state_callback(m_stream, nullptr, nullptr);
        pa_stream_set_write_callback(m_stream, nullptr, nullptr);
        pa_stream_disconnect(m_stream);
        pa_stream_unref(m_stream);
        m_stream = nullptr;
    }
    m_render = nullptr;
    m_onLost = nullptr;
}

void PulseAudioOutput::setSuspended(bool suspended) {
    const Lock lock(m_loop.get());
    if (!m_stream || pa_stream_is_corked(m_stream) == (suspended ? 1 : 0))
        return;
    const auto unref = [](pa_operation *operation) {
        if (operation)
            pa_operation_unref(operation);
    };
    // The silence that waited since the rest began would only delay the new sound.
    if (!suspended)
        unref(pa_stream_flush(m_stream, nullptr, nullptr));
    unref(pa_stream_cork(m_stream, suspended ? 1 : 0, nullptr, nullptr));
}

void PulseAudioOutput::fillBuffer(std::size_t bytes) {
    while (bytes >= frameBytes) {
        void *data = nullptr;
        std::size_t size = bytes;
        if (pa_stream_begin_write(m_stream, &data, &size) < 0 || size < frameBytes)
            return;
        size = std::min(size, bytes) / frameBytes * frameBytes;
        m_render(static_cast<float *>(data), static_cast<int>(size / frameBytes));
        pa_stream_write(m_stream, data, size, nullptr, 0, PA_SEEK_RELATIVE);
        bytes -= size;
    }
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(m_stream, &latency, &isNegative) == 0 && !isNegative)
        m_heardAt.store(monotonicNanoseconds() + static_cast<std::int64_t>(latency) * 1000,
                        std::memory_order_relaxed);
}

double PulseAudioOutput::latency() const {
    const std::int64_t left = m_heardAt.load(std::memory_order_relaxed) - monotonicNanoseconds();
    return static_cast<double>(std::max<std::int64_t>(left, 0)) * 1e-9;
}

void PulseAudioOutput::reportLoss() {
    if (!m_reportsLoss)
        return;
    m_reportsLoss = false;
    const QString reason = QString::fromUtf8(pa_strerror(pa_context_errno(m_context)));
    QMetaObject::invokeMethod(
        &m_mainThread,
        [this, reason] {
            const std::function<void(const QString &)> onLost = m_onLost;
            stop();
            if (onLost)
                onLost(reason); // may delete this
        },
        Qt::QueuedConnection);
}

} // namespace vantor
