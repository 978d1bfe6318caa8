#include "WindowDocking/WindowGraph.h"

#include "Printing.h"
#include "WindowDocking/WindowStacking.h"

#include <gtest/gtest.h>

using namespace vantor;
using enum WindowKind;

TEST(WindowGraphTest, DockedAreWindowsWhoseEdgesMeet) {
    const struct {
        const char *name;
        std::vector<DockedWindow> windows;
        WindowGraph::Graph expected;
    } rows[] = {
        {"column",
         {{main, {0, 0, 275, 116}}, {equalizer, {0, 116, 275, 116}}, {playlist, {0, 232, 275, 116}}},
         {{main, {}}, {equalizer, {.below = main}}, {playlist, {.below = equalizer}}}},
        {"beside, and rounded",
         {{main, {0.4, 0, 275, 116}}, {playlist, {274.6, 0.3, 275, 116}}},
         {{main, {}}, {playlist, {.right = main}}}},
        {"a point apart",
         {{main, {0, 0, 275, 116}}, {equalizer, {0, 117, 275, 116}}},
         {{main, {}}, {equalizer, {}}}},
        {"corners touch",
         {{main, {0, 0, 275, 116}}, {playlist, {275, 116, 275, 116}}},
         {{main, {}}, {playlist, {.below = main, .right = main}}}},
        {"on the same line but elsewhere",
         {{main, {0, 0, 275, 116}}, {playlist, {276, 116, 275, 116}}},
         {{main, {}}, {playlist, {}}}},
        {"the first of two",
         {{main, {0, 0, 275, 116}}, {equalizer, {275, 0, 275, 116}}, {playlist, {100, 116, 275, 116}}},
         {{main, {}}, {equalizer, {.right = main}}, {playlist, {.below = main}}}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(WindowGraph::generate(row.windows), row.expected);
    }
}

TEST(WindowGraphTest, GrowthPushesWhatIsDocked) {
    const WindowGraph::Graph column{
        {main, {}}, {equalizer, {.below = main}}, {playlist, {.below = equalizer}}};
    const WindowGraph::Graph row{{main, {}}, {equalizer, {.right = main}}, {playlist, {.right = equalizer}}};
    const WindowGraph::Graph corner{{main, {}}, {equalizer, {.below = main}}, {playlist, {.right = main}}};
    // Walked from its right end first, which must not count anything twice.
    const WindowGraph::Graph reversed{
        {main, {.right = playlist}}, {equalizer, {}}, {playlist, {.right = equalizer}}};
    const struct {
        const char *name;
        WindowGraph::Graph graph;
        std::map<WindowKind, BoxSize> sizeDiff;
        std::map<WindowKind, Offset> expected;
    } rows[] = {
        {"main shaded",
         column,
         {{main, {0, -102}}},
         {{main, {}}, {equalizer, {0, -102}}, {playlist, {0, -102}}}},
        {"equalizer shaded",
         column,
         {{equalizer, {0, -102}}},
         {{main, {}}, {equalizer, {}}, {playlist, {0, -102}}}},
        {"all doubled",
         column,
         {{main, {275, 116}}, {equalizer, {275, 116}}, {playlist, {275, 116}}},
         {{main, {}}, {equalizer, {0, 116}}, {playlist, {0, 232}}}},
        {"row doubled",
         row,
         {{main, {275, 116}}, {equalizer, {275, 116}}},
         {{main, {}}, {equalizer, {275, 0}}, {playlist, {550, 0}}}},
        {"both sides",
         corner,
         {{main, {275, -102}}},
         {{main, {}}, {equalizer, {0, -102}}, {playlist, {275, 0}}}},
        {"against the order",
         reversed,
         {{equalizer, {10, 0}}, {playlist, {5, 0}}},
         {{main, {15, 0}}, {equalizer, {}}, {playlist, {10, 0}}}},
        {"the only window docked to itself",
         {{main, {.below = main, .right = main}}},
         {{main, {5, 5}}},
         {{main, {}}}},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(WindowGraph::positionDiff(r.graph, r.sizeDiff), r.expected);
    }
}

TEST(WindowStackingTest, GroupFollowsItsKeyInItsOrder) {
    using Placements = std::vector<WindowStacking::Placement<char>>;
    const std::function<std::optional<char>(char)> noParent = [](char) { return std::nullopt; };
    const auto raise = [&](const std::set<char> &group, char key, std::string_view frontToBack) {
        return WindowStacking::raise(group, key, frontToBack, noParent);
    };
    EXPECT_EQ(raise({'a', 'b', 'c'}, 'c', "xbyac"), (Placements{{'b', 'c'}, {'a', 'b'}}));
    EXPECT_EQ(raise({'a', 'b'}, 'a', "ab"), (Placements{{'b', 'a'}}));
    EXPECT_EQ(raise({'a', 'b'}, 'a', "b"), (Placements{{'b', 'a'}}));
    EXPECT_EQ(raise({'a'}, 'a', "xa"), Placements());
    EXPECT_EQ(raise({'a', 'b'}, 'x', "xab"), Placements()) << "the key is not of the group";
    EXPECT_EQ(raise({'a', 'b'}, 'a', "xy"), Placements()) << "none of the group is there";
}
