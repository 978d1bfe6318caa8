#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Rendering/MiniTime_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"

namespace vantor {

MiniTime miniTime(const MainWindowStatus &status, bool lit) {
    if (status.blinksTime() && !lit)
        return {};
    const TimeDigits digits = status.digits();
    const auto character = [](std::optional<int> digit) {
        return digit ? static_cast<char16_t>(u'0' + *digit) : u'\0';
    };
    return {status.showsMinus() ? u'-' : u'\0', character(digits.minutesTens), character(digits.minutesOnes),
            character(digits.secondsTens), character(digits.secondsOnes)};
}

void drawMiniTime(const SpriteDrawer &sprites, const MiniTime &cells, QPoint at) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i] != 0)
            sprites.draw(SkinTextFont::spriteName(cells[i]),
                         at + QPoint(MainShadeLayout::miniTimeCellX[i], 0));
    }
}

} // namespace vantor
