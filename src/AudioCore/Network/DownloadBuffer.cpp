#include "AudioCore/Network/DownloadBuffer.h"

#include "AudioCore/Decoding/AudioInput.h"
#include "Platform/AppPaths.h"

#include <QDir>

#include <algorithm>

namespace vantor {

// A place this close ahead is waited for; another request would take as long.
static constexpr qint64 soonBytes = 256 * 1024;
static constexpr std::size_t mostTitles = 256;

DownloadInfo DownloadBuffer::info(const std::stop_token &stop) {
    const MutexLock lock(m_mutex);
    m_isWaiting = true;
    m_changed.wait(m_mutex, stop, [this]() VANTOR_REQUIRES(m_mutex) { return m_info || m_error; });
    m_isWaiting = false;
    if (m_info)
        return *m_info;
    if (m_error)
        throw *m_error;
    throw AudioInput::Interrupted();
}

// Where the bytes that are there without a gap from a position on end.
qint64 DownloadBuffer::coveredEnd(qint64 position) const {
    while (true) {
        const auto block = m_blocks.find(position / blockBytes);
        if (block == m_blocks.end())
            return position;
        const qint64 end = block->first * blockBytes + block->second.filled;
        if (end <= position)
            return position;
        position = end;
        if (block->second.filled < blockBytes)
            return position;
    }
}

bool DownloadBuffer::isMissing() const {
    const auto block = m_blocks.find(m_read / blockBytes);
    const bool isThere = block != m_blocks.end() && block->second.filled > m_read % blockBytes;
    return !isThere && !(m_info && m_info->size && m_read >= *m_info->size);
}

std::size_t DownloadBuffer::read(std::span<char> bytes, const std::stop_token &stop) {
    std::size_t count = 0;
    bool wanted = false;
    {
        const MutexLock lock(m_mutex);
        m_isWaiting = isMissing() && !m_error;
        m_changed.wait(m_mutex, stop, [this]() VANTOR_REQUIRES(m_mutex) { return !isMissing() || m_error; });
        m_isWaiting = false;
        if (stop.stop_requested())
            throw AudioInput::Interrupted();
        const auto block = m_blocks.find(m_read / blockBytes);
        const qint64 offset = m_read % blockBytes;
        if (block == m_blocks.end() || block->second.filled <= offset) {
            if (isMissing() && m_error)
                throw *m_error;
            return 0;
        }
        const qint64 most = std::min(block->second.filled - offset, static_cast<qint64>(bytes.size()));
        if (!m_file.seek(block->second.slot * blockBytes + offset) || m_file.read(bytes.data(), most) != most)
            throw ProgressiveError::readFailure(m_file.errorString());
        m_read += most;
        count = static_cast<std::size_t>(most);
        forgetTitles();
        wanted = std::exchange(m_isFull, false);
    }
    if (wanted)
        m_onWanted();
    return count;
}

bool DownloadBuffer::seek(qint64 position) {
    {
        const MutexLock lock(m_mutex);
        const bool isThere = coveredEnd(position) > position || (m_info && m_info->size == position);
        const bool isSoon = position >= m_fetch && position <= m_fetch + soonBytes;
        const bool canBeAskedFor = m_info && m_info->isSeekable && position < m_info->size.value_or(0);
        if (!isThere && !isSoon && !canBeAskedFor)
            return false;
        m_read = position;
    }
    m_onWanted();
    return true;
}

qint64 DownloadBuffer::position() const {
    const MutexLock lock(m_mutex);
    return m_read;
}

DownloadStatus DownloadBuffer::status() const {
    const MutexLock lock(m_mutex);
    DownloadStatus status;
    status.isWaiting = m_isWaiting;
    if (!m_info)
        return status;
    status.isLive = m_info->isLive;
    status.stationName = m_info->stationName;
    status.bitrate = m_info->bitrate;
    if (m_info->size && *m_info->size > 0)
        status.bufferedFraction =
            static_cast<double>(coveredEnd(m_read)) / static_cast<double>(*m_info->size);
    if (!m_titles.empty() && m_titles.front().first <= m_read)
        status.title = m_titles.front().second;
    return status;
}

// All but the newest title at or before the reader, and those that it has not come to.
void DownloadBuffer::forgetTitles() {
    while (m_titles.size() > 1 && m_titles[1].first <= m_read)
        m_titles.pop_front();
}

void DownloadBuffer::begin(const DownloadInfo &info) {
    {
        const MutexLock lock(m_mutex);
        m_info = info;
        // On a disk, where the system has one for such things; memory otherwise.
        const QString folder = AppPaths::cacheFolder();
        m_file.setFileTemplate((QDir().mkpath(folder) ? folder : QDir::tempPath()) +
                               QStringLiteral("/download-XXXXXX"));
        if (!m_file.openUnbuffered())
            failWith(ProgressiveError::readFailure(m_file.errorString()));
    }
    m_changed.notify_all();
}

std::optional<qint64> DownloadBuffer::missing() const {
    const MutexLock lock(m_mutex);
    const qint64 end = coveredEnd(m_read);
    if (m_info && m_info->size && end >= *m_info->size)
        return std::nullopt;
    if (m_fetch <= end && end <= m_fetch + soonBytes && coveredEnd(m_fetch) == m_fetch)
        return m_fetch; // on its way
    // A block that is not there at all begins with its first byte.
    return m_blocks.contains(end / blockBytes) ? end : end / blockBytes * blockBytes;
}

void DownloadBuffer::setFetchPosition(qint64 position) {
    const MutexLock lock(m_mutex);
    m_fetch = position;
}

qint64 DownloadBuffer::fetchPosition() const {
    const MutexLock lock(m_mutex);
    return m_fetch;
}

qint64 DownloadBuffer::distance(qint64 index) const {
    return std::abs(index - m_read / blockBytes);
}

std::optional<qint64> DownloadBuffer::farthestBlock() const {
    if (m_blocks.empty())
        return std::nullopt;
    const qint64 first = m_blocks.begin()->first;
    const qint64 last = m_blocks.rbegin()->first;
    return distance(first) >= distance(last) ? first : last;
}

// The block at the place of the next byte, made if there is room for it; none when it must wait or is there.
DownloadBuffer::Block *DownloadBuffer::blockToFill() {
    if (m_info && m_info->size && m_fetch >= *m_info->size)
        return nullptr;
    const qint64 index = m_fetch / blockBytes;
    if (const auto present = m_blocks.find(index); present != m_blocks.end())
        return present->second.filled == m_fetch % blockBytes ? &present->second : nullptr;
    const std::size_t most = m_info && m_info->isLive ? std::min(liveBlocks, m_mostBlocks) : m_mostBlocks;
    auto slot = static_cast<qint64>(m_blocks.size());
    if (m_blocks.size() >= most) {
        const std::optional<qint64> farthest = farthestBlock();
        m_isFull = !farthest || distance(*farthest) <= distance(index);
        if (m_isFull)
            return nullptr;
        slot = m_blocks.extract(*farthest).mapped().slot;
    }
    return &m_blocks.emplace(index, Block{slot, 0}).first->second;
}

qint64 DownloadBuffer::room() {
    const MutexLock lock(m_mutex);
    const Block *const block = m_error ? nullptr : blockToFill();
    if (!block)
        return 0;
    const qint64 free = blockBytes - block->filled;
    return m_info && m_info->size ? std::min(free, *m_info->size - m_fetch) : free;
}

void DownloadBuffer::write(QByteArrayView bytes) {
    {
        const MutexLock lock(m_mutex);
        Block *const block = blockToFill();
        if (!block)
            return;
        const bool ok = m_file.seek(block->slot * blockBytes + block->filled) &&
                        m_file.write(bytes.data(), bytes.size()) == bytes.size();
        if (!ok) // the disk is full
            failWith(ProgressiveError::readFailure(m_file.errorString()));
        else
            block->filled += bytes.size();
        m_fetch += bytes.size();
    }
    m_changed.notify_all();
}

void DownloadBuffer::addTitle(const QString &title) {
    const MutexLock lock(m_mutex);
    m_titles.emplace_back(m_fetch, title);
    if (m_titles.size() > mostTitles)
        m_titles.pop_front();
    forgetTitles();
}

void DownloadBuffer::end() {
    {
        const MutexLock lock(m_mutex);
        if (m_info)
            m_info->size = m_fetch;
    }
    m_changed.notify_all();
}

void DownloadBuffer::fail(const ProgressiveError &error) {
    {
        const MutexLock lock(m_mutex);
        failWith(error);
    }
    m_changed.notify_all();
}

void DownloadBuffer::failWith(const ProgressiveError &error) {
    if (!m_error)
        m_error = error;
}

} // namespace vantor
