#include "SkinKit/Layout/MainShadeLayout.h"

#include "SkinKit/Layout/MainSliders.h"

namespace vantor::MainShadeLayout {

QRect frame(MainWindowLayout::Transport button) {
    static constexpr std::array xs{169, 176, 186, 195, 204, 215};
    static constexpr std::array widths{7, 10, 9, 9, 10, 10};
    const auto index = static_cast<std::size_t>(button);
    return {xs[index], 2, widths[index], 10};
}

const QList<QRect> &buttonRects() {
    static const QList<QRect> rects = [] {
        QList<QRect> all;
        for (const auto button : MainWindowLayout::titleButtons)
            all.append(MainWindowLayout::rect(button));
        for (const auto button : MainWindowLayout::transportButtons)
            all.append(frame(button));
        return all;
    }();
    return rects;
}

const QList<QRect> &dragExclusions() {
    static const QList<QRect> rects = buttonRects() + QList<QRect>{QRect(MainSliders::shadePosition.origin,
                                                                         MainSliders::shadePosition.size),
                                                                   miniTimeHitArea, visualizerFrame};
    return rects;
}

} // namespace vantor::MainShadeLayout
