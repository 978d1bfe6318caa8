#pragma once

#include "AudioCore/Network/ProgressiveError.h"
#include "Platform/ThreadSafety.h"

#include <QTemporaryFile>
#include <QUrl>

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace vantor {

/// What the server says about a download in the head of its answer.
struct DownloadInfo {
    QUrl url;                   ///< where redirections have led to
    std::optional<qint64> size; ///< bytes; none when it has no end or nobody knows
    bool isSeekable = false;    ///< the server sends parts
    bool isLive = false;        ///< radio
    QByteArray contentType;     ///< in lower case, without parameters
    QString stationName;
    std::optional<int> bitrate; ///< kbit/s
};

/// How a download stands, for those who show it.
struct DownloadStatus {
    bool isWaiting = false; ///< the reader waits for bytes
    bool isLive = false;
    std::optional<double> bufferedFraction; ///< 0…1 of the file: up to where it is there from the reader on
    std::optional<QString> title;           ///< of a radio programme, as the reader hears it
    QString stationName;
    std::optional<int> bitrate; ///< kbit/s

    bool operator==(const DownloadStatus &) const = default;
};

/// What of a download is there, between the network thread that brings bytes and the thread that reads them.
/// Bytes lie in blocks in a nameless temporary file of bounded size; the blocks farthest from the reader make
/// room for nearer ones. Each block is filled from its start.
class DownloadBuffer {
  public:
    static constexpr qint64 blockBytes = 32 * 1024;
    static constexpr std::size_t fileBlocks = 8192; ///< 256 MiB
    static constexpr std::size_t liveBlocks = 64;   ///< half of it ahead: a minute of usual radio

    /// `onWanted` is called on the reader's thread when the network thread has something to think about.
    explicit DownloadBuffer(std::function<void()> onWanted, std::size_t mostBlocks = fileBlocks)
        : m_onWanted(std::move(onWanted)), m_mostBlocks(mostBlocks) {}

    // Reader's thread. What waits throws AudioInput::Interrupted when stopped, and ProgressiveError when no
    // more will come.
    [[nodiscard]] DownloadInfo info(const std::stop_token &stop) VANTOR_EXCLUDES(m_mutex);
    [[nodiscard]] std::size_t read(std::span<char> bytes, const std::stop_token &stop)
        VANTOR_EXCLUDES(m_mutex);
    [[nodiscard]] bool seek(qint64 position) VANTOR_EXCLUDES(m_mutex);
    [[nodiscard]] qint64 position() const VANTOR_EXCLUDES(m_mutex);

    /// Any thread.
    [[nodiscard]] DownloadStatus status() const VANTOR_EXCLUDES(m_mutex);

    // Network thread.
    void begin(const DownloadInfo &info) VANTOR_EXCLUDES(m_mutex);
    /// The first byte that the reader will lack; none when it lacks nothing.
    [[nodiscard]] std::optional<qint64> missing() const VANTOR_EXCLUDES(m_mutex);
    /// Where the next bytes belong. A place that missing() named, or where write() has come to.
    void setFetchPosition(qint64 position) VANTOR_EXCLUDES(m_mutex);
    [[nodiscard]] qint64 fetchPosition() const VANTOR_EXCLUDES(m_mutex);
    /// How many bytes write() takes now; 0 also where the bytes are there already.
    [[nodiscard]] qint64 room() VANTOR_EXCLUDES(m_mutex);
    /// At most room() bytes.
    void write(QByteArrayView bytes) VANTOR_EXCLUDES(m_mutex);
    /// A title that begins with the next byte.
    void addTitle(const QString &title) VANTOR_EXCLUDES(m_mutex);
    /// A download of unknown size is complete.
    void end() VANTOR_EXCLUDES(m_mutex);
    void fail(const ProgressiveError &error) VANTOR_EXCLUDES(m_mutex);

  private:
    /// Without a buffer of Qt's, in which bytes could be older than those in the file.
    class SpoolFile : public QTemporaryFile {
      public:
        bool openUnbuffered() { return QTemporaryFile::open(ReadWrite | Unbuffered); }
    };

    struct Block {
        qint64 slot = 0; ///< its place in the file, in blocks
        qint64 filled = 0;
    };

    [[nodiscard]] qint64 coveredEnd(qint64 position) const VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] bool isMissing() const VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] Block *blockToFill() VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] std::optional<qint64> farthestBlock() const VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] qint64 distance(qint64 index) const VANTOR_REQUIRES(m_mutex);
    void failWith(const ProgressiveError &error) VANTOR_REQUIRES(m_mutex);
    void forgetTitles() VANTOR_REQUIRES(m_mutex);

    const std::function<void()> m_onWanted;
    const std::size_t m_mostBlocks;
    mutable Mutex m_mutex;
    std::condition_variable_any m_changed;
    std::optional<DownloadInfo> m_info VANTOR_GUARDED_BY(m_mutex);
    std::optional<ProgressiveError> m_error VANTOR_GUARDED_BY(m_mutex);
    std::map<qint64, Block> m_blocks VANTOR_GUARDED_BY(m_mutex); ///< by their place in the download
    SpoolFile m_file VANTOR_GUARDED_BY(m_mutex);
    qint64 m_read VANTOR_GUARDED_BY(m_mutex) = 0;
    qint64 m_fetch VANTOR_GUARDED_BY(m_mutex) = 0;
    bool m_isWaiting VANTOR_GUARDED_BY(m_mutex) = false;
    bool m_isFull VANTOR_GUARDED_BY(m_mutex) = false;
    std::deque<std::pair<qint64, QString>> m_titles VANTOR_GUARDED_BY(m_mutex); ///< with their first bytes
};

} // namespace vantor
