#include "SendspinPlayback/Player/SendspinPlayer.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

static constexpr std::int64_t largeJump = 1'000'000;   // microseconds
static constexpr std::int64_t bitrateSpan = 1'000'000; // microseconds
static constexpr auto workInterval = 20ms;             // a part of what is decoded ahead

static constexpr auto volumeKey = "sendspin.volume"_L1;
static constexpr auto mutedKey = "sendspin.muted"_L1;
static constexpr auto staticDelayKey = "sendspin.staticDelayMs"_L1;

static SendspinPlayerState inRange(SendspinPlayerState state) {
    state.volume = std::clamp(state.volume, 0, 100);
    state.staticDelayMs = std::clamp(state.staticDelayMs, 0, SendspinIncoming::maxStaticDelayMs);
    return state;
}

static int storedNumber(const QSettings &settings, QLatin1StringView key, int standard) {
    bool isNumber = false;
    const int number = settings.value(key).toInt(&isNumber);
    return isNumber ? number : standard;
}

SendspinPlayer::SendspinPlayer(SendspinSession &session, Scheduler &scheduler, const SendspinClock &clock,
                               std::shared_ptr<SendspinSource> source, std::unique_ptr<QSettings> settings,
                               std::int64_t capacity)
    : m_session(session), m_scheduler(scheduler), m_clock(clock), m_settings(settings.release()),
      m_buffer(source->queue(), capacity), m_source(std::move(source)) {
    m_settings->setParent(this);
    apply(storedState(*m_settings));
    m_session.report(m_state);
}

SendspinPlayerState SendspinPlayer::storedState(const QSettings &settings) {
    return inRange({.available = true,
                    .volume = storedNumber(settings, volumeKey, 100),
                    .muted = settings.value(mutedKey, false).toBool(),
                    .staticDelayMs = storedNumber(settings, staticDelayKey, 0)});
}

void SendspinPlayer::store(const SendspinPlayerState &state, QSettings &settings) {
    settings.setValue(volumeKey, state.volume);
    settings.setValue(mutedKey, state.muted);
    settings.setValue(staticDelayKey, state.staticDelayMs);
}

SendspinPlayer::~SendspinPlayer() {
    m_buffer.clear();
}

void SendspinPlayer::take(const SendspinEvent &event) {
    const auto &content = event.content;
    if (const auto *audio = std::get_if<SendspinEvent::Audio>(&content)) {
        m_buffer.add(audio->chunk);
        measure(audio->chunk);
    } else if (const auto *start = std::get_if<SendspinEvent::StreamStarted>(&content)) {
        const bool isPlayable = m_buffer.setFormat(start->format);
        m_measuredBytes = 0;
        setStreaming(isPlayable);
        if (!isPlayable)
            Q_EMIT streamRefused();
    } else if (std::holds_alternative<SendspinEvent::StreamCleared>(content)) {
        m_buffer.clear();
    } else if (std::holds_alternative<SendspinEvent::StreamEnded>(content)) {
        m_buffer.end();
        setStreaming(false);
    } else if (std::holds_alternative<SendspinEvent::Connected>(content)) {
        // Whoever answers now may have another clock and begins its stream anew.
        m_buffer.end();
        setStreaming(false);
        m_isSynchronized = m_timing.isKnown = m_isLost = false;
        m_source->setTiming(m_timing);
    } else if (std::holds_alternative<SendspinEvent::Synchronized>(content)) {
        synchronize();
    } else if (const auto *end = std::get_if<SendspinEvent::Disconnected>(&content)) {
        m_isSynchronized = false; // what is there is played by the clock as it was known
        m_isLost = end->reason.has_value();
        if (!m_isLost) {
            m_buffer.end();
            setStreaming(false);
        }
    } else if (const auto *volume = std::get_if<SendspinEvent::SetVolume>(&content)) {
        change([volume](SendspinPlayerState &state) { state.volume = volume->volume; });
    } else if (const auto *mute = std::get_if<SendspinEvent::SetMute>(&content)) {
        change([mute](SendspinPlayerState &state) { state.muted = mute->muted; });
    } else if (const auto *delay = std::get_if<SendspinEvent::SetStaticDelay>(&content)) {
        change([delay](SendspinPlayerState &state) { state.staticDelayMs = delay->milliseconds; });
    }
}

void SendspinPlayer::setVolume(int volume) {
    QMetaObject::invokeMethod(
        this, [this, volume] { change([volume](SendspinPlayerState &state) { state.volume = volume; }); });
}

void SendspinPlayer::setMuted(bool muted) {
    QMetaObject::invokeMethod(
        this, [this, muted] { change([muted](SendspinPlayerState &state) { state.muted = muted; }); });
}

void SendspinPlayer::setStaticDelay(int milliseconds) {
    QMetaObject::invokeMethod(this, [this, milliseconds] {
        change([milliseconds](SendspinPlayerState &state) { state.staticDelayMs = milliseconds; });
    });
}

void SendspinPlayer::setAvailable(bool available) {
    QMetaObject::invokeMethod(this, [this, available] {
        change([available](SendspinPlayerState &state) { state.available = available; });
    });
}

void SendspinPlayer::setClicking(bool on) {
    QMetaObject::invokeMethod(this, [this, on] {
        m_isClicking = on;
        m_source->setClicking(on);
        if (on && !m_work)
            workLater(); // for the clock, which is followed while it matters
    });
}

void SendspinPlayer::change(const std::function<void(SendspinPlayerState &)> &edit) {
    SendspinPlayerState state = m_state;
    edit(state);
    state = inRange(state);
    if (state == m_state)
        return;
    apply(state);
    store(state, *m_settings);
    m_session.report(state);
    Q_EMIT stateChanged(state);
}

void SendspinPlayer::apply(const SendspinPlayerState &state) {
    m_state = state;
    m_source->setVolume(state.volume);
    m_source->setMuted(state.muted);
    m_timing.staticDelayMs = state.staticDelayMs;
    m_source->setTiming(m_timing);
}

void SendspinPlayer::setStreaming(bool isStreaming) {
    if (isStreaming && !m_work)
        workLater();
    if (isStreaming == m_isStreaming)
        return;
    m_isStreaming = isStreaming;
    Q_EMIT streamingChanged(isStreaming);
}

/// The clock is known, for the first time or anew.
void SendspinPlayer::synchronize() {
    const SendspinTiming last = m_timing;
    m_isSynchronized = true;
    updateTiming();
    // The source follows small jumps; what a large one puts far ahead would be in the way.
    const std::int64_t now = m_timing.filter.computeServerTime(m_clock.now());
    if (last.isKnown && std::abs(last.playoutTime(now) - m_timing.playoutTime(now)) > largeJump)
        m_buffer.dropDecoded();
}

void SendspinPlayer::updateTiming() {
    const SendspinClockState clock = m_session.clock();
    if (!m_isSynchronized || clock.acceptedSamples == 0)
        return; // a new connection has begun, and its clock is not known yet
    m_timing.filter = clock.filter;
    m_timing.isKnown = true;
    m_source->setTiming(m_timing);
}

void SendspinPlayer::work() {
    updateTiming();
    m_buffer.advance(m_timing, m_clock.now());
    if (m_isLost && m_buffer.bytes() == 0 && m_source->queue().buffered() == 0)
        setStreaming(false); // all that had come has been heard
    if (m_isStreaming || m_isClicking || m_buffer.bytes() > 0)
        workLater();
}

void SendspinPlayer::workLater() {
    m_work = m_scheduler.after(workInterval, [this] {
        m_work.reset();
        work();
    });
}

void SendspinPlayer::setSource(const std::shared_ptr<SendspinSource> &source) {
    QMetaObject::invokeMethod(this, [this, source] { takeSource(source); });
}

void SendspinPlayer::takeSource(const std::shared_ptr<SendspinSource> &source) {
    if (source == m_source)
        return;
    m_source->queue().drop();
    {
        const MutexLock lock(m_sourceMutex);
        const SendspinSource::Figures figures = m_source->figures();
        m_lateBefore += figures.late;
        m_resyncsBefore += figures.resyncs;
        m_source = source;
    }
    m_buffer.setQueue(source->queue());
    m_source->setClicking(m_isClicking);
    apply(m_state);
}

// By their timestamps: they come as fast as the network likes.
void SendspinPlayer::measure(const SendspinAudioChunk &chunk) {
    std::int64_t elapsed = 0;
    if (__builtin_sub_overflow(chunk.timestamp, m_measuredFrom, &elapsed))
        elapsed = -1;
    if (m_measuredBytes > 0 && elapsed >= bitrateSpan && elapsed < 4 * bitrateSpan)
        m_bitrate = static_cast<int>(m_measuredBytes * 8000 / elapsed);
    if (m_measuredBytes == 0 || elapsed < 0 || elapsed >= bitrateSpan) {
        m_measuredFrom = chunk.timestamp;
        m_measuredBytes = 0;
    }
    m_measuredBytes += chunk.data.size();
}

SendspinFigures SendspinPlayer::figures() const {
    const SendspinTimeFilter filter = m_session.clock().filter;
    const MutexLock lock(m_sourceMutex);
    const SendspinSource::Figures source = m_source->figures();
    const SendspinFrameQueue &queue = m_source->queue();
    const double decodedMs = static_cast<double>(queue.buffered()) * 1000 / queue.sampleRate;
    return {.offset = filter.offset(),
            .drift = filter.drift(),
            .clockError = filter.error(),
            .error = source.error,
            .ratio = source.ratio,
            .bufferedMs = static_cast<double>(m_buffer.duration()) / 1000 + decodedMs,
            .bufferedBytes = m_buffer.bytes(),
            .bitrate = m_bitrate,
            .late = m_lateBefore + source.late + m_buffer.late(),
            .dropped = m_buffer.dropped(),
            .resyncs = m_resyncsBefore + source.resyncs,
            .isPlaying = source.isPlaying};
}

} // namespace vantor
