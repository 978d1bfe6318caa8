#include "FolderBackendKit/FolderWalk.h"
#include "Platform/NativePath.h"
#include "Platform/TextDecoding.h"

#include <QRegularExpression>

// The rules by which names of folders are read.
namespace vantor {

namespace {

QRegularExpression wholeName(const QString &pattern) {
    QRegularExpression expression(QRegularExpression::anchoredPattern(pattern),
                                  QRegularExpression::UseUnicodePropertiesOption); // every kind of blank
    expression.optimize();
    return expression;
}

/// None for what is no year of an album.
std::optional<int> year(const QString &digits) {
    const int number = digits.toInt();
    return number >= 1900 && number <= 2100 ? std::optional(number) : std::nullopt;
}

bool isBlank(const QString &text) {
    return text.trimmed().isEmpty();
}

} // namespace

std::pair<QString, std::optional<int>> FolderWalk::parseAlbumFolder(const QString &name) {
    static const QRegularExpression yearFirst = wholeName(QStringLiteral("([0-9]{4})\\s*[-–]\\s*(.+)"));
    static const QRegularExpression yearLast = wholeName(QStringLiteral("(.+?)\\s*\\(([0-9]{4})\\)"));
    if (const auto match = yearFirst.match(name); match.hasMatch()) {
        const auto number = year(match.captured(1));
        if (number && !isBlank(match.captured(2)))
            return {match.captured(2), number};
    }
    if (const auto match = yearLast.match(name); match.hasMatch()) {
        const auto number = year(match.captured(2));
        if (number && !isBlank(match.captured(1)))
            return {match.captured(1), number};
    }
    return {name, std::nullopt};
}

std::optional<int> FolderWalk::discNumber(const QString &name) {
    static const QRegularExpression disc = wholeName(QStringLiteral("(?i:disc|disk|cd)\\s*0*([0-9]{1,3})"));
    const auto match = disc.match(name);
    return match.hasMatch() ? std::optional(match.captured(1).toInt()) : std::nullopt;
}

QString FolderWalk::sortName(const QString &name) {
    constexpr QLatin1String article("the ");
    if (name.size() <= article.size() || !name.startsWith(article, Qt::CaseInsensitive))
        return name;
    const QString rest = name.sliced(article.size());
    return isBlank(rest) ? name : rest;
}

QString FolderWalk::displayName(const QString &name) {
    const QString text = name.isValidUtf16() ? name : TextDecoding::lenient(NativePath::bytes(name));
    const QString trimmed = text.trimmed();
    return (trimmed.isEmpty() ? text : trimmed).normalized(QString::NormalizationForm_C);
}

QString FolderWalk::identifier(const QString &relativePath) {
    if (relativePath.isValidUtf16())
        return relativePath;
    // Which no relative path begins with.
    return u'/' + QString::fromLatin1(NativePath::bytes(relativePath).toPercentEncoding());
}

} // namespace vantor
