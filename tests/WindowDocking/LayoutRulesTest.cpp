#include "WindowDocking/LayoutRules.h"

#include "Printing.h"
#include "WindowDocking/ScreenSelection.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::LayoutRules;
using enum WindowKind;

static const Box primary{0, 0, 1000, 800};
static const Box second{1000, 0, 1000, 800};
static const std::vector<Box> one{primary};
static const std::vector<Box> two{primary, second};

TEST(LayoutRulesTest, GripIsWhatAPointerNeeds) {
    const struct {
        const char *name;
        Box box;
        bool grabbable;
        Offset shift;
    } rows[] = {
        {"inside", {100, 100, 275, 116}, true, {0, 0}},
        {"50 left at the left", {-225, 100, 275, 116}, true, {0, 0}},
        {"49 left at the left", {-226, 100, 275, 116}, false, {1, 0}},
        {"49 left at the right", {951, 100, 275, 116}, false, {-1, 0}},
        {"far out at the right", {1200, 100, 275, 116}, false, {-250, 0}},
        {"narrow and cut", {-1, 100, 30, 116}, false, {1, 0}},
        {"narrow and whole", {970, 100, 30, 116}, true, {0, 0}},
        {"title above the top", {100, -1, 275, 116}, false, {0, 1}},
        {"all but the title under the bottom", {100, 786, 275, 116}, true, {0, 0}},
        {"title crosses the bottom", {100, 787, 275, 116}, false, {0, -1}},
        {"lower than the title", {100, 795, 275, 5}, true, {0, 0}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(isGrabbable(row.box, 14, one), row.grabbable);
        EXPECT_EQ(gripShift({row.box.x, row.box.y, row.box.width, std::min(14.0, row.box.height)}, primary),
                  row.shift);
    }
    EXPECT_FALSE(isGrabbable({100, 100, 275, 116}, 14, {}));
}

TEST(LayoutRulesTest, DragRecoveryBringsWhatIsLostWithinReach) {
    const std::map<WindowKind, double> titles{{main, 14}, {equalizer, 14}, {playlist, 20}};
    const struct {
        const char *name;
        std::vector<DockedWindow> moving;
        std::vector<Box> screens;
        std::optional<Offset> expected;
    } rows[] = {
        {"nothing lost", {{main, {10, 10, 275, 116}}}, one, {}},
        {"only the lost one counts",
         {{main, {-240, 10, 275, 116}}, {playlist, {35, 10, 275, 116}}},
         one,
         Offset{15, 0}},
        {"the largest shift",
         {{main, {990, 200, 275, 116}}, {equalizer, {980, 790, 275, 116}}},
         one,
         Offset{-40, -4}},
        {"opposite shifts: the topmost",
         {{main, {-270, 200, 275, 116}}, {equalizer, {960, 100, 275, 116}}},
         one,
         Offset{-10, 0}},
        {"taller than the screen: the topmost",
         {{main, {990, 50, 275, 116}}, {equalizer, {980, 850, 275, 116}}},
         one,
         Offset{-40, 0}},
        {"nearest screen", {{main, {2100, 100, 275, 116}}}, two, Offset{-150, 0}},
        {"no screens", {{main, {-270, 100, 275, 116}}}, {}, Offset{45, 0}},
        {"title of its own height", {{playlist, {10, 785, 275, 116}}}, one, Offset{0, -5}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(dragRecovery(row.moving, titles, row.screens, primary), row.expected);
    }
    EXPECT_EQ(dragRecovery(std::vector<DockedWindow>{{main, {10, 795, 275, 116}}}, {}, one, primary),
              std::nullopt)
        << "a window without a title bar needs none of it shown";
}

TEST(LayoutRulesTest, LostLayoutIsShiftedOrReset) {
    const struct {
        const char *name;
        std::vector<DockedWindow> windows;
        std::vector<Box> screens;
        std::optional<Recovery> expected;
    } rows[] = {
        {"no windows", {}, one, {}},
        {"touching the edges", {{main, {725, 684, 275, 116}}}, one, {}},
        {"each on a screen of its own",
         {{main, {700, 0, 275, 116}}, {playlist, {1100, 0, 275, 116}}},
         two,
         {}},
        {"between two screens", {{main, {900, 0, 275, 116}}}, two, Recovery::shift({100, 0})},
        {"over the corner",
         {{main, {-10, 100, 275, 116}}, {equalizer, {-10, 216, 275, 600}}},
         one,
         Recovery::shift({10, -16})},
        {"screen gone: the nearest", {{main, {2300, 100, 275, 116}}}, two, Recovery::shift({-575, 0})},
        {"too wide", {{main, {-10, 0, 275, 116}}, {playlist, {800, 0, 275, 116}}}, one, Recovery::reset()},
        {"no screens", {{main, {0, -5, 275, 116}}}, {}, Recovery::shift({0, 5})},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(recovery(row.windows, row.screens, primary), row.expected);
    }
}

TEST(LayoutRulesTest, StackStandsInTheMiddle) {
    const std::map<WindowKind, BoxSize> sizes{{main, {275, 116}}, {playlist, {300, 145}}};
    EXPECT_EQ(stackedAndCentered(sizes, allWindowKinds, {100, 20, 1000, 800}),
              (std::map<WindowKind, Offset>{{main, {450, 290}}, {playlist, {450, 406}}})); // from 289.5
    EXPECT_EQ(stackedAndCentered({}, allWindowKinds, primary), (std::map<WindowKind, Offset>()));
}

TEST(LayoutRulesTest, WindowReappearsWhereItCan) {
    const Box below{100, 100, 275, 116};
    const Offset underneath{100, 216};
    const struct {
        const char *name;
        std::optional<Offset> saved;
        std::vector<Box> screens;
        Offset expected;
    } rows[] = {
        {"never shown", {}, one, underneath},
        {"free place", Offset{375, 100}, one, {375, 100}},
        {"covers a window", Offset{374, 215}, one, underneath},
        {"out of reach", Offset{970, 300}, one, underneath},
        {"on the second screen", Offset{970, 300}, two, {970, 300}},
        {"no screens", Offset{600, 600}, {}, {600, 600}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(showPosition({275, 116}, row.saved, below, std::vector{below}, 14, row.screens, primary),
                  row.expected);
    }
}

TEST(ScreenSelectionTest, ScreenIsTheOneThatShowsMost) {
    const Box fallback{-1, -1, 1, 1};
    const struct {
        const char *name;
        Box box;
        std::vector<Box> screens;
        Box showing;
        Box nearest;
    } rows[] = {
        {"more on the second", {900, 0, 275, 116}, two, second, second},
        {"as much on both", {900, 0, 200, 116}, two, primary, primary},
        {"touching only", {-275, 0, 275, 116}, two, fallback, primary},
        {"nearer to the second", {1990, -200, 5, 5}, two, fallback, second},
        {"as near to both", {1000, 900, 0, 0}, two, fallback, primary},
        {"gaps on both axes count", {2030, 840, 10, 10}, {{2100, 830, 50, 50}, second}, fallback, second},
        {"no screens", {0, 0, 10, 10}, {}, fallback, fallback},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ScreenSelection::bounds(row.box, row.screens, fallback), row.showing);
        EXPECT_EQ(ScreenSelection::nearest(row.box, row.screens, fallback), row.nearest);
    }
}
