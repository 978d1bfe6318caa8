#include "SkinKit/Layout/MainSliders.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vantor::MainSliders {

namespace {

double finiteOr(double value, double substitute) {
    return std::isfinite(value) ? value : substitute;
}

double unitClamped(double fraction) {
    return std::clamp(finiteOr(fraction, 0), 0.0, 1.0);
}

} // namespace

int Slider::thumbX(double fraction) const {
    return origin.x() + static_cast<int>(std::round(unitClamped(fraction) * travel));
}

double Slider::fraction(double pointerX) const {
    if (travel <= 0)
        return 0;
    return unitClamped((pointerX - origin.x() - thumbSize.width() / 2.0) / travel);
}

int volumeFrame(float volume) {
    const float level = std::isfinite(volume) ? std::clamp(volume, 0.0F, 1.0F) : 0.0F;
    return std::clamp(static_cast<int>(std::round(level * frameCount)) - 1, 0, frameCount - 1);
}

int balanceFrame(float balance) {
    const float magnitude = std::isfinite(balance) ? std::min(std::abs(balance), 1.0F) : 0.0F;
    return static_cast<int>(std::floor(magnitude * (frameCount - 1)));
}

QRect frameRect(const Sprite &sprite, int frame) {
    return frameRect(sprite.rect(), frame);
}

QRect frameRect(const QRect &rect, int frame) {
    return {rect.x(), rect.y() + frameHeight * frame, rect.width(), visibleFrameRows};
}

double snappedBalance(double balance) {
    return std::isfinite(balance) && std::abs(balance) >= 0.25 ? balance : 0;
}

double balance(double fraction) {
    if (fraction <= 0)
        return -1;
    return 2 * std::min(finiteOr(fraction, 0.5), 1.0) - 1;
}

double fraction(double balance) {
    return (std::clamp(finiteOr(balance, 0), -1.0, 1.0) + 1) / 2;
}

ShadeSegment shadeSegment(double fraction) {
    const double at = unitClamped(fraction);
    if (at < 0.25)
        return ShadeSegment::left;
    return at < 0.75 ? ShadeSegment::center : ShadeSegment::right;
}

QString shadePositionThumbName(double fraction) {
    const double at = unitClamped(fraction);
    if (at <= 0.33)
        return QStringLiteral("MAIN_SHADE_POSITION_THUMB_LEFT");
    return at >= 0.66 ? QStringLiteral("MAIN_SHADE_POSITION_THUMB_RIGHT")
                      : QStringLiteral("MAIN_SHADE_POSITION_THUMB");
}

QRect frame(Toggle toggle) {
    constexpr std::array<QRect, 4> frames{QRect{164, 89, 47, 15}, QRect{210, 89, 28, 15},
                                          QRect{219, 58, 23, 12}, QRect{242, 58, 23, 12}};
    return frames.at(static_cast<std::size_t>(toggle));
}

QString spriteName(Toggle toggle, bool selected, bool pressed) {
    static const std::array names{QStringLiteral("MAIN_SHUFFLE_BUTTON"), QStringLiteral("MAIN_REPEAT_BUTTON"),
                                  QStringLiteral("MAIN_EQ_BUTTON"), QStringLiteral("MAIN_PLAYLIST_BUTTON")};
    const QString &name = names.at(static_cast<std::size_t>(toggle));
    if (selected && pressed) {
        // The catalogue's names differ between the two sheets' halves.
        const bool selectedFirst = toggle == Toggle::shuffle || toggle == Toggle::repeatAll;
        return name + (selectedFirst ? QStringLiteral("_SELECTED_DEPRESSED")
                                     : QStringLiteral("_DEPRESSED_SELECTED"));
    }
    if (selected)
        return name + QStringLiteral("_SELECTED");
    return pressed ? name + QStringLiteral("_DEPRESSED") : name;
}

} // namespace vantor::MainSliders
