#include "SkinKit/Rendering/PlaylistRowText_p.h"

#include <QFontMetrics>

namespace vantor {

namespace {

constexpr int fontPixels = 10;
constexpr int smallestFontPixels = 5;
constexpr int padding = 3; ///< beside the texts
constexpr int gap = 6;     ///< between title and length
// Of a name or a title that a file gives; more would not be seen, but measured.
constexpr qsizetype longestFamily = 64;
constexpr qsizetype longestTitle = 512;

QFont rowFont(const QString &family, int scale) {
    QFont font;
    font.setFamilies({family.left(longestFamily)});
    font.setStyleHint(QFont::SansSerif);
    for (int pixels = fontPixels; pixels >= smallestFontPixels; --pixels) {
        font.setPixelSize(pixels * scale);
        if (QFontMetrics(font).height() <= PlaylistWindowLayout::rowHeight * scale)
            break;
    }
    return font;
}

void drawRow(QPainter &painter, const QFontMetrics &metrics, const PlaylistRow &row, QRect place, int scale) {
    place.adjust(padding * scale, 0, -padding * scale, 0);
    constexpr int flags = Qt::AlignVCenter | Qt::AlignAbsolute | Qt::TextSingleLine;
    int titleWidth = place.width();
    if (!row.length.isEmpty()) {
        painter.drawText(place, flags | Qt::AlignRight, row.length);
        titleWidth -= metrics.horizontalAdvance(row.length) + gap * scale;
    }
    place.setWidth(titleWidth);
    const QString title =
        metrics.elidedText(row.title.left(longestTitle), Qt::ElideRight, titleWidth, Qt::TextSingleLine);
    painter.drawText(place, flags | Qt::AlignLeft, title);
}

} // namespace

void drawPlaylistRowTexts(QPainter &painter, const PlaylistStyle &style, const PlaylistWindowScene &scene,
                          int scale) {
    const QRegion clip = painter.clipRegion();
    const QFont font = rowFont(style.font, scale);
    const QFontMetrics metrics(font);
    painter.setFont(font);
    for (std::size_t line = 0; line < scene.rows.size(); ++line) {
        const QRect row = PlaylistWindowLayout::row(static_cast<int>(line), scene.size);
        const QRect place(row.topLeft() * scale, row.size() * scale);
        if (!clip.intersects(place))
            continue;
        const RGBColor &color = scene.rows[line].current ? style.current : style.normal;
        painter.setPen(QColor(color.red, color.green, color.blue));
        drawRow(painter, metrics, scene.rows[line], place, scale);
    }
}

} // namespace vantor
