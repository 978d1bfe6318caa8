#pragma once

#include "AudioCore/Graph/Ramp.h"
#include "AudioCore/Graph/SpscRing.h"
#include "AudioCore/ReplayGain.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vantor {

struct StereoFrame {
    float left = 0;
    float right = 0;

    bool operator==(const StereoFrame &) const = default;
};

/// The source of the graph: plays segments of decoded sound, one after the other without a gap.
///
/// A segment belongs to a generation, a number from 1 up to 2^23 that only grows. The current generation may
/// be heard and those that are to follow it. discardBefore() and follow() make all others fade out and
/// vanish, whatever is still queued of them, and newer ones take their place (at once in a pause, in which
/// nothing else would make room for them); so a seek, another track or a
/// change of what comes next needs no co-operation between the threads. Pause, resume, discard and a segment
/// that starts inside a track fade over a few milliseconds; a segment that starts at a track's first frame
/// plays as it is, right behind the last frame of the one before.
///
/// Three threads take part, each with its own section below; none ever waits for another.
class PlayerNode {
  public:
    static constexpr double fadeSeconds = 0.006;
    /// A segment starts to sound, and sounds again after running dry, with this much at hand.
    static constexpr double prebufferSeconds = 0.2;
    /// How much the ring holds: the sound that is decoded ahead, and as much of discarded sound before it.
    static constexpr double ringSeconds = 5;
    /// The followers' generations differ by no more than this.
    static constexpr std::uint32_t followerSpan = 16;

    /// How far the sound has come.
    struct Progress {
        std::uint32_t generation = 0; ///< of the segment that played last; 0 before the first
        std::int64_t frame = 0;       ///< in the track: the next frame to be played
        bool ended = false;           ///< the segment's last frame has been rendered

        bool operator==(const Progress &) const = default;
    };

    explicit PlayerNode(int sampleRate);

    // Main thread.
    void play() { m_playing.store(true, std::memory_order_release); }
    void pause() { m_playing.store(false, std::memory_order_release); }
    /// What is to be heard now; nothing follows it yet.
    void discardBefore(std::uint32_t generation) { follow(generation, {}); }
    /// What is to be heard now, and what after it, in this order.
    void follow(std::uint32_t current, const std::vector<std::uint32_t> &followers);
    /// How loud segments are, by what their files say; changes ramp.
    void setReplayGain(ReplayGainMode mode, bool holdsPeaks) {
        m_loudness.store({mode, holdsPeaks}, std::memory_order_relaxed);
    }
    [[nodiscard]] Progress progress() const;
    /// Whether sound was wanted lately and there was none: it has run dry, or nothing is there to play.
    [[nodiscard]] bool isStarved() const { return m_isStarved.load(std::memory_order_relaxed); }
    /// How often sound was missing in the middle of a segment.
    [[nodiscard]] int underruns() const { return m_underruns.load(std::memory_order_relaxed); }

    // Decode thread.
    /// Whether it takes from what is there, or does nothing in a pause.
    [[nodiscard]] bool isPlaying() const { return m_playing.load(std::memory_order_acquire); }
    /// What follows belongs to a new segment that starts at a frame of its track. False: try again later.
    [[nodiscard]] bool beginSegment(std::uint32_t generation, std::int64_t startFrame,
                                    const ReplayGain &replayGain = {});
    /// Takes what fits and says how much that was.
    [[nodiscard]] std::size_t write(std::span<const StereoFrame> frames) { return m_frames.write(frames); }
    /// The segment is complete. False: try again later.
    [[nodiscard]] bool endSegment();
    /// Frames of the last begun segment that wait to be played.
    [[nodiscard]] std::int64_t framesAhead() const;
    /// Whether some of the last begun segment has been played.
    [[nodiscard]] bool isSounding() const { return m_frames.released() > m_segmentStart; }
    /// Whether the last begun segment could sound now.
    [[nodiscard]] bool hasEnoughToStart() const {
        return framesAhead() >= static_cast<std::int64_t>(m_prebufferFrames);
    }

    // Audio thread: no allocation, lock or system call.
    /// Fills the frames with sound, or with silence where there is none.
    void render(std::span<StereoFrame> frames);

  private:
    // In one atomic word, so that no reader pairs a follower with the wrong track.
    struct Wanted {
        std::uint64_t current : 24 = 0;
        std::uint64_t follower : 24 = 0;         ///< the first one; 0: none
        std::uint64_t others : followerSpan = 0; ///< bit n: n + 1 generations after the first

        [[nodiscard]] bool contains(std::uint32_t generation) const {
            if (generation == current || follower == 0 || generation <= follower)
                return generation == current || (follower != 0 && generation == follower);
            const std::uint64_t place = generation - follower - 1;
            return place < followerSpan && (others >> place & 1) != 0;
        }
        [[nodiscard]] bool isOutOfDate(std::uint32_t generation) const {
            const std::uint64_t newest = follower + static_cast<std::uint64_t>(std::bit_width(others + 0U));
            return !contains(generation) && generation < std::max<std::uint64_t>(current, newest);
        }
    };
    static_assert(std::atomic<Wanted>::is_always_lock_free);

    struct Mark {
        std::uint64_t number = 0; ///< of the first frame behind the mark
        std::uint32_t generation = 0;
        bool isEnd = false;
        std::int64_t startFrame = 0;
        ReplayGain replayGain = {};
    };
    struct Loudness {
        ReplayGainMode mode = ReplayGainMode::off;
        bool holdsPeaks = true;

        bool operator==(const Loudness &) const = default;
    };
    static_assert(std::atomic<Loudness>::is_always_lock_free);

    /// Who has the rings' unplayed end to itself. Nobody waits for the other: an audio thread that comes
    /// while it is being taken back has nothing to play anyway, because it was silent before.
    enum class Hold {
        audio,  ///< sounds, or may in this very moment
        none,   ///< the audio thread is away, and was silent in a pause
        decoder ///< takes back what is not wanted any more
    };
    struct Begun {
        std::uint32_t generation = 0;
        std::uint64_t mark = 0; ///< the number of the mark at its start
        std::uint64_t frame = 0;
    };

    void takeBackUnwanted();
    void renderAll(std::span<StereoFrame> frames);
    [[nodiscard]] bool isSilent() const { return m_buffering || m_gain.value() == 0.0F; }
    std::size_t renderSome(std::span<StereoFrame> frames);
    [[nodiscard]] std::optional<Mark> nextMark() const;
    [[nodiscard]] bool skipToSegment(const Wanted &wanted);
    void enterSegment();
    void leaveSegment();
    std::size_t copyFaded(std::span<StereoFrame> frames, std::size_t available, bool audible, bool endKnown,
                          const Wanted &wanted);
    [[nodiscard]] bool isJoined(const Wanted &wanted) const;
    void publish(bool ended);
    void followLoudness();

    const int m_fadeFrames;
    const int m_levelFrames;
    const std::uint64_t m_prebufferFrames;
    SpscRing<StereoFrame> m_frames;
    SpscRing<Mark> m_marks{64};
    std::atomic<bool> m_playing{false};
    std::atomic<Wanted> m_wanted{};
    std::atomic<std::uint64_t> m_progress{0};
    std::atomic<int> m_underruns{0};
    std::atomic<Loudness> m_loudness{};
    std::atomic<bool> m_isStarved{false};
    std::atomic<Hold> m_hold{Hold::none};

    // Decode thread's.
    std::uint64_t m_segmentStart = 0;
    std::vector<Begun> m_begun; ///< the segments that the audio thread may not have come to yet

    // Audio thread's.
    std::uint64_t m_read = 0;
    std::uint32_t m_generation = 0;
    std::int64_t m_position = 0;
    bool m_inSegment = false;
    bool m_buffering = false;
    bool m_isJoining = false; ///< a segment has just ended, and nothing was heard since
    Ramp m_gain;
    Loudness m_appliedLoudness;
    ReplayGain m_replayGain; ///< of the present segment
    Ramp m_level{1};         ///< what the two come to
};

} // namespace vantor
