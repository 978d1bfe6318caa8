#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QPainter>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

/// A sheet whose pixels tell where they were: red is x, green is y.
QImage gradient(int width, int height) {
    QImage image(width, height, QImage::Format_RGBX8888);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, y / 256));
    }
    return image;
}

Skin skinWith(const QStringList &sheets) {
    Skin skin;
    for (const QString &name : sheets)
        skin.sheets.insert(name, gradient(320, 435));
    return skin;
}

} // namespace

TEST(SkinResolveTest, SpritesComeFromTheFirstSheetThatServes) {
    using Location = Skin::Location;
    const auto at = [](const char *sheet, QRect rect) { return Location{QString::fromLatin1(sheet), rect}; };
    const struct {
        const char *sheets;
        const char *sprite;
        std::optional<Location> expected;
    } cases[] = {
        {"VOLUME", "MAIN_BALANCE_THUMB_ACTIVE", at("VOLUME", {0, 422, 14, 11})},
        {"VOLUME BALANCE", "MAIN_BALANCE_BACKGROUND", at("BALANCE", {9, 0, 38, 420})},
        {"EQMAIN", "EQ_SHADE_BACKGROUND", at("EQMAIN", {0, 149, 275, 14})},
        {"EQMAIN", "EQ_MINIMIZE_BUTTON_ACTIVE", std::nullopt},
        {"NUMS_EX", "DIGIT_5", at("NUMS_EX", {45, 0, 9, 13})},
        {"NUMBERS NUMS_EX", "DIGIT_5", at("NUMS_EX", {45, 0, 9, 13})},
        {"NUMBERS", "MINUS_SIGN", at("NUMBERS", {20, 6, 5, 1})},
        {"NUMBERS", "DIGIT_5_EX", std::nullopt},
        {"MAIN", "DIGIT_5", std::nullopt},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(testing::Message() << row.sprite << " in " << row.sheets);
        const Skin skin = skinWith(QString::fromLatin1(row.sheets).split(QLatin1Char(' ')));
        EXPECT_EQ(skin.resolve(QString::fromLatin1(row.sprite)), row.expected);
    }
}

// A name that occurs twice, or a fallback or twin that names nothing, would make a control invisible.
TEST(SkinSpritesTest, EveryNameIsUniqueAndEveryReferenceResolves) {
    qsizetype count = 0;
    for (const std::vector<Sprite> &sprites : SkinSprites::sheets())
        count += static_cast<qsizetype>(sprites.size());
    EXPECT_EQ(SkinSprites::byName().size(), count);
    const auto known = [](const QString &name) { return SkinSprites::byName().contains(name); };
    const auto &fallbacks = SkinSprites::fallbacks();
    for (auto it = fallbacks.cbegin(); it != fallbacks.cend(); ++it)
        EXPECT_TRUE(known(it.key()) && known(it.value())) << it.key().toStdString();
    for (const QString &twin : SkinSprites::digitTwins())
        EXPECT_EQ(SkinSprites::byName().value(twin).sheet, QStringLiteral("NUMS_EX")) << twin.toStdString();
    for (const QString &sheet : SkinSprites::optionalSheets())
        EXPECT_TRUE(SkinSprites::sheets().contains(sheet)) << sheet.toStdString();
}

TEST(SkinResolveTest, CutsAreClippedToSpriteAndSheet) {
    Skin skin = skinWith({QStringLiteral("EQMAIN"), QStringLiteral("BALANCE")});
    skin.sheets.insert(QStringLiteral("VOLUME"), gradient(60, 424));
    const QString volume = QStringLiteral("MAIN_VOLUME_BACKGROUND");
    const QString bands = QStringLiteral("EQ_SLIDER_BACKGROUND");
    const struct {
        const char *name;
        QImage image;
        QSize size;
        QPoint corner;
    } cases[] = {
        {"clipped on the right", skin.image(volume), {60, 420}, {0, 0}},
        {"clipped below", skin.image(QStringLiteral("MAIN_VOLUME_THUMB")), {14, 2}, {15, 422}},
        {"balance frame", skin.imageFrame(QStringLiteral("MAIN_BALANCE_BACKGROUND"), 3), {38, 13}, {9, 45}},
        {"last frame", skin.imageFrame(volume, 27), {60, 13}, {0, 405}},
        {"frame after the last", skin.imageFrame(volume, 28), {0, 0}, {}},
        {"frame before the first", skin.imageFrame(volume, -1), {0, 0}, {}},
        {"band frame", skin.imageBandFrame(bands, 15), {14, 63}, {13 + 15, 164 + 65}},
        {"band frame after the last", skin.imageBandFrame(bands, 28), {0, 0}, {}},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(row.image.size(), row.size);
        if (!row.image.isNull())
            EXPECT_EQ(row.image.pixel(0, 0),
                      qRgb(row.corner.x(), row.corner.y() % 256, row.corner.y() / 256));
    }
}

TEST(SpriteDrawerTest, PartsKeepTheirPlaceAndThePainterItsState) {
    Skin skin = skinWith({QStringLiteral("CBUTTONS")}); // play: 23, 0, 23 × 18
    QImage canvas(60, 60, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    painter.scale(2, 2);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    SpriteDrawer(skin, painter).drawPart(QStringLiteral("MAIN_PLAY_BUTTON"), {-2, 1, 6, 100}, {3, 4});
    EXPECT_TRUE(painter.testRenderHint(QPainter::SmoothPixmapTransform));
    painter.end();

    // The sprite's own columns 0–3 and rows 1–17 land at 5…8 and 4…20, each pixel doubled.
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x) {
            const bool inside = QRect(5, 4, 4, 17).contains(x / 2, y / 2);
            ASSERT_EQ(canvas.pixel(x, y), inside ? qRgb(23 + x / 2 - 5, y / 2 - 3, 0) : qRgb(255, 255, 255))
                << x << ", " << y;
        }
    }
}
