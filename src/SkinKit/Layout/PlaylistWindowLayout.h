#pragma once

#include "SkinKit/Layout/PlaylistWindowControl.h"

#include <optional>

/// Where everything of the playlist window is, in skin pixels from its top-left corner. The window's size
/// changes in steps, which the tiles of its frame fill. `size` is always one that snapped() gives, and the
/// full one: the shade form has its width.
namespace vantor::PlaylistWindowLayout {

inline constexpr QSize minimumSize{275, 116};
inline constexpr QSize step{25, 29};
inline constexpr QSize maximumSize{minimumSize.width() + 160 * step.width(),
                                   minimumSize.height() + 100 * step.height()};
inline constexpr int shadeHeight = 14;
inline constexpr int titleHeight = 14; ///< of the part of the upper edge that looks like a title bar
inline constexpr int topHeight = 20;
inline constexpr int bottomHeight = 38;
inline constexpr int leftWidth = 12;
inline constexpr int rightWidth = 20;
inline constexpr int rowHeight = 13;

/// The nearest size that the tiles fill, within the bounds.
[[nodiscard]] QSize snapped(QSize wanted);
/// Of the window in one of its forms.
[[nodiscard]] QSize windowSize(QSize size, bool shaded);

/// The place of a control; an empty rectangle for `none`, for a visualizer that has no room and for what a
/// form does not have.
[[nodiscard]] QRect rect(PlaylistWindowControl control, QSize size, bool shaded);
[[nodiscard]] QRect titleBar(QSize size);
[[nodiscard]] QPoint titlePiece(QSize size); ///< where the middle piece of the upper edge is
[[nodiscard]] bool hasVisualizer(QSize size);
[[nodiscard]] QPoint visualizerPiece(QSize size); ///< the background of the visualizer in the lower edge
[[nodiscard]] QPoint bottomRightPiece(QSize size);
[[nodiscard]] QRect runningTime(QSize size);
[[nodiscard]] QRect shadeTitle(QSize size); ///< title at the left and length at the right

/// How many rows are shown in full.
[[nodiscard]] int visibleRows(QSize size);
/// The place of a row that is shown, counted from the first one shown.
[[nodiscard]] QRect row(int line, QSize size);
/// Of the line at a height, which may be above (negative) or below the ones shown.
[[nodiscard]] int lineAt(int y, QSize size);
/// Of the gap between rows that is nearest to a height: 0 above the first line, to visibleRows() below the
/// last.
[[nodiscard]] int gapAt(int y, QSize size);

/// The largest row that can come first.
[[nodiscard]] int lastFirstRow(int count, QSize size);
/// The handle's place for the share, 0…1, of the way that is scrolled.
[[nodiscard]] QRect scrollHandle(double fraction, QSize size);
/// The share that puts the handle's upper edge at a height; clamped.
[[nodiscard]] double scrollFraction(int handleTop, QSize size);

} // namespace vantor::PlaylistWindowLayout
