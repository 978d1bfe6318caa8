#include "SkinKit/Rendering/SkinTextFont.h"

#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QHash>
#include <QTextBoundaryFinder>

#include <vector>

namespace vantor {

namespace SkinTextFont {

namespace {

constexpr qsizetype maxCells = 4096; // a title longer than that is nobody's, and must not cost time

const QHash<char32_t, QString> &fontSprites() {
    static const QHash<char32_t, QString> sprites = [] {
        const QString prefix = QStringLiteral("CHARACTER_");
        QHash<char32_t, QString> map;
        for (const Sprite &sprite : SkinSprites::sheets().value(QStringLiteral("TEXT")))
            map.insert(sprite.name.mid(prefix.size()).toUInt(), sprite.name);
        return map;
    }();
    return sprites;
}

// Characters whose nearest neighbour in the font is not their decomposition's first part.
char32_t substitute(char32_t character) {
    static const QHash<char32_t, char32_t> table{
        {U'‘', U'\''}, {U'’', U'\''}, {U'‚', U','}, {U'‛', U'\''}, {U'“', U'"'},  {U'”', U'"'},  {U'„', U'"'},
        {U'«', U'"'},  {U'»', U'"'},  {U'‹', U'<'}, {U'›', U'>'},  {U'`', U'\''}, {U'´', U'\''}, {U'‐', U'-'},
        {U'‑', U'-'},  {U'–', U'-'},  {U'—', U'-'}, {U'―', U'-'},  {U'−', U'-'},  {U'•', U'*'},  {U'·', U'.'},
        {U'×', U'*'},  {U'÷', U'/'},  {U'|', U'/'}, {U';', U':'},  {U'~', U'-'},  {U'¡', U'!'},  {U'¿', U'?'},
        {U'ß', U's'},  {U'æ', U'a'},  {U'œ', U'o'}, {U'ø', U'o'},  {U'ð', U'd'},  {U'đ', U'd'},  {U'þ', U't'},
        {U'ł', U'l'},  {U'ħ', U'h'},  {U'ı', U'i'}, {U'ŋ', U'n'},  {U'©', U'c'},  {U'®', U'r'},  {U'°', U'*'},
        {U'€', U'e'},  {U'£', U'l'},  {U'¥', U'y'}, {U'¢', U'c'},
    };
    return table.value(character, character);
}

// The font's three accented letters stand in it as capitals.
char32_t folded(char32_t character) {
    const char32_t lower = QChar::toLower(character);
    const bool ownSprite = lower == U'å' || lower == U'ä' || lower == U'ö';
    return ownSprite ? QChar::toUpper(lower) : lower;
}

char32_t firstOf(const QString &text) {
    if (text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate())
        return QChar::surrogateToUcs4(text[0], text[1]);
    return text.isEmpty() ? U' ' : text[0].unicode();
}

/// The first code point of every user-perceived character.
std::vector<char32_t> cells(const QString &text) {
    std::vector<char32_t> result;
    // Composed letters need no second look for combining marks.
    if (std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x300; })) {
        for (const QChar character : text.left(maxCells))
            result.push_back(character.unicode());
        return result;
    }
    const QString composed = text.left(4 * maxCells).normalized(QString::NormalizationForm_C);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, composed);
    for (qsizetype at = 0; at < composed.size() && std::ssize(result) < maxCells;) {
        result.push_back(firstOf(composed.mid(at, 2)));
        const qsizetype next = finder.toNextBoundary();
        at = next > at ? next : composed.size();
    }
    return result;
}

} // namespace

QString spriteName(char32_t character) {
    const QHash<char32_t, QString> &sprites = fontSprites();
    const auto find = [&](char32_t candidate) { return sprites.value(substitute(folded(candidate))); };
    if (const QString name = find(character); !name.isEmpty())
        return name;
    const char32_t base = firstOf(QString::fromUcs4(&character, 1).normalized(QString::NormalizationForm_KD));
    const QString name = find(base);
    return name.isEmpty() ? sprites.value(U' ') : name;
}

int width(const QString &text) {
    return characterWidth * static_cast<int>(cells(text).size());
}

void draw(const SpriteDrawer &drawer, const QString &text, QPoint at, int left, int right) {
    int x = at.x();
    for (const char32_t character : cells(text)) {
        if (x >= right)
            return;
        if (x + characterWidth > left)
            drawer.draw(spriteName(character), QPoint(x, at.y()));
        x += characterWidth;
    }
}

} // namespace SkinTextFont

namespace Marquee {

QString separator() {
    return QStringLiteral("  ***  ");
}

bool scrolls(const QString &text) {
    return SkinTextFont::width(text) > MainWindowLayout::marquee.width();
}

int period(const QString &text) {
    return scrolls(text) ? SkinTextFont::width(text + separator()) : 0;
}

} // namespace Marquee

} // namespace vantor
