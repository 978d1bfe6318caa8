#include "SkinKit/Loading/SkinCursors.h"

#include "SkinKit/Decoding/CursorParser.h"
#include "SkinKit/Loading/SkinArchive.h"

namespace vantor {

namespace {

// Archives built from a map know no limit on their entries.
constexpr qsizetype maxCursorBytes = 8'388'608;

} // namespace

const QStringList &SkinCursors::names() {
    static const QStringList names{
        QStringLiteral("CLOSE"),    QStringLiteral("EQCLOSE"),  QStringLiteral("EQNORMAL"),
        QStringLiteral("EQSLID"),   QStringLiteral("EQTITLE"),  QStringLiteral("MAINMENU"),
        QStringLiteral("MMENU"),    QStringLiteral("MIN"),      QStringLiteral("NORMAL"),
        QStringLiteral("PCLOSE"),   QStringLiteral("PNORMAL"),  QStringLiteral("POSBAR"),
        QStringLiteral("PSIZE"),    QStringLiteral("PTBAR"),    QStringLiteral("PVSCROLL"),
        QStringLiteral("PWINBUT"),  QStringLiteral("PWSNORM"),  QStringLiteral("PWSSIZE"),
        QStringLiteral("SONGNAME"), QStringLiteral("TITLEBAR"), QStringLiteral("VOLBAL"),
        QStringLiteral("WINBUT"),   QStringLiteral("WSNORMAL"), QStringLiteral("WSPOSBAR"),
    };
    return names;
}

SkinCursors SkinCursors::load(const SkinArchive &archive) {
    SkinCursors result;
    std::int64_t pixelsLeft = CursorParser::maxPixels; // for all of them together
    const QStringList extensions{QStringLiteral("cur")};
    for (const QString &name : names()) {
        const std::optional<QByteArray> bytes = archive.file(name, extensions);
        if (!bytes)
            continue;
        std::optional<SkinCursor> cursor;
        if (bytes->size() <= maxCursorBytes)
            cursor = CursorParser::parse(*bytes, pixelsLeft);
        for (const auto &frame : cursor ? cursor->frames : std::vector<SkinCursor::Frame>())
            pixelsLeft -= std::int64_t{frame.image.width()} * frame.image.height();
        if (cursor)
            result.cursors.insert(name, *std::move(cursor));
        else
            result.unreadable.append(name.toLower() + QStringLiteral(".cur"));
    }
    return result;
}

} // namespace vantor
