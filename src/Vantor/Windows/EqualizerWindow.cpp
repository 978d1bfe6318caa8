#include "Vantor/Windows/EqualizerWindow.h"

#include "MusicBackendKit/MarqueeText.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Rendering/EqualizerWindowRenderer.h"
#include "Vantor/Windows/PresetsMenu.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>

#include <array>
#include <cmath>

namespace vantor {

namespace {

using EqControl = EqualizerWindowControl;
using MainSliders::Slider;

constexpr double gainStep = 1; // decibels, of the wheel and the keys

EqControl eqControl(SkinnedWindow::Control control) {
    return static_cast<EqControl>(control);
}

bool isGain(EqControl control) {
    return control == EqControl::preamp || bandOf(control);
}

// The player's own sliders, which the shade form has too.
MainWindowControl mainSliderOf(EqControl control) {
    switch (control) {
    case EqControl::volume:
        return MainWindowControl::volume;
    case EqControl::balance:
        return MainWindowControl::balance;
    default:
        return MainWindowControl::none;
    }
}

bool isSlider(EqControl control) {
    return isGain(control) || mainSliderOf(control) != MainWindowControl::none;
}

std::optional<int> frequency(EqControl control) {
    const std::optional<int> band = bandOf(control);
    if (!band)
        return std::nullopt;
    return static_cast<int>(EQBands::all.at(static_cast<std::size_t>(*band)).frequency);
}

struct GainKey {
    EqControl slider;
    double step;
};

// The row of digits raises the bands, the row of letters below it lowers them.
std::optional<GainKey> gainKey(int key) {
    static constexpr std::array raising{Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5,
                                        Qt::Key_6, Qt::Key_7, Qt::Key_8, Qt::Key_9, Qt::Key_0};
    static constexpr std::array lowering{Qt::Key_Q, Qt::Key_W, Qt::Key_E, Qt::Key_R, Qt::Key_T,
                                         Qt::Key_Y, Qt::Key_U, Qt::Key_I, Qt::Key_O, Qt::Key_P};
    for (int band = 0; band < EQLayout::bandCount; ++band) {
        const auto index = static_cast<std::size_t>(band);
        if (key == raising[index] || key == lowering[index])
            return GainKey{bandControl(band), key == raising[index] ? gainStep : -gainStep};
    }
    return std::nullopt;
}

std::optional<EqControl> buttonKey(int key) {
    switch (key) {
    case Qt::Key_N:
        return EqControl::on;
    case Qt::Key_A:
        return EqControl::autoLoad;
    case Qt::Key_S:
        return EqControl::presets;
    default:
        return std::nullopt;
    }
}

} // namespace

EqualizerWindow::EqualizerWindow(PlayerModel &model, EqualizerModel &equalizer, Commands &commands)
    : SkinnedWindow(WindowKind::equalizer, model, commands), m_equalizer(equalizer) {
    setWindowTitle(tr("Vantor Equalizer"));
    commands.addSubmenu(tr("Equalizer"), *this, [this](QMenu &menu) { fillMenu(menu); });
    connect(&equalizer, &EqualizerModel::changed, this, &EqualizerWindow::refresh);
    // The setting that was being changed is not the one that sounds now.
    connect(&equalizer, &EqualizerModel::settingReplaced, this, [this] {
        if (isGain(eqControl(grabbed())))
            cancelGrab();
    });
    connect(&equalizer, &EqualizerModel::noticed, &model, &PlayerModel::showNotice);
    connect(&model, &PlayerModel::sliderCancelled, this, [this] {
        if (mainSliderOf(eqControl(grabbed())) != MainWindowControl::none)
            forgetGrab();
    });
    takeShape();
}

// The picture

QSize EqualizerWindow::skinSize() const {
    return EqualizerWindowRenderer::size(isShaded(), 1);
}

QRegion EqualizerWindow::outline(int zoom) const {
    return EqualizerWindowRenderer::mask(model().skin(), isShaded(), zoom);
}

QRegion EqualizerWindow::composeScene() {
    const EQState &state = m_equalizer.state();
    const EqControl held = eqControl(grabbed());
    EqualizerWindowScene scene;
    scene.shaded = isShaded();
    scene.focused = isActiveWindow();
    scene.pressed = isSlider(held) || isPointerOnGrabbed() ? held : EqControl::none;
    scene.on = state.isEnabled();
    scene.autoLoad = m_equalizer.isAuto();
    scene.preamp = EQLayout::value(state.preamp());
    std::ranges::transform(state.gains(), scene.bands.begin(), EQLayout::value);
    const PlaybackView view = model().target().view();
    scene.volume = view.volume.value_or(1);
    scene.balance = view.balance;
    const QRegion changed = EqualizerWindowRenderer::changed(m_scene, scene);
    m_scene = scene;
    return changed;
}

void EqualizerWindow::draw(QPainter &painter, int zoom) const {
    EqualizerWindowRenderer::draw(painter, model().skin(), m_scene, zoom);
}

// Controls without a pointer

std::vector<SkinControl> EqualizerWindow::controls() const {
    std::vector<SkinControl> all;
    const auto append = [&](EqControl control) {
        const QRect rect = equalizerWindowControlRect(control, isShaded());
        if (rect.isNull() || !exists(control))
            return;
        describe(all.emplace_back(SkinControl::at(control, rect)));
    };
    for (const EqControl control : {EqControl::on, EqControl::autoLoad, EqControl::presets, EqControl::preamp,
                                    EqControl::plus12, EqControl::zero, EqControl::minus12})
        append(control);
    for (int band = 0; band < EQLayout::bandCount; ++band)
        append(bandControl(band));
    for (const EqControl control :
         {EqControl::volume, EqControl::balance, EqControl::shade, EqControl::close})
        append(control);
    return all;
}

void EqualizerWindow::describe(SkinControl &known) const {
    const auto slide = [&](const QString &name, double value, double from, double to, double step) {
        known = {known.id, SkinControl::Kind::slider, name, known.rect, false, value, from, to, step, {}};
    };
    const auto toggle = [&](const QString &name, bool on) {
        known.kind = SkinControl::Kind::toggle;
        known.name = name;
        known.checked = on;
    };
    const EqControl control = eqControl(known.id);
    switch (control) {
    case EqControl::on:
        toggle(tr("Equalizer On"), m_scene.on);
        break;
    case EqControl::autoLoad:
        toggle(tr("Auto"), m_scene.autoLoad);
        break;
    case EqControl::presets:
        known.name = tr("Presets");
        break;
    case EqControl::plus12:
        known.name = tr("All Bands to +12 dB");
        break;
    case EqControl::zero:
        known.name = tr("All Bands to 0 dB");
        break;
    case EqControl::minus12:
        known.name = tr("All Bands to −12 dB");
        break;
    case EqControl::volume:
        slide(tr("Volume"), std::round(m_scene.volume * 100), 0, 100, 2);
        known.text = MarqueeText::volume(m_scene.volume);
        break;
    case EqControl::balance:
        slide(tr("Balance"), std::round(m_scene.balance * 100), -100, 100, 5);
        known.text = MarqueeText::balance(m_scene.balance);
        break;
    case EqControl::shade:
        toggle(tr("Window Shade"), m_scene.shaded);
        break;
    case EqControl::close:
        known.name = tr("Close");
        break;
    default: {
        const std::optional<int> hertz = frequency(control);
        slide(hertz ? tr("%1 Hz").arg(*hertz) : tr("Preamp"), gain(control), EQState::gainRange.lower,
              EQState::gainRange.upper, gainStep);
        known.text = MarqueeText::equalizer(hertz, gain(control));
        break;
    }
    }
}

void EqualizerWindow::setValue(Control slider, double value) {
    const EqControl control = eqControl(slider);
    if (control == EqControl::volume)
        model().setVolume(value / 100);
    else if (control == EqControl::balance)
        model().setBalance(value / 100);
    else if (isGain(control))
        stepGain(control, value);
}

// Gains

float EqualizerWindow::gain(EqControl slider) const {
    const std::optional<int> band = bandOf(slider);
    return band ? m_equalizer.state().band(*band) : m_equalizer.state().preamp();
}

void EqualizerWindow::setGain(EqControl slider, double gain) {
    if (const std::optional<int> band = bandOf(slider))
        m_equalizer.setBand(*band, static_cast<float>(gain));
    else
        m_equalizer.setPreamp(static_cast<float>(gain));
}

void EqualizerWindow::stepGain(EqControl slider, double newGain) {
    setGain(slider, newGain);
    model().showNotice(MarqueeText::equalizer(frequency(slider), gain(slider)));
}

// The pointer

/// A shade form without sliders is moved by all of its title.
bool EqualizerWindow::exists(EqControl control) const {
    return mainSliderOf(control) == MainWindowControl::none ||
           EqualizerWindowRenderer::hasShadeSliders(model().skin());
}

SkinnedWindow::Control EqualizerWindow::controlAt(QPoint at) const {
    const EqControl control = equalizerWindowControlAt(at, isShaded());
    return exists(control) ? static_cast<Control>(control) : background;
}

QStringList EqualizerWindow::pointerNames(Control control, QPoint at) const {
    const EqControl under = eqControl(control);
    if (under == EqControl::close)
        return {QStringLiteral("EQCLOSE"), QStringLiteral("CLOSE")};
    if (isSlider(under))
        return {QStringLiteral("EQSLID"), QStringLiteral("EQNORMAL")};
    if (titleBar().contains(at))
        return {QStringLiteral("EQTITLE"), QStringLiteral("EQNORMAL")};
    return {QStringLiteral("EQNORMAL")};
}

bool EqualizerWindow::grab(Control control, QPoint at, Qt::KeyboardModifiers) {
    if (isSlider(eqControl(control)))
        dragSlider(eqControl(control), at);
    return true;
}

// The slider that was pressed stays held, wherever the pointer goes.
void EqualizerWindow::drag(Control control, QPoint at) {
    if (isSlider(eqControl(control)))
        dragSlider(eqControl(control), at);
}

void EqualizerWindow::dragSlider(EqControl slider, QPoint at) {
    if (slider == EqControl::volume || slider == EqControl::balance) {
        const Slider &track = slider == EqControl::volume ? Slider::eqShadeVolume : Slider::eqShadeBalance;
        model().dragSlider(mainSliderOf(slider), track.fraction(at.x()));
        return;
    }
    const double value = EQLayout::valueForPointerY(at.y() - EQLayout::preampOrigin.y());
    setGain(slider, EQLayout::gain(EQLayout::snapped(value)));
    model().showDragText(MarqueeText::equalizer(frequency(slider), gain(slider)));
}

void EqualizerWindow::letGo(Control control) {
    if (isGain(eqControl(control)))
        model().showDragText(std::nullopt);
    else if (isSlider(eqControl(control)))
        model().releaseSlider();
}

void EqualizerWindow::cancel(Control control) {
    letGo(control); // what was set stays: it has been heard
}

void EqualizerWindow::click(Control control) {
    const EQState &state = m_equalizer.state();
    switch (eqControl(control)) {
    case EqControl::on:
        m_equalizer.setEnabled(!state.isEnabled());
        break;
    case EqControl::autoLoad:
        m_equalizer.setAuto(!m_equalizer.isAuto());
        break;
    case EqControl::presets:
        PresetsMenu::popUp(m_equalizer, *this,
                           globalPoint(EQLayout::presetsButton.bottomLeft() + QPoint(0, 1)));
        break;
    case EqControl::plus12:
        m_equalizer.setAllBands(EQState::gainRange.upper);
        break;
    case EqControl::zero:
        m_equalizer.setAllBands(0);
        break;
    case EqControl::minus12:
        m_equalizer.setAllBands(EQState::gainRange.lower);
        break;
    case EqControl::shade:
        model().windows().setShaded(WindowKind::equalizer, !isShaded());
        break;
    case EqControl::close:
        model().windows().setOpen(WindowKind::equalizer, false);
        break;
    default:
        break;
    }
}

/// What it offers in the main menu.
void EqualizerWindow::fillMenu(QMenu &menu) {
    const auto addSwitch = [&](const QString &text, EqControl control, bool isOn) {
        QAction *const action = menu.addAction(text, this, [this, control] {
            click(static_cast<Control>(control));
            refresh();
        });
        action->setCheckable(true);
        action->setChecked(isOn);
    };
    addSwitch(tr("On"), EqControl::on, m_equalizer.state().isEnabled());
    addSwitch(tr("Auto"), EqControl::autoLoad, m_equalizer.isAuto());
    menu.addSeparator();
    menu.addMenu(new PresetsMenu(m_equalizer, *commands().activeWindow(), menu));
}

void EqualizerWindow::wheel(double notches, QPoint at) {
    const EqControl under = eqControl(controlAt(at));
    if (isGain(under))
        stepGain(under, gain(under) + notches * gainStep);
    else
        SkinnedWindow::wheel(notches, at);
}

bool EqualizerWindow::rightClick(QPoint at) {
    const EqControl under = eqControl(controlAt(at));
    if (isGain(under))
        stepGain(under, 0);
    return isGain(under);
}

void EqualizerWindow::drop(const QList<QUrl> &urls, QPoint at, Qt::KeyboardModifiers modifiers) {
    QList<QUrl> others;
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (QDir::match(EqualizerModel::filePatterns(), QFileInfo(path).fileName()))
            m_equalizer.loadFile(path);
        else
            others.append(url);
    }
    if (!others.isEmpty())
        SkinnedWindow::drop(others, at, modifiers);
}

// Keys

bool EqualizerWindow::wantsKey(const QKeyEvent &event) const {
    return event.modifiers() == Qt::NoModifier && (gainKey(event.key()) || buttonKey(event.key()));
}

void EqualizerWindow::keyPressEvent(QKeyEvent *event) {
    if (!wantsKey(*event)) {
        SkinnedWindow::keyPressEvent(event);
    } else if (const std::optional<GainKey> key = gainKey(event->key())) {
        stepGain(key->slider, gain(key->slider) + key->step);
    } else if (!event->isAutoRepeat()) {
        pressControl(static_cast<Control>(*buttonKey(event->key())));
    }
}

} // namespace vantor
