#include "WindowDocking/DragSession.h"

#include "Printing.h"

#include <gmock/gmock.h>

using namespace vantor;
using enum WindowKind;

static const Box screen{0, 0, 1600, 900};
static const std::vector<DockedWindow> column{
    {main, {500, 300, 275, 116}}, {equalizer, {500, 416, 275, 116}}, {playlist, {500, 532, 275, 116}}};

TEST(DragSessionTest, MainWindowTakesItsGroupAndOthersGoAlone) {
    const DragSession all(main, column);
    EXPECT_EQ(all.moving(), column);
    EXPECT_EQ(all.boundingBox(), (Box{500, 300, 275, 348}));
    EXPECT_EQ(all.groupDiff({100, 50}, screen), (Offset{100, 50}));

    const DragSession alone(equalizer, column);
    EXPECT_EQ(alone.moving(), std::vector{column[1]});
    EXPECT_EQ(alone.stationary(), (std::vector{column[0], column[2]}));

    const std::vector<DockedWindow> withoutMain{column[1], column[2]};
    EXPECT_EQ(DragSession(main, withoutMain).moving(), std::vector<DockedWindow>());
}

TEST(DragSessionTest, DeltaSnapsToWindowsAndBounds) {
    const DragSession playlistAlone(playlist, column);
    const DragSession group(main, column);
    const struct {
        const char *name;
        const DragSession &session;
        Offset delta;
        Offset expected;
    } rows[] = {
        {"away from the others", playlistAlone, {400, 100}, {400, 100}},
        {"back under the equalizer", playlistAlone, {-9, 14}, {0, 0}},
        {"beside the main window", playlistAlone, {280, -240}, {275, -232}},
        {"group held at the left and top", group, {-900, -320}, {-500, -300}},
        {"group pulled to the right and bottom", group, {820, 240}, {825, 252}},
        {"window and bounds agree on the smaller move", playlistAlone, {0, 245}, {0, 252}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.session.groupDiff(row.delta, screen), row.expected);
    }
    EXPECT_EQ(group.positions({-900, 0}, screen),
              (std::map<WindowKind, Offset>{{main, {0, 300}}, {equalizer, {0, 416}}, {playlist, {0, 532}}}));
}

TEST(DragSessionTest, LimitsBoundAllScreensAndKeepTitlesReachable) {
    const Box lower{1600, 400, 1600, 900}; // leaves a dead corner above itself
    const DragLimits limits({screen, lower}, screen, {{main, 14}, {equalizer, 14}, {playlist, 20}});
    EXPECT_EQ(limits.bounds, (Box{0, 0, 3200, 1300}));
    EXPECT_EQ(DragLimits({lower}, screen, {}).bounds, lower);
    EXPECT_EQ(DragLimits({}, screen, {}).bounds, screen);

    const DragSession session(playlist, std::vector{column[2]});
    EXPECT_EQ(session.positions({2000, -300}, limits),
              (std::map<WindowKind, Offset>{{playlist, {2500, 400}}}))
        << "pushed down onto the lower screen";
    EXPECT_EQ(session.positions({2000, 0}, limits), (std::map<WindowKind, Offset>{{playlist, {2500, 532}}}));
}
