#include "SkinKit/Layout/PlaylistWindowLayout.h"

#include "SkinKit/Sprites/SkinSprites.h"

#include <gtest/gtest.h>

using namespace vantor;
using Control = PlaylistWindowControl;
namespace Layout = PlaylistWindowLayout;

static constexpr QSize small{275, 116};
static constexpr QSize large{400, 232};

TEST(PlaylistWindowLayoutTest, SizesKeepToTheSteps) {
    const std::pair<QSize, QSize> cases[] = {
        {{}, {275, 116}},
        {{-5000, 9}, {275, 116}},
        {{287, 130}, {275, 116}},
        {{288, 131}, {300, 145}},
        {{401, 233}, {400, 232}},
        {{std::numeric_limits<int>::max(), std::numeric_limits<int>::max()}, {4275, 3016}},
    };
    for (const auto &[wanted, expected] : cases)
        EXPECT_EQ(Layout::snapped(wanted), expected) << wanted.width() << " × " << wanted.height();
}

TEST(PlaylistWindowLayoutTest, PointsFindTheControlsUnderThem) {
    const std::tuple<QSize, QPoint, Control> cases[] = {
        {small, {264, 3}, Control::close},        {small, {254, 11}, Control::shade},
        {small, {100, 5}, Control::none},         {small, {12, 20}, Control::rows},
        {small, {254, 77}, Control::rows},        {small, {255, 77}, Control::none},
        {small, {11, 40}, Control::none},         {small, {260, 20}, Control::scrollBar},
        {small, {267, 77}, Control::scrollBar},   {small, {262, 81}, Control::scrollUp},
        {small, {262, 86}, Control::scrollDown},  {small, {14, 86}, Control::add},
        {small, {123, 95}, Control::none},        {small, {122, 95}, Control::misc},
        {small, {231, 86}, Control::list},        {small, {129, 100}, Control::previous},
        {small, {182, 109}, Control::eject},      {small, {191, 101}, Control::time},
        {small, {255, 96}, Control::resize},      {small, {274, 115}, Control::resize},
        {small, {275, 115}, Control::none},       {large, {100, 205}, Control::none},
        {large, {177, 206}, Control::visualizer}, {large, {356, 202}, Control::list},
        {large, {379, 193}, Control::rows},       {large, {380, 212}, Control::resize},
    };
    for (const auto &[size, point, expected] : cases)
        EXPECT_EQ(playlistWindowControlAt(point, size, false), expected) << point.x() << ", " << point.y();
    const std::pair<QPoint, Control> shaded[] = {{{246, 5}, Control::resize},
                                                 {{254, 5}, Control::shade},
                                                 {{264, 5}, Control::close},
                                                 {{100, 5}, Control::none},
                                                 {{100, 40}, Control::none}};
    for (const auto &[point, expected] : shaded)
        EXPECT_EQ(playlistWindowControlAt(point, small, true), expected) << point.x() << ", " << point.y();
}

TEST(PlaylistWindowLayoutTest, RowsFillTheListWithoutLeavingIt) {
    for (const QSize size : {small, large, QSize(275, 145)}) {
        const QRect list = Layout::rect(Control::rows, size, false);
        const int rows = Layout::visibleRows(size);
        EXPECT_TRUE(list.contains(Layout::row(rows - 1, size)));
        EXPECT_FALSE(list.contains(Layout::row(rows, size)));
        for (int line = 0; line < rows; ++line) {
            const QRect row = Layout::row(line, size);
            EXPECT_EQ(Layout::lineAt(row.top(), size), line);
            EXPECT_EQ(Layout::lineAt(row.bottom(), size), line);
            EXPECT_EQ(Layout::gapAt(row.top() + 3, size), line);
            EXPECT_EQ(Layout::gapAt(row.bottom() - 3, size), line + 1);
        }
        EXPECT_EQ(Layout::lineAt(Layout::row(0, size).top() - 1, size), -1);
        EXPECT_EQ(Layout::gapAt(-1000, size), 0);
        EXPECT_EQ(Layout::gapAt(9000, size), rows);
    }
    EXPECT_EQ(Layout::visibleRows(small), 4);
    EXPECT_EQ(Layout::lastFirstRow(3, small), 0);
    EXPECT_EQ(Layout::lastFirstRow(100'000, small), 99'996);
}

TEST(PlaylistWindowLayoutTest, TheScrollHandleStaysInItsGrooveAndComesBack) {
    const QRect groove = Layout::rect(Control::scrollBar, large, false);
    EXPECT_EQ(Layout::scrollHandle(-1, large).top(), groove.top());
    EXPECT_EQ(Layout::scrollHandle(7, large).bottom(), groove.bottom());
    for (int top = groove.top(); top <= groove.bottom() - 17; ++top)
        EXPECT_EQ(Layout::scrollHandle(Layout::scrollFraction(top, large), large).top(), top);
    EXPECT_EQ(Layout::scrollFraction(-99, large), 0);
    EXPECT_EQ(Layout::scrollFraction(999, large), 1);
}

// A name that the catalogue lacks would leave an entry undrawn.
TEST(PlaylistWindowLayoutTest, PopUpsRiseFromTheirButtonsAndHaveSprites) {
    const auto sizeOf = [](const QString &sprite) {
        EXPECT_TRUE(SkinSprites::byName().contains(sprite)) << sprite.toStdString();
        return SkinSprites::byName().value(sprite).sprite.rect().size();
    };
    QSet<QString> sprites;
    for (const auto menu : {PlaylistMenu::add, PlaylistMenu::remove, PlaylistMenu::select, PlaylistMenu::misc,
                            PlaylistMenu::list}) {
        const QRect button = Layout::rect(PlaylistMenus::button(menu), small, false);
        EXPECT_EQ(PlaylistMenus::of(PlaylistMenus::button(menu)), menu);
        EXPECT_EQ(PlaylistMenus::barRect(menu, small).size(), sizeOf(PlaylistMenus::barSprite(menu)));
        const auto entries = PlaylistMenus::entries(menu);
        const int last = static_cast<int>(entries.size()) - 1;
        EXPECT_EQ(PlaylistMenus::entryRect(menu, last, small), button);
        for (int index = 0; index <= last; ++index) {
            const QRect place = PlaylistMenus::entryRect(menu, index, small);
            EXPECT_TRUE(PlaylistMenus::rect(menu, small).contains(place));
            EXPECT_EQ(PlaylistMenus::entryAt(menu, place.center(), small), index);
            for (const bool selected : {false, true}) {
                const auto entry = entries[static_cast<std::size_t>(index)];
                EXPECT_EQ(sizeOf(PlaylistMenus::entrySprite(entry, selected)), place.size());
                sprites.insert(PlaylistMenus::entrySprite(entry, selected));
            }
        }
        EXPECT_EQ(PlaylistMenus::entryAt(menu, button.topRight() + QPoint(1, 0), small), std::nullopt);
    }
    EXPECT_EQ(sprites.size(), 32);
}
