#include "FolderBackendKit/FolderArtwork.h"

#include "FolderBackendKit/FolderIndexer.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/NativePath.h"
#include "tests/Support/MusicFiles.h"

#include <QBuffer>
#include <QFile>
#include <QImage>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace vantor {

namespace {

using test::MusicFiles;

QByteArray picture(QColor color, QSize size = {40, 20}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

/// "" when it is missing, else the colour in the middle and the size.
std::string shown(const TestFolder &folder, const QString &path, int maxPixels = 100) {
    try {
        const QByteArray bytes = FolderArtwork::data(FolderArtwork::ref(path, 1), folder.path(), maxPixels);
        const QImage image = QImage::fromData(bytes);
        const QColor color = image.pixelColor(image.width() / 2, image.height() / 2);
        const char *name = color.red() > 200 ? "red" : color.green() > 200 ? "green" : "blue";
        return std::string(name) + ' ' + std::to_string(image.width()) + 'x' + std::to_string(image.height());
    } catch (const MusicBackendError &error) {
        EXPECT_EQ(error.description(), u"The album art is missing.");
        return "";
    }
}

} // namespace

TEST(FolderArtworkTest, TheCoverIsChosenByItsName) {
    const std::pair<std::vector<const char *>, const char *> rows[] = {
        {{"Abba.jpg", "album.png", "folder.jpg", "cover.png"}, "cover.png"},
        {{"back.jpg", "Front.PNG"}, "Front.PNG"},
        {{"album.jpg", "front.png", "folder.png"}, "folder.png"},
        {{"back.jpg", "inlay.png"}, "back.jpg"},
        {{"back cover.jpg", "booklet.jpg", "my cover scan.jpg"}, "my cover scan.jpg"},
        {{"a.jpg", "the album front.gif", "cover of it.jpg"}, "the album front.gif"},
    };
    for (const auto &[names, expected] : rows) {
        SCOPED_TRACE(expected);
        std::vector<FolderArtwork::Image> images;
        for (const char *name : names)
            images.push_back({QStringLiteral("A/B/") + QLatin1String(name), 0});
        EXPECT_EQ(FolderArtwork::best(images)->relativePath,
                  QStringLiteral("A/B/") + QLatin1String(expected));
    }
    EXPECT_EQ(FolderArtwork::best({}), std::nullopt);
}

TEST(FolderArtworkTest, PicturesAreScaledDownOnly) {
    const TestFolder folder;
    folder.write("A/B/cover.png", picture(Qt::red, {400, 200}));
    const QString path = QStringLiteral("A/B/cover.png");
    EXPECT_EQ(shown(folder, path, 100), "red 100x50");
    EXPECT_EQ(shown(folder, path, 1000), "red 400x200");
    EXPECT_EQ(shown(folder, path, 1), "red 1x1");
    EXPECT_EQ(shown(folder, path, -7), "red 1x1");
}

TEST(FolderArtworkTest, WhatIsBrokenIsStoodInFor) {
    const TestFolder folder;
    const MusicFiles music;
    folder.write("A/Other/cover.jpg", "no image");
    folder.write("A/Other/z.png", picture(Qt::green));
    folder.write("A/Track/cover.jpg", picture(Qt::red).first(60));
    music.write(folder.path("A/Track/1.flac"), {.cover = picture(Qt::blue, {300, 300})});
    music.write(folder.path("A/Bare/1.mp3"));
    folder.write("A/Huge/cover.png",
                 picture(Qt::red, {20'000, 2}).replace(16, 8, QByteArray::fromHex("000F4240000F4240")));
    folder.write("A/Lies/cover.jpg",
                 "<svg xmlns='http://www.w3.org/2000/svg'><image href='/etc/passwd'/></svg>");
    folder.write("outside.png", picture(Qt::red));
    folder.write("A/Pipe/1.doc", "x");
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path("A/Pipe/cover.png")).constData(), 0600), 0);
    const std::pair<const char *, const char *> rows[] = {
        {"A/Other/cover.jpg", "green 40x20"},
        {"A/Track/cover.jpg", "blue 100x100"},
        {"A/Track/1.flac", "blue 100x100"},
        {"A/Bare/1.mp3", ""},
        {"A/Huge/cover.png", ""},
        {"A/Lies/cover.jpg", ""},
        {"A/Pipe/cover.png", ""},
        {"A/None/cover.png", ""},
        {"A/../../outside.png", ""},
        {"", ""},
    };
    for (const auto &[path, expected] : rows) {
        SCOPED_TRACE(path);
        EXPECT_EQ(shown(folder, QString::fromUtf8(path)), expected);
    }
}

TEST(FolderArtworkTest, FoldersWhoseNameIsNoTextHaveCovers) {
    const TestFolder folder;
    folder.write("A/Plain/scan.png", picture(Qt::green));
    const QByteArray artist = QFile::encodeName(folder.path("A"));
    ASSERT_EQ(rename((artist + "/Plain").constData(), (artist + "/D\xE9"
                                                                "but")
                                                          .constData()),
              0);
    const QString album = NativePath::text("A/D\xE9"
                                           "but");
    EXPECT_EQ(shown(folder, album + QLatin1String("/scan.png")), "green 40x20");
    EXPECT_EQ(shown(folder, album + QLatin1String("/gone.png")), "green 40x20");
    ASSERT_EQ(rename((artist + "/D\xE9"
                               "but")
                         .constData(),
                     (artist + "/Plain").constData()),
              0);
}

TEST(FolderArtworkTest, AlbumsAndArtistsGetTheirOwnPicturesFirst) {
    const TestFolder folder;
    const MusicFiles music;
    music.write(folder.path("A/1 Own/1.mp3"));
    folder.write("A/1 Own/cover.png", picture(Qt::red));
    folder.write("A/1 Own/Scans/cover.jpg", picture(Qt::blue));
    music.write(folder.path("A/2 Nested/Disc 1/1.mp3"));
    folder.write("A/2 Nested/Disc 1/x.png", picture(Qt::green));
    music.write(folder.path("A/3 Track/1.ogg"), {.cover = picture(Qt::blue)});
    music.write(folder.path("B/1.mp3"));
    folder.write("B/photo.png", picture(Qt::green));
    const FolderIndex index = *FolderIndexer(FileMetadata::read, 2).build(folder.path(), {});
    std::vector<std::string> pictures;
    const auto add = [&](const std::optional<ArtworkRef> &ref) {
        const QByteArray bytes = FolderArtwork::data(ref.value(), folder.path(), 100);
        const QColor color = QImage::fromData(bytes).pixelColor(5, 5);
        pictures.push_back(color.red() > 200 ? "red" : color.green() > 200 ? "green" : "blue");
    };
    for (const StoredAlbum &album : index.albums)
        add(album.artwork);
    for (const StoredArtist &artist : index.artists)
        add(artist.artwork);
    EXPECT_THAT(pictures, testing::ElementsAre("red", "green", "blue", "green", "red", "green"));
}

} // namespace vantor
