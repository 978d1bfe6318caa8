#include "SkinKit/Rendering/SkinTextFont.h"

#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QHash>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace vantor {

namespace SkinTextFont {

namespace {

/// Code units of a text that are looked at: over a minute of scrolling, and no hostile tag stalls a frame.
constexpr qsizetype maxLength = 1024;

using Names = QHash<char32_t, QString>;

/// The catalogue's own characters. Letters are there in lower case, but for Å, Ä and Ö.
const Names &fontNames() {
    static const Names names = [] {
        Names map;
        for (const Sprite &sprite : SkinSprites::sheets().value(QStringLiteral("TEXT")))
            map.insert(sprite.name.mid(QStringLiteral("CHARACTER_").size()).toUInt(), sprite.name);
        return map;
    }();
    return names;
}

/// Look-alikes for what has no decomposition.
char32_t lookAlike(char32_t character) {
    static const QHash<char32_t, char32_t> table = [] {
        constexpr std::pair<char16_t, const char16_t *> groups[] = {
            {u'\'', u"‘’‚‛′`´ʼʻ‹›"},
            {u'"', u"“”„‟″«»"},
            {u'-', u"‐‑‒–—―−~"},
            {u'.', u"·•"},
            {u'!', u"¡|¦"},
            {u'?', u"¿"},
            {u':', u";"},
            {u'/', u"⁄∕"},
            {u'a', u"æÆ"},
            {u'd', u"đĐðÐ"},
            {u'h', u"ħĦ"},
            {u'i', u"ı"},
            {u'k', u"ĸ"},
            {u'l', u"łŁ"},
            {u'n', u"ŋŊ"},
            {u'o', u"øØœŒ"},
            {u's', u"ßẞ"},
            {u't', u"þÞŧŦ"},
            {u'x', u"×"},
        };
        QHash<char32_t, char32_t> map;
        for (const auto &[plain, characters] : groups) {
            for (const char16_t *each = characters; *each != 0; ++each)
                map.insert(*each, plain);
        }
        return map;
    }();
    return table.value(character);
}

/// The first character of a decomposition; fractions would read as their numerator and count as lacking.
char32_t decomposed(char32_t character) {
    if (QChar::decompositionTag(character) == QChar::Fraction)
        return 0;
    const auto parts = QChar::decomposition(character).toUcs4();
    return parts.isEmpty() ? 0 : parts.first();
}

QString findName(char32_t character, const Names &names) {
    constexpr int maxSteps = 4; // a letter with two marks decomposes twice
    for (int step = 0; step < maxSteps && character != 0; ++step) {
        for (const char32_t form : {character, QChar::toLower(character), QChar::toUpper(character)}) {
            if (const auto found = names.constFind(form); found != names.cend())
                return *found;
        }
        const char32_t similar = lookAlike(character);
        character = similar != 0 ? similar : decomposed(character);
    }
    return names.value(U' ');
}

/// Below the first combining mark every code unit is a character of its own, save the two of a line end.
bool isSimple(QStringView text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x300 && c != u'\r'; });
}

char32_t firstCharacter(const QString &grapheme) {
    const auto characters = grapheme.normalized(QString::NormalizationForm_C).toUcs4();
    return characters.isEmpty() ? U' ' : characters.first();
}

/// Calls `visit(cell, character)` for the cells from `first` up to, not including, `last`; returns the number
/// of cells of the whole text.
template <typename Visit>
int visitCells(const QString &whole, int first, int last, const Visit &visit) {
    const QString text = whole.size() > maxLength ? whole.left(maxLength) : whole;
    if (isSimple(text)) {
        const int count = static_cast<int>(text.size());
        for (int cell = std::max(first, 0); cell < std::min(last, count); ++cell)
            visit(cell, text.at(cell).unicode());
        return count;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int cell = 0;
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > start; end = finder.toNextBoundary()) {
        if (cell >= first && cell < last)
            visit(cell, firstCharacter(text.mid(start, end - start)));
        start = end;
        ++cell;
    }
    return cell;
}

} // namespace

QString spriteName(char32_t character) {
    // Plain text asks for the same few names again and again.
    static const auto common = [] {
        std::array<QString, 256> table;
        for (char32_t c = 0; c < table.size(); ++c)
            table[c] = findName(c, fontNames());
        return table;
    }();
    return character < common.size() ? common[character] : findName(character, fontNames());
}

int width(const QString &text) {
    return characterWidth * visitCells(text, 0, 0, [](int, char32_t) {});
}

void draw(const SpriteDrawer &drawer, const QString &text, QPoint at, int left, int right) {
    if (right <= left || right <= at.x())
        return;
    const int first = std::max(left - at.x(), 0) / characterWidth;
    const int last = (right - at.x() + characterWidth - 1) / characterWidth;
    visitCells(text, first, last, [&](int cell, char32_t character) {
        drawer.draw(spriteName(character), at + QPoint(cell * characterWidth, 0));
    });
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
    return scrolls(text) ? SkinTextFont::width(text) + SkinTextFont::width(separator()) : 0;
}

} // namespace Marquee
} // namespace vantor
