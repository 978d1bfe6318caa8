#include "WindowDocking/SnapUtils.h"

#include "Printing.h"

#include <gmock/gmock.h>

using namespace vantor;
using namespace vantor::SnapUtils;
using enum WindowKind;
using testing::UnorderedElementsAre;

static constexpr std::optional<double> none;

TEST(SnapUtilsTest, BoxSnapsOntoAnother) {
    const Box other{100, 100, 200, 100}; // right 300, bottom 200
    const struct {
        const char *name;
        Box box;
        SnapResult expected;
    } rows[] = {
        {"right of it, just near enough", {314.9, 150, 50, 20}, {300, none}},
        {"right of it, just too far", {315, 150, 50, 20}, {none, none}},
        {"left of it, overlapping a little", {60, 150, 50, 20}, {50, none}},
        {"under it, left edges aligned", {103, 190, 50, 20}, {100, 200}},
        {"above it, right edges aligned", {240, 55, 50, 40}, {250, 60}},
        {"inside at the top left", {110, 110, 50, 20}, {100, 100}},
        {"inside at the bottom right", {240, 175, 50, 20}, {250, 180}},
        {"docking wins over aligning", {95, 190, 10, 5}, {90, 200}},
        {"the left edge wins over the right one", {290, 150, 20, 20}, {300, none}},
        {"the axis of the gap may be missed by 15", {300, 215, 50, 20}, {300, none}},
        {"but by no more", {300, 215.1, 50, 20}, {none, none}},
        {"far away on one axis", {300, 400, 50, 20}, {none, none}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(snap(row.box, other), row.expected);
        EXPECT_EQ(abuts(row.box, other), row.expected != SnapResult());
        EXPECT_EQ(snapDiff(row.box, other), (Offset{row.expected.x.value_or(row.box.x) - row.box.x,
                                                    row.expected.y.value_or(row.box.y) - row.box.y}));
    }
}

TEST(SnapUtilsTest, BoxIsHeldWithinBounds) {
    const Box bounds{0, 20, 1000, 800}; // bottom 820
    const struct {
        const char *name;
        Box box;
        SnapResult expected;
    } rows[] = {
        {"in the middle", {15, 35, 970, 770}, {none, none}},
        {"near the top left", {14.9, 34.9, 100, 100}, {0, 20}},
        {"far out at the top left", {-500, -500, 100, 100}, {0, 20}},
        {"near the bottom right", {885.1, 705.1, 100, 100}, {900, 720}},
        {"far out at the bottom right", {5000, 5000, 100, 100}, {900, 720}},
        {"wider and taller than the bounds", {-10, 10, 1100, 900}, {0, 20}},
        {"wider, and away from the left edge", {30, 100, 1100, 100}, {-100, none}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(snapWithin(row.box, bounds), row.expected);
    }
    EXPECT_EQ(snapWithinDiff({-5, 100, 100, 100}, bounds), (Offset{5, 0}));
}

TEST(SnapUtilsTest, FirstSnapOnEachAxisMovesTheGroup) {
    const std::vector<Box> group{{0, 0, 100, 100}, {0, 100, 100, 100}};
    const Box left{104, 0, 50, 50};       // 4 to the right of the group
    const Box further{110, 20, 50, 50};   // 10
    const Box underneath{7, 203, 50, 50}; // 3 under the second, its left edge 7 in
    EXPECT_EQ(snapDiffManyToMany(group, std::vector{left, further}), (Offset{4, 0}));
    EXPECT_EQ(snapDiffManyToMany(group, std::vector{further, left}), (Offset{10, 0}));
    EXPECT_EQ(snapDiffManyToMany(group, std::vector{underneath}), (Offset{7, 3}));
    EXPECT_EQ(snapDiffManyToMany(group, std::vector{underneath, left}), (Offset{4, 3}))
        << "the first box asks first";
    // Docked already is not snapped yet.
    EXPECT_EQ(snapDiffManyToMany(group, std::vector{Box{100, 0, 50, 50}, left}), (Offset{4, 0}));
    EXPECT_EQ(snapDiffManyToMany(group, {}), Offset::zero);
}

TEST(SnapUtilsTest, DiffsCombineToTheSmaller) {
    const Offset start{10, 20};
    const auto apply = [&](std::vector<Offset> diffs) { return applyMultipleDiffs(start, diffs); };
    EXPECT_EQ(apply({}), start);
    EXPECT_EQ(apply({{3, -4}}), (Offset{13, 16}));
    EXPECT_EQ(apply({{3, -4}, {0, 0}}), (Offset{13, 16}));
    EXPECT_EQ(apply({{0, 5}, {-7, 3}}), (Offset{3, 23}));
    EXPECT_EQ(apply({{3, -1}, {-7, -2}, {0, 9}}), (Offset{3, 18}));
}

TEST(SnapUtilsTest, BoundingBoxHoldsAll) {
    EXPECT_EQ(boundingBox(std::vector<Box>{{10, 50, 5, 5}, {-10, 20, 100, 10}}), (Box{-10, 20, 100, 35}));
    EXPECT_EQ(boundingBoxOrNil({}), std::nullopt);
    EXPECT_EQ(boundingBox({}), Box());
}

TEST(SnapUtilsTest, ConnectionGoesFromWindowToWindow) {
    const DockedWindow m{main, {0, 0, 275, 116}};
    const DockedWindow e{equalizer, {0, 116, 275, 116}};
    const DockedWindow p{playlist, {3, 245, 275, 116}}; // near the equalizer only
    const DockedWindow away{equalizer, {600, 600, 275, 116}};
    EXPECT_THAT(traceConnection(std::vector{p, e, m}, main), UnorderedElementsAre(main, equalizer, playlist));
    EXPECT_THAT(traceConnection(std::vector{p, away, m}, main), UnorderedElementsAre(main));
    EXPECT_THAT(traceConnection(std::vector{p, e}, main), testing::IsEmpty());
    const auto never = [](const Box &, const Box &) { return false; };
    EXPECT_THAT(traceConnection(std::vector{m, e, p}, equalizer, never), UnorderedElementsAre(equalizer));
}
