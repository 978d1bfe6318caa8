#include "AudioCore/Graph/PlayerNode.h"

namespace vantor {

// Progress travels in one atomic word, so that a reader never pairs one segment's number with the frame of
// another: 23 bits of generation, one of end, 40 of frame (66 days at 192 kHz).
static constexpr int frameBits = 40;
static constexpr std::uint64_t frameMask = (std::uint64_t{1} << frameBits) - 1;
static constexpr std::uint64_t endBit = std::uint64_t{1} << frameBits;
static constexpr std::uint32_t generationMask = (std::uint32_t{1} << 23) - 1;

// A change of loudness by several decibels is no jerk.
static constexpr double levelSeconds = 0.1;

PlayerNode::PlayerNode(int sampleRate)
    : m_fadeFrames(static_cast<int>(sampleRate * fadeSeconds)),
      m_levelFrames(static_cast<int>(sampleRate * levelSeconds)),
      m_prebufferFrames(static_cast<std::uint64_t>(sampleRate * prebufferSeconds)),
      m_frames(static_cast<std::size_t>(sampleRate * ringSeconds)) {}

void PlayerNode::follow(std::uint32_t current, const std::vector<std::uint32_t> &followers) {
    Wanted wanted{.current = current & generationMask};
    for (const std::uint32_t generation : followers) {
        if (wanted.follower == 0)
            wanted.follower = generation & generationMask;
        else
            wanted.others |= 1U << (generation - wanted.follower - 1);
    }
    m_wanted.store(wanted, std::memory_order_release);
}

PlayerNode::Progress PlayerNode::progress() const {
    const std::uint64_t word = m_progress.load(std::memory_order_acquire);
    return {.generation = static_cast<std::uint32_t>(word >> (frameBits + 1)),
            .frame = static_cast<std::int64_t>(word & frameMask),
            .ended = (word & endBit) != 0};
}

void PlayerNode::publish(bool ended) {
    const std::uint64_t generation = m_generation & generationMask;
    const std::uint64_t frame = static_cast<std::uint64_t>(m_position) & frameMask;
    m_progress.store(generation << (frameBits + 1) | (ended ? endBit : 0) | frame, std::memory_order_release);
}

bool PlayerNode::beginSegment(std::uint32_t generation, std::int64_t startFrame,
                              const ReplayGain &replayGain) {
    takeBackUnwanted();
    m_segmentStart = m_frames.written();
    const Mark mark{.number = m_segmentStart,
                    .generation = generation,
                    .startFrame = startFrame,
                    .replayGain = replayGain};
    const Begun begun{.generation = generation, .mark = m_marks.written(), .frame = m_segmentStart};
    if (m_marks.write({&mark, 1}) == 0)
        return false;
    m_begun.push_back(begun);
    return true;
}

// In a pause the audio thread lets go of nothing behind the current segment, and followers that are replaced
// there would fill the ring.
void PlayerNode::takeBackUnwanted() {
    const auto forgetPassed = [this] {
        std::erase_if(m_begun, [this](const Begun &begun) { return begun.mark < m_marks.released(); });
    };
    forgetPassed();
    Hold hold = Hold::none;
    if (!m_hold.compare_exchange_strong(hold, Hold::decoder, std::memory_order_acquire))
        return;
    forgetPassed(); // some more, until it went
    const Wanted wanted = m_wanted.load(std::memory_order_acquire);
    while (!m_begun.empty() && wanted.isOutOfDate(m_begun.back().generation)) {
        m_marks.takeBack(m_begun.back().mark);
        m_frames.takeBack(m_begun.back().frame);
        m_begun.pop_back();
    }
    m_hold.store(Hold::none, std::memory_order_release);
}

bool PlayerNode::endSegment() {
    const Mark mark{.number = m_frames.written(), .isEnd = true};
    return m_marks.write({&mark, 1}) == 1;
}

std::int64_t PlayerNode::framesAhead() const {
    return static_cast<std::int64_t>(m_frames.written() - std::max(m_segmentStart, m_frames.released()));
}

void PlayerNode::followLoudness() {
    const Loudness loudness = m_loudness.load(std::memory_order_relaxed);
    if (std::exchange(m_appliedLoudness, loudness) != loudness)
        m_level.moveTo(m_replayGain.factor(loudness.mode, loudness.holdsPeaks), m_levelFrames);
}

void PlayerNode::render(std::span<StereoFrame> frames) {
    Hold hold = Hold::none;
    if (!m_hold.compare_exchange_strong(hold, Hold::audio, std::memory_order_acquire) &&
        hold == Hold::decoder) {
        std::fill(frames.begin(), frames.end(), StereoFrame{});
        return;
    }
    renderAll(frames);
    const bool isAway =
        !m_playing.load(std::memory_order_relaxed) && !m_isJoining && (!m_inSegment || isSilent());
    m_hold.store(isAway ? Hold::none : Hold::audio, std::memory_order_release);
}

void PlayerNode::renderAll(std::span<StereoFrame> frames) {
    followLoudness();
    while (!frames.empty()) {
        const std::size_t count = renderSome(frames);
        if (count == 0)
            break;
        frames = frames.subspan(count);
    }
    m_isStarved.store(!frames.empty() && m_playing.load(std::memory_order_relaxed),
                      std::memory_order_relaxed);
    if (!frames.empty())
        m_isJoining = false;
    std::fill(frames.begin(), frames.end(), StereoFrame{});
}

std::size_t PlayerNode::renderSome(std::span<StereoFrame> frames) {
    const Wanted wanted = m_wanted.load(std::memory_order_acquire);
    const bool playing = m_playing.load(std::memory_order_acquire);
    if (!m_inSegment || (!wanted.contains(m_generation) && isSilent())) {
        m_inSegment = false;
        // A pause that comes just before a join ends its fade behind it.
        const bool fadesAcross = m_isJoining && m_gain.value() != 0.0F;
        if (!skipToSegment(wanted) || (!playing && !fadesAcross))
            return 0;
        enterSegment();
    }
    const bool audible = playing && wanted.contains(m_generation);
    if (!audible && isSilent())
        return 0;

    // In this order: a mark is written before the frames behind it.
    const std::uint64_t written = m_frames.written();
    const std::optional<Mark> mark = nextMark();
    const std::uint64_t available = (mark ? mark->number : written) - m_read;
    if (available == 0 && mark) {
        leaveSegment();
        return renderSome(frames);
    }
    if (m_buffering && available < m_prebufferFrames && !mark)
        return 0;
    if (available == 0) {
        if (audible)
            m_underruns.fetch_add(1, std::memory_order_relaxed);
        m_buffering = true;
        m_gain.set(0);
        return 0;
    }
    m_buffering = false;
    return copyFaded(frames, available, audible, mark.has_value(), wanted);
}

std::optional<PlayerNode::Mark> PlayerNode::nextMark() const {
    const std::uint64_t number = m_marks.released();
    if (number == m_marks.written())
        return std::nullopt;
    return m_marks.at(number);
}

// Lets go of everything before the next wanted segment. One that is too new stays: its request is on the way.
bool PlayerNode::skipToSegment(const Wanted &wanted) {
    const std::uint64_t written = m_frames.written();
    while (const std::optional<Mark> mark = nextMark()) {
        m_read = mark->number;
        if (!mark->isEnd && !wanted.isOutOfDate(mark->generation)) {
            m_frames.release(m_read);
            return wanted.contains(mark->generation);
        }
        m_marks.release(m_marks.released() + 1);
    }
    m_read = std::max(m_read, written);
    m_frames.release(m_read);
    return false;
}

void PlayerNode::enterSegment() {
    const Mark mark = m_marks.at(m_marks.released());
    m_marks.release(m_marks.released() + 1);
    m_generation = mark.generation;
    m_position = mark.startFrame;
    m_replayGain = mark.replayGain;
    m_level.set(m_replayGain.factor(m_appliedLoudness.mode, m_appliedLoudness.holdsPeaks));
    m_inSegment = true;
    // What fades across a join goes on.
    const bool isFading = std::exchange(m_isJoining, false) && mark.startFrame == 0 && m_gain.value() != 1.0F;
    m_buffering = !isFading;
    if (!isFading)
        m_gain.set(mark.startFrame == 0 ? 1.0F : 0.0F);
    publish(false);
}

// At the next mark: the segment's own end, or the start of a newer one after it was abandoned.
void PlayerNode::leaveSegment() {
    m_inSegment = false;
    if (m_marks.at(m_marks.released()).isEnd) {
        m_marks.release(m_marks.released() + 1);
        m_isJoining = true;
        publish(true);
    }
}

// Whether another wanted segment begins where this one ends.
bool PlayerNode::isJoined(const Wanted &wanted) const {
    const std::uint64_t number = m_marks.released();
    if (m_marks.written() - number < 2 || !wanted.contains(m_generation))
        return false;
    const Mark &end = m_marks.at(number);
    const Mark &next = m_marks.at(number + 1);
    return end.isEnd && !next.isEnd && wanted.contains(next.generation) && next.number == end.number;
}

std::size_t PlayerNode::copyFaded(std::span<StereoFrame> frames, std::size_t available, bool audible,
                                  bool endKnown, const Wanted &wanted) {
    // The last frames before the sound runs dry fade out; they are kept for that as long as more may come.
    const std::size_t fade = static_cast<std::size_t>(m_fadeFrames);
    std::size_t count = std::min(frames.size(), available);
    bool fadesOut = !audible;
    if (audible && !endKnown) {
        fadesOut = available <= fade;
        if (!fadesOut)
            count = std::min(count, available - fade);
    }
    const bool mustBeShort = fadesOut && !isJoined(wanted);
    m_gain.moveTo(fadesOut ? 0.0F : 1.0F, static_cast<int>(mustBeShort ? std::min(fade, available) : fade));
    for (std::size_t i = 0; i < count; ++i) {
        const StereoFrame &frame = m_frames.at(m_read + i);
        const float gain = m_gain.next() * m_level.next();
        frames[i] = {frame.left * gain, frame.right * gain};
        if (fadesOut && !m_gain.isMoving()) {
            count = i + 1; // silent now: what follows waits, or is dropped
            break;
        }
    }
    m_read += count;
    m_position += static_cast<std::int64_t>(count);
    m_frames.release(m_read);
    publish(false);
    return count;
}

} // namespace vantor
