#include "SendspinPlayback/Decoding/SendspinBuffer.h"

#include <QLoggingCategory>

namespace vantor {

Q_LOGGING_CATEGORY(logBuffer, "co.kelvane.vantor.sendspin.player")

static constexpr std::int64_t furthestAhead = 300'000'000; // microseconds: nobody sends five minutes ahead
static constexpr qsizetype longestHeader = 64 * 1024;      // a real one has 42 bytes
// Timestamps are whole microseconds, and a server may round its frames: chunks this close are one sound.
static constexpr std::int64_t seam = 1000;

static std::int64_t saturatedSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum))
        return sum;
    return a < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

/// Whether they are at most `reach` apart.
static bool isNear(std::int64_t a, std::int64_t b, std::int64_t reach) {
    std::int64_t distance = 0;
    return !__builtin_sub_overflow(a, b, &distance) && distance >= -reach && distance <= reach;
}

SendspinBuffer::SendspinBuffer(SendspinFrameQueue &queue, std::int64_t capacity)
    : m_queue(&queue), m_capacity(capacity), m_decoder(queue.sampleRate) {}

void SendspinBuffer::setQueue(SendspinFrameQueue &queue) {
    m_queue = &queue;
    m_decoder = SendspinDecoder(queue.sampleRate);
    m_decoded.reset();
    m_isSounding = false;
}

bool SendspinBuffer::setFormat(const SendspinStreamFormat &format) {
    if (m_format && *m_format == format)
        return true;
    m_format.reset();
    if (!SendspinDecoder::isSupported(format) || format.codecHeader.size() > longestHeader) {
        qCWarning(logBuffer, "Sendspin stream format not supported: %s %ld bit", qUtf8Printable(format.codec),
                  static_cast<long>(format.bitDepth));
        return false;
    }
    QString reason;
    if (SendspinDecoder attempt(m_queue->sampleRate); !attempt.open(format, reason)) {
        qCWarning(logBuffer, "Sendspin stream could not start: %s", qUtf8Printable(reason));
        return false;
    }
    m_format = std::make_shared<SendspinStreamFormat>(format);
    return true;
}

void SendspinBuffer::add(const SendspinAudioChunk &chunk) {
    if (chunk.data.isEmpty())
        return;
    if (!m_format || m_entries.size() >= mostChunks || bytes() + chunk.data.size() > m_capacity) {
        ++m_dropped;
        return;
    }
    m_entries.emplace(chunk.timestamp, Entry{chunk.data, m_format});
    m_bytes += chunk.data.size();
}

void SendspinBuffer::forget(Entries::iterator entry) {
    m_bytes -= entry->second.data.size();
    m_entries.erase(entry);
}

void SendspinBuffer::clear() {
    m_entries.clear();
    m_bytes = 0;
    m_span = 0;
    dropDecoded();
}

void SendspinBuffer::end() {
    clear();
    m_format.reset();
}

void SendspinBuffer::dropDecoded() {
    m_decoder.restart();
    m_isSounding = false;
    m_queue->drop();
}

void SendspinBuffer::dropUnplayable(const SendspinTiming &timing, std::int64_t now) {
    while (!m_entries.empty() && timing.playoutTime(m_entries.rbegin()->first) > now + furthestAhead) {
        forget(std::prev(m_entries.end()));
        ++m_dropped;
    }
    // A chunk lasts until the next one begins.
    while (m_entries.size() > 1 && timing.playoutTime(std::next(m_entries.begin())->first) <= now) {
        forget(m_entries.begin());
        ++m_late;
    }
}

void SendspinBuffer::advance(const SendspinTiming &timing, std::int64_t now) {
    if (!timing.isKnown)
        return;
    const std::int64_t heard = std::max(now, m_queue->heardUpTo.load(std::memory_order_relaxed));
    dropUnplayable(timing, heard);
    // The end of the last sound may come before it.
    const auto room = static_cast<std::size_t>(SendspinDecoder::longestChunk * m_queue->sampleRate) + 4096;
    while (!m_entries.empty() && m_queue->hasRoom(room) &&
           timing.playoutTime(m_entries.begin()->first) < heard + decodeAhead) {
        const auto entry = m_entries.begin();
        decode(entry->first, entry->second);
        forget(entry);
    }
    m_span = m_entries.empty() ? 0
                               : timing.playoutTime(m_entries.rbegin()->first) -
                                     timing.playoutTime(m_entries.begin()->first);
}

/// What the resampler still holds belongs to the sound that is over.
void SendspinBuffer::endSound() {
    m_frames.clear();
    const std::int64_t due = m_decoder.framesDue() * 1'000'000 / m_queue->sampleRate;
    m_decoder.finish(m_frames);
    if (!m_frames.empty())
        m_queue->append(saturatedSum(m_soundEnd, -due), true, m_frames);
    m_isSounding = false;
}

void SendspinBuffer::decode(std::int64_t timestamp, const Entry &entry) {
    if (m_isSounding && !isNear(timestamp, m_soundEnd, seam)) {
        if (timestamp < m_soundEnd) {
            ++m_late; // what comes after it is decoded already
            return;
        }
        endSound();
    }
    if (m_decoded != entry.format) {
        QString reason;
        m_decoded = m_decoder.open(*entry.format, reason) ? entry.format : nullptr;
    }
    m_frames.clear();
    const std::int64_t due = m_isSounding ? m_decoder.framesDue() : 0;
    m_decoder.decode(entry.data, m_frames);
    if (m_frames.empty()) {
        ++m_dropped;
        return;
    }
    const auto duration = [this](std::int64_t frames) { return frames * 1'000'000 / m_queue->sampleRate; };
    const std::int64_t begin = saturatedSum(timestamp, -duration(due));
    m_queue->append(begin, m_isSounding, m_frames);
    m_isSounding = true;
    m_soundEnd =
        saturatedSum(begin, duration(static_cast<std::int64_t>(m_frames.size()) + m_decoder.framesDue()));
}

} // namespace vantor
