#include "FolderBackendKit/FolderTrackNumbers.h"

#include "AudioCore/Queue/FileMetadata.h"

#include <QRegularExpression>

namespace vantor {

std::optional<int> FolderTrackNumbers::parse(const QString &text) {
    bool isNumber = false;
    const int number = text.section(u'/', 0, 0).trimmed().toInt(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

FolderTrackNumbers FolderTrackNumbers::read(const FileMetadata &metadata) {
    return {parse(metadata.trackNumber), parse(metadata.discNumber)};
}

FolderTrackNumbers::Stem FolderTrackNumbers::parseStem(const QString &stem) {
    static const QRegularExpression numbered(
        QRegularExpression::anchoredPattern(QStringLiteral("([0-9]{1,3})[\\s._-]+(.+)")),
        QRegularExpression::UseUnicodePropertiesOption);
    if (const auto match = numbered.match(stem); match.hasMatch()) {
        if (const QString title = match.captured(2).trimmed(); !title.isEmpty())
            return {title, match.captured(1).toInt()};
    }
    return {stem, std::nullopt};
}

} // namespace vantor
