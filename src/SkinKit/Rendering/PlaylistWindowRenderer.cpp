#include "SkinKit/Rendering/PlaylistWindowRenderer.h"

#include "SkinKit/Rendering/PlaylistRowText_p.h"
#include "SkinKit/Rendering/PlaylistWindowElements_p.h"
#include "SkinKit/Rendering/ScenePainting_p.h"

namespace vantor::PlaylistWindowRenderer {

namespace {

using Elements = std::vector<SceneElement<PlaylistWindowScene>>;
namespace Layout = PlaylistWindowLayout;

Elements elementsOf(const PlaylistWindowScene &scene) {
    return scene.shaded ? playlistShadeElements(scene.size) : playlistWindowElements(scene.size);
}

QRect enlarged(const QRect &rect, int scale) {
    return {rect.topLeft() * scale, rect.size() * scale};
}

/// The lines in which two scenes of one size differ.
QRegion changedRows(const PlaylistWindowScene &before, const PlaylistWindowScene &after) {
    QRegion region;
    const std::size_t count = std::max(before.rows.size(), after.rows.size());
    for (std::size_t line = 0; line < count; ++line) {
        const bool same =
            line < before.rows.size() && line < after.rows.size() && before.rows[line] == after.rows[line];
        if (!same)
            region |= Layout::row(static_cast<int>(line), after.size);
    }
    if (before.insertionLine != after.insertionLine) {
        for (const auto &line : {before.insertionLine, after.insertionLine}) {
            if (line) {
                const QRect below = Layout::row(*line, after.size);
                region |= QRect(below.left(), below.top() - 1, below.width(), 1);
            }
        }
    }
    return region;
}

} // namespace

void draw(QPainter &painter, const Skin &skin, const PlaylistWindowScene &scene, int scale) {
    const Elements elements = elementsOf(scene);
    ScenePainting::draw(painter, skin, Layout::windowSize(scene.size, scene.shaded), scale,
                        std::span<const SceneElement<PlaylistWindowScene>>(elements), scene);
    if (scene.shaded)
        return;
    QRegion list(enlarged(Layout::rect(PlaylistWindowControl::rows, scene.size, false), scale));
    if (scene.menu)
        list -= enlarged(PlaylistMenus::rect(*scene.menu, scene.size), scale);
    painter.save();
    painter.setClipRegion(list, painter.hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
    drawPlaylistRowTexts(painter, skin.playlistStyle, scene, scale);
    painter.restore();
}

QRegion changed(const PlaylistWindowScene &before, const PlaylistWindowScene &after) {
    if (before.shaded != after.shaded || before.size != after.size)
        return QRect({0, 0}, Layout::windowSize(after.size, after.shaded));
    const Elements elements = elementsOf(after);
    QRegion region =
        ScenePainting::changed(std::span<const SceneElement<PlaylistWindowScene>>(elements), before, after);
    if (!after.shaded)
        region |= changedRows(before, after);
    return region;
}

} // namespace vantor::PlaylistWindowRenderer
