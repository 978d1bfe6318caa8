#include "SkinKit/Loading/GeneratedBaseSkin.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

#include <thread>

using namespace vantor;

namespace {

QImage sprite(const QString &name) {
    const SkinSprites::Entry entry = SkinSprites::byName().value(name);
    return GeneratedBaseSkin::sheet(entry.sheet).copy(entry.sprite.rect());
}

QString latin(const char *text) {
    return QString::fromLatin1(text);
}

} // namespace

TEST(GeneratedBaseSkinTest, SheetsCoverTheirSpritesExactly) {
    QMap<QString, QSize> sizes;
    for (const QString &name : GeneratedBaseSkin::sheetNames()) {
        const QImage sheet = GeneratedBaseSkin::sheet(name);
        EXPECT_EQ(sheet.format(), QImage::Format_RGBX8888);
        sizes.insert(name, sheet.size());
    }
    EXPECT_EQ(sizes, (QMap<QString, QSize>{{latin("CBUTTONS"), {136, 36}},
                                           {latin("EQMAIN"), {275, 315}},
                                           {latin("MAIN"), {275, 116}},
                                           {latin("MONOSTER"), {56, 24}},
                                           {latin("NUMBERS"), {90, 13}},
                                           {latin("PLAYPAUS"), {48, 9}},
                                           {latin("PLEDIT"), {280, 186}},
                                           {latin("POSBAR"), {307, 10}},
                                           {latin("SHUFREP"), {92, 85}},
                                           {latin("TEXT"), {155, 18}},
                                           {latin("TITLEBAR"), {344, 86}},
                                           {latin("VOLUME"), {68, 433}}}));
    EXPECT_TRUE(GeneratedBaseSkin::sheet(latin("GEN")).isNull());
}

TEST(GeneratedBaseSkinTest, StatesAndCharactersCanBeToldApart) {
    const char *pairs[][2] = {{"MAIN_PLAY_BUTTON", "MAIN_PLAY_BUTTON_ACTIVE"},
                              {"MAIN_SHUFFLE_BUTTON", "MAIN_SHUFFLE_BUTTON_SELECTED"},
                              {"MAIN_REPEAT_BUTTON_SELECTED", "MAIN_REPEAT_BUTTON_SELECTED_DEPRESSED"},
                              {"MAIN_TITLE_BAR", "MAIN_TITLE_BAR_SELECTED"},
                              {"MAIN_STEREO", "MAIN_STEREO_SELECTED"},
                              {"MAIN_VOLUME_THUMB", "MAIN_VOLUME_THUMB_SELECTED"},
                              {"MAIN_CLOSE_BUTTON", "MAIN_CLOSE_BUTTON_DEPRESSED"},
                              {"MAIN_PLAYING_INDICATOR", "MAIN_PAUSED_INDICATOR"},
                              {"EQ_ON_BUTTON", "EQ_ON_BUTTON_SELECTED"},
                              {"EQ_PRESETS_BUTTON", "EQ_PRESETS_BUTTON_SELECTED"},
                              {"PLAYLIST_ADD_URL", "PLAYLIST_ADD_URL_SELECTED"},
                              {"NO_MINUS_SIGN", "MINUS_SIGN"}};
    for (const auto &pair : pairs)
        EXPECT_NE(sprite(latin(pair[0])), sprite(latin(pair[1]))) << pair[0];

    const auto &text = SkinSprites::sheets().value(latin("TEXT"));
    QMap<QByteArray, QRect> places;
    for (const Sprite &character : text) {
        const QImage cell = sprite(character.name);
        const QByteArray pixels(reinterpret_cast<const char *>(cell.constBits()), cell.sizeInBytes());
        const QRect place = places.value(pixels, character.rect());
        EXPECT_EQ(place, character.rect()) << character.name.toStdString();
        places.insert(pixels, place);
    }

    const QImage volume = GeneratedBaseSkin::sheet(latin("VOLUME"));
    for (int frame = 1; frame < 28; ++frame)
        EXPECT_NE(volume.copy(0, frame * 15, 68, 13), volume.copy(0, (frame - 1) * 15, 68, 13)) << frame;
}

TEST(GeneratedBaseSkinTest, ThreadsShareOneDrawing) {
    QList<qint64> keys(4);
    {
        std::vector<std::jthread> threads;
        for (qint64 &key : keys)
            threads.emplace_back([&key] { key = GeneratedBaseSkin::sheet(latin("PLEDIT")).cacheKey(); });
    }
    EXPECT_EQ(keys, QList<qint64>(4, keys.at(0)));
}
