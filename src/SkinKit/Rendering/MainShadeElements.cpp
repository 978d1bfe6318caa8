#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowElements_p.h"
#include "SkinKit/Rendering/MiniTime_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"
#include "SkinKit/Rendering/VisualizerPicture_p.h"

#include <tuple>

namespace vantor {

namespace {

using Scene = MainWindowScene;
using MainSliders::Slider;

// The small transport buttons are part of the background and have no pressed form.
void drawTitle(const SkinCanvas &canvas, const Scene &scene) {
    canvas.sprites.draw(scene.focused ? QStringLiteral("MAIN_SHADE_BACKGROUND_SELECTED")
                                      : QStringLiteral("MAIN_SHADE_BACKGROUND"),
                        {0, 0});
    drawTitleButtons(canvas, scene);
}

auto miniTimeState(const Scene &scene) {
    return miniTime(scene.status, scene.timeLit);
}

void drawMiniTime(const SkinCanvas &canvas, const Scene &scene) {
    drawMiniTime(canvas.sprites, miniTimeState(scene), MainShadeLayout::miniTimeHitArea.topLeft());
}

bool visualizerDiffers(const Scene &before, const Scene &after) {
    return before.visualizer != after.visualizer;
}

void drawVisualizer(const SkinCanvas &canvas, const Scene &scene) {
    const QRect area = MainShadeLayout::visualizer;
    const QImage picture = visualizerImage(scene.visualizer, canvas.skin.visColors, area.size());
    if (!picture.isNull())
        canvas.painter.drawImage(area.topLeft(), picture);
}

bool positionDiffers(const Scene &before, const Scene &after) {
    const auto state = [](const Scene &scene) {
        const double position = scene.position.value_or(0);
        return std::tuple(scene.position.has_value(), Slider::shadePosition.thumbX(position),
                          MainSliders::shadePositionThumbName(position));
    };
    return state(before) != state(after);
}

void drawPosition(const SkinCanvas &canvas, const Scene &scene) {
    if (!scene.position)
        return;
    const Slider &slider = Slider::shadePosition;
    canvas.sprites.draw(QStringLiteral("MAIN_SHADE_POSITION_BACKGROUND"), slider.origin);
    canvas.sprites.draw(MainSliders::shadePositionThumbName(*scene.position),
                        {slider.thumbX(*scene.position), slider.origin.y() + slider.thumbInsetY});
}

struct TitleButtonLook {
    MainWindowControl control;
    QString up;
    QString down;
};

using TitleButtonLooks = std::array<TitleButtonLook, 4>;

// In case order. The third one's look tells whether it rolls the window up or down again.
const TitleButtonLooks &titleButtonLooks(bool shaded) {
    const auto looks = [](const QString &shade) {
        return TitleButtonLooks{{{MainWindowControl::options, QStringLiteral("MAIN_OPTIONS_BUTTON"),
                                  QStringLiteral("MAIN_OPTIONS_BUTTON_DEPRESSED")},
                                 {MainWindowControl::minimize, QStringLiteral("MAIN_MINIMIZE_BUTTON"),
                                  QStringLiteral("MAIN_MINIMIZE_BUTTON_DEPRESSED")},
                                 {MainWindowControl::shade, shade, shade + QStringLiteral("_DEPRESSED")},
                                 {MainWindowControl::close, QStringLiteral("MAIN_CLOSE_BUTTON"),
                                  QStringLiteral("MAIN_CLOSE_BUTTON_DEPRESSED")}}};
    };
    static const TitleButtonLooks full = looks(QStringLiteral("MAIN_SHADE_BUTTON"));
    static const TitleButtonLooks shade = looks(QStringLiteral("MAIN_SHADE_BUTTON_SELECTED"));
    return shaded ? shade : full;
}

MainWindowControl pressedTitleButton(const Scene &scene) {
    for (const TitleButtonLook &look : titleButtonLooks(scene.shaded)) {
        if (look.control == scene.pressed)
            return scene.pressed;
    }
    return MainWindowControl::none;
}

} // namespace

void drawTitleButtons(const SkinCanvas &canvas, const MainWindowScene &scene) {
    const TitleButtonLooks &looks = titleButtonLooks(scene.shaded);
    for (std::size_t i = 0; i < looks.size(); ++i)
        canvas.sprites.draw(looks[i].control == scene.pressed ? looks[i].down : looks[i].up,
                            MainWindowLayout::rect(MainWindowLayout::titleButtons[i]).topLeft());
}

bool titleDiffers(const MainWindowScene &before, const MainWindowScene &after) {
    return before.focused != after.focused || pressedTitleButton(before) != pressedTitleButton(after);
}

std::span<const SceneElement<MainWindowScene>> mainShadeElements() {
    static const std::array elements{
        SceneElement<Scene>{QRect({0, 0}, MainWindowLayout::shadeSize), titleDiffers, drawTitle},
        SceneElement<Scene>{MainShadeLayout::miniTimeHitArea, stateDiffers<miniTimeState>, drawMiniTime},
        SceneElement<Scene>{MainShadeLayout::visualizer, visualizerDiffers, drawVisualizer},
        SceneElement<Scene>{Slider::shadePosition.rect(), positionDiffers, drawPosition},
    };
    return elements;
}

} // namespace vantor
