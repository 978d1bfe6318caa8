#include "SkinKit/Rendering/MainWindowRenderer.h"

#include "ColorCodedSkin.h"
#include "SkinKit/Rendering/SkinTextFont.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <random>

using namespace vantor;
using Control = MainWindowControl;
using Transport = MainWindowStatus::Transport;

namespace {

QImage picture(const Skin &skin, const MainWindowScene &scene, int scale = 1) {
    QImage image(MainWindowRenderer::size(scene.shaded, scale), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    MainWindowRenderer::draw(painter, skin, scene, scale);
    return image;
}

MainWindowScene playing() {
    MainWindowScene scene;
    scene.status = {Transport::playing, TimeMode::remaining, 0, 754, 128, 44100, 2};
    scene.position = 0.5;
    scene.marquee = QStringLiteral("AB");
    return scene;
}

/// A scene in which any member may have any value, and often shares values with others of the same kind.
MainWindowScene randomScene(std::mt19937 &random) {
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    const auto some = [&](double low, double step) { return low + step * below(4); };
    MainWindowScene scene;
    scene.status = {static_cast<Transport>(below(4)),
                    static_cast<TimeMode>(below(2)),
                    some(58, 0.7),
                    300,
                    128 * below(12),
                    44100,
                    below(4)};
    for (bool *flag : {&scene.focused, &scene.timeLit, &scene.shuffle, &scene.repeat, &scene.equalizerOpen,
                       &scene.playlistOpen, &scene.alwaysOnTop, &scene.doubleSize})
        *flag = below(2) != 0;
    scene.pressed = static_cast<Control>(below(static_cast<int>(Control::marquee) + 1));
    scene.volume = some(0, 0.33);
    scene.balance = some(-1, 0.6);
    if (below(3) != 0)
        scene.position = some(0, 0.3);
    scene.marquee = QStringLiteral("Title ").repeated(1 + 3 * below(3));
    scene.marqueeOffset = below(3) * 7;
    if (const int kind = below(3); kind == 1)
        scene.visualizer = VisualizerScope{.samples = {static_cast<float>(some(-1, 0.5))}};
    else if (kind == 2)
        scene.visualizer = VisualizerBars{.heights = {below(17)}, .peaks = {below(17)}};
    return scene;
}

} // namespace

TEST(MainWindowRendererTest, EveryPlaceShowsTheSpriteOfItsState) {
    const ColorCodedSkin coded;
    const ColorCodedSkin plainDigits({QStringLiteral("NUMS_EX")});
    // clang-format off
    const struct {
        const char *name;
        void (*change)(MainWindowScene &);
        const ColorCodedSkin &skin;
        std::vector<std::pair<QPoint, const char *>> expected;
    } cases[] = {
        {"playing", [](MainWindowScene &) {}, coded,
         {{{100, 0}, "MAIN_TITLE_BAR_SELECTED"}, {{254, 3}, "MAIN_SHADE_BUTTON"},
          {{10, 22}, "MAIN_CLUTTER_BAR_BACKGROUND"}, {{24, 28}, "MAIN_NOT_WORKING_INDICATOR"},
          {{28, 28}, "MAIN_PLAYING_INDICATOR"}, {{40, 26}, "MINUS_SIGN_EX"}, {{48, 26}, "DIGIT_1_EX"},
          {{60, 26}, "DIGIT_2_EX"}, {{78, 26}, "DIGIT_3_EX"}, {{90, 26}, "DIGIT_4_EX"}, {{111, 43}, "CHARACTER_49"},
          {{161, 43}, "CHARACTER_52"}, {{212, 41}, "MAIN_MONO"}, {{239, 41}, "MAIN_STEREO_SELECTED"},
          {{111, 27}, "CHARACTER_97"}, {{116, 27}, "CHARACTER_98"}, {{121, 27}, "MAIN_WINDOW_BACKGROUND+27"},
          {{24, 43}, "MAIN_WINDOW_BACKGROUND+43"}, {{107, 57}, "MAIN_VOLUME_BACKGROUND+149"},
          {{158, 58}, "MAIN_VOLUME_THUMB"}, {{171, 58}, "MAIN_VOLUME_THUMB"}, {{177, 57}, "MAIN_BALANCE_BACKGROUND"},
          {{189, 58}, "MAIN_BALANCE_THUMB"}, {{16, 72}, "MAIN_POSITION_SLIDER_BACKGROUND"},
          {{126, 72}, "MAIN_POSITION_SLIDER_THUMB"}, {{164, 89}, "MAIN_SHUFFLE_BUTTON"},
          {{210, 89}, "MAIN_REPEAT_BUTTON"}, {{219, 58}, "MAIN_EQ_BUTTON"}, {{242, 58}, "MAIN_PLAYLIST_BUTTON"},
          {{39, 88}, "MAIN_PLAY_BUTTON"}, {{129, 88}, "MAIN_NEXT_BUTTON"}, {{130, 88}, "MAIN_WINDOW_BACKGROUND+88"},
          {{136, 89}, "MAIN_EJECT_BUTTON"}}},
        {"plain minus", [](MainWindowScene &) {}, plainDigits,
         {{{41, 31}, "MAIN_WINDOW_BACKGROUND+31"}, {{41, 32}, "DIGIT_2+6"}, {{45, 32}, "DIGIT_2+6"},
          {{46, 32}, "MAIN_WINDOW_BACKGROUND+32"}, {{48, 27}, "DIGIT_1+1"}}},
        {"stopped", [](MainWindowScene &scene) { scene.status.transport = Transport::stopped; scene.position.reset(); },
         coded,
         {{{40, 26}, "MAIN_WINDOW_BACKGROUND+26"}, {{48, 26}, "MAIN_WINDOW_BACKGROUND+26"},
          {{111, 43}, "MAIN_WINDOW_BACKGROUND+43"}, {{24, 28}, "MAIN_WINDOW_BACKGROUND+28"},
          {{26, 28}, "MAIN_STOPPED_INDICATOR"}, {{239, 41}, "MAIN_STEREO"}, {{16, 72}, "MAIN_WINDOW_BACKGROUND+72"}}},
        {"loading", [](MainWindowScene &scene) { scene.status.transport = Transport::loading; }, coded,
         {{{24, 28}, "MAIN_WORKING_INDICATOR"}, {{28, 28}, "MAIN_WINDOW_BACKGROUND+28"},
          {{48, 26}, "DIGIT_1_EX"}, {{111, 43}, "CHARACTER_49"}, {{239, 41}, "MAIN_STEREO_SELECTED"}}},
        {"mono", [](MainWindowScene &scene) { scene.status.channels = 1; }, coded,
         {{{212, 41}, "MAIN_MONO_SELECTED"}, {{239, 41}, "MAIN_STEREO"}}},
        {"dark half of the blink",
         [](MainWindowScene &scene) { scene.status.transport = Transport::paused; scene.timeLit = false; }, coded,
         {{{40, 26}, "MAIN_WINDOW_BACKGROUND+26"}, {{90, 26}, "MAIN_WINDOW_BACKGROUND+26"},
          {{26, 28}, "MAIN_PAUSED_INDICATOR"}}},
        {"toggles on and pressed, no focus",
         [](MainWindowScene &scene) { scene.shuffle = scene.equalizerOpen = scene.alwaysOnTop = true;
                                      scene.pressed = Control::shuffle; scene.focused = false; }, coded,
         {{{100, 0}, "MAIN_TITLE_BAR"}, {{164, 89}, "MAIN_SHUFFLE_BUTTON_SELECTED_DEPRESSED"},
          {{219, 58}, "MAIN_EQ_BUTTON_SELECTED"}, {{10, 33}, "MAIN_CLUTTER_BAR_BUTTON_A_SELECTED"},
          {{10, 47}, "MAIN_CLUTTER_BAR_BACKGROUND+25"}}},
        {"balance held left", [](MainWindowScene &scene) { scene.balance = -1; scene.pressed = Control::balance; }, coded,
         {{{214, 57}, "MAIN_BALANCE_BACKGROUND+149"}, {{177, 58}, "MAIN_BALANCE_THUMB_ACTIVE"}}},
        {"shaded", [](MainWindowScene &scene) { scene.shaded = true; scene.pressed = Control::shade; }, coded,
         {{{50, 0}, "MAIN_SHADE_BACKGROUND_SELECTED"}, {{254, 3}, "MAIN_SHADE_BUTTON_SELECTED_DEPRESSED"},
          {{128, 4}, "CHARACTER_45"}, {{134, 4}, "CHARACTER_49"}, {{152, 4}, "CHARACTER_52"},
          {{79, 5}, "MAIN_SHADE_BACKGROUND_SELECTED+5"}, {{226, 4}, "MAIN_SHADE_POSITION_BACKGROUND"},
          {{233, 4}, "MAIN_SHADE_POSITION_THUMB"}}},
    };
    // clang-format on
    for (const auto &row : cases) {
        MainWindowScene scene = playing();
        row.change(scene);
        const QImage image = picture(row.skin.skin, scene);
        for (const auto &[point, expected] : row.expected)
            EXPECT_EQ(row.skin.at(image, point), expected)
                << row.name << " at " << point.x() << ", " << point.y();
    }
}

TEST(MainWindowRendererTest, VisualizerUsesTheSkinsColours) {
    const ColorCodedSkin coded;
    MainWindowScene scene = playing();
    const auto at = [&](int x, int y) { return coded.at(picture(coded.skin, scene), {x, y}); };
    VisualizerBars bars;
    bars.heights.fill(4);
    bars.peaks.fill(16);
    scene.visualizer = bars;
    EXPECT_EQ(at(24, 58), "vis 17"); // bottom row
    EXPECT_EQ(at(24, 55), "vis 14");
    EXPECT_EQ(at(24, 54), "vis 1"); // a dot above the bar
    EXPECT_EQ(at(25, 54), "vis 0");
    EXPECT_EQ(at(24, 43), "vis 23");
    EXPECT_EQ(at(27, 57), "vis 0"); // the gap between two bars
    scene.shaded = true;
    EXPECT_EQ(at(79, 9), "vis 17");
    EXPECT_EQ(at(79, 5), "vis 23");
    EXPECT_EQ(at(80, 9), "vis 0");
    EXPECT_EQ(at(115, 9), "vis 17"); // the last bar, clear of the time
    scene.shaded = false;
    VisualizerScope scope;
    scope.samples = {1, -1};
    scope.samples[75] = std::numeric_limits<float>::quiet_NaN();
    scene.visualizer = scope;
    EXPECT_EQ(at(24, 43), "vis 22");
    EXPECT_EQ(at(25, 44), "vis 21"); // joined from top to bottom
    EXPECT_EQ(at(25, 51), "vis 18");
    EXPECT_EQ(at(25, 58), "vis 22");
    EXPECT_EQ(at(99, 51), "vis 18");
    // From the top in one column to the bottom in the next: what is lit half-way down and half-way up.
    const auto lit = [&](int x, int y) { return at(x, y) != "vis 0" && at(x, y) != "vis 1"; };
    const std::tuple<ScopeStyle, bool, bool, bool> looks[] = {{ScopeStyle::dots, false, false, false},
                                                              {ScopeStyle::lines, false, true, true},
                                                              {ScopeStyle::solid, true, false, true}};
    for (const auto &[style, aboveFirst, aboveSecond, belowSecond] : looks) {
        scope.style = style;
        scene.visualizer = scope;
        EXPECT_EQ(std::tuple(lit(24, 47), lit(25, 47), lit(25, 55)),
                  std::tuple(aboveFirst, aboveSecond, belowSecond));
    }
    bars.thin = true;
    scene.visualizer = bars;
    EXPECT_EQ(at(27, 58), "vis 17"); // no gap any more
}

TEST(MainWindowRendererTest, OnlyWideTitlesScrollAndTheyRepeat) {
    EXPECT_EQ(Marquee::period(QString(30, u'x')), 0);
    const ColorCodedSkin coded;
    MainWindowScene scene = playing();
    scene.marquee = QStringLiteral("a") + QString(30, u'x');
    ASSERT_EQ(Marquee::period(scene.marquee), 190);
    // Where the "a" begins: it leaves on the left, cut off at the window, and comes back on the right.
    using Columns = QList<int>;
    const std::pair<int, Columns> rows[] = {
        {0, {111}}, {1, {111}}, {5, {}}, {36, {}}, {37, {111 + 190 - 37}}, {190, {111}}};
    for (const auto &[offset, expected] : rows) {
        scene.marqueeOffset = offset;
        const QImage image = picture(coded.skin, scene);
        Columns columns;
        for (int x = 0; x < image.width(); ++x)
            if (coded.at(image, {x, 27}) == "CHARACTER_97" && coded.at(image, {x - 1, 27}) != "CHARACTER_97")
                columns.append(x);
        EXPECT_EQ(columns, expected) << offset;
    }
    const auto dragged = [&](int offset) {
        scene.marqueeOffset = offset;
        return picture(coded.skin, scene);
    };
    EXPECT_EQ(dragged(-10), dragged(180));
}

TEST(MainWindowRendererTest, RepaintingWhatChangedGivesTheNewPicture) {
    const ColorCodedSkin coded;
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        MainWindowScene before = randomScene(random);
        MainWindowScene after = randomScene(random);
        before.shaded = after.shaded = round % 4 == 0;
        QImage image = picture(coded.skin, before, 2);
        QPainter painter(&image);
        painter.scale(2, 2);
        painter.setClipRegion(MainWindowRenderer::changed(coded.skin, before, after));
        painter.resetTransform();
        MainWindowRenderer::draw(painter, coded.skin, after, 2);
        painter.end();
        ASSERT_EQ(image, picture(coded.skin, after, 2)) << "round " << round;
        ASSERT_TRUE(MainWindowRenderer::changed(coded.skin, after, after).isEmpty());
    }
    MainWindowScene visualizerOnly = playing();
    visualizerOnly.visualizer = VisualizerBars{};
    EXPECT_EQ(MainWindowRenderer::changed(coded.skin, playing(), visualizerOnly), QRegion(24, 43, 76, 16));
}

TEST(MainWindowRendererTest, ScalesAreTheSmallPictureEnlarged) {
    const ColorCodedSkin coded;
    std::mt19937 random(3);
    for (int scale = 2; scale <= 8; ++scale) {
        MainWindowScene scene = randomScene(random);
        scene.shaded = scale == 5;
        const QImage small = picture(coded.skin, scene);
        ASSERT_EQ(picture(coded.skin, scene, scale), small.scaled(small.size() * scale)) << scale;
    }
}

TEST(MainWindowRendererTest, MissingAndSmallSheetsDrawWhatTheyHave) {
    const ColorCodedSkin noBalance({QStringLiteral("BALANCE"), QStringLiteral("POSBAR")});
    Skin skin = noBalance.skin;
    for (QImage *sheet : {&skin.sheets[QStringLiteral("VOLUME")], &skin.sheets[QStringLiteral("CBUTTONS")]})
        *sheet = sheet->copy(0, 0, 50, 420); // frames without thumbs, half of the buttons
    const QImage image = picture(skin, playing());
    const std::pair<QPoint, const char *> expected[] = {
        {{107, 57}, "MAIN_VOLUME_BACKGROUND+149"}, {{157, 57}, "MAIN_WINDOW_BACKGROUND+57"},
        {{110, 60}, "MAIN_VOLUME_BACKGROUND+152"}, {{177, 57}, "MAIN_VOLUME_BACKGROUND"},
        {{215, 57}, "MAIN_WINDOW_BACKGROUND+57"},  {{16, 72}, "MAIN_WINDOW_BACKGROUND+72"},
        {{62, 88}, "MAIN_PAUSE_BUTTON"},           {{66, 88}, "MAIN_WINDOW_BACKGROUND+88"}};
    for (const auto &[point, name] : expected)
        EXPECT_EQ(noBalance.at(image, point), name) << point.x() << ", " << point.y();
    EXPECT_EQ(noBalance.at(picture(Skin(), playing()), {0, 0}), "nothing");
}

TEST(MainWindowRendererTest, MaskIsTheUnionOfThePolygonsAndNeverEmpty) {
    constexpr int huge = std::numeric_limits<int>::max();
    const QRegion full(0, 0, 550, 232);
    const struct {
        const char *name;
        QList<SkinRegion::Polygon> polygons;
        QRegion expected; // at 2×
    } cases[] = {
        {"beyond the window", {{{-huge, -huge}, {huge, -huge}, {huge, huge}, {-huge, huge}}}, full},
        {"two parts",
         {{{0, 0}, {10, 0}, {10, 5}, {0, 5}}, {{5, 0}, {20, 0}, {20, 5}, {5, 5}}},
         {0, 0, 40, 10}},
        {"no area", {{{3, 3}, {9, 3}}, {{4, 4}}, {}}, full},
        {"outside", {{{300, 0}, {400, 0}, {400, 50}}}, full},
        {"wound twice", {{{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {9, 0}, {9, 9}, {0, 9}}}, {0, 0, 18, 18}},
    };
    for (const auto &row : cases) {
        Skin skin;
        skin.region.sections.insert(QStringLiteral("normal"), row.polygons);
        EXPECT_EQ(MainWindowRenderer::mask(skin, false, 2), row.expected) << row.name;
        EXPECT_EQ(MainWindowRenderer::mask(skin, true, 1), QRegion(0, 0, 275, 14)) << row.name;
    }
}
