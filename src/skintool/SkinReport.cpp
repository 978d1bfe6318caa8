#include "skintool/SkinReport.h"

#include "SkinKit/Loading/Skin.h"

namespace vantor::SkinReport {

namespace {

QString counted(qsizetype count, const char *noun) {
    return QStringLiteral("%1 %2%3").arg(QString::number(count), QLatin1StringView(noun),
                                         count == 1 ? QString() : QStringLiteral("s"));
}

QString hex(RGBColor color) {
    return QColor(color.red, color.green, color.blue).name();
}

QString size(const QImage &image) {
    return QStringLiteral("%1x%2").arg(image.width()).arg(image.height());
}

void appendSheets(QStringList &lines, const Skin &skin) {
    for (auto it = skin.sheets.cbegin(); it != skin.sheets.cend(); ++it) {
        const bool generated = skin.generatedSheets.contains(it.key());
        lines.append(QStringLiteral("sheet: %1 %2%3")
                         .arg(it.key(), size(*it), generated ? QStringLiteral(" generated") : QString()));
    }
}

void appendColors(QStringList &lines, const Skin &skin) {
    QStringList colors;
    for (const RGBColor &color : skin.visColors)
        colors.append(hex(color));
    lines.append(QStringLiteral("visualizer: ") + colors.join(QLatin1Char(' ')));
    const PlaylistStyle &style = skin.playlistStyle;
    lines.append(QStringLiteral("playlist: normal %1, current %2, background %3, selected %4, font %5")
                     .arg(hex(style.normal), hex(style.current), hex(style.normalBackground),
                          hex(style.selectedBackground), printable(style.font)));
}

void appendRegions(QStringList &lines, const Skin &skin) {
    const auto &sections = skin.region.sections;
    for (auto it = sections.cbegin(); it != sections.cend(); ++it) {
        qsizetype points = 0;
        for (const SkinRegion::Polygon &polygon : *it)
            points += polygon.size();
        lines.append(QStringLiteral("region: %1 %2, %3")
                         .arg(printable(it.key()), counted(it->size(), "polygon"), counted(points, "point")));
    }
}

void appendCursors(QStringList &lines, const Skin &skin) {
    const auto &cursors = skin.cursors.cursors;
    for (auto it = cursors.cbegin(); it != cursors.cend(); ++it) {
        const SkinCursor::Frame &first = it->frames.front();
        lines.append(
            QStringLiteral("cursor: %1 %2, %3, hot spot %4,%5")
                .arg(it.key(), size(first.image), counted(static_cast<qsizetype>(it->frames.size()), "frame"))
                .arg(first.hotSpot.x())
                .arg(first.hotSpot.y()));
    }
    for (const QString &file : skin.cursors.unreadable)
        lines.append(QStringLiteral("unreadable cursor: ") + file);
}

} // namespace

QString printable(QString text) {
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control && c != QLatin1Char('\t'))
            c = QChar::ReplacementCharacter;
    }
    return text;
}

QStringList summary(const QString &input, const Skin &skin) {
    QStringList lines{
        QStringLiteral("%1: %2 (%3 generated), %4, %5, %6")
            .arg(printable(input), counted(skin.sheets.size(), "sheet"),
                 QString::number(skin.generatedSheets.size()), counted(skin.cursors.cursors.size(), "cursor"),
                 counted(skin.warnings.size(), "warning"), counted(skin.fallbacks.size(), "fallback"))};
    for (const QString &line : skin.warnings)
        lines.append(QStringLiteral("warning: ") + printable(line));
    for (const QString &line : skin.fallbacks)
        lines.append(QStringLiteral("fallback: ") + printable(line));
    return lines;
}

QStringList details(const Skin &skin, const std::optional<QString> &readme) {
    QStringList lines;
    appendSheets(lines, skin);
    appendColors(lines, skin);
    appendRegions(lines, skin);
    appendCursors(lines, skin);
    if (!readme)
        return lines;
    QString text = *readme;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    for (const QString &line : text.split(QLatin1Char('\n')))
        lines.append(QStringLiteral("read-me: ") + printable(line));
    return lines;
}

} // namespace vantor::SkinReport
