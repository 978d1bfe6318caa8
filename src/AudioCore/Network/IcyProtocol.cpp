#include "AudioCore/Network/IcyProtocol.h"

#include "Platform/TextDecoding.h"

#include <algorithm>

namespace vantor::IcyProtocol {

namespace {

constexpr qsizetype longestTitle = 1024;
constexpr int blockUnit = 16; // bytes per count of a block's first byte

bool isNameByte(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

/// Whether the bytes can follow a value: nothing, or the next "Name='".
bool isNextField(QByteArrayView bytes) {
    const auto *const end = std::find_if_not(bytes.begin(), bytes.end(), isNameByte);
    return end == bytes.end() || bytes.sliced(end - bytes.begin()).startsWith("='");
}

/// Where the value ends that begins at the start: quotes inside are not marked in any way.
qsizetype valueLength(QByteArrayView bytes) {
    for (qsizetype end = bytes.indexOf("';"); end >= 0; end = bytes.indexOf("';", end + 1)) {
        if (isNextField(bytes.sliced(end + 2)))
            return end;
    }
    const qsizetype quote = bytes.lastIndexOf('\'');
    return quote < 0 ? bytes.size() : quote;
}

} // namespace

std::optional<QString> streamTitle(QByteArrayView block) {
    constexpr QByteArrayView key("StreamTitle='");
    const auto *const padding = std::find(block.begin(), block.end(), '\0');
    block = block.first(padding - block.begin());
    const qsizetype start = block.indexOf(key);
    if (start < 0)
        return std::nullopt;
    const QByteArrayView value = block.sliced(start + key.size());
    return TextDecoding::lenient(value.first(valueLength(value))).left(longestTitle).simplified();
}

QByteArrayView Filter::take(QByteArrayView &bytes) {
    if (m_interval <= 0)
        return std::exchange(bytes, {});
    while (m_soundLeft == 0 && !bytes.isEmpty()) {
        if (!m_blockLeft) {
            m_blockLeft = blockUnit * static_cast<unsigned char>(bytes.front());
            bytes = bytes.sliced(1);
        }
        const qsizetype count = std::min<qsizetype>(*m_blockLeft, bytes.size());
        m_block.append(bytes.first(count));
        bytes = bytes.sliced(count);
        *m_blockLeft -= static_cast<int>(count);
        if (*m_blockLeft > 0)
            return {};
        if (const std::optional<QString> title = streamTitle(m_block))
            m_title = title;
        m_block.clear();
        m_blockLeft.reset();
        m_soundLeft = m_interval;
    }
    const QByteArrayView sound = bytes.first(std::min<qsizetype>(m_soundLeft, bytes.size()));
    bytes = bytes.sliced(sound.size());
    m_soundLeft -= static_cast<int>(sound.size());
    return sound;
}

} // namespace vantor::IcyProtocol
