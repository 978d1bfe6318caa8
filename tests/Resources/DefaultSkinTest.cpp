#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

const QString embedded = QStringLiteral(":/skins/default.wsz");

Skin defaultSkin() {
    return SkinParser::parse(SkinArchive::fromZip(TestFolder::read(embedded)));
}

/// From the sprite's own sheet: no fallback may stand in.
QImage picture(const Skin &skin, const QString &sprite) {
    const SkinSprites::Entry entry = SkinSprites::byName().value(sprite);
    return skin.sheets.value(entry.sheet).copy(entry.sprite.rect());
}

} // namespace

TEST(DefaultSkinTest, NothingIsMissingGeneratedOrTooSmall) {
    const Skin skin = defaultSkin();
    EXPECT_EQ(skin.warnings, QStringList());
    EXPECT_EQ(skin.fallbacks, QStringList());
    EXPECT_EQ(skin.generatedSheets, QSet<QString>());
    EXPECT_EQ(skin.cursors.unreadable, QStringList());
    for (const QString &name : SkinCursors::names())
        EXPECT_TRUE(skin.cursors.cursors.contains(name)) << name.toStdString();
    EXPECT_TRUE(skin.region.normal() && skin.region.windowShade() && skin.region.equalizer() &&
                skin.region.equalizerShade());
    for (const SkinSprites::Entry &entry : SkinSprites::byName())
        EXPECT_TRUE(skin.sheets.value(entry.sheet).rect().contains(entry.sprite.rect()))
            << entry.sprite.name.toStdString();
}

// A state that looks like the resting one leaves the user without an answer to a press.
TEST(DefaultSkinTest, EveryStateLooksDifferent) {
    const Skin skin = defaultSkin();
    int compared = 0;
    for (const QString &name : SkinSprites::byName().keys())
        for (const char *suffix : {"_ACTIVE", "_DEPRESSED", "_SELECTED"}) {
            const QString state = name + QString::fromLatin1(suffix);
            if (!SkinSprites::byName().contains(state))
                continue;
            EXPECT_NE(picture(skin, name), picture(skin, state)) << state.toStdString();
            ++compared;
        }
    EXPECT_GT(compared, 60);
}

// Cells that the catalogue shares apart, no two characters may be taken for each other; 0 and O may.
TEST(DefaultSkinTest, EveryCharacterHasItsOwnShape) {
    const Skin skin = defaultSkin();
    QMap<std::pair<int, int>, QImage> cells;
    for (const Sprite &sprite : SkinSprites::sheets().value(QStringLiteral("TEXT")))
        if (sprite.name != QStringLiteral("CHARACTER_48"))
            cells.insert({sprite.x, sprite.y}, picture(skin, sprite.name));
    const QList<QImage> images = cells.values();
    for (qsizetype i = 0; i < images.size(); ++i)
        EXPECT_EQ(images.count(images.at(i)), 1) << i;
}

TEST(DefaultSkinTest, DrawingItAgainGivesTheSameBytes) {
    for (const char *timeZone : {"Pacific/Auckland", "America/Anchorage"}) {
        const TestFolder folder;
        const QString zone = QLatin1String(timeZone);
        ASSERT_EQ(runProgram(MAKE_DEFAULT_SKIN, {folder.path()}, folder, zone).status, 0);
        EXPECT_TRUE(TestFolder::read(folder.path("default.wsz")) == TestFolder::read(embedded)) << timeZone;
    }
}
