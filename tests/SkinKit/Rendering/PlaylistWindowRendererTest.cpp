#include "SkinKit/Rendering/PlaylistWindowRenderer.h"

#include "ColorCodedSkin.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <random>

using namespace vantor;
using Control = PlaylistWindowControl;
using Scene = PlaylistWindowScene;
namespace Layout = PlaylistWindowLayout;

namespace {

constexpr QRgb behind = qRgb(0, 0, 0);
constexpr QRgb selection = qRgb(0, 0, 250);

ColorCodedSkin styledSkin() {
    ColorCodedSkin coded;
    coded.skin.playlistStyle = {{250, 0, 0}, {0, 250, 0}, {0, 0, 0}, {0, 0, 250}, QStringLiteral("Arial")};
    return coded;
}

QImage picture(const Skin &skin, const Scene &scene, int scale = 1) {
    QImage image(Layout::windowSize(scene.size, scene.shaded) * scale, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    PlaylistWindowRenderer::draw(painter, skin, scene, scale);
    return image;
}

int count(const QImage &image, const QRect &area, QRgb color) {
    int pixels = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            pixels += image.pixel(x, y) == color ? 1 : 0;
    return pixels;
}

/// Of the pixels in the area; texts are smoothed, so that few pixels have their full colour.
int strongest(const QImage &image, const QRect &area, int (*channel)(QRgb)) {
    int value = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            value = std::max(value, channel(image.pixel(x, y)));
    return value;
}

Scene sceneOf(QSize size) {
    Scene scene;
    scene.size = size;
    scene.rows = {{QStringLiteral("1. One"), QStringLiteral("1:00"), false, false},
                  {QStringLiteral("2. Two"), QStringLiteral("2:00"), true, true}};
    scene.runningTime = QStringLiteral("2:00/3:00");
    scene.status = {MainWindowStatus::Transport::playing, TimeMode::elapsed, 83, 200, {}, {}, {}};
    return scene;
}

Scene randomScene(std::mt19937 &random, QSize size) {
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    Scene scene = sceneOf(size);
    scene.focused = below(2) != 0;
    scene.pressed = static_cast<Control>(below(static_cast<int>(Control::resize) + 1));
    if (below(2) != 0) {
        scene.menu = static_cast<PlaylistMenu>(below(5));
        scene.menuEntry = below(3);
    }
    scene.rows.resize(
        static_cast<std::size_t>(below(Layout::visibleRows(size) + 1)),
        {QStringLiteral("3. A long title by somebody who writes long titles"), {}, false, false});
    for (PlaylistRow &row : scene.rows)
        row.selected = below(2) != 0;
    scene.scroll = below(3) / 2.0;
    if (below(2) != 0)
        scene.insertionLine = below(Layout::visibleRows(size) + 1);
    scene.runningTime = QStringLiteral("0:00/%1:00").arg(below(3));
    scene.status.elapsed = below(3);
    scene.visualizer = VisualizerBars{.heights = {below(17)}, .peaks = {}};
    scene.shadeTitle = QStringLiteral("%1. Title").arg(below(3));
    return scene;
}

} // namespace

TEST(PlaylistWindowRendererTest, TheFrameIsTiledToAnySize) {
    const ColorCodedSkin coded = styledSkin();
    // clang-format off
    const struct {
        QSize size;
        std::vector<std::pair<QPoint, const char *>> expected;
    } cases[] = {
        {{275, 116},
         {{{0, 0}, "PLAYLIST_TOP_LEFT_SELECTED"}, {{25, 0}, "PLAYLIST_TOP_TILE_SELECTED"},
          {{86, 0}, "PLAYLIST_TOP_TILE_SELECTED"}, {{87, 0}, "PLAYLIST_TITLE_BAR_SELECTED"},
          {{186, 0}, "PLAYLIST_TITLE_BAR_SELECTED"}, {{187, 0}, "PLAYLIST_TOP_TILE_SELECTED"},
          {{249, 0}, "PLAYLIST_TOP_TILE_SELECTED"}, {{250, 0}, "PLAYLIST_TOP_RIGHT_CORNER_SELECTED"},
          {{0, 20}, "PLAYLIST_LEFT_TILE"}, {{0, 49}, "PLAYLIST_LEFT_TILE"}, {{255, 49}, "PLAYLIST_RIGHT_TILE"},
          {{0, 78}, "PLAYLIST_BOTTOM_LEFT_CORNER"}, {{124, 78}, "PLAYLIST_BOTTOM_LEFT_CORNER"},
          {{125, 78}, "PLAYLIST_BOTTOM_RIGHT_CORNER"}, {{260, 20}, "PLAYLIST_SCROLL_HANDLE"},
          {{132, 88}, "CHARACTER_50"}, {{198, 101}, "CHARACTER_48"}, {{211, 101}, "CHARACTER_50"}}},
        {{350, 174},
         {{{124, 0}, "PLAYLIST_TOP_TILE_SELECTED"}, {{125, 0}, "PLAYLIST_TITLE_BAR_SELECTED"},
          {{0, 107}, "PLAYLIST_LEFT_TILE"}, {{125, 136}, "PLAYLIST_VISUALIZER_BACKGROUND"},
          {{200, 136}, "PLAYLIST_BOTTOM_RIGHT_CORNER"}, {{127, 148}, "vis 0"}, {{198, 149}, "vis 0"},
          {{199, 149}, "PLAYLIST_VISUALIZER_BACKGROUND+13"}}},
        {{325, 116}, {{{125, 78}, "PLAYLIST_BOTTOM_TILE"}, {{174, 78}, "PLAYLIST_BOTTOM_TILE"},
                      {{175, 78}, "PLAYLIST_BOTTOM_RIGHT_CORNER"}}},
    };
    // clang-format on
    for (const auto &row : cases) {
        Scene scene = sceneOf(row.size);
        scene.visualizer = VisualizerBars{};
        const QImage image = picture(coded.skin, scene);
        for (const auto &[point, expected] : row.expected)
            EXPECT_EQ(coded.at(image, point), expected)
                << row.size.width() << " at " << point.x() << ", " << point.y();
    }
}

TEST(PlaylistWindowRendererTest, StatesShowTheirSprites) {
    const ColorCodedSkin coded = styledSkin();
    const struct {
        void (*change)(Scene &);
        QPoint point;
        const char *expected;
    } cases[] = {
        {[](Scene &scene) { scene.focused = false; }, {0, 0}, "PLAYLIST_TOP_LEFT_CORNER"},
        {[](Scene &scene) { scene.pressed = Control::close; }, {264, 3}, "PLAYLIST_CLOSE_SELECTED"},
        {[](Scene &scene) { scene.pressed = Control::shade; }, {254, 3}, "PLAYLIST_COLLAPSE_SELECTED"},
        {[](Scene &scene) {
             scene.pressed = Control::scrollBar;
             scene.scroll = 1;
         },
         {260, 60},
         "PLAYLIST_SCROLL_HANDLE_SELECTED"},
        {[](Scene &scene) { scene.menu = PlaylistMenu::remove; }, {40, 32}, "PLAYLIST_REMOVE_MENU_BAR"},
        {[](Scene &scene) { scene.menu = PlaylistMenu::remove; }, {43, 32}, "PLAYLIST_REMOVE_MISC"},
        {[](Scene &scene) {
             scene.menu = PlaylistMenu::list;
             scene.menuEntry = 2;
         },
         {231, 86},
         "PLAYLIST_LOAD_LIST_SELECTED"},
        {[](Scene &scene) { scene.shaded = true; }, {0, 0}, "PLAYLIST_SHADE_BACKGROUND_LEFT"},
        {[](Scene &scene) { scene.shaded = true; }, {224, 0}, "PLAYLIST_SHADE_BACKGROUND"},
        {[](Scene &scene) { scene.shaded = true; }, {225, 0}, "PLAYLIST_SHADE_BACKGROUND_RIGHT_SELECTED"},
        {[](Scene &scene) {
             scene.shaded = true;
             scene.pressed = Control::shade;
         },
         {254, 3},
         "PLAYLIST_EXPAND_SELECTED"},
        {[](Scene &scene) {
             scene.shaded = true;
             scene.shadeTitle = QStringLiteral("ab");
         },
         {11, 4},
         "CHARACTER_98"},
        {[](Scene &scene) {
             scene.shaded = true;
             scene.shadeTitle = QString(80, u'a');
             scene.shadeLength = QStringLiteral("4:31");
         },
         {211, 4},
         "CHARACTER_8230"},
    };
    for (const auto &row : cases) {
        Scene scene = sceneOf(Layout::minimumSize);
        row.change(scene);
        EXPECT_EQ(coded.at(picture(coded.skin, scene), row.point), row.expected);
    }
}

TEST(PlaylistWindowRendererTest, RowsTakeTheStylesColours) {
    const ColorCodedSkin coded = styledSkin();
    Scene scene = sceneOf(Layout::minimumSize);
    for (const int scale : {1, 2, 3}) {
        SCOPED_TRACE(scale);
        const auto area = [&](int line) {
            const QRect row = Layout::row(line, scene.size);
            return QRect(row.topLeft() * scale, row.size() * scale);
        };
        const QImage image = picture(coded.skin, scene, scale);
        EXPECT_GT(count(image, area(0), behind), area(0).width() * area(0).height() / 2);
        EXPECT_EQ(count(image, area(0), selection), 0);
        EXPECT_GT(strongest(image, area(0), qRed), 100);
        EXPECT_EQ(strongest(image, area(0), qGreen), 0);
        EXPECT_GT(count(image, area(1), selection), area(1).width() * area(1).height() / 2);
        EXPECT_GT(strongest(image, area(1), qGreen), 100);
        EXPECT_EQ(count(image, area(2), behind), area(2).width() * area(2).height());
        const QRect right = area(0).adjusted(area(0).width() * 3 / 4, 0, 0, 0); // its length
        EXPECT_GT(strongest(image, right, qRed), 100);
    }
}

TEST(PlaylistWindowRendererTest, LongTitlesLeaveTheLengthFreeAndNoFontIsTooMuch) {
    ColorCodedSkin coded = styledSkin();
    Scene scene = sceneOf(Layout::minimumSize);
    const QRect row = Layout::row(0, scene.size);
    const QRect lengthArea(row.right() - 30, row.top(), 31, row.height());
    const QImage shortTitle = picture(coded.skin, scene).copy(lengthArea);
    scene.rows[0].title = QStringLiteral("1. ") + QString(200'000, u'w') + u'\n';
    EXPECT_EQ(picture(coded.skin, scene).copy(lengthArea), shortTitle);
    const QString fonts[] = {QStringLiteral("No Such Font 9"), QString(100'000, u'x'), QStringLiteral(",,,"),
                             QStringLiteral("\u202e\u0000")};
    for (const QString &font : fonts) {
        coded.skin.playlistStyle.font = font;
        EXPECT_GT(strongest(picture(coded.skin, scene), row, qRed), 100);
    }
}

TEST(PlaylistWindowRendererTest, RepaintingWhatChangedGivesTheNewPicture) {
    const ColorCodedSkin coded = styledSkin();
    std::mt19937 random(7);
    for (int round = 0; round < 100; ++round) {
        const QSize size = round % 2 == 0 ? QSize(375, 174) : Layout::minimumSize;
        const int scale = 1 + round % 3;
        Scene before = randomScene(random, size);
        Scene after = randomScene(random, size);
        before.shaded = after.shaded = round % 5 == 0;
        QImage image = picture(coded.skin, before, scale);
        QPainter painter(&image);
        QRegion clip;
        for (const QRect &rect : PlaylistWindowRenderer::changed(before, after))
            clip += QRect(rect.topLeft() * scale, rect.size() * scale);
        painter.setClipRegion(clip);
        PlaylistWindowRenderer::draw(painter, coded.skin, after, scale);
        painter.end();
        ASSERT_EQ(image, picture(coded.skin, after, scale)) << "round " << round;
        ASSERT_TRUE(PlaylistWindowRenderer::changed(after, after).isEmpty());
    }
    Scene ticked = sceneOf({275, 116});
    ticked.status.elapsed += 1;
    EXPECT_EQ(PlaylistWindowRenderer::changed(sceneOf({275, 116}), ticked), QRegion(191, 101, 30, 6));
}
