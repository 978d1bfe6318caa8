#include "SkinKit/Loading/SkinPreviewPage.h"

#include "Platform/TextDecoding.h"
#include "Platform/Windows1252.h"
#include "SkinKit/Loading/SkinArchive.h"

namespace vantor::SkinPreviewPage {

namespace {

QStringList candidates(const SkinArchive &archive) {
    static const QSet<QString> configuration{QStringLiteral("viscolor.txt"), QStringLiteral("pledit.txt"),
                                             QStringLiteral("region.txt")};
    QStringList keys;
    for (auto it = archive.files().keyBegin(); it != archive.files().keyEnd(); ++it) { // ascending
        if (it->endsWith(QStringLiteral(".txt")) && !configuration.contains(*it))
            keys.append(*it);
    }
    return keys;
}

QString shortened(const QString &text) {
    const QByteArray bytes = text.toUtf8();
    if (bytes.size() <= maxReadmeBytes)
        return text;
    QString head = QString::fromUtf8(bytes.left(maxReadmeBytes));
    while (head.endsWith(QChar::ReplacementCharacter))
        head.chop(1);
    return head + QChar(0x2026);
}

} // namespace

std::optional<QString> readme(const SkinArchive &archive) {
    const QStringList keys = candidates(archive);
    if (keys.isEmpty())
        return std::nullopt;
    const auto named = std::ranges::find_if(
        keys, [](const QString &key) { return key.startsWith(QStringLiteral("readme")); });
    const QByteArray bytes = archive.files().value(named != keys.end() ? *named : keys.first());
    std::optional<QString> text = TextDecoding::utf8(bytes);
    if (!text)
        text = Windows1252::decode(bytes);
    if (!text)
        return std::nullopt;
    return shortened(*text);
}

} // namespace vantor::SkinPreviewPage
