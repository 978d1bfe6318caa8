#include "SkinKit/Rendering/EqualizerWindowRenderer.h"

#include "ColorCodedSkin.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <random>

using namespace vantor;
using Control = EqualizerWindowControl;

namespace {

QImage picture(const Skin &skin, const EqualizerWindowScene &scene, int scale = 1) {
    QImage image(EqualizerWindowRenderer::size(scene.shaded, scale), QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    EqualizerWindowRenderer::draw(painter, skin, scene, scale);
    return image;
}

EqualizerWindowScene randomScene(std::mt19937 &random) {
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    EqualizerWindowScene scene;
    for (bool *flag : {&scene.focused, &scene.on, &scene.autoLoad})
        *flag = below(2) != 0;
    scene.pressed = static_cast<Control>(below(static_cast<int>(Control::balance) + 1));
    scene.preamp = 20.0 * below(6);
    for (double &band : scene.bands)
        band = below(4) == 0 ? 0.4 * below(250) : 50;
    scene.volume = below(12) / 11.0;
    scene.balance = below(12) / 5.5 - 1;
    return scene;
}

} // namespace

TEST(EqualizerWindowRendererTest, EveryPlaceShowsTheSpriteOfItsState) {
    const ColorCodedSkin coded;
    const ColorCodedSkin noShadeSheet({QStringLiteral("EQ_EX")});
    using Scene = EqualizerWindowScene;
    // clang-format off
    const struct {
        const char *name;
        void (*change)(Scene &);
        const ColorCodedSkin &skin;
        std::vector<std::pair<QPoint, const char *>> expected;
    } cases[] = {
        {"at rest", [](Scene &) {}, coded,
         {{{100, 0}, "EQ_TITLE_BAR_SELECTED"}, {{254, 3}, "EQ_TITLE_BAR_SELECTED+3"}, {{264, 3}, "EQ_CLOSE_BUTTON"},
          {{14, 18}, "EQ_ON_BUTTON_SELECTED"}, {{40, 18}, "EQ_AUTO_BUTTON"}, {{217, 18}, "EQ_PRESETS_BUTTON"},
          {{86, 17}, "EQ_GRAPH_BACKGROUND"}, {{86, 26}, "EQ_PREAMP_LINE"}, {{88, 26}, "EQ_GRAPH_LINE_COLORS+9"},
          {{197, 26}, "EQ_PREAMP_LINE"}, {{21, 38}, "EQ_SLIDER_BACKGROUND+65"}, {{22, 63}, "EQ_SLIDER_THUMB"},
          {{78, 38}, "EQ_SLIDER_BACKGROUND+65"}, {{79, 63}, "EQ_SLIDER_THUMB"}, {{251, 73}, "EQ_SLIDER_THUMB+10"},
          {{92, 40}, "EQ_WINDOW_BACKGROUND+40"}, {{10, 110}, "EQ_WINDOW_BACKGROUND+110"}}},
        {"off, auto, no focus", [](Scene &scene) { scene.on = false; scene.autoLoad = true; scene.focused = false; }, coded,
         {{{100, 0}, "EQ_TITLE_BAR"}, {{14, 18}, "EQ_ON_BUTTON"}, {{40, 18}, "EQ_AUTO_BUTTON_SELECTED"}}},
        {"On held", [](Scene &scene) { scene.pressed = Control::on; }, coded,
         {{{14, 18}, "EQ_ON_BUTTON_SELECTED_DEPRESSED"}, {{40, 18}, "EQ_AUTO_BUTTON"}}},
        {"Auto held", [](Scene &scene) { scene.pressed = Control::autoLoad; }, coded,
         {{{40, 18}, "EQ_AUTO_BUTTON_DEPRESSED"}}},
        {"Presets held", [](Scene &scene) { scene.pressed = Control::presets; }, coded,
         {{{217, 18}, "EQ_PRESETS_BUTTON_SELECTED"}}},
        {"shade held", [](Scene &scene) { scene.pressed = Control::shade; }, coded,
         {{{254, 3}, "EQ_MAXIMIZE_BUTTON_ACTIVE"}, {{264, 3}, "EQ_CLOSE_BUTTON"}}},
        {"shade held, sheet missing", [](Scene &scene) { scene.pressed = Control::shade; }, noShadeSheet,
         {{{254, 3}, "EQ_MAXIMIZE_BUTTON_ACTIVE_FALLBACK"}}},
        {"band held at the top",
         [](Scene &scene) { scene.bands[3] = 100; scene.preamp = 0; scene.pressed = bandControl(3); }, coded,
         {{{133, 38}, "EQ_SLIDER_THUMB_SELECTED"}, {{132, 38}, "EQ_SLIDER_BACKGROUND+65"}, {{115, 63}, "EQ_SLIDER_THUMB"},
          {{22, 89}, "EQ_SLIDER_THUMB"}, {{21, 38}, "EQ_SLIDER_BACKGROUND"}, {{86, 17}, "EQ_PREAMP_LINE"}, {{124, 17}, "EQ_GRAPH_LINE_COLORS"}}},
        {"shaded", [](Scene &scene) { scene.shaded = true; scene.volume = 0.5; scene.balance = -1; }, coded,
         {{{20, 0}, "EQ_SHADE_BACKGROUND_SELECTED"}, {{254, 3}, "EQ_SHADE_BACKGROUND_SELECTED+3"},
          {{264, 3}, "EQ_SHADE_CLOSE_BUTTON"}, {{108, 4}, "EQ_SHADE_VOLUME_SLIDER_CENTER"},
          {{107, 4}, "EQ_SHADE_BACKGROUND_SELECTED+4"}, {{164, 10}, "EQ_SHADE_BALANCE_SLIDER_LEFT+6"}}},
        {"shaded, held", [](Scene &scene) { scene.shaded = true; scene.pressed = Control::shade; scene.focused = false;
                                            scene.volume = 0; scene.balance = 1; }, coded,
         {{{20, 0}, "EQ_SHADE_BACKGROUND"}, {{254, 3}, "EQ_MINIMIZE_BUTTON_ACTIVE"},
          {{61, 4}, "EQ_SHADE_VOLUME_SLIDER_LEFT"}, {{204, 4}, "EQ_SHADE_BALANCE_SLIDER_RIGHT"}}},
        {"shaded, sheet missing", [](Scene &scene) { scene.shaded = true; scene.pressed = Control::close; }, noShadeSheet,
         {{{20, 0}, "EQ_TITLE_BAR_SELECTED"}, {{264, 3}, "EQ_CLOSE_BUTTON_ACTIVE"}, {{155, 4}, "EQ_TITLE_BAR_SELECTED+4"}}},
        {"shaded, sheet missing, shade held",
         [](Scene &scene) { scene.shaded = true; scene.pressed = Control::shade; }, noShadeSheet,
         {{{254, 3}, "EQ_MAXIMIZE_BUTTON_ACTIVE_FALLBACK"}, {{264, 3}, "EQ_CLOSE_BUTTON"}}},
    };
    // clang-format on
    for (const auto &row : cases) {
        EqualizerWindowScene scene;
        row.change(scene);
        const QImage image = picture(row.skin.skin, scene);
        for (const auto &[point, expected] : row.expected)
            EXPECT_EQ(row.skin.at(image, point), expected)
                << row.name << " at " << point.x() << ", " << point.y();
    }
    EXPECT_TRUE(EqualizerWindowRenderer::hasShadeSliders(coded.skin));
    EXPECT_FALSE(EqualizerWindowRenderer::hasShadeSliders(noShadeSheet.skin));
    EXPECT_EQ(coded.at(picture(Skin(), {}), {86, 17}), "nothing");
}

TEST(EqualizerWindowRendererTest, RepaintingWhatChangedGivesTheNewPicture) {
    const ColorCodedSkin coded;
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        EqualizerWindowScene before = randomScene(random);
        EqualizerWindowScene after = randomScene(random);
        before.shaded = after.shaded = round % 4 == 0;
        QImage image = picture(coded.skin, before, 2);
        QPainter painter(&image);
        painter.scale(2, 2);
        painter.setClipRegion(EqualizerWindowRenderer::changed(before, after));
        painter.resetTransform();
        EqualizerWindowRenderer::draw(painter, coded.skin, after, 2);
        painter.end();
        ASSERT_EQ(image, picture(coded.skin, after, 2)) << "round " << round;
        ASSERT_TRUE(EqualizerWindowRenderer::changed(after, after).isEmpty());
    }
    EqualizerWindowScene dragged;
    dragged.bands[1] = 80;
    EXPECT_EQ(EqualizerWindowRenderer::changed({}, dragged),
              QRegion(86, 17, 113, 19) + QRegion(96, 38, 14, 63));
}

TEST(EqualizerWindowRendererTest, TheOutlineIsTheSkinsOwnForEachForm) {
    Skin skin;
    skin.region.sections.insert(QStringLiteral("equalizer"), {{{0, 0}, {20, 0}, {20, 30}, {0, 30}}});
    EXPECT_EQ(EqualizerWindowRenderer::mask(skin, false, 2), QRegion(0, 0, 40, 60));
    EXPECT_EQ(EqualizerWindowRenderer::mask(skin, true, 2), QRegion(0, 0, 550, 28));
}
