#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowControl.h"
#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

using namespace vantor;
using Control = MainWindowControl;

// A name that the catalogue lacks would leave a control undrawn.
TEST(MainWindowLayoutTest, EveryNamedSpriteExistsAndFillsItsPlace) {
    const auto check = [](const QString &name, const QRect &place) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(SkinSprites::byName().contains(name));
        const QSize size = SkinSprites::byName().value(name).sprite.rect().size();
        EXPECT_LE(std::abs(size.width() - place.width()), 1); // next is drawn 22 or 23 wide
        EXPECT_LE(std::abs(size.height() - place.height()), 1);
    };
    for (const auto button : MainWindowLayout::clutterButtons)
        check(MainWindowLayout::spriteName(button), MainWindowLayout::rect(button));
    for (const bool pressed : {false, true}) {
        for (const auto button : MainWindowLayout::transports)
            check(MainWindowLayout::spriteName(button, pressed), MainWindowLayout::rect(button));
        using MainSliders::Toggle;
        for (const auto toggle : {Toggle::shuffle, Toggle::repeatAll, Toggle::equalizer, Toggle::playlist}) {
            for (const bool selected : {false, true})
                check(MainSliders::spriteName(toggle, selected, pressed), MainSliders::frame(toggle));
        }
    }
}

TEST(MainWindowLayoutTest, PointsFindTheControlsUnderThem) {
    const std::tuple<QPoint, Control, Control> cases[] = {
        {{6, 3}, Control::options, Control::options},
        {{272, 11}, Control::close, Control::close},
        {{100, 8}, Control::none, Control::visualizer},
        {{130, 5}, Control::none, Control::time},
        {{224, 5}, Control::none, Control::eject},
        {{230, 5}, Control::none, Control::position},
        {{13, 61}, Control::clutterVisualizer, Control::none},
        {{13, 62}, Control::none, Control::none},
        {{263, 81}, Control::position, Control::none},
        {{209, 95}, Control::shuffle, Control::none},
        {{210, 95}, Control::repeat, Control::none}, // drawn over the shuffle button's last column
        {{129, 90}, Control::next, Control::none},
        {{130, 90}, Control::none, Control::none},
        {{-1, 5}, Control::none, Control::none},
    };
    for (const auto &[point, full, shaded] : cases) {
        EXPECT_EQ(mainWindowControlAt(point, false), full) << point.x() << ", " << point.y();
        EXPECT_EQ(mainWindowControlAt(point, true), shaded) << point.x() << ", " << point.y();
    }
}

TEST(MainWindowLayoutTest, ShadedWindowDragsExactlyWhereNothingAnswers) {
    for (int y = 0; y < MainWindowLayout::shadeSize.height(); ++y) {
        for (int x = 0; x < MainWindowLayout::shadeSize.width(); ++x) {
            bool excluded = false;
            for (const QRect &rect : MainShadeLayout::dragExclusions())
                excluded = excluded || rect.contains(x, y);
            ASSERT_EQ(excluded, mainWindowControlAt({x, y}, true) != Control::none) << x << ", " << y;
        }
    }
}
