#include "SendspinPlayback/Source/SendspinSource.h"

#include <cmath>

namespace vantor {

static constexpr int blockFrames = 512;       // the ratio is set anew that often at least
static constexpr double jumpError = 0.020;    // seconds: what is not corrected gradually
static constexpr double jumpPatience = 0.050; // seconds: one wrong latency is no reason
static constexpr std::int64_t longBreak =
    200'000;                                 // microseconds: whoever renders has rested, and the sound is old
static constexpr double fadeSeconds = 0.005; // of jumps
static constexpr double volumeSeconds = 0.020; // of changes of the volume
static constexpr double leastStart = 0.020;    // seconds that are there before it begins
static constexpr double microseconds = 1'000'000;

SendspinSource::SendspinSource(int sampleRate)
    : m_rate(sampleRate), m_fadeFrames(std::max(1, static_cast<int>(fadeSeconds * sampleRate))),
      m_queue(sampleRate, queueFrames(sampleRate)), m_click(sampleRate) {}

void SendspinSource::setVolume(int volume) {
    const float part = static_cast<float>(std::clamp(volume, 0, 100)) / 100;
    m_wantedVolume.store(part * std::sqrt(part), std::memory_order_relaxed); // the power of 1.5
}

SendspinSource::Figures SendspinSource::figures() const {
    constexpr auto relaxed = std::memory_order_relaxed;
    return {.isPlaying = m_toldPlaying.load(relaxed),
            .error = m_toldError.load(relaxed),
            .ratio = m_toldRatio.load(relaxed),
            .late = m_toldLate.load(relaxed),
            .resyncs = m_toldResyncs.load(relaxed)};
}

void SendspinSource::render(float *interleaved, int frames, std::int64_t whenHeard) {
    m_now = m_timing.read();
    if (m_isPlaying && std::abs(whenHeard - m_queue.heardUpTo.load(std::memory_order_relaxed)) > longBreak) {
        m_isPlaying = false;
        ++m_resyncCount;
    }
    const auto timeOf = [this, whenHeard](int frame) {
        return whenHeard + std::int64_t{frame} * 1'000'000 / m_rate;
    };
    for (int done = 0; done < frames; done += blockFrames)
        renderBlock(interleaved + std::ptrdiff_t{2} * done, std::min(blockFrames, frames - done),
                    timeOf(done));
    applyVolume(interleaved, frames);
    m_click.mix(interleaved, frames, whenHeard, m_now);

    constexpr auto relaxed = std::memory_order_relaxed;
    m_queue.heardUpTo.store(timeOf(frames), relaxed);
    m_toldPlaying.store(m_isPlaying, relaxed);
    m_toldError.store(m_isPlaying ? m_control.error() : 0, relaxed);
    m_toldRatio.store(m_isPlaying ? m_ratio : 1, relaxed);
    m_toldLate.store(m_lateCount, relaxed);
    m_toldResyncs.store(m_resyncCount, relaxed);
}

void SendspinSource::renderBlock(float *out, int frames, std::int64_t whenHeard) {
    const int silent = m_isPlaying ? 0 : startIn(frames, whenHeard);
    std::fill(out, out + std::ptrdiff_t{2} * silent, 0.0F);
    int done = silent;
    if (done < frames)
        done += play(out + std::ptrdiff_t{2} * done, frames - done,
                     whenHeard + std::int64_t{done} * 1'000'000 / m_rate);
    std::fill(out + std::ptrdiff_t{2} * done, out + std::ptrdiff_t{2} * frames, 0.0F);
}

/// How many frames a segment has been under way at that instant.
double SendspinSource::offsetIn(const SendspinFrameQueue::Segment &segment, std::int64_t whenHeard) const {
    return static_cast<double>(whenHeard - m_now.playoutTime(segment.timestamp)) * m_rate / microseconds;
}

std::uint64_t SendspinSource::segmentEnd(std::uint64_t number, std::uint64_t written) const {
    return number + 1 < m_queue.segments.written() ? std::min(written, m_queue.segments.at(number + 1).first)
                                                   : written;
}

/// What sounds without a break from the segment that is being played on.
SendspinSource::Run SendspinSource::currentRun() const {
    const auto written = static_cast<std::int64_t>(m_queue.ring.written()); // before the segments
    const std::uint64_t last = m_queue.segments.written();
    const auto released = static_cast<std::int64_t>(m_queue.ring.released());
    for (std::uint64_t number = m_queue.segments.released() + 1; number < last; ++number) {
        const SendspinFrameQueue::Segment &segment = m_queue.segments.at(number);
        const auto first = static_cast<std::int64_t>(segment.first);
        if (!segment.continuesLast && first <= written)
            return {.first = released, .end = first, .isCut = true};
    }
    return {.first = released, .end = written, .isCut = false};
}

void SendspinSource::skipSegment(std::uint64_t end) {
    m_queue.ring.release(std::max(end, m_queue.ring.released()));
    m_queue.segments.release(m_queue.segments.released() + 1);
}

/// Looks for what is to be heard in the next frames. Returns how many of them stay silent before it begins.
int SendspinSource::startIn(int frames, std::int64_t whenHeard) {
    if (!m_now.isKnown)
        return frames;
    for (;;) {
        const std::uint64_t written = m_queue.ring.written();
        const std::uint64_t number = m_queue.segments.released();
        if (number == m_queue.segments.written())
            return frames;
        const SendspinFrameQueue::Segment segment = m_queue.segments.at(number);
        const bool isLast = number + 1 == m_queue.segments.written();
        const std::uint64_t end = segmentEnd(number, written);
        if (segment.first >= end && isLast)
            return frames; // its frames are just coming
        const double offset = offsetIn(segment, whenHeard);
        const bool isDropped = end <= m_queue.keptFrom();
        if (isDropped || offset >= static_cast<double>(end - segment.first)) {
            if (!isDropped && segment.first >= m_playedTo)
                ++m_lateCount;
            skipSegment(end);
            continue;
        }
        const auto earliest = static_cast<double>(std::max(segment.first, m_queue.ring.released()));
        const double now = static_cast<double>(segment.first) + offset;
        const double wait = std::max(0.0, std::ceil(earliest - now));
        if (wait >= frames)
            return frames;
        m_position = now + wait;
        const Run run = currentRun();
        if (!run.isCut && static_cast<double>(run.end) - m_position < leastStart * m_rate)
            return frames;
        m_isPlaying = true;
        m_isLeaving = m_isOff = false;
        m_offFor = 0;
        m_control.forgetError();
        m_fade.set(0);
        return static_cast<int>(wait);
    }
}

void SendspinSource::enterSegments() {
    for (;;) {
        const std::uint64_t next = m_queue.segments.released() + 1;
        if (next >= m_queue.segments.written())
            return;
        const SendspinFrameQueue::Segment &segment = m_queue.segments.at(next);
        if (!segment.continuesLast || m_position < static_cast<double>(segment.first))
            return;
        m_queue.segments.release(next);
    }
}

void SendspinSource::noteError(double error, double elapsed) {
    m_offFor = std::abs(error) > jumpError ? m_offFor + elapsed : 0;
    if (m_offFor > jumpPatience)
        m_isLeaving = m_isOff = true;
}

/// Returns how many frames there was sound for.
int SendspinSource::play(float *out, int frames, std::int64_t whenHeard) {
    enterSegments();
    const Run run = currentRun();
    const SendspinFrameQueue::Segment &segment = m_queue.segments.at(m_queue.segments.released());
    if (segment.first < m_queue.keptFrom())
        m_isLeaving = true;
    const double elapsed = static_cast<double>(frames) / m_rate;
    const double offset = offsetIn(segment, whenHeard);
    const double error = (m_position - static_cast<double>(segment.first) - offset) / m_rate;
    noteError(error, elapsed);
    const double ratio = m_offFor > 0 ? m_ratio : m_control.update(error, elapsed);
    const double step = (ratio - m_ratio) / frames; // a bend instead of a step

    int done = 0;
    for (; done < frames; ++done) {
        const double left = static_cast<double>(run.end) - m_position;
        const bool isEnding = m_isLeaving || left <= m_fadeFrames;
        m_fade.moveTo(isEnding ? 0.0F : 1.0F, m_fadeFrames);
        if (isEnding && !m_fade.isMoving()) {
            stop(run);
            break;
        }
        const float gain = m_fade.next();
        const StereoFrame frame = m_interpolator.at(m_queue.ring, m_position, run.first, run.end);
        *out++ = frame.left * gain;
        *out++ = frame.right * gain;
        m_ratio += step;
        m_position += m_ratio;
    }
    releasePlayed();
    return done;
}

void SendspinSource::stop(const Run &run) {
    const bool isDropped = static_cast<std::uint64_t>(std::max(0.0, m_position)) < m_queue.keptFrom();
    if (!isDropped && (m_isOff || !run.isCut))
        ++m_resyncCount;
    m_isPlaying = false;
}

void SendspinSource::releasePlayed() {
    const auto position = static_cast<std::uint64_t>(m_position);
    m_playedTo = std::max(m_playedTo, position);
    const std::uint64_t needed = position - std::min<std::uint64_t>(position, SendspinInterpolator::before);
    const std::uint64_t released = m_queue.ring.released();
    m_queue.ring.release(std::clamp(needed, released, std::max(released, m_queue.ring.written())));
}

void SendspinSource::applyVolume(float *interleaved, int frames) {
    const int steps = static_cast<int>(volumeSeconds * m_rate);
    m_volume.moveTo(m_wantedVolume.load(std::memory_order_relaxed), steps);
    m_mute.moveTo(m_wantedMute.load(std::memory_order_relaxed), steps);
    for (int frame = 0; frame < frames; ++frame) {
        const float gain = m_volume.next() * m_mute.next();
        *interleaved++ *= gain;
        *interleaved++ *= gain;
    }
}

} // namespace vantor
