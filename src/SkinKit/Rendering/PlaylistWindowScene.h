#pragma once

#include "SkinKit/Layout/PlaylistWindowLayout.h"
#include "SkinKit/Rendering/MainWindowScene.h"

#include <vector>

namespace vantor {

/// A row that is shown.
struct PlaylistRow {
    QString title;  ///< with its number in front
    QString length; ///< empty when unknown
    bool current = false;
    bool selected = false;

    bool operator==(const PlaylistRow &) const = default;
};

/// Everything that the playlist window shows at one instant: two equal scenes give the same picture.
struct PlaylistWindowScene {
    QSize size = PlaylistWindowLayout::minimumSize; ///< the full one, also when shaded
    bool shaded = false;
    bool focused = true;

    PlaylistWindowControl pressed = PlaylistWindowControl::none; ///< drawn down or, for the handle, lit
    std::optional<PlaylistMenu> menu;                            ///< the pop-up that is open
    std::optional<int> menuEntry;                                ///< of its entries, the lit one

    std::vector<PlaylistRow> rows;    ///< only the ones shown, from the first on
    double scroll = 0;                ///< 0…1
    std::optional<int> insertionLine; ///< where a drop would go: a line above this one of the rows shown

    QString runningTime; ///< "selected/total"
    MainWindowStatus status;
    bool timeLit = true;          ///< false in the dark half of the blink while paused
    VisualizerPicture visualizer; ///< as in the main window

    QString shadeTitle;  ///< the current track, when shaded
    QString shadeLength; ///< of it

    bool operator==(const PlaylistWindowScene &) const = default;
};

} // namespace vantor
