#include "SkinKit/Rendering/MiniTime_p.h"
#include "SkinKit/Rendering/PlaylistWindowElements_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"
#include "SkinKit/Rendering/VisualizerPicture_p.h"

#include <tuple>

namespace vantor {

namespace {

using Control = PlaylistWindowControl;
using Scene = PlaylistWindowScene;
namespace Layout = PlaylistWindowLayout;

QRect place(Control control, const Scene &scene) {
    return Layout::rect(control, scene.size, scene.shaded);
}

QColor color(const RGBColor &color) {
    return {color.red, color.green, color.blue};
}

/// Fills the columns from `left` up to `right` with a tile, of which the last may be cut.
void tileRow(const SkinCanvas &canvas, const QString &sprite, int y, int left, int right) {
    const QSize tile(Layout::step.width(), Layout::bottomHeight);
    for (int x = left; x < right; x += tile.width())
        canvas.sprites.drawPart(sprite, QRect(0, 0, std::min(tile.width(), right - x), tile.height()),
                                {x, y});
}

void drawPressed(const SkinCanvas &canvas, const Scene &scene, Control control, const QString &sprite) {
    if (scene.pressed == control)
        canvas.sprites.draw(sprite, place(control, scene).topLeft());
}

auto titleState(const Scene &scene) {
    return std::tuple(scene.focused, scene.pressed == Control::shade, scene.pressed == Control::close);
}

void drawTitle(const SkinCanvas &canvas, const Scene &scene) {
    const QString ending = scene.focused ? QStringLiteral("_SELECTED") : QString();
    const QString tile = QStringLiteral("PLAYLIST_TOP_TILE") + ending;
    const int cornerWidth = Layout::step.width();
    const QPoint title = Layout::titlePiece(scene.size);
    const int right = scene.size.width() - cornerWidth;
    canvas.sprites.draw(scene.focused ? QStringLiteral("PLAYLIST_TOP_LEFT_SELECTED")
                                      : QStringLiteral("PLAYLIST_TOP_LEFT_CORNER"),
                        {0, 0});
    // From the corners inwards, so that a cut tile hides behind the title on both sides.
    tileRow(canvas, tile, 0, cornerWidth, title.x());
    for (int x = right - cornerWidth; x > title.x() + cornerWidth; x -= cornerWidth)
        canvas.sprites.draw(tile, {x, 0});
    canvas.sprites.draw(QStringLiteral("PLAYLIST_TITLE_BAR") + ending, title);
    canvas.sprites.draw(QStringLiteral("PLAYLIST_TOP_RIGHT_CORNER") + ending, {right, 0});
    drawPressed(canvas, scene, Control::shade, QStringLiteral("PLAYLIST_COLLAPSE_SELECTED"));
    drawPressed(canvas, scene, Control::close, QStringLiteral("PLAYLIST_CLOSE_SELECTED"));
}

void drawSides(const SkinCanvas &canvas, const Scene &scene) {
    const int bottom = scene.size.height() - Layout::bottomHeight;
    for (int y = Layout::topHeight; y < bottom; y += Layout::step.height()) {
        canvas.sprites.draw(QStringLiteral("PLAYLIST_LEFT_TILE"), {0, y});
        canvas.sprites.draw(QStringLiteral("PLAYLIST_RIGHT_TILE"),
                            {scene.size.width() - Layout::rightWidth, y});
    }
}

void drawBottom(const SkinCanvas &canvas, const Scene &scene) {
    constexpr int leftPiece = 125;
    const QPoint right = Layout::bottomRightPiece(scene.size);
    canvas.sprites.draw(QStringLiteral("PLAYLIST_BOTTOM_LEFT_CORNER"), {0, right.y()});
    tileRow(canvas, QStringLiteral("PLAYLIST_BOTTOM_TILE"), right.y(), leftPiece, right.x());
    if (Layout::hasVisualizer(scene.size))
        canvas.sprites.draw(QStringLiteral("PLAYLIST_VISUALIZER_BACKGROUND"),
                            Layout::visualizerPiece(scene.size));
    canvas.sprites.draw(QStringLiteral("PLAYLIST_BOTTOM_RIGHT_CORNER"), right);
}

void drawRows(const SkinCanvas &canvas, const Scene &scene) {
    const PlaylistStyle &style = canvas.skin.playlistStyle;
    canvas.painter.fillRect(place(Control::rows, scene), color(style.normalBackground));
    for (std::size_t line = 0; line < scene.rows.size(); ++line) {
        if (scene.rows[line].selected)
            canvas.painter.fillRect(Layout::row(static_cast<int>(line), scene.size),
                                    color(style.selectedBackground));
    }
    if (scene.insertionLine) {
        const QRect below = Layout::row(*scene.insertionLine, scene.size);
        canvas.painter.fillRect(QRect(below.left(), below.top() - 1, below.width(), 1), color(style.current));
    }
}

auto scrollState(const Scene &scene) {
    return std::tuple(Layout::scrollHandle(scene.scroll, scene.size).top(),
                      scene.pressed == Control::scrollBar);
}

void drawScrollHandle(const SkinCanvas &canvas, const Scene &scene) {
    canvas.sprites.draw(scene.pressed == Control::scrollBar
                            ? QStringLiteral("PLAYLIST_SCROLL_HANDLE_SELECTED")
                            : QStringLiteral("PLAYLIST_SCROLL_HANDLE"),
                        Layout::scrollHandle(scene.scroll, scene.size).topLeft());
}

auto runningTimeState(const Scene &scene) {
    return scene.runningTime;
}

void drawRunningTime(const SkinCanvas &canvas, const Scene &scene) {
    const QRect area = Layout::runningTime(scene.size);
    canvas.painter.save();
    canvas.painter.setClipRect(area, Qt::IntersectClip);
    SkinTextFont::draw(canvas.sprites, scene.runningTime, area.topLeft(), area.left(), area.right() + 1);
    canvas.painter.restore();
}

auto clockState(const Scene &scene) {
    return miniTime(scene.status, scene.timeLit);
}

void drawClock(const SkinCanvas &canvas, const Scene &scene) {
    drawMiniTime(canvas.sprites, clockState(scene), place(Control::time, scene).topLeft());
}

bool visualizerDiffers(const Scene &before, const Scene &after) {
    return before.visualizer != after.visualizer;
}

void drawVisualizer(const SkinCanvas &canvas, const Scene &scene) {
    const QRect area = place(Control::visualizer, scene);
    if (area.isEmpty())
        return;
    const QImage picture = visualizerImage(scene.visualizer, canvas.skin.visColors, {76, area.height()});
    if (!picture.isNull())
        canvas.painter.drawImage(area.topLeft(), picture, QRect({0, 0}, area.size()));
}

template <PlaylistMenu menu>
auto menuState(const Scene &scene) {
    return scene.menu == menu ? std::optional(scene.menuEntry.value_or(-1)) : std::nullopt;
}

template <PlaylistMenu menu>
void drawMenu(const SkinCanvas &canvas, const Scene &scene) {
    if (scene.menu != menu)
        return;
    canvas.sprites.draw(PlaylistMenus::barSprite(menu), PlaylistMenus::barRect(menu, scene.size).topLeft());
    const auto entries = PlaylistMenus::entries(menu);
    for (int index = 0; index < static_cast<int>(entries.size()); ++index)
        canvas.sprites.draw(
            PlaylistMenus::entrySprite(entries[static_cast<std::size_t>(index)], scene.menuEntry == index),
            PlaylistMenus::entryRect(menu, index, scene.size).topLeft());
}

template <PlaylistMenu menu>
SceneElement<Scene> menuElement(QSize size) {
    return {PlaylistMenus::rect(menu, size), stateDiffers<menuState<menu>>, drawMenu<menu>};
}

// The one-line form

auto shadeState(const Scene &scene) {
    return std::tuple(titleState(scene), scene.shadeTitle, scene.shadeLength);
}

/// Of a text in the skin's font, what fits with an ellipsis at its end.
QString elided(const QString &text, int width) {
    if (SkinTextFont::width(text) <= width)
        return text;
    QString cut = text.left(width / SkinTextFont::characterWidth); // a cell takes a code unit at least
    while (!cut.isEmpty() && SkinTextFont::width(cut) + SkinTextFont::characterWidth > width)
        cut.chop(1);
    return cut + QChar(0x2026);
}

void drawShade(const SkinCanvas &canvas, const Scene &scene) {
    constexpr int leftPiece = 25;
    constexpr int rightPiece = 50;
    const int right = scene.size.width() - rightPiece;
    canvas.sprites.draw(QStringLiteral("PLAYLIST_SHADE_BACKGROUND_LEFT"), {0, 0});
    tileRow(canvas, QStringLiteral("PLAYLIST_SHADE_BACKGROUND"), 0, leftPiece, right);
    canvas.sprites.draw(scene.focused ? QStringLiteral("PLAYLIST_SHADE_BACKGROUND_RIGHT_SELECTED")
                                      : QStringLiteral("PLAYLIST_SHADE_BACKGROUND_RIGHT"),
                        {right, 0});
    const QRect area = Layout::shadeTitle(scene.size);
    const int lengthWidth = SkinTextFont::width(scene.shadeLength);
    const auto draw = [&](const QString &text, int x) {
        SkinTextFont::draw(canvas.sprites, text, {x, area.top()}, area.left(), area.right() + 1);
    };
    draw(elided(scene.shadeTitle, area.width() - lengthWidth - SkinTextFont::characterWidth), area.left());
    draw(scene.shadeLength, area.right() + 1 - lengthWidth);
    drawPressed(canvas, scene, Control::shade, QStringLiteral("PLAYLIST_EXPAND_SELECTED"));
    drawPressed(canvas, scene, Control::close, QStringLiteral("PLAYLIST_CLOSE_SELECTED"));
}

} // namespace

std::vector<SceneElement<PlaylistWindowScene>> playlistWindowElements(QSize size) {
    const int bottom = size.height() - Layout::bottomHeight;
    const QRect window({0, 0}, size);
    return {
        {window, neverDiffers, drawSides},
        {{0, 0, size.width(), Layout::topHeight}, stateDiffers<titleState>, drawTitle},
        {{0, bottom, size.width(), Layout::bottomHeight}, neverDiffers, drawBottom},
        {Layout::rect(Control::rows, size, false), neverDiffers, drawRows},
        {Layout::rect(Control::scrollBar, size, false), stateDiffers<scrollState>, drawScrollHandle},
        {Layout::runningTime(size), stateDiffers<runningTimeState>, drawRunningTime},
        {Layout::rect(Control::time, size, false), stateDiffers<clockState>, drawClock},
        {Layout::rect(Control::visualizer, size, false), visualizerDiffers, drawVisualizer},
        menuElement<PlaylistMenu::add>(size),
        menuElement<PlaylistMenu::remove>(size),
        menuElement<PlaylistMenu::select>(size),
        menuElement<PlaylistMenu::misc>(size),
        menuElement<PlaylistMenu::list>(size),
    };
}

std::vector<SceneElement<PlaylistWindowScene>> playlistShadeElements(QSize size) {
    return {{QRect({0, 0}, Layout::windowSize(size, true)), stateDiffers<shadeState>, drawShade}};
}

} // namespace vantor
