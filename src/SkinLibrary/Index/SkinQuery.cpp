#include "SkinLibrary/Index/SkinQuery.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace vantor {

namespace {

/// The null character too, which would end the expression early.
bool isSeparator(QChar unit) {
    return unit.isSpace() || unit.isNull();
}

bool isWord(const QString &piece) {
    const auto points = piece.toUcs4();
    return std::ranges::any_of(points, [](char32_t point) { return QChar::isLetterOrNumber(point); });
}

QString quotedPrefix(QString piece) {
    return QLatin1Char('"') + piece.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1String("\"*");
}

} // namespace

bool SkinQuery::hasText() const {
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (count < minimumTextLength && characters.toNextBoundary() != -1)
        ++count;
    return count >= minimumTextLength;
}

std::optional<QString> matchExpression(const QString &text) {
    QStringList terms;
    for (auto at = text.begin(); at != text.end();) {
        const auto end = std::find_if(at, text.end(), isSeparator);
        const QString piece(at, end - at);
        if (isWord(piece))
            terms.append(quotedPrefix(piece));
        at = std::find_if_not(end, text.end(), isSeparator);
    }
    if (terms.isEmpty())
        return std::nullopt;
    return terms.join(QLatin1Char(' '));
}

} // namespace vantor
