#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Rendering/EQGraph.h"
#include "SkinKit/Rendering/EqualizerWindowElements_p.h"

#include <tuple>

namespace vantor {

namespace {

using Control = EqualizerWindowControl;
using Scene = EqualizerWindowScene;
using MainSliders::Slider;

QString pick(bool second, const char *one, const char *other) {
    return QString::fromLatin1(second ? other : one);
}

void drawBackground(const SkinCanvas &canvas, const Scene &) {
    canvas.sprites.draw(QStringLiteral("EQ_WINDOW_BACKGROUND"), {0, 0});
}

auto titleState(const Scene &scene) {
    return std::tuple(scene.focused, scene.pressed == Control::shade, scene.pressed == Control::close);
}

// The title bar shows the raised shade button itself.
void drawTitle(const SkinCanvas &canvas, const Scene &scene) {
    const auto [focused, shadePressed, closePressed] = titleState(scene);
    canvas.sprites.draw(pick(focused, "EQ_TITLE_BAR", "EQ_TITLE_BAR_SELECTED"), {0, 0});
    if (shadePressed)
        canvas.sprites.draw(QStringLiteral("EQ_MAXIMIZE_BUTTON_ACTIVE"), EQLayout::shadeButton.topLeft());
    canvas.sprites.draw(pick(closePressed, "EQ_CLOSE_BUTTON", "EQ_CLOSE_BUTTON_ACTIVE"),
                        EQLayout::closeButton.topLeft());
}

void drawToggle(const SkinCanvas &canvas, const QString &base, QPoint at, bool on, bool pressed) {
    canvas.sprites.draw(base + pick(on, "", "_SELECTED") + pick(pressed, "", "_DEPRESSED"), at);
}

auto togglesState(const Scene &scene) {
    return std::tuple(scene.on, scene.autoLoad, scene.pressed == Control::on,
                      scene.pressed == Control::autoLoad);
}

void drawToggles(const SkinCanvas &canvas, const Scene &scene) {
    const auto [on, autoLoad, onPressed, autoPressed] = togglesState(scene);
    drawToggle(canvas, QStringLiteral("EQ_ON_BUTTON"), EQLayout::onButton.topLeft(), on, onPressed);
    drawToggle(canvas, QStringLiteral("EQ_AUTO_BUTTON"), EQLayout::autoButton.topLeft(), autoLoad,
               autoPressed);
}

bool presetsPressed(const Scene &scene) {
    return scene.pressed == Control::presets;
}

void drawPresets(const SkinCanvas &canvas, const Scene &scene) {
    canvas.sprites.draw(pick(presetsPressed(scene), "EQ_PRESETS_BUTTON", "EQ_PRESETS_BUTTON_SELECTED"),
                        EQLayout::presetsButton.topLeft());
}

auto graphState(const Scene &scene) {
    return std::tuple(EQGraph::preampLineY(scene.preamp), scene.bands);
}

void drawGraph(const SkinCanvas &canvas, const Scene &scene) {
    if (const auto picture = EQGraph::render(canvas.skin, scene.bands, scene.preamp))
        canvas.painter.drawImage(EQLayout::graph.topLeft(), *picture);
}

auto sliderState(double value, bool held) {
    return std::tuple(EQLayout::frame(value), EQLayout::thumbY(value), held);
}

void drawSlider(const SkinCanvas &canvas, QPoint origin, double value, bool held) {
    const auto [frame, thumbY, lit] = sliderState(value, held);
    canvas.sprites.drawPart(QStringLiteral("EQ_SLIDER_BACKGROUND"), EQLayout::bandFrameRect({}, frame),
                            origin);
    canvas.sprites.draw(pick(lit, "EQ_SLIDER_THUMB", "EQ_SLIDER_THUMB_SELECTED"),
                        origin + QPoint(EQLayout::thumbInsetX, thumbY));
}

auto preampState(const Scene &scene) {
    return sliderState(scene.preamp, scene.pressed == Control::preamp);
}

void drawPreamp(const SkinCanvas &canvas, const Scene &scene) {
    drawSlider(canvas, EQLayout::preampOrigin, scene.preamp, scene.pressed == Control::preamp);
}

template <int band>
bool bandHeld(const Scene &scene) {
    return scene.pressed == bandControl(band);
}

template <int band>
auto bandState(const Scene &scene) {
    return sliderState(scene.bands[band], bandHeld<band>(scene));
}

template <int band>
void drawBand(const SkinCanvas &canvas, const Scene &scene) {
    drawSlider(canvas, EQLayout::bandOrigin(band), scene.bands[band], bandHeld<band>(scene));
}

template <int band>
SceneElement<Scene> bandElement() {
    return {{EQLayout::bandOrigin(band), EQLayout::bandSize}, stateDiffers<bandState<band>>, drawBand<band>};
}

// Shade form

// Without a sheet of its own the shade form is the full window's title bar, and so is its button.
void drawShadeTitle(const SkinCanvas &canvas, const Scene &scene) {
    const auto [focused, shadePressed, closePressed] = titleState(scene);
    canvas.sprites.draw(pick(focused, "EQ_SHADE_BACKGROUND", "EQ_SHADE_BACKGROUND_SELECTED"), {0, 0});
    const auto drawButton = [&](const QString &sprite, const QString &substitute, const QRect &rect) {
        canvas.sprites.draw(canvas.skin.resolve(sprite) ? sprite : substitute, rect.topLeft());
    };
    if (shadePressed)
        drawButton(QStringLiteral("EQ_MINIMIZE_BUTTON_ACTIVE"), QStringLiteral("EQ_MAXIMIZE_BUTTON_ACTIVE"),
                   EQLayout::shadeButton);
    drawButton(pick(closePressed, "EQ_SHADE_CLOSE_BUTTON", "EQ_SHADE_CLOSE_BUTTON_ACTIVE"),
               pick(closePressed, "EQ_CLOSE_BUTTON", "EQ_CLOSE_BUTTON_ACTIVE"), EQLayout::closeButton);
}

auto shadeThumbState(const Slider &slider, double fraction) {
    return std::tuple(slider.thumbX(fraction), MainSliders::shadeSegment(fraction));
}

void drawShadeThumb(const SkinCanvas &canvas, const QString &base, const Slider &slider, double fraction) {
    static const std::array endings{QStringLiteral("LEFT"), QStringLiteral("CENTER"),
                                    QStringLiteral("RIGHT")};
    const auto [x, segment] = shadeThumbState(slider, fraction);
    canvas.sprites.draw(base + endings.at(static_cast<std::size_t>(segment)),
                        {x, slider.origin.y() + slider.thumbInsetY});
}

/// A thumb is a row higher than its track.
QRect shadeSliderArea(const Slider &slider) {
    return {slider.origin, QSize(slider.size.width(), slider.thumbSize.height())};
}

auto volumeState(const Scene &scene) {
    return shadeThumbState(Slider::eqShadeVolume, scene.volume);
}

void drawVolume(const SkinCanvas &canvas, const Scene &scene) {
    drawShadeThumb(canvas, QStringLiteral("EQ_SHADE_VOLUME_SLIDER_"), Slider::eqShadeVolume, scene.volume);
}

auto balanceState(const Scene &scene) {
    return shadeThumbState(Slider::eqShadeBalance, MainSliders::fraction(scene.balance));
}

void drawBalance(const SkinCanvas &canvas, const Scene &scene) {
    drawShadeThumb(canvas, QStringLiteral("EQ_SHADE_BALANCE_SLIDER_"), Slider::eqShadeBalance,
                   MainSliders::fraction(scene.balance));
}

constexpr QRect titleBar{0, 0, EQLayout::windowSize.width(), EQLayout::titleBarHeight};

} // namespace

std::span<const SceneElement<EqualizerWindowScene>> equalizerWindowElements() {
    static const std::array elements{
        SceneElement<Scene>{QRect({0, 0}, EQLayout::windowSize), neverDiffers, drawBackground},
        SceneElement<Scene>{titleBar, stateDiffers<titleState>, drawTitle},
        SceneElement<Scene>{EQLayout::onButton | EQLayout::autoButton, stateDiffers<togglesState>,
                            drawToggles},
        SceneElement<Scene>{EQLayout::presetsButton, stateDiffers<presetsPressed>, drawPresets},
        SceneElement<Scene>{EQLayout::graph, stateDiffers<graphState>, drawGraph},
        SceneElement<Scene>{
            {EQLayout::preampOrigin, EQLayout::bandSize}, stateDiffers<preampState>, drawPreamp},
        bandElement<0>(),
        bandElement<1>(),
        bandElement<2>(),
        bandElement<3>(),
        bandElement<4>(),
        bandElement<5>(),
        bandElement<6>(),
        bandElement<7>(),
        bandElement<8>(),
        bandElement<9>(),
    };
    return elements;
}

std::span<const SceneElement<EqualizerWindowScene>> equalizerShadeElements() {
    static const std::array elements{
        SceneElement<Scene>{titleBar, stateDiffers<titleState>, drawShadeTitle},
        SceneElement<Scene>{shadeSliderArea(Slider::eqShadeVolume), stateDiffers<volumeState>, drawVolume},
        SceneElement<Scene>{shadeSliderArea(Slider::eqShadeBalance), stateDiffers<balanceState>, drawBalance},
    };
    return elements;
}

} // namespace vantor
