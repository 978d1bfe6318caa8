#include "SkinKit/Layout/MainShadeLayout.h"

#include "SkinKit/Layout/MainSliders.h"

namespace vantor::MainShadeLayout {

QRect frame(MainWindowLayout::Transport button) {
    constexpr std::array<int, 6> xs{169, 176, 186, 195, 204, 215};
    constexpr std::array<int, 6> widths{7, 10, 9, 9, 10, 10};
    const auto index = static_cast<std::size_t>(button);
    return {xs.at(index), 2, widths.at(index), 10};
}

const QList<QRect> &buttonRects() {
    static const QList<QRect> rects = [] {
        QList<QRect> list;
        for (const auto button : MainWindowLayout::titleButtons)
            list.append(MainWindowLayout::rect(button));
        for (const auto button : MainWindowLayout::transports)
            list.append(frame(button));
        return list;
    }();
    return rects;
}

const QList<QRect> &dragExclusions() {
    static const QList<QRect> rects = buttonRects() + QList<QRect>{miniTimeHitArea, visualizerFrame,
                                                                   MainSliders::Slider::shadePosition.rect()};
    return rects;
}

} // namespace vantor::MainShadeLayout
