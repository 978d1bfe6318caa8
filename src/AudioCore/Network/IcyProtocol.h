#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// What radio servers say between and before the sound. Pure; any thread.
namespace vantor::IcyProtocol {

inline constexpr qsizetype longestHead = 16 * 1024; ///< bytes of a status line with its headers

/// The head of an answer.
struct Head {
    int status = 0;
    QHash<QByteArray, QByteArray> headers; ///< names in lower case
    qsizetype length = 0;                  ///< bytes, the empty line included

    bool operator==(const Head &) const = default;
};

/// The head at the start of the bytes: "ICY 200 OK" or of HTTP 1. None when it is not there whole; status 0
/// when these bytes are no head, or a longer one than can be.
[[nodiscard]] std::optional<Head> parseHead(const QByteArray &bytes);

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
