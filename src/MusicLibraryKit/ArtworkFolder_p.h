#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

/// The artwork cache's files: scaled pictures of one folder. Worker threads.
namespace vantor::ArtworkFolder {

/// Of a picture as it comes from a source or lies on disk; what is larger counts as none.
inline constexpr qint64 maxBytes = 32LL << 20;
inline constexpr qint64 maxPixels = 64'000'000;

/// A null image when there is no such file or it is damaged. A file that is read counts as new.
[[nodiscard]] QImage read(const QString &path, int largestSide);

struct Stored {
    QImage image;       ///< null when the bytes are no picture
    qint64 written = 0; ///< bytes; 0 when the disk did not take it
};
/// Makes a picture of a source's bytes and keeps it as a file, which is replaced at once or not at all.
[[nodiscard]] Stored store(const QString &path, const QByteArray &bytes, int largestSide);

} // namespace vantor::ArtworkFolder
