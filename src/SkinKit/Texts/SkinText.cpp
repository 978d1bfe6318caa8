#include "SkinKit/Texts/SkinText.h"

#include <QUtf8StringView>

#include <array>

namespace vantor::SkinText {

namespace {

// 0x80–0x9F of Windows-1252, where it differs from Latin-1; zero is unassigned.
constexpr std::array<char16_t, 32> windowsBlock = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

} // namespace

std::optional<QString> utf8(QByteArrayView bytes) {
    if (!QUtf8StringView(bytes.data(), bytes.size()).isValidUtf8())
        return std::nullopt;
    return QString::fromUtf8(bytes);
}

std::optional<QString> windows1252(QByteArrayView bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text) {
        const char16_t code = character.unicode();
        if (code < 0x80 || code > 0x9F)
            continue;
        character = QChar(windowsBlock[code - 0x80U]);
        if (character.isNull())
            return std::nullopt;
    }
    return text;
}

QString lenient(QByteArrayView bytes) {
    if (auto text = utf8(bytes))
        return *text;
    if (auto text = windows1252(bytes))
        return *text;
    return QString::fromLatin1(bytes);
}

} // namespace vantor::SkinText
