#pragma once

#include <QByteArray>
#include <QHash>

#include <optional>

/// How an answer of HTTP 1 is made up, and that of radio servers older than it. Pure; any thread.
namespace vantor::HttpParsing {

inline constexpr qsizetype longestHead = 16 * 1024; ///< bytes of a status line with its headers

/// The head of an answer.
struct Head {
    int status = 0;
    QHash<QByteArray, QByteArray> headers; ///< names in lower case
    qsizetype length = 0;                  ///< bytes, the empty line included

    bool operator==(const Head &) const = default;
};

/// The head at the start of the bytes, "HTTP/1.1 200 OK" or "ICY 200 OK" and so on. None when it is not there
/// whole; status 0 when these bytes are no head, or begin a longer one than can be.
[[nodiscard]] std::optional<Head> parseHead(const QByteArray &bytes);

/// The number, if it is a whole one from 0 on.
[[nodiscard]] std::optional<qint64> number(const QByteArray &text);

/// What follows a head: a body of known length, in chunks, or up to where the connection closes.
class Body {
  public:
    Body() = default;
    explicit Body(const Head &head);

    /// The next bytes of the body, taken from the front of `bytes` with what is around them. May be empty.
    [[nodiscard]] QByteArrayView take(QByteArrayView &bytes);
    /// All of it has been taken, or nothing sensible follows.
    [[nodiscard]] bool hasEnded() const { return m_part == Part::end || m_part == Part::damage; }
    /// All of it has been taken, if the connection closes now.
    [[nodiscard]] bool isComplete() const { return m_part == Part::end || m_part == Part::untilClose; }

  private:
    enum class Part { untilClose, counted, chunkSize, chunk, chunkEnd, trailer, end, damage };

    void takeLine();

    Part m_part = Part::untilClose;
    qint64 m_left = 0; ///< bytes of the counted body or of the chunk
    QByteArray m_line; ///< around chunks, as far as it has come
};

} // namespace vantor::HttpParsing
