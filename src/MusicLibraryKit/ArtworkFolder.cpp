#include "MusicLibraryKit/ArtworkFolder_p.h"
#include "Platform/PictureDecoder.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace vantor::ArtworkFolder {

namespace {

/// The bytes that reached the disk.
qint64 write(const QString &path, const QImage &image) {
    const bool isOpaque = !image.hasAlphaChannel();
    constexpr int quality = 92;
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        !image.save(&file, isOpaque ? "JPG" : "PNG", isOpaque ? quality : -1))
        return 0;
    const qint64 size = file.size();
    return file.commit() ? size : 0;
}

} // namespace

QImage read(const QString &path, int largestSide) {
    QFile file(path);
    if (file.size() > maxBytes || !file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return {};
    const QImage image = decodePicture(file.read(maxBytes), largestSide, maxPixels);
    if (!image.isNull())
        file.setFileTime(QDateTime::currentDateTime(), QFile::FileModificationTime);
    return image;
}

Stored store(const QString &path, const QByteArray &bytes, int largestSide) {
    if (bytes.size() > maxBytes)
        return {};
    Stored stored{decodePicture(bytes, largestSide, maxPixels), 0};
    if (!stored.image.isNull())
        stored.written = write(path, stored.image);
    return stored;
}

} // namespace vantor::ArtworkFolder
