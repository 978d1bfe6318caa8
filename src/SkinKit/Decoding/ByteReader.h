#pragma once

#include <QByteArrayView>

#include <cstdint>
#include <optional>

namespace vantor {

/// Reads little-endian numbers from bytes it does not own. A read that does not fit yields nothing and leaves
/// the position where it was; a position outside the data is allowed and merely makes every read fail.
class ByteReader {
  public:
    explicit ByteReader(QByteArrayView bytes, std::int64_t position = 0)
        : m_bytes(bytes), m_position(position) {}

    [[nodiscard]] std::optional<std::uint16_t> u16();
    [[nodiscard]] std::optional<std::uint32_t> u32();
    /// A view of the next `count` bytes; nothing for a negative count.
    [[nodiscard]] std::optional<QByteArrayView> bytes(std::int64_t count);

    [[nodiscard]] std::int64_t position() const { return m_position; }
    void setPosition(std::int64_t position) { m_position = position; }

  private:
    QByteArrayView m_bytes;
    std::int64_t m_position;
};

} // namespace vantor
