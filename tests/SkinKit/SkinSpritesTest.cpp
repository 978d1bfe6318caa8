#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

using namespace vantor;

// A name that occurs twice, or a fallback or twin that names nothing, would make a control invisible.
TEST(SkinSpritesTest, EveryNameIsUniqueAndEveryReferenceResolves) {
    qsizetype count = 0;
    for (const std::vector<Sprite> &sprites : SkinSprites::sheets())
        count += static_cast<qsizetype>(sprites.size());
    EXPECT_EQ(count, 281);
    EXPECT_EQ(SkinSprites::sheets().size(), 16);
    EXPECT_EQ(SkinSprites::byName().size(), count);

    const auto known = [](const QString &name) { return SkinSprites::byName().contains(name); };
    const auto &fallbacks = SkinSprites::fallbacks();
    for (auto it = fallbacks.cbegin(); it != fallbacks.cend(); ++it)
        EXPECT_TRUE(known(it.key()) && known(it.value())) << it.key().toStdString();
    EXPECT_EQ(SkinSprites::digitTwins().size(), 12);
    for (const QString &twin : SkinSprites::digitTwins())
        EXPECT_EQ(SkinSprites::byName().value(twin).sheet, QStringLiteral("NUMS_EX")) << twin.toStdString();
    for (const QString &sheet : SkinSprites::optionalSheets())
        EXPECT_TRUE(SkinSprites::sheets().contains(sheet)) << sheet.toStdString();
}
