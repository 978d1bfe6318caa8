#include "SkinKit/Rendering/SkinTextFont.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinTextFontTest, CharactersFindTheirNearestSprite) {
    const std::pair<std::u32string, std::u32string> rows[] = {
        {U"aZ09", U"az09"},   {U"ÅÄÖåäö", U"ÅÄÖÅÄÖ"},  {U"éÜñçŐ", U"eunco"}, {U"ǻộ", U"Åo"},
        {U"ßæØđł", U"saodl"}, {U"‘’“”", U"''\"\""},    {U"–—", U"--"},       {U"…", U"…"},
        {U"ﬁＡ²", U"fa2"},    {U"漢Ж😀½\t", U"     "},
    };
    for (const auto &[from, to] : rows) {
        for (std::size_t i = 0; i < from.size(); ++i) {
            EXPECT_EQ(SkinTextFont::spriteName(from[i]).toStdString(),
                      "CHARACTER_" + std::to_string(to.at(i)))
                << "U+" << std::hex << static_cast<unsigned>(from[i]);
        }
    }
}

TEST(SkinTextFontTest, EveryPerceivedCharacterTakesOneCell) {
    const std::pair<QString, int> rows[] = {{QString(), 0},
                                            {QStringLiteral("Abc"), 15},
                                            {QStringLiteral("A\u030Ae\u0301\u0323"), 10},
                                            {QStringLiteral("👩‍👩‍👧x"), 10},
                                            {QStringLiteral("漢\r\n"), 10}};
    for (const auto &[text, width] : rows)
        EXPECT_EQ(SkinTextFont::width(text), width) << text.toStdString();
    // A hostile tag is cut, lest every frame walk through it.
    EXPECT_LE(SkinTextFont::width(QStringLiteral("e\u0301漢").repeated(100000)), 10000);
}
