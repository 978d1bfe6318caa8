#pragma once

#include "AudioCore/Network/DownloadBuffer.h"
#include "AudioCore/Network/HttpExchange.h"
#include "AudioCore/Network/IcyProtocol.h"

#include <QTimer>

#include <chrono>
#include <memory>

namespace vantor {

/// How long a download waits for a server. Every wait is bounded.
struct DownloadTimings {
    std::chrono::milliseconds connect{10'000}; ///< until the request is on its way
    std::chrono::milliseconds stall{20'000};   ///< without a byte
    /// Between a drop and the next attempts to go on; when the last one fails the download has failed.
    /// Counted anew when an attempt has brought something.
    std::vector<std::chrono::milliseconds> retries{std::chrono::milliseconds(250), std::chrono::seconds(1),
                                                   std::chrono::seconds(2),        std::chrono::seconds(4),
                                                   std::chrono::seconds(8),        std::chrono::seconds(8),
                                                   std::chrono::seconds(8)};
};

/// Brings a download into its buffer: what the reader lacks first, from where it stands on. After a drop a
/// file goes on at the same byte, if it is the same file still, and radio with what is sent now. Lives on the
/// network thread.
class Downloader : public QObject {
    Q_OBJECT

  public:
    Downloader(QUrl url, std::shared_ptr<DownloadBuffer> buffer, DownloadTimings timings);

    void start();
    /// The reader has moved, or made room.
    void reconsider();

  private:
    void connectAt(qint64 position);
    void drop();
    void takeAnswer();
    [[nodiscard]] bool takeFirstAnswer(const HttpExchange::Answer &answer);
    [[nodiscard]] bool takeNextAnswer(const HttpExchange::Answer &answer);
    void takeBytes();
    void takeSound(QByteArrayView bytes);
    void takeEnd();
    void lose(const QString &reason);
    void giveUp(const QString &reason);
    [[nodiscard]] QByteArray headers(qint64 position) const;
    [[nodiscard]] bool isSameFile(const HttpExchange::Answer &answer) const;

    const QUrl m_url;
    const std::shared_ptr<DownloadBuffer> m_buffer;
    const DownloadTimings m_timings;
    HttpExchange *m_exchange = nullptr; ///< a child
    QTimer m_patience{this};
    QTimer m_retry{this};
    std::size_t m_attempts = 0; ///< since something was brought
    qint64 m_brought = 0;       ///< bytes of the present exchange
    bool m_isOver = false;

    std::optional<DownloadInfo> m_info; ///< since the first answer
    QByteArray m_validator;             ///< a strong ETag or a date of the file
    qint64 m_position = 0;              ///< where the present exchange was asked to begin
    qint64 m_surplus = 0;               ///< bytes that come again and are not wanted
    IcyProtocol::Filter m_filter{0};
};

} // namespace vantor
