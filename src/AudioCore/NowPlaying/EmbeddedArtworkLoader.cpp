#include "AudioCore/NowPlaying/EmbeddedArtworkLoader.h"

#include "Platform/NativePath.h"
#include "Platform/PictureDecoder.h"

#include <QFileInfo>

#include <sys/stat.h>
#include <taglib/aifffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

namespace vantor {

namespace {

QByteArray bytesOf(const TagLib::ByteVector &vector) {
    if (vector.size() > EmbeddedArtworkLoader::maxBytes)
        return {};
    return {vector.data(), static_cast<qsizetype>(vector.size())};
}

/// The front cover, else the first of the pictures.
template <class Picture>
const Picture *chosen(const std::vector<const Picture *> &pictures) {
    const auto front = std::ranges::find(pictures, Picture::FrontCover, &Picture::type);
    if (front != pictures.end())
        return *front;
    return pictures.empty() ? nullptr : pictures.front();
}

QByteArray inID3(const TagLib::ID3v2::Tag *tag) {
    using Picture = TagLib::ID3v2::AttachedPictureFrame;
    std::vector<const Picture *> pictures;
    if (tag) {
        for (const TagLib::ID3v2::Frame *frame : tag->frameList("APIC")) {
            if (const auto *picture = dynamic_cast<const Picture *>(frame))
                pictures.push_back(picture);
        }
    }
    const Picture *const picture = chosen(pictures);
    return picture ? bytesOf(picture->picture()) : QByteArray();
}

QByteArray inFLAC(const TagLib::List<TagLib::FLAC::Picture *> &list) {
    using Picture = TagLib::FLAC::Picture;
    const Picture *const picture = chosen(std::vector<const Picture *>(list.begin(), list.end()));
    return picture ? bytesOf(picture->data()) : QByteArray();
}

QByteArray inMP4(const TagLib::MP4::Tag *tag) {
    if (!tag || !tag->contains("covr"))
        return {};
    const TagLib::MP4::CoverArtList covers = tag->item("covr").toCoverArtList();
    return covers.isEmpty() ? QByteArray() : bytesOf(covers.front().data());
}

QByteArray embedded(const QString &path) {
    const TagLib::FileRef reference(NativePath::bytes(path).constData(), false);
    if (reference.isNull())
        return {};
    TagLib::File *const file = reference.file();
    if (auto *mpeg = dynamic_cast<TagLib::MPEG::File *>(file))
        return inID3(mpeg->ID3v2Tag());
    if (auto *flac = dynamic_cast<TagLib::FLAC::File *>(file)) {
        const QByteArray picture = inFLAC(flac->pictureList());
        return picture.isEmpty() ? inID3(flac->ID3v2Tag()) : picture;
    }
    if (auto *mp4 = dynamic_cast<TagLib::MP4::File *>(file))
        return inMP4(mp4->tag());
    if (auto *wav = dynamic_cast<TagLib::RIFF::WAV::File *>(file))
        return inID3(wav->ID3v2Tag());
    if (auto *aiff = dynamic_cast<TagLib::RIFF::AIFF::File *>(file))
        return inID3(aiff->tag());
    if (auto *comment = dynamic_cast<TagLib::Ogg::XiphComment *>(file->tag()))
        return inFLAC(comment->pictureList());
    return {};
}

QImage decoded(const QByteArray &bytes) {
    return decodePicture(bytes, EmbeddedArtworkLoader::largestSide, EmbeddedArtworkLoader::maxPixels);
}

/// In the order in which they count.
QImage beside(const QString &path) {
    static const QStringList names{QStringLiteral("cover"), QStringLiteral("folder"),
                                   QStringLiteral("front")};
    static const QStringList kinds{QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("png")};
    std::map<qsizetype, QString> found; // by rank
    const QString folder = path.first(path.lastIndexOf(u'/') + 1);
    for (const QString &file : NativePath::files(folder)) {
        const QFileInfo parts(file);
        const qsizetype name = names.indexOf(parts.completeBaseName().toLower());
        const qsizetype kind = kinds.indexOf(parts.suffix().toLower());
        if (name >= 0 && kind >= 0)
            found.emplace(name * kinds.size() + kind, folder + file);
    }
    for (const auto &[rank, picture] : found) {
        const QByteArray bytes = NativePath::read(picture, EmbeddedArtworkLoader::maxBytes);
        if (const QImage image = decoded(bytes); !image.isNull())
            return image;
    }
    return {};
}

} // namespace

EmbeddedArtworkLoader::EmbeddedArtworkLoader() {
    m_pool.setMaxThreadCount(1);
}

EmbeddedArtworkLoader::~EmbeddedArtworkLoader() {
    cancel();
}

void EmbeddedArtworkLoader::cancel() {
    ++*m_latest;
}

void EmbeddedArtworkLoader::request(const QString &path, std::function<void(const QImage &)> found) {
    const quint64 number = ++*m_latest;
    m_pool.start([this, path, number, latest = m_latest, found = std::move(found)] {
        if (*latest != number)
            return; // many tracks went by before this one's turn came
        const QImage image = load(path);
        if (image.isNull())
            return;
        QMetaObject::invokeMethod(
            this,
            [number, latest, found, image] {
                if (*latest == number)
                    found(image);
            },
            Qt::QueuedConnection);
    });
}

QImage EmbeddedArtworkLoader::load(const QString &path) {
    struct stat status;
    const bool isThere = stat(NativePath::bytes(path).constData(), &status) == 0;
    if (!isThere || !S_ISREG(status.st_mode)) // folders; also pipes, on which opening would wait
        return {};
    const QImage image = decoded(embedded(path));
    return image.isNull() ? beside(path) : image;
}

} // namespace vantor
