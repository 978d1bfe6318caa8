#include "SkinKit/Loading/BaseSpritePainter_p.h"

namespace vantor {

using namespace BaseColors;

// The pieces of the playlist's frame. They are repeated side by side, so that bevels follow the window's
// edges only.
bool BaseSpritePainter::paintPlaylistPiece(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    const auto is = [&](const char *name) { return sprite.name == QLatin1StringView(name); };
    const auto begins = [&](const char *name) { return sprite.name.startsWith(QLatin1StringView(name)); };
    const bool selected = sprite.name.endsWith(QLatin1StringView("_SELECTED"));
    if (begins("PLAYLIST_TOP_"))
        playlistTop(rect, selected, begins("PLAYLIST_TOP_RIGHT"));
    else if (is("PLAYLIST_LEFT_TILE") || is("PLAYLIST_RIGHT_TILE"))
        playlistSide(rect, is("PLAYLIST_RIGHT_TILE"));
    else if (is("PLAYLIST_BOTTOM_LEFT_CORNER"))
        playlistBottomLeft(rect);
    else if (is("PLAYLIST_BOTTOM_RIGHT_CORNER"))
        playlistBottomRight(rect);
    else if (begins("PLAYLIST_SHADE_BACKGROUND"))
        playlistShade(rect, selected, begins("PLAYLIST_SHADE_BACKGROUND_LEFT"),
                      begins("PLAYLIST_SHADE_BACKGROUND_RIGHT"));
    else if (is("PLAYLIST_BOTTOM_TILE") || is("PLAYLIST_VISUALIZER_BACKGROUND")) {
        face(rect);
        m_canvas.fill({rect.x(), rect.bottom(), rect.width(), 1}, faceDark);
        if (is("PLAYLIST_VISUALIZER_BACKGROUND"))
            field(QRect(1, 11, 74, 18).translated(rect.topLeft()));
    } else {
        return false;
    }
    return true;
}

void BaseSpritePainter::playlistTop(const QRect &rect, bool selected, bool withButtons) {
    m_canvas.fill(rect, selected ? faceColor : pressedFace);
    m_canvas.fill({rect.x(), rect.y(), rect.width(), 1}, faceLight);
    m_canvas.fill({rect.x(), rect.y() + 13, rect.width(), 1}, faceDark);
    m_canvas.fill({rect.x(), rect.y() + 14, rect.width(), 6}, faceColor);
    if (withButtons) {
        paintButton({QStringLiteral("PLAYLIST_COLLAPSE"), rect.x() + 4, rect.y() + 3, 9, 9});
        paintButton({QStringLiteral("PLAYLIST_CLOSE"), rect.x() + 14, rect.y() + 3, 9, 9});
        return;
    }
    for (int y = 4; y <= 8; y += 2)
        m_canvas.fill({rect.x(), rect.y() + y, rect.width(), 1}, selected ? faceLight : faceColor);
}

void BaseSpritePainter::playlistSide(const QRect &rect, bool withGroove) {
    face(rect);
    if (withGroove) {
        m_canvas.fill({rect.x() + 5, rect.y(), 8, rect.height()}, fieldColor);
        m_canvas.fill({rect.right(), rect.y(), 1, rect.height()}, faceDark);
    } else {
        m_canvas.fill({rect.x(), rect.y(), 1, rect.height()}, faceLight);
    }
}

void BaseSpritePainter::menuButton(const QRect &rect, const char *label) {
    raised(rect);
    m_canvas.centredText(rect, QString::fromLatin1(label), ink);
}

void BaseSpritePainter::playlistBottomLeft(const QRect &rect) {
    face(rect);
    m_canvas.fill({rect.x(), rect.y(), 1, rect.height()}, faceLight);
    m_canvas.fill({rect.x(), rect.bottom(), rect.width(), 1}, faceDark);
    const char *labels[] = {"ADD", "REM", "SEL", "MISC"};
    for (int i = 0; i < 4; ++i)
        menuButton(QRect(14 + 29 * i, 8, 22, 18).translated(rect.topLeft()), labels[i]);
}

void BaseSpritePainter::playlistBottomRight(const QRect &rect) {
    const QPoint corner = rect.topLeft();
    face(rect);
    m_canvas.fill({rect.right(), rect.y(), 1, rect.height()}, faceDark);
    m_canvas.fill({rect.x(), rect.bottom(), rect.width(), 1}, faceDark);
    field(QRect(4, 8, 95, 10).translated(corner));   // running time
    field(QRect(63, 21, 36, 10).translated(corner)); // clock
    for (const int y : {24, 27})
        m_canvas.fill({corner.x() + 84, corner.y() + y, 1, 1}, fieldDim);
    const char *buttons[] = {"MAIN_PREVIOUS_BUTTON", "MAIN_PLAY_BUTTON", "MAIN_PAUSE_BUTTON",
                             "MAIN_STOP_BUTTON",     "MAIN_NEXT_BUTTON", "MAIN_EJECT_BUTTON"};
    for (int i = 0; i < 6; ++i)
        symbol(QRect(4 + 9 * i, 22, 9, 10).translated(corner), buttons[i]);
    menuButton(QRect(106, 8, 22, 18).translated(corner), "LIST");
    for (int i = 0; i < 3; ++i) // the scroll keys and the grip
        m_canvas.fill({corner.x() + 138 - i, corner.y() + 3 + i, 2 + 2 * i, 1}, ink);
    for (int i = 0; i < 3; ++i)
        m_canvas.fill({corner.x() + 136 + i, corner.y() + 8 + i, 6 - 2 * i, 1}, ink);
    for (int i = 0; i < 3; ++i)
        m_canvas.fill({corner.x() + 136 + 4 * i, corner.y() + 34 - 4 * i, 11 - 4 * i, 1}, faceLight);
}

void BaseSpritePainter::playlistShade(const QRect &rect, bool selected, bool first, bool last) {
    m_canvas.fill(rect, selected ? faceColor : pressedFace);
    m_canvas.fill({rect.x(), rect.y(), rect.width(), 1}, faceLight);
    m_canvas.fill({rect.x(), rect.bottom(), rect.width(), 1}, faceDark);
    const int from = first ? 4 : 0;
    const int to = last ? 19 : rect.width();
    m_canvas.fill({rect.x() + from, rect.y() + 3, to - from, 8}, fieldColor);
    if (!last)
        return;
    paintButton({QStringLiteral("PLAYLIST_EXPAND"), rect.x() + 29, rect.y() + 3, 9, 9});
    paintButton({QStringLiteral("PLAYLIST_CLOSE"), rect.x() + 39, rect.y() + 3, 9, 9});
}

} // namespace vantor
