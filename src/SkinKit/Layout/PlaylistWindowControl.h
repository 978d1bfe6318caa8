#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <optional>
#include <span>

namespace vantor {

/// Everything of the playlist window that a pointer can act on.
enum class PlaylistWindowControl {
    none, ///< plain frame: drags the window
    shade,
    close,
    rows,      ///< the list itself, below its last row too
    scrollBar, ///< the groove with its handle
    scrollUp,
    scrollDown,
    add, ///< this and the next four open pop-ups
    remove,
    select,
    misc,
    list,
    previous,
    play,
    pause,
    stop,
    next,
    eject,
    time,       ///< a click changes TimeMode
    visualizer, ///< only when the window is wide enough; a click changes what is shown
    resize,     ///< the grip; in shade form it changes the width alone
};

/// The control under a point in skin pixels of a window of `size` (its full size, also when shaded). `none`
/// outside the window.
[[nodiscard]] PlaylistWindowControl playlistWindowControlAt(QPoint point, QSize size, bool shaded);

/// The five pop-ups of sprites along the lower edge.
enum class PlaylistMenu { add, remove, select, misc, list };

enum class PlaylistMenuEntry {
    addUrl,
    addFolder,
    addFiles,
    removeMisc,
    removeAll,
    crop,
    removeSelected,
    invertSelection,
    selectNone,
    selectAll,
    sort,
    fileInfo,
    miscOptions,
    newList,
    saveList,
    loadList,
};

namespace PlaylistMenus {

/// The pop-up that a control opens.
[[nodiscard]] std::optional<PlaylistMenu> of(PlaylistWindowControl control);
/// The control that opens it, and whose place its last entry covers.
[[nodiscard]] PlaylistWindowControl button(PlaylistMenu menu);
/// From top to bottom.
[[nodiscard]] std::span<const PlaylistMenuEntry> entries(PlaylistMenu menu);

/// In a window of `size`: the whole pop-up, the bar at its left and an entry.
[[nodiscard]] QRect rect(PlaylistMenu menu, QSize size);
[[nodiscard]] QRect barRect(PlaylistMenu menu, QSize size);
[[nodiscard]] QRect entryRect(PlaylistMenu menu, int index, QSize size);
/// The index of the entry under a point.
[[nodiscard]] std::optional<int> entryAt(PlaylistMenu menu, QPoint point, QSize size);

[[nodiscard]] QString barSprite(PlaylistMenu menu);
[[nodiscard]] QString entrySprite(PlaylistMenuEntry entry, bool selected);

} // namespace PlaylistMenus
} // namespace vantor
