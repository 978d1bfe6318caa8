#include "SkinKit/Decoding/ByteReader.h"

#include <QtEndian>

namespace vantor {

std::optional<std::uint16_t> ByteReader::u16() {
    const auto field = bytes(2);
    return field ? std::optional(qFromLittleEndian<std::uint16_t>(field->data())) : std::nullopt;
}

std::optional<std::uint32_t> ByteReader::u32() {
    const auto field = bytes(4);
    return field ? std::optional(qFromLittleEndian<std::uint32_t>(field->data())) : std::nullopt;
}

std::optional<QByteArrayView> ByteReader::bytes(std::int64_t count) {
    if (count < 0 || m_position < 0 || m_position > m_bytes.size() || count > m_bytes.size() - m_position)
        return std::nullopt;
    const QByteArrayView field = m_bytes.sliced(m_position, count);
    m_position += count;
    return field;
}

} // namespace vantor
