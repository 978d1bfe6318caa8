#include "SkinKit/Rendering/SkinTextFont.h"

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"

#include <QPainter>

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

TEST(MarqueeTest, OnlyWideTextsScrollAndTheyRepeat) {
    EXPECT_EQ(Marquee::period(QString(30, u'x')), 0);
    const QString wide = QStringLiteral("a") + QString(30, u'x');
    ASSERT_EQ(Marquee::period(wide), (31 + Marquee::separator().size()) * SkinTextFont::characterWidth);

    Skin skin; // every character's sprite begins with a red pixel for "a", a blue one for "x"
    QImage sheet(155, 18, QImage::Format_RGBX8888);
    sheet.fill(Qt::black);
    sheet.setPixel(0, 0, qRgb(255, 0, 0));
    sheet.setPixel(115, 0, qRgb(0, 0, 255));
    skin.sheets.insert(QStringLiteral("TEXT"), sheet);
    const auto redColumns = [&](int offset) {
        MainWindowScene scene;
        scene.marquee = wide;
        scene.marqueeOffset = offset;
        QImage image(275, 116, QImage::Format_RGB32);
        QPainter painter(&image);
        MainWindowRenderer::draw(painter, skin, scene, 1);
        QList<int> columns;
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, 27) == qRgb(255, 0, 0))
                columns.append(x);
        }
        return columns;
    };
    EXPECT_EQ(redColumns(0), QList<int>{111});
    EXPECT_EQ(redColumns(1), QList<int>{}); // moved out on the left, and not drawn outside the window
    EXPECT_EQ(redColumns(37), QList<int>{111 + 190 - 37});
    EXPECT_EQ(redColumns(36), QList<int>{}); // the next one is still beyond the right edge
    EXPECT_EQ(redColumns(190), QList<int>{111});
    EXPECT_EQ(redColumns(-10), QList<int>{121});
}
