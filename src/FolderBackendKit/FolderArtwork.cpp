#include "FolderBackendKit/FolderArtwork.h"

#include "AudioCore/NowPlaying/EmbeddedArtworkLoader.h"
#include "AudioCore/Queue/AudioFileNames.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/NativePath.h"
#include "Platform/PictureDecoder.h"

#include <QBuffer>

namespace vantor::FolderArtwork {

namespace {

constexpr int maxSide = 4096;
constexpr qsizetype maxAttempts = 8; ///< at what lies in a folder
constexpr int jpegQuality = 90;

QString nameOf(const QString &path) {
    return path.sliced(path.lastIndexOf(u'/') + 1).toLower();
}

/// The lower, the more likely it is the front.
int rank(const QString &path) {
    const QString name = nameOf(path);
    if (const qsizetype place = coverNames().indexOf(name); place >= 0)
        return static_cast<int>(place);
    int worse = static_cast<int>(coverNames().size());
    for (const char *part : {"front", "cover", "folder", "album"}) {
        if (name.contains(QLatin1String(part)) && !name.contains(QLatin1String("back")))
            return worse;
        ++worse;
    }
    return worse;
}

QImage decoded(const QString &path, int side) {
    return decodePicture(NativePath::read(path, EmbeddedArtworkLoader::maxBytes), side,
                         EmbeddedArtworkLoader::maxPixels);
}

QImage embedded(const QString &path, int side) {
    const QImage image = EmbeddedArtworkLoader::load(path);
    if (image.width() <= side && image.height() <= side)
        return image;
    return image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The images of a folder, the best first, and its first audio file.
QStringList candidates(const QString &folder) {
    QStringList images;
    QString track;
    for (const QString &name : NativePath::files(folder)) {
        if (AudioFileNames::isAudioFile(name))
            track = track.isEmpty() ? name : track;
        else
            images.append(name);
    }
    std::ranges::sort(images, {}, [](const QString &name) { return std::pair(rank(name), name); });
    images = images.first(std::min(images.size(), maxAttempts));
    if (!track.isEmpty())
        images.append(track);
    return images;
}

QImage load(const QString &path, int side) {
    return AudioFileNames::isAudioFile(path) ? embedded(path, side) : decoded(path, side);
}

QImage find(const QString &path, int side) {
    if (const QImage image = load(path, side); !image.isNull())
        return image;
    const QString folder = path.first(path.lastIndexOf(u'/'));
    for (const QString &name : candidates(folder)) {
        if (const QImage image = load(folder + u'/' + name, side); !image.isNull())
            return image;
    }
    return {};
}

QByteArray encoded(const QImage &image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const bool isOpaque = !image.hasAlphaChannel();
    image.save(&buffer, isOpaque ? "JPEG" : "PNG", isOpaque ? jpegQuality : -1);
    return bytes;
}

} // namespace

const QStringList &coverNames() {
    static const QStringList value{
        QStringLiteral("cover.jpg"),  QStringLiteral("cover.jpeg"),  QStringLiteral("cover.png"),
        QStringLiteral("folder.jpg"), QStringLiteral("folder.jpeg"), QStringLiteral("folder.png"),
        QStringLiteral("front.jpg"),  QStringLiteral("front.png"),   QStringLiteral("album.jpg"),
        QStringLiteral("album.png"),
    };
    return value;
}

std::optional<Image> best(const std::vector<Image> &images) {
    const auto found =
        std::ranges::min_element(images, {}, [](const Image &image) { return rank(image.relativePath); });
    return found == images.end() ? std::nullopt : std::optional(*found);
}

ArtworkRef ref(const QString &relativePath, double modified) {
    return {QString::number(static_cast<qint64>(modified * 1000), 36) + u':' + relativePath};
}

QByteArray data(const ArtworkRef &ref, const QString &root, int maxPixels) {
    const QString path = ref.rawValue.section(u':', 1);
    const int side = std::clamp(maxPixels, 1, maxSide);
    // A name that came back from somewhere else must not lead out of the folder.
    const bool leadsOut = path.isEmpty() || path.split(u'/').contains(QLatin1String(".."));
    const QImage image = leadsOut ? QImage() : find(root + u'/' + path, side);
    if (image.isNull())
        throw MusicBackendError::backend(QStringLiteral("The album art is missing."));
    return encoded(image);
}

} // namespace vantor::FolderArtwork
