#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What radio servers say between the sound. Pure; any thread.
namespace vantor::IcyProtocol {

/// The value of StreamTitle in a block of metadata, "Artist - Title" or the like, in UTF-8 or Windows-1252.
/// None when the block does not speak of it; empty when nothing has a title now.
[[nodiscard]] std::optional<QString> streamTitle(QByteArrayView block);

/// Takes the blocks of metadata, one after every `interval` bytes of sound, out of a stream.
class Filter {
  public:
    /// 0: there are none.
    explicit Filter(int interval) : m_interval(interval), m_soundLeft(interval) {}

    /// The next bytes of sound, taken from the front of `bytes` with the metadata before them. Empty only
    /// when `bytes` is.
    [[nodiscard]] QByteArrayView take(QByteArrayView &bytes);
    /// The title that begins behind the sound that take() gave last.
    [[nodiscard]] std::optional<QString> takeTitle() { return std::exchange(m_title, std::nullopt); }

  private:
    int m_interval;
    int m_soundLeft;
    std::optional<int> m_blockLeft; ///< bytes of the block that have not come; none outside a block
    QByteArray m_block;
    std::optional<QString> m_title;
};

} // namespace vantor::IcyProtocol
