#include "Platform/Windows1252.h"

#include <algorithm>
#include <array>

namespace vantor::Windows1252 {

namespace {

// 0x80–0x9F, where the code page differs from Latin-1; zero is unassigned.
constexpr std::array<char16_t, 32> windowsBlock = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

constexpr bool isInWindowsBlock(char32_t code) {
    return code >= 0x80 && code <= 0x9F;
}

char encodedCharacter(char32_t code) {
    if (code <= 0xFF && !isInWindowsBlock(code))
        return static_cast<char>(code);
    const auto found = std::find(windowsBlock.begin(), windowsBlock.end(), code);
    return found == windowsBlock.end() ? '?' : static_cast<char>(0x80 + (found - windowsBlock.begin()));
}

} // namespace

std::optional<QString> decode(QByteArrayView bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text) {
        if (!isInWindowsBlock(character.unicode()))
            continue;
        character = QChar(windowsBlock[character.unicode() - 0x80U]);
        if (character.isNull())
            return std::nullopt;
    }
    return text;
}

QByteArray encodeLossy(const QString &text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const char32_t code : text.toUcs4())
        bytes.append(encodedCharacter(code));
    return bytes;
}

} // namespace vantor::Windows1252
