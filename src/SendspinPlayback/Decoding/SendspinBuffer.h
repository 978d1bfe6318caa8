#pragma once

#include "SendspinPlayback/Decoding/SendspinDecoder.h"
#include "SendspinPlayback/Source/SendspinFrameQueue.h"
#include "SendspinPlayback/Source/SendspinTiming.h"

#include <map>

namespace vantor {

/// What has come of a stream and not been decoded yet, in the order of its timestamps, and the decoding,
/// which is kept half a second ahead of what is heard. Everything in one thread but what says otherwise.
class SendspinBuffer {
  public:
    /// However short they are, more chunks are not held.
    static constexpr std::size_t mostChunks = 16'384;
    static constexpr std::int64_t decodeAhead = 500'000; ///< microseconds

    /// `queue`: where the sound goes; outlives this. `capacity`: bytes of coded sound that are held at most.
    SendspinBuffer(SendspinFrameQueue &queue, std::int64_t capacity);

    /// Goes on into another queue; what is decoded already stays behind in the one before.
    void setQueue(SendspinFrameQueue &queue);

    /// How the next chunks are coded; false, with a line in the log, when there is no decoder. Then they are
    /// dropped.
    bool setFormat(const SendspinStreamFormat &format);
    /// Dropped when it does not fit.
    void add(const SendspinAudioChunk &chunk);
    /// Drops everything, decoded or not.
    void clear();
    /// Also drops what comes before the next format is set.
    void end();
    /// Drops what is decoded: it was put into its order by a clock that is no longer valid.
    void dropDecoded();
    /// Drops what is too late and decodes what will be heard soon. `now`: microseconds of the local clock.
    void advance(const SendspinTiming &timing, std::int64_t now);

    // Any thread.
    [[nodiscard]] std::int64_t bytes() const { return m_bytes.load(std::memory_order_relaxed); }
    /// Chunks that did not fit, had no decoder, or were for a time that nobody waits for.
    [[nodiscard]] std::int64_t dropped() const { return m_dropped.load(std::memory_order_relaxed); }
    /// Chunks that came too late to be decoded.
    [[nodiscard]] std::int64_t late() const { return m_late.load(std::memory_order_relaxed); }
    /// How long what is not decoded yet lasts; microseconds.
    [[nodiscard]] std::int64_t duration() const { return m_span.load(std::memory_order_relaxed); }

  private:
    struct Entry {
        QByteArray data;
        std::shared_ptr<const SendspinStreamFormat> format;
    };
    using Entries = std::multimap<std::int64_t, Entry>; // a server may send anything: by their timestamps
    void forget(Entries::iterator entry);
    void dropUnplayable(const SendspinTiming &timing, std::int64_t now);
    void decode(std::int64_t timestamp, const Entry &entry);
    void endSound();

    SendspinFrameQueue *m_queue;
    const std::int64_t m_capacity;
    SendspinDecoder m_decoder;
    std::shared_ptr<const SendspinStreamFormat> m_format;  ///< of what comes; none: not to be decoded
    std::shared_ptr<const SendspinStreamFormat> m_decoded; ///< of what is being decoded
    Entries m_entries;
    std::vector<StereoFrame> m_frames;
    bool m_isSounding = false;   ///< what was decoded last has an end at which more can follow
    std::int64_t m_soundEnd = 0; ///< that end: a timestamp
    std::atomic<std::int64_t> m_bytes{0};
    std::atomic<std::int64_t> m_span{0}; ///< of the entries, microseconds
    std::atomic<std::int64_t> m_dropped{0};
    std::atomic<std::int64_t> m_late{0};
};

} // namespace vantor
