#include "Digits.h"
#include "Font.h"
#include "Sheet.h"
#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor::art {

namespace {

using namespace palette;

/// Glyphs of the face by the number in the sprite's name. Braces share the cells of brackets, and angle
/// brackets too: the catalogue has them look alike.
Sheet characterSheet() {
    Sheet sheet("TEXT");
    Canvas whole = sheet.whole();
    whole.fill(whole.bounds(), glass);
    for (const Sprite &sprite : SkinSprites::sheets().value(sheet.name())) {
        char32_t character = sprite.name.section(QLatin1Char('_'), 1).toUInt();
        if (character >= U'a' && character <= U'z')
            character -= U'a' - U'A';
        if (QStringView(u"<>{}").contains(QChar(static_cast<char16_t>(character))))
            continue;
        sheet.sprite(sprite.name).stencil(0, 0, font::cell(character), flame);
    }
    return sheet;
}

Sheet numberSheet() {
    Sheet sheet("NUMBERS");
    for (int i = 0; i < 10; ++i)
        digits::draw(sheet.sprite(QStringLiteral("DIGIT_%1").arg(i)), i);
    return sheet; // the minus signs are strips of the digits 1 and 2
}

Sheet extendedNumberSheet() {
    Sheet sheet("NUMS_EX");
    for (int i = 0; i < 10; ++i)
        digits::draw(sheet.sprite(QStringLiteral("DIGIT_%1_EX").arg(i)), i);
    digits::draw(sheet.sprite("MINUS_SIGN_EX"), digits::minus);
    Canvas none = sheet.sprite("NO_MINUS_SIGN_EX");
    none.fill(none.bounds(), glass);
    return sheet;
}

} // namespace

std::vector<Sheet> textSheets() {
    return {characterSheet(), numberSheet(), extendedNumberSheet()};
}

} // namespace vantor::art
