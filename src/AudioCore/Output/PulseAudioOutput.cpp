#include "AudioCore/Output/PulseAudioOutput_p.h"

#include <pulse/pulseaudio.h>

namespace vantor {

// A server on this machine answers in milliseconds.
static constexpr pa_usec_t answerTimeout = 1 * PA_USEC_PER_SEC;
// Short enough that pause, seek and volume feel immediate, long enough to outlast a busy moment. Filled by
// thirds: more often costs more than rendering does.
static constexpr pa_usec_t targetLatency = 120 * PA_USEC_PER_MSEC;
static constexpr int fallbackRate = 48000;
static constexpr std::size_t frameBytes = 2 * sizeof(float);

static std::int64_t monotonicNanoseconds() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

static void forget(pa_operation *operation) {
    if (operation)
        pa_operation_unref(operation);
}

/// The answer does not come any more.
static void giveUp(pa_operation *&operation) {
    if (operation)
        pa_operation_cancel(operation);
    forget(std::exchange(operation, nullptr));
}

// What the library calls back, on its own thread and with the server's lock.
struct PulseAudioOutput::Callbacks {
    static PulseAudioOutput &self(void *data) { return *static_cast<PulseAudioOutput *>(data); }

    static void streamChanged(pa_stream *, void *data) { self(data).streamChanged(); }
    static void streamMoved(pa_stream *, void *data) { self(data).reportDevice(); }
    static void timingCame(pa_stream *, int success, void *data) { self(data).m_hasWoken = success != 0; }
    static void wantsSound(pa_stream *, std::size_t bytes, void *data) { self(data).fillBuffer(bytes); }
    static void outOfPatience(pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        self(data).m_lossReason = QString::fromUtf8(pa_strerror(PA_ERR_TIMEOUT));
        self(data).m_server->giveUp(); // which ends the stream, too
    }
    static void lastAnswer(pa_operation *operation, void *data) {
        if (pa_operation_get_state(operation) != PA_OPERATION_RUNNING)
            self(data).reportLoss();
    }
};

PulseAudioOutput::PulseAudioOutput(std::shared_ptr<PulseServer> server, const QString &sink, int sinkRate)
    : m_server(std::move(server)), m_sink(sink.toUtf8()),
      m_sampleRate(sinkRate >= 8000 && sinkRate <= 384000 ? sinkRate : fallbackRate) {}

void PulseAudioOutput::start(Render render, Reports reports) {
    stop();
    m_reports = std::move(reports);
    const PulseServer::Lock lock(*m_server);
    m_mainThread = std::make_unique<QObject>();
    m_render = std::move(render);
    m_isReady = false;
    m_isSuspended = true;
    m_isTimed = m_knowsLatency = false;
    m_lossReason.clear();
    if (!m_server->context() || !connectStream())
        streamLost();
}

bool PulseAudioOutput::connectStream() {
    const pa_sample_spec spec{
        .format = PA_SAMPLE_FLOAT32NE, .rate = static_cast<std::uint32_t>(m_sampleRate), .channels = 2};
    pa_proplist *const properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "music");
    m_stream = pa_stream_new_with_proplist(m_server->context(), "Music", &spec, nullptr, properties);
    pa_proplist_free(properties);
    if (!m_stream)
        return false;
    m_patience = pa_context_rttime_new(m_server->context(), pa_rtclock_now() + answerTimeout,
                                       Callbacks::outOfPatience, this);
    pa_stream_set_state_callback(m_stream, Callbacks::streamChanged, this);
    pa_stream_set_moved_callback(m_stream, Callbacks::streamMoved, this);
    pa_stream_set_write_callback(m_stream, Callbacks::wantsSound, this);

    m_targetBytes = pa_usec_to_bytes(targetLatency, &spec);
    m_silentBytes = 0;
    constexpr std::uint32_t serverChooses = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr buffer{.maxlength = serverChooses,
                                .tlength = static_cast<std::uint32_t>(m_targetBytes),
                                .prebuf = serverChooses,
                                .minreq = static_cast<std::uint32_t>(m_targetBytes / 3),
                                .fragsize = serverChooses};
    const auto flags =
        static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY |
                                       PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_INTERPOLATE_TIMING);
    return pa_stream_connect_playback(m_stream, m_sink.isEmpty() ? nullptr : m_sink.constData(), &buffer,
                                      flags, nullptr, nullptr) == 0;
}

void PulseAudioOutput::streamChanged() {
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    if (state == PA_STREAM_READY)
        streamReady();
    else if (!PA_STREAM_IS_GOOD(state))
        streamLost();
}

void PulseAudioOutput::streamReady() {
    stopWaiting();
    m_isReady = true;
    reportDevice();
    if (!m_isSuspended)
        cork(false);
}

void PulseAudioOutput::stopWaiting() {
    if (m_patience)
        m_server->api()->time_free(std::exchange(m_patience, nullptr));
}

// A stream whose sink is gone ends before the list of sinks is seen without it. Those who hear of the loss
// shall not choose the same sink again: they hear of it when the list has been looked at.
void PulseAudioOutput::streamLost() {
    pa_context *const context = m_server->context();
    const int code = context ? pa_context_errno(context) : PA_ERR_CONNECTIONTERMINATED;
    if (m_lossReason.isEmpty())
        m_lossReason = QString::fromUtf8(pa_strerror(code == PA_OK ? PA_ERR_KILLED : code));
    if (!context) {
        reportLoss();
        return;
    }
    m_server->lookAgain();
    const auto ignore = [](pa_context *, const pa_server_info *, void *) {};
    m_lastQuestion = pa_context_get_server_info(context, ignore, nullptr);
    if (m_lastQuestion)
        pa_operation_set_state_callback(m_lastQuestion, Callbacks::lastAnswer, this);
    else
        reportLoss();
}

void PulseAudioOutput::stop() {
    const PulseServer::Lock lock(*m_server);
    m_mainThread.reset();
    m_device.reset();
    stopWaiting();
    giveUp(m_timingQuestion);
    if (m_lastQuestion)
        pa_operation_set_state_callback(m_lastQuestion, nullptr, nullptr);
    giveUp(m_lastQuestion);
    if (m_stream) {
        pa_stream_set_state_callback(m_stream, nullptr, nullptr);
        pa_stream_set_moved_callback(m_stream, nullptr, nullptr);
        pa_stream_set_write_callback(m_stream, nullptr, nullptr);
        pa_stream_disconnect(m_stream);
        pa_stream_unref(std::exchange(m_stream, nullptr));
    }
    m_render = nullptr;
}

void PulseAudioOutput::setSuspended(bool suspended) {
    const PulseServer::Lock lock(*m_server);
    m_isSuspended = suspended;
    if (m_stream && m_isReady && pa_stream_is_corked(m_stream) != (suspended ? 1 : 0))
        cork(suspended);
}

void PulseAudioOutput::setTimed(bool timed) {
    const PulseServer::Lock lock(*m_server);
    m_isTimed = timed;
}

void PulseAudioOutput::cork(bool corked) {
    m_knowsLatency = false;
    // The silence that waited since the rest began would only delay the new sound.
    if (!corked)
        forget(pa_stream_flush(m_stream, nullptr, nullptr));
    forget(pa_stream_cork(m_stream, corked ? 1 : 0, nullptr, nullptr));
    m_hasWoken = false;
    giveUp(m_timingQuestion);
    if (!corked)
        m_timingQuestion = pa_stream_update_timing_info(m_stream, Callbacks::timingCame, this);
}

void PulseAudioOutput::fillBuffer(std::size_t bytes) {
    std::size_t afterSilence = 0; // written from the first sound on
    while (bytes >= frameBytes) {
        void *data = nullptr;
        std::size_t size = bytes;
        if (pa_stream_begin_write(m_stream, &data, &size) < 0 || size < frameBytes)
            return;
        size = std::min(size, bytes) / frameBytes * frameBytes;
        float *const samples = static_cast<float *>(data);
        m_render(samples, static_cast<int>(size / frameBytes));
        // Silence that waits to be played would only delay the first sound, which takes its place.
        const bool isFirstSound = endsLongSilence({samples, size / sizeof(float)}) && !m_isTimed;
        if (isFirstSound)
            bytes = std::max(size, m_targetBytes);
        if (isFirstSound || afterSilence > 0)
            afterSilence += size;
        pa_stream_write(m_stream, data, size, nullptr, 0,
                        isFirstSound ? PA_SEEK_RELATIVE_ON_READ : PA_SEEK_RELATIVE);
        bytes -= size;
        m_heardAt.fetch_add(static_cast<std::int64_t>(size / frameBytes) * 1'000'000'000 / m_sampleRate,
                            std::memory_order_relaxed); // until it is measured
    }
    noteLatency(afterSilence);
}

void PulseAudioOutput::noteLatency(std::size_t afterSilence) {
    pa_usec_t latency = 0;
    int isNegative = 0;
    bool isKnown = pa_stream_get_latency(m_stream, &latency, &isNegative) == 0 && !isNegative;
    if (!isKnown && afterSilence > 0) { // the server has yet to tell where its reading is
        latency = pa_bytes_to_usec(afterSilence, pa_stream_get_sample_spec(m_stream));
        isKnown = true;
    }
    // While it wakes, the server tells of the time before.
    const pa_timing_info *const timing = pa_stream_get_timing_info(m_stream);
    m_knowsLatency = isKnown && m_hasWoken && timing && timing->playing;
    if (isKnown)
        m_heardAt.store(monotonicNanoseconds() + static_cast<std::int64_t>(latency) * 1000,
                        std::memory_order_relaxed);
}

// Whether there is sound in the samples, and none in what was rendered before and is not played yet.
bool PulseAudioOutput::endsLongSilence(std::span<const float> samples) {
    const auto isSound = [](float sample) { return sample != 0; };
    if (std::ranges::none_of(samples, isSound)) {
        m_silentBytes += samples.size_bytes();
        return false;
    }
    return std::exchange(m_silentBytes, 0) >= m_targetBytes;
}

double PulseAudioOutput::latency() const {
    const std::int64_t left = m_heardAt.load(std::memory_order_relaxed) - monotonicNanoseconds();
    return static_cast<double>(std::max<std::int64_t>(left, 0)) * 1e-9;
}

std::optional<std::chrono::steady_clock::time_point> PulseAudioOutput::heardAt() const {
    if (!m_knowsLatency)
        return std::nullopt;
    return std::chrono::steady_clock::time_point(
        std::chrono::nanoseconds(m_heardAt.load(std::memory_order_relaxed)));
}

void PulseAudioOutput::reportDevice() {
    post([this, device = pa_stream_get_device_index(m_stream)] {
        m_device = device;
        const std::function<void()> moved = m_reports.moved;
        if (moved)
            moved(); // may delete this
    });
}

void PulseAudioOutput::reportLoss() {
    post([this, wasReady = m_isReady, reason = m_lossReason] {
        const auto lost = m_reports.lost;
        stop();
        if (lost)
            lost(wasReady, reason); // may delete this
    });
}

void PulseAudioOutput::post(std::function<void()> call) {
    QMetaObject::invokeMethod(m_mainThread.get(), std::move(call), Qt::QueuedConnection);
}

} // namespace vantor
