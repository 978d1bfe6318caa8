#include "SkinKit/Layout/MainSliders.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <algorithm>
#include <cmath>

namespace vantor::MainSliders {

namespace {

// Comparisons with NaN are false, so it ends at 0.
double unit(double value) {
    return value > 0 ? std::min(value, 1.0) : 0;
}

} // namespace

int Slider::thumbX(double fraction) const {
    return origin.x() + static_cast<int>(std::round(unit(fraction) * travel));
}

double Slider::fraction(double pointerX) const {
    return travel <= 0 ? 0 : unit((pointerX - origin.x() - thumbSize.width() / 2.0) / travel);
}

int volumeFrame(float value) {
    const double last = frameCount - 1;
    return static_cast<int>(
        std::clamp(std::round(unit(static_cast<double>(value)) * frameCount) - 1, 0.0, last));
}

int balanceFrame(float value) {
    return static_cast<int>(std::floor(unit(static_cast<double>(std::abs(value))) * (frameCount - 1)));
}

QRect frameRect(const QRect &strip, int frame) {
    return {strip.x(), strip.y() + frameHeight * frame, strip.width(), visibleFrameRows};
}

QRect frameRect(const QString &sprite, int frame) {
    const auto entry = SkinSprites::byName().constFind(sprite);
    return entry == SkinSprites::byName().constEnd() ? QRect() : frameRect(entry->sprite.rect(), frame);
}

double snappedBalance(double value) {
    constexpr double reach = 0.25;
    return std::abs(value) >= reach ? value : 0;
}

double balanceForFraction(double fraction) {
    return 2 * unit(fraction) - 1;
}

double fractionForBalance(double value) {
    return std::isnan(value) ? 0.5 : (std::clamp(value, -1.0, 1.0) + 1) / 2;
}

ShadeSegment shadeSegment(double fraction) {
    if (fraction >= 0.75)
        return ShadeSegment::right;
    return fraction >= 0.25 ? ShadeSegment::center : ShadeSegment::left;
}

QString shadePositionThumbName(double fraction) {
    if (fraction >= 0.66)
        return QStringLiteral("MAIN_SHADE_POSITION_THUMB_RIGHT");
    return fraction > 0.33 ? QStringLiteral("MAIN_SHADE_POSITION_THUMB")
                           : QStringLiteral("MAIN_SHADE_POSITION_THUMB_LEFT");
}

QRect frame(Toggle toggle) {
    static constexpr std::array frames{QRect(164, 89, 47, 15), QRect(210, 89, 28, 15), QRect(219, 58, 23, 12),
                                       QRect(242, 58, 23, 12)};
    return frames[static_cast<std::size_t>(toggle)];
}

// The two kinds of toggle join their suffixes in different orders, as the sheets' names do.
QString spriteName(Toggle toggle, bool selected, bool pressed) {
    static const std::array names{QStringLiteral("MAIN_SHUFFLE_BUTTON"), QStringLiteral("MAIN_REPEAT_BUTTON"),
                                  QStringLiteral("MAIN_EQ_BUTTON"), QStringLiteral("MAIN_PLAYLIST_BUTTON")};
    const QString selectedSuffix = selected ? QStringLiteral("_SELECTED") : QString();
    const QString pressedSuffix = pressed ? QStringLiteral("_DEPRESSED") : QString();
    const bool selectedFirst = toggle == Toggle::shuffle || toggle == Toggle::repeatAll;
    return names[static_cast<std::size_t>(toggle)] +
           (selectedFirst ? selectedSuffix + pressedSuffix : pressedSuffix + selectedSuffix);
}

} // namespace vantor::MainSliders
