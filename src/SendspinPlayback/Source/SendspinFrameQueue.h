#pragma once

#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Graph/SpscRing.h"

#include <limits>

namespace vantor {

/// Decoded sound on its way from the decoding to the audio thread, without locks: frames at the output's
/// rate, and segments that say when they are to be heard. Frames are named by their running number. Allocates
/// when made only.
class SendspinFrameQueue {
  public:
    /// Some frames in a row, up to where the next segment begins.
    struct Segment {
        std::uint64_t first = 0;    ///< the number of its first frame
        std::int64_t timestamp = 0; ///< of that frame, microseconds of the server's clock
        bool continuesLast = false; ///< the segment before it goes over into this one
    };
    static constexpr std::size_t mostSegments = 512;

    /// `rate`: of the frames, in Hz. `capacity`: how many frames it holds.
    SendspinFrameQueue(int rate, std::size_t capacity)
        : sampleRate(rate), ring(capacity), segments(mostSegments), m_capacity(capacity) {}

    /// Appends a segment for which there is room. Decoding thread.
    void append(std::int64_t timestamp, bool continuesLast, std::span<const StereoFrame> frames) {
        // Before its frames: so none of them is taken for one of the last segment.
        const Segment segment{ring.written(), timestamp, continuesLast};
        segments.write({&segment, 1});
        ring.write(frames);
    }
    /// For that many frames in two segments. Decoding thread.
    [[nodiscard]] bool hasRoom(std::size_t frames) const {
        return buffered() + frames <= m_capacity &&
               segments.written() - segments.released() + 2 <= mostSegments;
    }
    /// Has the source let go of everything that is in it now. Decoding thread.
    void drop() { m_keptFrom.store(ring.written(), std::memory_order_release); }

    /// The frames before this one are not to be heard any more. Audio thread.
    [[nodiscard]] std::uint64_t keptFrom() const { return m_keptFrom.load(std::memory_order_acquire); }
    /// Frames that it holds. Either thread.
    [[nodiscard]] std::uint64_t buffered() const {
        const std::uint64_t released = ring.released(); // first: it never overtakes what is written
        return ring.written() - released;
    }

    const int sampleRate; ///< in Hz
    SpscRing<StereoFrame> ring;
    SpscRing<Segment> segments;
    /// When the last frame that was rendered is heard, microseconds of the local clock. Any thread.
    std::atomic<std::int64_t> heardUpTo{std::numeric_limits<std::int64_t>::min()};

  private:
    const std::size_t m_capacity;
    std::atomic<std::uint64_t> m_keptFrom{0};
};

} // namespace vantor
