#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowElements_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"
#include "SkinKit/Rendering/VisualizerPicture_p.h"

#include <tuple>

namespace vantor {

namespace {

using Control = MainWindowControl;
using Scene = MainWindowScene;
using MainSliders::Slider;
using MainSliders::Toggle;
using MainWindowLayout::ClutterButton;
using MainWindowLayout::Transport;

void drawBackground(const SkinCanvas &canvas, const Scene &) {
    canvas.sprites.draw(QStringLiteral("MAIN_WINDOW_BACKGROUND"), {0, 0});
}

void drawTitle(const SkinCanvas &canvas, const Scene &scene) {
    canvas.sprites.draw(scene.focused ? QStringLiteral("MAIN_TITLE_BAR_SELECTED")
                                      : QStringLiteral("MAIN_TITLE_BAR"),
                        MainWindowLayout::titleBar.topLeft());
    drawTitleButtons(canvas, scene);
}

// A letter is lit while its button is held and, where it stands for a setting, while that is on.
std::array<bool, 5> clutterState(const Scene &scene) {
    return {scene.pressed == Control::clutterMainMenu,
            scene.alwaysOnTop || scene.pressed == Control::clutterAlwaysOnTop,
            scene.pressed == Control::clutterFileInfo,
            scene.doubleSize || scene.pressed == Control::clutterDoubleSize,
            scene.pressed == Control::clutterVisualizer};
}

void drawClutterBar(const SkinCanvas &canvas, const Scene &scene) {
    canvas.sprites.draw(QStringLiteral("MAIN_CLUTTER_BAR_BACKGROUND"),
                        MainWindowLayout::clutterBar.topLeft());
    const auto lit = clutterState(scene);
    for (std::size_t i = 0; i < lit.size(); ++i) {
        const ClutterButton button = MainWindowLayout::clutterButtons[i];
        if (lit[i])
            canvas.sprites.draw(MainWindowLayout::spriteName(button),
                                MainWindowLayout::rect(button).topLeft());
    }
}

auto transportState(const Scene &scene) {
    return scene.status.transport;
}

void drawIndicators(const SkinCanvas &canvas, const Scene &scene) {
    if (const auto sprite = scene.status.indicator())
        canvas.sprites.draw(*sprite, MainWindowLayout::playIndicator);
    // Its sprites are nine wide and overlap in the sheet; only three columns are the light.
    const QRect work = MainWindowLayout::workIndicator;
    if (const auto sprite = scene.status.workIndicator())
        canvas.sprites.drawPart(*sprite, QRect({0, 0}, work.size()), work.topLeft());
}

auto clockState(const Scene &scene) {
    const bool lit = scene.timeLit || !scene.status.blinksTime();
    return std::tuple(lit ? scene.status.digits() : TimeDigits::blank, lit && scene.status.showsMinus());
}

constexpr int minusCellX = 39; // the digit cell to the left of the minutes

void drawSign(const SkinCanvas &canvas, bool minus) {
    const QString name = minus ? QStringLiteral("MINUS_SIGN") : QStringLiteral("NO_MINUS_SIGN");
    const auto location = canvas.skin.resolve(name);
    if (!location)
        return;
    // A plain minus is the bar cut out of a digit, drawn where that digit has it. Its "no minus" would only
    // repeat the background; the extended one is a cell that the artist drew for the purpose.
    if (location->rect.height() > 1)
        canvas.sprites.draw(name, {minusCellX, MainWindowLayout::digitY});
    else if (minus)
        canvas.sprites.draw(name, {minusCellX + 2, MainWindowLayout::digitY + 6});
}

void drawClock(const SkinCanvas &canvas, const Scene &scene) {
    static const std::array names{QStringLiteral("DIGIT_0"), QStringLiteral("DIGIT_1"),
                                  QStringLiteral("DIGIT_2"), QStringLiteral("DIGIT_3"),
                                  QStringLiteral("DIGIT_4"), QStringLiteral("DIGIT_5"),
                                  QStringLiteral("DIGIT_6"), QStringLiteral("DIGIT_7"),
                                  QStringLiteral("DIGIT_8"), QStringLiteral("DIGIT_9")};
    const auto [digits, minus] = clockState(scene);
    if (digits == TimeDigits::blank)
        return;
    drawSign(canvas, minus);
    const std::array cells{digits.minutesTens, digits.minutesOnes, digits.secondsTens, digits.secondsOnes};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i])
            canvas.sprites.draw(names.at(static_cast<std::size_t>(*cells[i])),
                                {MainWindowLayout::digitXs[i], MainWindowLayout::digitY});
    }
}

auto ratesState(const Scene &scene) {
    using Text = std::optional<QString>;
    return scene.showsRates ? std::tuple(scene.status.kbps(), scene.status.khz())
                            : std::tuple(Text(), Text());
}

// The texts are only made when they may differ, since this is asked for every frame.
bool ratesDiffer(const Scene &before, const Scene &after) {
    const auto source = [](const Scene &scene) {
        return std::tuple(scene.showsRates, scene.status.transport, scene.status.bitrateKbps,
                          scene.status.sampleRate);
    };
    return source(before) != source(after) && ratesState(before) != ratesState(after);
}

void drawRates(const SkinCanvas &canvas, const Scene &scene) {
    const int right = MainWindowLayout::size.width();
    const auto [kbps, khz] = ratesState(scene);
    if (kbps)
        SkinTextFont::draw(canvas.sprites, *kbps, MainWindowLayout::kbps, 0, right);
    if (khz)
        SkinTextFont::draw(canvas.sprites, *khz, MainWindowLayout::khz, 0, right);
}

auto channelsState(const Scene &scene) {
    return std::tuple(scene.status.monoSelected(), scene.status.stereoSelected());
}

void drawChannels(const SkinCanvas &canvas, const Scene &scene) {
    const auto [mono, stereo] = channelsState(scene);
    canvas.sprites.draw(mono ? QStringLiteral("MAIN_MONO_SELECTED") : QStringLiteral("MAIN_MONO"),
                        MainWindowLayout::mono);
    canvas.sprites.draw(stereo ? QStringLiteral("MAIN_STEREO_SELECTED") : QStringLiteral("MAIN_STEREO"),
                        MainWindowLayout::stereo);
}

bool marqueeDiffers(const Scene &before, const Scene &after) {
    return before.marquee != after.marquee ||
           (before.marqueeOffset != after.marqueeOffset && Marquee::scrolls(after.marquee));
}

void drawMarquee(const SkinCanvas &canvas, const Scene &scene) {
    const QRect area = MainWindowLayout::marquee;
    const auto draw = [&](const QString &text, int x) {
        SkinTextFont::draw(canvas.sprites, text, {x, area.top()}, area.left(), area.right() + 1);
    };
    canvas.painter.save();
    canvas.painter.setClipRect(area, Qt::IntersectClip);
    const int period = Marquee::period(scene.marquee);
    if (period == 0) {
        draw(scene.marquee, area.left());
    } else {
        const int offset = (scene.marqueeOffset % period + period) % period;
        const int textWidth = SkinTextFont::width(scene.marquee);
        for (int x = area.left() - offset; x <= area.right(); x += period) {
            draw(scene.marquee, x);
            draw(Marquee::separator(), x + textWidth);
        }
    }
    canvas.painter.restore();
}

bool visualizerDiffers(const Scene &before, const Scene &after) {
    return before.visualizer != after.visualizer;
}

bool visualizerIsOn(const Scene &scene) {
    return !std::holds_alternative<std::monostate>(scene.visualizer);
}

void drawVisualizer(const SkinCanvas &canvas, const Scene &scene) {
    const QRect area = MainWindowLayout::visualizer;
    const QImage picture = visualizerImage(scene.visualizer, canvas.skin.visColors, area.size());
    if (!picture.isNull())
        canvas.painter.drawImage(area.topLeft(), picture);
}

void drawThumb(const SkinCanvas &canvas, const Slider &slider, const QString &sprite, double fraction) {
    canvas.sprites.draw(sprite, {slider.thumbX(fraction), slider.origin.y() + slider.thumbInsetY});
}

/// Only as wide as the track: a balance slider that borrows the volume's frames must not cover its
/// neighbours.
void drawStrip(const SkinCanvas &canvas, const Slider &slider, const QString &sprite, int frame) {
    const QRect strip(0, 0, slider.size.width(), MainSliders::frameCount * MainSliders::frameHeight);
    canvas.sprites.drawPart(sprite, MainSliders::frameRect(strip, frame), slider.origin);
}

auto volumeState(const Scene &scene) {
    return std::tuple(MainSliders::volumeFrame(static_cast<float>(scene.volume)),
                      Slider::volume.thumbX(scene.volume), scene.pressed == Control::volume);
}

void drawVolume(const SkinCanvas &canvas, const Scene &scene) {
    drawStrip(canvas, Slider::volume, QStringLiteral("MAIN_VOLUME_BACKGROUND"),
              MainSliders::volumeFrame(static_cast<float>(scene.volume)));
    drawThumb(canvas, Slider::volume,
              scene.pressed == Control::volume ? QStringLiteral("MAIN_VOLUME_THUMB_SELECTED")
                                               : QStringLiteral("MAIN_VOLUME_THUMB"),
              scene.volume);
}

auto balanceState(const Scene &scene) {
    return std::tuple(MainSliders::balanceFrame(static_cast<float>(scene.balance)),
                      Slider::balance.thumbX(MainSliders::fraction(scene.balance)),
                      scene.pressed == Control::balance);
}

void drawBalance(const SkinCanvas &canvas, const Scene &scene) {
    drawStrip(canvas, Slider::balance, QStringLiteral("MAIN_BALANCE_BACKGROUND"),
              MainSliders::balanceFrame(static_cast<float>(scene.balance)));
    drawThumb(canvas, Slider::balance,
              scene.pressed == Control::balance ? QStringLiteral("MAIN_BALANCE_THUMB_ACTIVE")
                                                : QStringLiteral("MAIN_BALANCE_THUMB"),
              MainSliders::fraction(scene.balance));
}

auto positionState(const Scene &scene) {
    return std::tuple(scene.position.has_value(), Slider::position.thumbX(scene.position.value_or(0)),
                      scene.pressed == Control::position);
}

void drawPosition(const SkinCanvas &canvas, const Scene &scene) {
    if (!scene.position)
        return;
    canvas.sprites.draw(QStringLiteral("MAIN_POSITION_SLIDER_BACKGROUND"), Slider::position.origin);
    drawThumb(canvas, Slider::position,
              scene.pressed == Control::position ? QStringLiteral("MAIN_POSITION_SLIDER_THUMB_SELECTED")
                                                 : QStringLiteral("MAIN_POSITION_SLIDER_THUMB"),
              *scene.position);
}

void drawToggle(const SkinCanvas &canvas, Toggle toggle, bool selected, bool pressed) {
    canvas.sprites.draw(MainSliders::spriteName(toggle, selected, pressed),
                        MainSliders::frame(toggle).topLeft());
}

auto windowTogglesState(const Scene &scene) {
    return std::tuple(scene.equalizerOpen, scene.playlistOpen, scene.pressed == Control::equalizer,
                      scene.pressed == Control::playlist);
}

void drawWindowToggles(const SkinCanvas &canvas, const Scene &scene) {
    drawToggle(canvas, Toggle::equalizer, scene.equalizerOpen, scene.pressed == Control::equalizer);
    drawToggle(canvas, Toggle::playlist, scene.playlistOpen, scene.pressed == Control::playlist);
}

auto orderTogglesState(const Scene &scene) {
    return std::tuple(scene.shuffle, scene.repeat, scene.pressed == Control::shuffle,
                      scene.pressed == Control::repeat);
}

void drawOrderToggles(const SkinCanvas &canvas, const Scene &scene) {
    drawToggle(canvas, Toggle::shuffle, scene.shuffle, scene.pressed == Control::shuffle);
    drawToggle(canvas, Toggle::repeatAll, scene.repeat, scene.pressed == Control::repeat);
}

constexpr std::array transportControls{Control::previous, Control::play, Control::pause,
                                       Control::stop,     Control::next, Control::eject};

template <std::size_t index>
bool transportPressed(const Scene &scene) {
    return scene.pressed == transportControls[index];
}

template <std::size_t index>
void drawTransport(const SkinCanvas &canvas, const Scene &scene) {
    constexpr Transport button = MainWindowLayout::transports[index];
    // Next's raised sprite is a column wider than its button; that column belongs to eject in the sheet.
    const QRect place = MainWindowLayout::rect(button);
    canvas.sprites.drawPart(MainWindowLayout::spriteName(button, transportPressed<index>(scene)),
                            QRect({0, 0}, place.size()), place.topLeft());
}

template <std::size_t index>
SceneElement<Scene> transportElement() {
    return {MainWindowLayout::rect(MainWindowLayout::transports[index]),
            stateDiffers<transportPressed<index>>, drawTransport<index>};
}

} // namespace

std::span<const SceneElement<MainWindowScene>> mainWindowElements() {
    static const std::array elements{
        SceneElement<Scene>{QRect({0, 0}, MainWindowLayout::size), neverDiffers, drawBackground},
        SceneElement<Scene>{MainWindowLayout::titleBar, titleDiffers, drawTitle},
        SceneElement<Scene>{MainWindowLayout::clutterBar, stateDiffers<clutterState>, drawClutterBar},
        SceneElement<Scene>{{24, 28, 11, 9}, stateDiffers<transportState>, drawIndicators},
        SceneElement<Scene>{
            {minusCellX, MainWindowLayout::digitY, 60, 13}, stateDiffers<clockState>, drawClock},
        SceneElement<Scene>{{111, 43, 55, 6}, ratesDiffer, drawRates},
        SceneElement<Scene>{{212, 41, 56, 12}, stateDiffers<channelsState>, drawChannels},
        SceneElement<Scene>{MainWindowLayout::marquee, marqueeDiffers, drawMarquee},
        SceneElement<Scene>{MainWindowLayout::visualizer, visualizerDiffers, drawVisualizer, visualizerIsOn},
        SceneElement<Scene>{Slider::volume.rect(), stateDiffers<volumeState>, drawVolume},
        SceneElement<Scene>{Slider::balance.rect(), stateDiffers<balanceState>, drawBalance},
        SceneElement<Scene>{Slider::position.rect(), stateDiffers<positionState>, drawPosition},
        SceneElement<Scene>{{219, 58, 46, 12}, stateDiffers<windowTogglesState>, drawWindowToggles},
        SceneElement<Scene>{{164, 89, 74, 15}, stateDiffers<orderTogglesState>, drawOrderToggles},
        transportElement<0>(),
        transportElement<1>(),
        transportElement<2>(),
        transportElement<3>(),
        transportElement<4>(),
        transportElement<5>(),
    };
    return elements;
}

} // namespace vantor
