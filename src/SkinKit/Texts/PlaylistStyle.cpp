#include "SkinKit/Texts/PlaylistStyle.h"

#include "Platform/TextDecoding.h"
#include "SkinKit/Texts/IniParser.h"

#include <algorithm>

namespace vantor {

const PlaylistStyle PlaylistStyle::defaults;

namespace PlaylistStyleParser {

namespace {

struct ColourKey {
    const char *key;
    RGBColor PlaylistStyle::*field;
};

constexpr ColourKey colourKeys[] = {{"normal", &PlaylistStyle::normal},
                                    {"current", &PlaylistStyle::current},
                                    {"normalbg", &PlaylistStyle::normalBackground},
                                    {"selectedbg", &PlaylistStyle::selectedBackground}};

// QChar::isDigit and its kin also accept other scripts' digits.
bool isHexDigit(QChar character) {
    const char16_t code = character.unicode();
    return (code >= u'0' && code <= u'9') || (code >= u'a' && code <= u'f') || (code >= u'A' && code <= u'F');
}

} // namespace

std::optional<RGBColor> hexColour(const QString &value) {
    constexpr qsizetype digitCount = 6;
    const QStringView digits = QStringView(value).mid(value.startsWith(u'#') ? 1 : 0).left(digitCount);
    if (digits.size() < digitCount || !std::ranges::all_of(digits, isHexDigit))
        return std::nullopt;
    const uint rgb = digits.toUInt(nullptr, 16);
    return RGBColor{static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8 & 0xFF),
                    static_cast<std::uint8_t>(rgb & 0xFF)};
}

Result parse(const QString &text) {
    const auto section = IniParser::parse(text).value(QStringLiteral("text"));
    Result result;
    for (const auto &[name, field] : colourKeys) {
        const QString key = QLatin1String(name);
        const auto value = section.constFind(key);
        if (value == section.constEnd())
            continue;
        if (const auto colour = hexColour(*value))
            result.style.*field = *colour;
        else
            result.messages += QStringLiteral("pledit.txt ") + key + QStringLiteral(" '") + *value +
                               QStringLiteral("' unusable; default");
    }
    if (const QString font = section.value(QStringLiteral("font")); !font.isEmpty())
        result.style.font = font;
    return result;
}

Result parse(QByteArrayView bytes) {
    return parse(TextDecoding::lenient(bytes));
}

} // namespace PlaylistStyleParser
} // namespace vantor
