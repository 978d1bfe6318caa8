#include "AudioCore/NowPlaying/EmbeddedArtworkLoader.h"

#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestFolder.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>

#include <gtest/gtest.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

using namespace vantor;

namespace {

QByteArray picture(QColor color, QSize size = {8, 8}, QImage::Format format = QImage::Format_RGB32) {
    QImage image(size, format);
    image.fill(color);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

TagLib::ByteVector vectorOf(const QByteArray &bytes) {
    return {bytes.data(), static_cast<unsigned>(bytes.size())};
}

template <class Picture>
Picture *made(const QByteArray &bytes, typename Picture::Type type) {
    auto *const made = new Picture;
    made->setMimeType("image/png");
    made->setType(type);
    if constexpr (requires { made->setPicture(TagLib::ByteVector()); })
        made->setPicture(vectorOf(bytes));
    else
        made->setData(vectorOf(bytes));
    return made;
}

/// A picture of the artist and then the front cover; where there are no kinds, the cover alone.
void embed(const QString &path, const QByteArray &artist, const QByteArray &cover) {
    using Frame = TagLib::ID3v2::AttachedPictureFrame;
    using Block = TagLib::FLAC::Picture;
    TagLib::FileRef reference(QFile::encodeName(path).constData());
    const auto embedFrames = [&](TagLib::ID3v2::Tag *tag) {
        tag->addFrame(made<Frame>(artist, Frame::Artist));
        tag->addFrame(made<Frame>(cover, Frame::FrontCover));
    };
    const auto embedBlocks = [&](auto &file) {
        file.addPicture(made<Block>(artist, Block::Artist));
        file.addPicture(made<Block>(cover, Block::FrontCover));
    };
    if (auto *mpeg = dynamic_cast<TagLib::MPEG::File *>(reference.file()))
        embedFrames(mpeg->ID3v2Tag(true));
    else if (auto *wav = dynamic_cast<TagLib::RIFF::WAV::File *>(reference.file()))
        embedFrames(wav->ID3v2Tag());
    else if (auto *flac = dynamic_cast<TagLib::FLAC::File *>(reference.file()))
        embedBlocks(*flac);
    else if (auto *comment = dynamic_cast<TagLib::Ogg::XiphComment *>(reference.tag()))
        embedBlocks(*comment);
    else if (auto *mp4 = dynamic_cast<TagLib::MP4::File *>(reference.file()))
        mp4->tag()->setItem("covr", TagLib::MP4::CoverArtList().append(
                                        TagLib::MP4::CoverArt(TagLib::MP4::CoverArt::PNG, vectorOf(cover))));
    ASSERT_TRUE(reference.save());
}

/// The name of the colour that the picture found begins with.
std::string found(const QString &path) {
    const QImage image = EmbeddedArtworkLoader::load(path);
    return image.isNull() ? "none" : image.pixelColor(0, 0).name().toStdString();
}

const char *const green = "#00ff00";
const char *const blue = "#0000ff";

} // namespace

TEST(EmbeddedArtworkLoaderTest, FindsTheFrontCoverInEveryKindOfFile) {
    const TestFolder folder;
    folder.write("cover.png", picture(Qt::blue));
    for (const char *name : {"a.mp3", "a.flac", "a.ogg", "a.opus", "a.m4a", "a.wav"}) {
        SCOPED_TRACE(name);
        const QString path = folder.path(name);
        writeAudioFile(path, {.seconds = 0.1, .sampleRate = 48000});
        EXPECT_EQ(found(path), blue); // the one beside it
        embed(path, picture(Qt::red), picture(Qt::green));
        EXPECT_EQ(found(path), green);
        embed(path, picture(Qt::red), "this is no picture");
    }
}

TEST(EmbeddedArtworkLoaderTest, TakesOnlyPicturesThatAreFitToBeDecoded) {
    constexpr int side = 6001; // of a square with more pixels than are allowed
    const QByteArray good = picture(Qt::green);
    const struct {
        const char *name;
        const char *file;
        QByteArray bytes;
        const char *expected;
    } rows[] = {
        {"as it should be", "Folder.PNG", good, green},
        {"another name", "booklet.png", good, "none"},
        {"cut", "cover.jpg", good.left(20), "none"},
        {"no picture", "cover.jpg", QByteArray(5000, 'x'), "none"},
        {"too many bytes", "cover.jpg", good + QByteArray(EmbeddedArtworkLoader::maxBytes, '\0'), "none"},
        {"too many pixels", "cover.png", picture(Qt::color1, {side, side}, QImage::Format_Mono), "none"},
        {"names other files", "cover.png",
         R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8"/>)", "none"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const TestFolder folder;
        const QString sound = folder.write("a.mp3", QByteArray(100, 'x'));
        folder.write(row.file, row.bytes);
        EXPECT_EQ(found(sound), row.expected);
        folder.write("front.jpeg", picture(Qt::blue)); // the next in order
        EXPECT_EQ(found(sound), std::string(row.expected) == "none" ? blue : row.expected);
    }
    const TestFolder folder;
    const QString sound = folder.write("a.mp3", {});
    folder.write("cover.png", picture(Qt::green, {4000, 100}));
    EXPECT_EQ(EmbeddedArtworkLoader::load(sound).size(), QSize(640, 16));
    EXPECT_EQ(found(folder.path()), "none");
    EXPECT_EQ(found(folder.path("missing.mp3")), "none");
}
