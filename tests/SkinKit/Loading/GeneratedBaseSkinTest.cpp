#include "SkinKit/Loading/GeneratedBaseSkin.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

using namespace vantor;

static QImage picture(const Sprite &sprite, const QString &sheet) {
    return GeneratedBaseSkin::sheet(sheet).copy(sprite.rect());
}

TEST(GeneratedBaseSkinTest, SheetsCoverTheirSpritesExactly) {
    for (const QString &name : GeneratedBaseSkin::sheetNames()) {
        QRect sprites;
        for (const Sprite &sprite : SkinSprites::sheets().value(name))
            sprites |= sprite.rect();
        const QImage sheet = GeneratedBaseSkin::sheet(name);
        EXPECT_EQ(sheet.format(), QImage::Format_RGBX8888);
        EXPECT_EQ(sheet.rect(), sprites) << name.toStdString();
    }
    EXPECT_EQ(GeneratedBaseSkin::sheetNames().size(), 12);
    EXPECT_TRUE(GeneratedBaseSkin::sheet(QStringLiteral("GEN")).isNull());
}

TEST(GeneratedBaseSkinTest, StatesAndCharactersCanBeToldApart) {
    const auto &sprites = SkinSprites::byName();
    for (const auto &[sheet, sprite] : sprites) {
        for (const char *suffix : {"_ACTIVE", "_DEPRESSED", "_SELECTED"}) {
            const auto state = sprites.find(sprite.name + QLatin1String(suffix));
            if (state != sprites.end() && GeneratedBaseSkin::sheetNames().contains(sheet))
                EXPECT_NE(picture(sprite, sheet), picture(state->sprite, sheet)) << state.key().toStdString();
        }
    }
    const QString text = QStringLiteral("TEXT");
    QMap<QByteArray, QRect> places;
    for (const Sprite &character : SkinSprites::sheets().value(text)) {
        const QImage cell = picture(character, text);
        const QByteArray pixels(reinterpret_cast<const char *>(cell.constBits()), cell.sizeInBytes());
        const QRect place = places.value(pixels, character.rect());
        EXPECT_EQ(place, character.rect()) << character.name.toStdString();
        places.insert(pixels, place);
    }
    const QImage volume = GeneratedBaseSkin::sheet(QStringLiteral("VOLUME"));
    for (int frame = 1; frame < 28; ++frame)
        EXPECT_NE(volume.copy(0, frame * 15, 68, 13), volume.copy(0, (frame - 1) * 15, 68, 13)) << frame;
}
