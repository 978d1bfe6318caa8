#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <array>

/// The maths of the main window's sliders and toggle buttons, in skin pixels. Pure functions; a value that is
/// not a number counts as the lowest (for the balance: as the middle).
namespace vantor::MainSliders {

/// A horizontal slider whose thumb is grabbed by its middle.
struct Slider {
    QPoint origin;
    QSize size; ///< of the track
    QSize thumbSize;
    int thumbInsetY = 0; ///< the thumb's offset inside the track
    int travel = 0;      ///< pixels that the thumb's left edge can move

    /// The x of the thumb's left edge.
    [[nodiscard]] int thumbX(double fraction) const;
    /// 0…1; 0 for a slider that cannot move.
    [[nodiscard]] double fraction(double pointerX) const;
};

inline constexpr Slider volume{{107, 57}, {68, 13}, {14, 11}, 1, 51};
inline constexpr Slider balance{{177, 57}, {38, 13}, {14, 11}, 1, 24};
inline constexpr Slider position{{16, 72}, {248, 10}, {29, 10}, 0, 219};
inline constexpr Slider shadePosition{{226, 4}, {17, 7}, {3, 7}, 0, 14};
// The equalizer window's shade form shares the maths.
inline constexpr Slider eqShadeVolume{{61, 4}, {97, 6}, {3, 7}, 0, 94};
inline constexpr Slider eqShadeBalance{{164, 4}, {43, 6}, {3, 7}, 0, 40};

// The backgrounds of volume and balance are vertical strips of frames.
inline constexpr int frameCount = 28;
inline constexpr int frameHeight = 15;      ///< from one frame to the next
inline constexpr int visibleFrameRows = 13; ///< shown of each

[[nodiscard]] int volumeFrame(float value);
/// Left and right use the same frames.
[[nodiscard]] int balanceFrame(float value);
/// The place of a frame inside the strip that `strip` covers.
[[nodiscard]] QRect frameRect(const QRect &strip, int frame);
/// As above for a background sprite of the catalogue, inside its sheet; empty for an unknown name.
[[nodiscard]] QRect frameRect(const QString &sprite, int frame);

/// 0 within a quarter of either side.
[[nodiscard]] double snappedBalance(double value);
[[nodiscard]] double balanceForFraction(double fraction);
[[nodiscard]] double fractionForBalance(double value);

enum class ShadeSegment { left, center, right };
[[nodiscard]] ShadeSegment shadeSegment(double fraction);
/// The thumb's own thresholds differ from those of the segments.
[[nodiscard]] QString shadePositionThumbName(double fraction);

enum class Toggle { shuffle, repeatAll, equalizer, playlist };
inline constexpr std::array toggles{Toggle::shuffle, Toggle::repeatAll, Toggle::equalizer, Toggle::playlist};
[[nodiscard]] QRect frame(Toggle toggle);
[[nodiscard]] QString spriteName(Toggle toggle, bool selected, bool pressed);

} // namespace vantor::MainSliders
