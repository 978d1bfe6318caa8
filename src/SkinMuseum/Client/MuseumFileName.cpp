#include "SkinMuseum/Client/MuseumDownloader.h"

#include <QStringEncoder>

namespace vantor {

namespace {

// Of the 255 that file systems allow, with room for the extension and a number.
constexpr qsizetype maxNameBytes = 200;
const QLatin1String extension(".wsz");

/// The character as it may stand in a file's name; none for one that has no place there.
std::optional<char32_t> allowed(char32_t c) {
    if (c == QChar::ReplacementCharacter) // which stands for half a pair
        return std::nullopt;
    switch (QChar::category(c)) {
    case QChar::Other_Format: // among them those that turn the direction of reading
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Other_PrivateUse:
        return std::nullopt;
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return U'_';
    default:
        break;
    }
    return QStringView(u"/\\:*?\"<>|").contains(QChar(c > 0xFFFF ? u'x' : static_cast<char16_t>(c))) ? U'_'
                                                                                                     : c;
}

bool isEdge(QChar c) {
    return c == u'.' || c.isSpace();
}

/// Without dots and blanks at either end.
QString trimmed(QStringView name) {
    while (!name.isEmpty() && isEdge(name.front()))
        name = name.sliced(1);
    while (!name.isEmpty() && isEdge(name.back()))
        name.chop(1);
    return name.toString();
}

/// Names of devices, which some systems open whatever follows the dot.
bool isReserved(const QString &name) {
    static const QStringList devices{QStringLiteral("con"), QStringLiteral("prn"), QStringLiteral("aux"),
                                     QStringLiteral("nul")};
    const QString stem = name.section(u'.', 0, 0).trimmed().toLower();
    const bool isPort = (stem.startsWith(QLatin1String("com")) || stem.startsWith(QLatin1String("lpt"))) &&
                        stem.size() == 4 && stem[3].isDigit();
    return devices.contains(stem) || isPort;
}

} // namespace

QString MuseumDownloader::sanitizedFilename(const QString &name, const QString &fallback) {
    QString base;
    qsizetype bytes = 0;
    const bool hasExtension = name.endsWith(extension, Qt::CaseInsensitive);
    for (const char32_t c : QStringView(name).chopped(hasExtension ? extension.size() : 0).toUcs4()) {
        const std::optional<char32_t> kept = allowed(c);
        if (!kept || (base.isEmpty() && *kept <= 0xFFFF && isEdge(QChar(static_cast<char16_t>(*kept)))))
            continue;
        const QString piece = QString::fromUcs4(&*kept, 1);
        bytes += piece.toUtf8().size();
        if (bytes > maxNameBytes)
            break;
        base += piece;
    }
    base = trimmed(base);
    const bool saysNothing = std::ranges::all_of(base, [](QChar c) { return c == u'_' || isEdge(c); });
    if (saysNothing)
        base = fallback;
    else if (isReserved(base))
        base.prepend(u'_');
    return base + extension;
}

} // namespace vantor
