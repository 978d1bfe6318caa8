#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace vantor {

/// How a made stream is coded.
struct MadeFormat {
    QString codec = QStringLiteral("flac"); ///< "pcm", "flac" or "opus"
    int sampleRate = 48'000;
    int channels = 2;
    int bitDepth = 16; ///< 16 or 24; for pcm also 32

    bool operator==(const MadeFormat &) const = default;
};

/// What sounds at a time of the made content, in seconds: a sweep that begins anew every 20 s over a little
/// noise, so that no stretch of it looks like another. −1…1.
[[nodiscard]] double madeSound(double seconds);

/// Codes the made sound, piece after piece.
class MadeEncoder {
  public:
    struct Piece {
        QByteArray data;
        int frames = 0;
    };
    /// `from`: where in the content it begins, in seconds.
    MadeEncoder(const MadeFormat &format, double from);
    ~MadeEncoder();
    /// None when there is no such codec here.
    [[nodiscard]] bool isValid() const;
    [[nodiscard]] Piece next();
    /// "fLaC" and what follows it, for flac.
    [[nodiscard]] QByteArray codecHeader() const;

  private:
    class Codec;
    [[nodiscard]] QByteArray pcm(int frames);

    const MadeFormat m_format;
    const double m_from;
    std::int64_t m_frame = 0;
    std::unique_ptr<Codec> m_codec; ///< none for pcm
};

/// A stream on the server's clock: chunks without a gap from its start on, made when they are asked for.
class MadeStream {
  public:
    struct Chunk {
        std::int64_t timestamp = 0; ///< microseconds, the server's clock
        std::int64_t end = 0;
        int formatNumber = 0; ///< counts the formats that the stream has had
        QByteArray data;
    };
    struct Coding {
        MadeFormat format;
        QByteArray codecHeader;
    };

    /// `start`: when it begins to sound.
    MadeStream(const MadeFormat &format, std::int64_t start, double from);
    /// From the next chunk that is made on.
    void changeFormat(const MadeFormat &format);

    /// Counted from 0; ones that were forgotten cannot be had again.
    [[nodiscard]] const Chunk &chunk(std::int64_t index);
    /// The first one at that time or later.
    [[nodiscard]] std::int64_t firstFrom(std::int64_t timestamp);
    [[nodiscard]] int newestFormat() const { return static_cast<int>(m_codings.size()) - 1; }
    /// What is before that chunk and has sounded.
    void forgetPlayed(std::int64_t beforeIndex, std::int64_t now);
    [[nodiscard]] const Coding &coding(int formatNumber) const {
        return m_codings[static_cast<std::size_t>(formatNumber)];
    }
    /// What sounds at a time, in seconds of the content.
    [[nodiscard]] double contentAt(std::int64_t timestamp) const;

  private:
    void encodeFromHere(const MadeFormat &format);
    void make();

    std::vector<Coding> m_codings; ///< all that there were, by their numbers
    const std::int64_t m_start;
    const double m_from;
    std::unique_ptr<MadeEncoder> m_encoder;
    std::int64_t m_encoderStart; ///< on the server's clock
    std::int64_t m_encodedFrames = 0;
    std::int64_t m_firstIndex = 0;
    std::deque<Chunk> m_chunks;
};

} // namespace vantor
