#include "SkinKit/Loading/SkinFileGatherer_p.h"

#include <array>

namespace vantor {

namespace {

constexpr std::int64_t chunkBytes = 16'384;
// The declared size is a hint and may lie: no more than this is reserved on its word.
constexpr std::int64_t maxReservedBytes = 1'048'576;
// Spare room that is not worth giving back.
constexpr qsizetype smallBytes = 256;
// Thousands of entries may point at one and the same bomb, each dropped after its eight megabytes. Far above
// what a sound archive wastes, this ends such a walk within a second or two.
constexpr std::int64_t maxDiscardedBytes = 268'435'456;

QString extensionOf(const QString &key) {
    const qsizetype dot = key.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? key.mid(dot + 1) : QString();
}

} // namespace

QString skinFileKey(const QString &path) {
    const qsizetype slash = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return path.mid(slash + 1).toLower();
}

bool SkinFileGatherer::isFull() const {
    return m_total >= m_limits.maxTotalBytes || m_discarded >= maxDiscardedBytes;
}

QString SkinFileGatherer::wantedKey(const QString &path, std::int64_t declaredSize) const {
    const QString key = skinFileKey(path);
    const bool wanted = !key.isEmpty() && !m_files.contains(key) &&
                        m_limits.allowedExtensions.contains(extensionOf(key)) &&
                        declaredSize <= m_limits.maxEntryBytes;
    return wanted ? key : QString();
}

void SkinFileGatherer::take(const QString &key, std::int64_t declaredSize, const Read &read) {
    QByteArray bytes;
    bytes.reserve(std::clamp<std::int64_t>(declaredSize, 0, maxReservedBytes));
    bool sound = false;
    try {
        sound = readAll(bytes, read);
    } catch (const SkinArchive::LimitExceeded &) { // dropped like a damaged one
    }
    if (!sound) {
        m_discarded += bytes.size();
        return;
    }
    m_total += bytes.size();
    if (bytes.capacity() > 2 * bytes.size() + smallBytes)
        bytes.squeeze();
    m_files.insert(key, bytes);
}

bool SkinFileGatherer::readAll(QByteArray &bytes, const Read &read) const {
    std::array<char, chunkBytes> overflow;
    for (;;) {
        // Straight into the reserved room; the buffer on the stack finds the end, or more than was declared.
        const qsizetype used = bytes.size();
        const std::int64_t room = std::min<std::int64_t>(bytes.capacity() - used, chunkBytes);
        std::int64_t count = 0;
        if (room > 0) {
            bytes.resize(used + room);
            count = read(bytes.data() + used, room);
            bytes.resize(used + std::max<std::int64_t>(count, 0));
        } else {
            count = read(overflow.data(), chunkBytes);
            bytes.append(overflow.data(), std::max<std::int64_t>(count, 0));
        }
        if (count <= 0)
            return count == 0;
        if (bytes.size() > m_limits.maxEntryBytes || bytes.size() > m_limits.maxTotalBytes - m_total)
            throw SkinArchive::LimitExceeded();
    }
}

} // namespace vantor
