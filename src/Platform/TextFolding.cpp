#include "Platform/TextFolding.h"

#include <algorithm>

namespace vantor::TextFolding {

namespace {

bool isPlain(const QString &text) {
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80; });
}

/// Of letters that are no accented ones to the character tables, but to those who lack them on their
/// keyboard.
const char *plainLetters(QChar c) {
    switch (c.unicode()) {
    case u'ß':
        return "ss";
    case u'æ':
        return "ae";
    case u'œ':
        return "oe";
    case u'ø':
        return "o";
    case u'ł':
        return "l";
    case u'đ':
        return "d";
    case u'ı':
        return "i";
    default:
        return nullptr;
    }
}

} // namespace

QString folded(const QString &text) {
    if (isPlain(text))
        return text.toLower();
    QString result;
    for (const QChar c : text.normalized(QString::NormalizationForm_KD).toCaseFolded()) {
        if (const char *letters = plainLetters(c))
            result += QLatin1String(letters);
        else if (c.category() != QChar::Mark_NonSpacing)
            result += c;
    }
    return result;
}

} // namespace vantor::TextFolding
