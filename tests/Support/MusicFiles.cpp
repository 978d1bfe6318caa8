#include "tests/Support/MusicFiles.h"

#include "tests/Support/AudioFileBuilder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRandomGenerator>

#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/xiphcomment.h>

#include <stdexcept>

namespace vantor::test {

namespace {

constexpr std::array extensions{"flac", "mp3", "ogg"};

TagLib::String tagText(const QString &text) {
    return {text.toStdString(), TagLib::String::UTF8};
}

TagLib::ByteVector tagBytes(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<unsigned>(bytes.size())};
}

TagLib::FLAC::Picture *flacPicture(const QByteArray &cover) {
    auto *picture = new TagLib::FLAC::Picture;
    picture->setType(TagLib::FLAC::Picture::FrontCover);
    picture->setMimeType("image/jpeg");
    picture->setData(tagBytes(cover));
    return picture;
}

void embed(TagLib::File *file, const QByteArray &cover) {
    if (auto *flac = dynamic_cast<TagLib::FLAC::File *>(file)) {
        flac->addPicture(flacPicture(cover));
    } else if (auto *mpeg = dynamic_cast<TagLib::MPEG::File *>(file)) {
        auto *frame = new TagLib::ID3v2::AttachedPictureFrame;
        frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
        frame->setMimeType("image/jpeg");
        frame->setPicture(tagBytes(cover));
        mpeg->ID3v2Tag(true)->addFrame(frame);
    } else if (auto *comment = dynamic_cast<TagLib::Ogg::XiphComment *>(file->tag())) {
        comment->addPicture(flacPicture(cover));
    }
}

QString word(int number) {
    static const std::array words{"Amber", "Río",   "Night",  "Glass",  "Café",   "Stone",  "Ånd",
                                  "River", "Blue",  "Étoile", "Quiet",  "Garden", "Smoke",  "Über",
                                  "Drift", "Señal", "Paper",  "Winter", "Echo",   "Lantern"};
    return QString::fromUtf8(words[static_cast<std::size_t>(number) % words.size()]);
}

} // namespace

MusicFiles::MusicFiles() {
    const TestFolder folder;
    for (const char *extension : extensions) {
        const QString path = folder.path("sound.") + QLatin1String(extension);
        writeAudioFile(path, {.seconds = 0.25});
        m_sounds[QLatin1String(extension)] = TestFolder::read(path);
    }
}

void MusicFiles::write(const QString &path, const MadeTags &tags) const {
    const QFileInfo info(path);
    QFile file(path);
    const QByteArray sound = m_sounds.value(info.suffix());
    if (!QDir().mkpath(info.path()) || !file.open(QIODevice::WriteOnly) || file.write(sound) != sound.size())
        throw std::runtime_error("cannot write " + path.toStdString());
    file.close();
    TagLib::FileRef reference(QFile::encodeName(path).constData(), false);
    TagLib::PropertyMap properties;
    const std::pair<const char *, QString> texts[] = {{"TITLE", tags.title},
                                                      {"ARTIST", tags.artist},
                                                      {"ALBUM", tags.album},
                                                      {"TRACKNUMBER", tags.track},
                                                      {"DISCNUMBER", tags.disc}};
    for (const auto &[key, text] : texts) {
        if (!text.isEmpty())
            properties.insert(key, tagText(text));
    }
    reference.file()->setProperties(properties);
    if (!tags.cover.isEmpty())
        embed(reference.file(), tags.cover);
    if (!reference.save())
        throw std::runtime_error("cannot tag " + path.toStdString());
}

void MusicFiles::writeCollection(const QString &folder, int tracks) const {
    for (int number = 0; number < tracks; ++number) {
        const int albumNumber = number / tracksPerAlbum;
        const int place = number % tracksPerAlbum + 1;
        const QString artistName = artist(albumNumber / albumsPerArtist);
        const QString albumFolder = QStringLiteral("%1/%2/%3 (%4)")
                                        .arg(folder, artistName, album(albumNumber))
                                        .arg(yearOfAlbum(albumNumber));
        MadeTags tags{title(number),         artistName,
                      album(albumNumber),    QStringLiteral("%1/%2").arg(place).arg(tracksPerAlbum),
                      QStringLiteral("1/1"), {}};
        if (albumNumber % 2 == 0)
            tags.cover = cover(albumNumber);
        const auto extension =
            QLatin1String(extensions[static_cast<std::size_t>(albumNumber) % extensions.size()]);
        write(QStringLiteral("%1/%2 %3.%4")
                  .arg(albumFolder)
                  .arg(place, 2, 10, QLatin1Char('0'))
                  .arg(title(number), extension),
              tags);
        if (albumNumber % 2 == 1 && place == 1) {
            QFile image(albumFolder + QLatin1String("/cover.jpg"));
            if (!image.open(QIODevice::WriteOnly) || image.write(cover(albumNumber)) < 0)
                throw std::runtime_error("cannot write a cover");
        }
    }
}

QString MusicFiles::artist(int number) {
    return QStringLiteral("The %1 %2 %3").arg(word(number), word(number * 7 + 3)).arg(number);
}

QString MusicFiles::album(int number) {
    return QStringLiteral("%1 of %2 %3").arg(word(number + 5), word(number / 20)).arg(number);
}

QString MusicFiles::title(int number) {
    return QStringLiteral("%1 %2 in the %3 %4")
        .arg(word(number), word(number / 20), word(number / 400))
        .arg(number);
}

int MusicFiles::yearOfAlbum(int number) {
    return 1960 + number % 60;
}

QByteArray MusicFiles::cover(int number, int side) {
    QImage image(side, side, QImage::Format_RGB32);
    QRandomGenerator random(static_cast<quint32>(number));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixel(x, y, random.generate());
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 50);
    return bytes;
}

} // namespace vantor::test
