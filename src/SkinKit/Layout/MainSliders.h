#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

namespace vantor {

struct Sprite;

/// The maths of the sliders and toggles. Fractions are 0…1, volume 0…1, balance −1…1; what is not finite
/// counts as the lowest value, for a balance as the centre.
namespace MainSliders {

/// One horizontal slider, in skin pixels of its window.
struct Slider {
    QPoint origin; ///< the track's top-left corner
    QSize size;    ///< of the track
    QSize thumbSize;
    int thumbInsetY; ///< the thumb's vertical offset inside the track
    int travel;      ///< how far the thumb's left edge can move

    [[nodiscard]] constexpr QRect rect() const { return {origin, size}; }
    /// The thumb's left edge.
    [[nodiscard]] int thumbX(double fraction) const;
    /// The pointer is taken as holding the thumb by its middle.
    [[nodiscard]] double fraction(double pointerX) const;

    static const Slider volume;
    static const Slider balance;
    static const Slider position;
    static const Slider shadePosition;
    static const Slider eqShadeVolume;
    static const Slider eqShadeBalance;
};

inline constexpr Slider Slider::volume{{107, 57}, {68, 13}, {14, 11}, 1, 51};
inline constexpr Slider Slider::balance{{177, 57}, {38, 13}, {14, 11}, 1, 24};
inline constexpr Slider Slider::position{{16, 72}, {248, 10}, {29, 10}, 0, 219};
inline constexpr Slider Slider::shadePosition{{226, 4}, {17, 7}, {3, 7}, 0, 14};
inline constexpr Slider Slider::eqShadeVolume{{61, 4}, {97, 6}, {3, 7}, 0, 94};
inline constexpr Slider Slider::eqShadeBalance{{164, 4}, {43, 6}, {3, 7}, 0, 40};

// The volume and balance backgrounds are strips of frames, one above the other.
inline constexpr int frameCount = 28;
inline constexpr int frameHeight = 15;      ///< from one frame to the next
inline constexpr int visibleFrameRows = 13; ///< shown of each

[[nodiscard]] int volumeFrame(float volume);
[[nodiscard]] int balanceFrame(float balance);
[[nodiscard]] QRect frameRect(const Sprite &sprite, int frame);
[[nodiscard]] QRect frameRect(const QRect &rect, int frame);

/// Snaps to the centre within a quarter of either side.
[[nodiscard]] double snappedBalance(double balance);
[[nodiscard]] double balance(double fraction);
[[nodiscard]] double fraction(double balance);

enum class ShadeSegment { left, center, right };
[[nodiscard]] ShadeSegment shadeSegment(double fraction);
/// Changes at other fractions than shadeSegment does.
[[nodiscard]] QString shadePositionThumbName(double fraction);

enum class Toggle { shuffle, repeatAll, equalizer, playlist };
[[nodiscard]] QRect frame(Toggle toggle);
[[nodiscard]] QString spriteName(Toggle toggle, bool selected, bool pressed);

} // namespace MainSliders
} // namespace vantor
