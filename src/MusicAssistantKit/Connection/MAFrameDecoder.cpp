#include "MusicAssistantKit/Connection/MAFrameDecoder_p.h"
#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"

#include <QtConcurrentRun>

namespace vantor {

namespace {
constexpr qsizetype longFrame = 32 << 10; // less than half a millisecond's work
constexpr qsizetype maxWaiting = 2 * maxFrameBytes;
} // namespace

MAFrameDecoder::MAFrameDecoder() {
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &MAFrameDecoder::announce);
}

bool MAFrameDecoder::add(const QString &text) {
    if (isIdle() && text.size() < longFrame) {
        Q_EMIT decoded(MAEnvelope::decode(text));
        return true;
    }
    if (m_waitingLength + text.size() > maxWaiting)
        return false;
    m_waiting.push_back(text);
    m_waitingLength += text.size();
    if (m_waiting.size() == 1)
        decodeFirst();
    return true;
}

void MAFrameDecoder::decodeFirst() {
    m_watcher.setFuture(QtConcurrent::run(&MAEnvelope::decode, m_waiting.front()));
}

void MAFrameDecoder::announce() {
    const MAEnvelope envelope = m_watcher.result();
    m_waitingLength -= m_waiting.front().size();
    m_waiting.pop_front();
    if (!m_waiting.empty())
        decodeFirst();
    Q_EMIT decoded(envelope);
}

} // namespace vantor
