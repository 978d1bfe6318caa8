#include "Font.h"
#include "Sheet.h"
#include "SkinKit/Layout/EQLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "Surface.h"

#include <string_view>

namespace vantor::art {

namespace {

using namespace palette;

constexpr int frames = EQLayout::frameCount;
// Rows inside a band at which the middle of the thumb stands for +12, 0 and −12 dB.
constexpr int topRow = 5;
constexpr int zeroRow = 30;
constexpr int bottomRow = 56;
constexpr int slitColumn = 6;

void engrave(Canvas &canvas, int x, int y, int length) {
    for (int i = 0; i < length; ++i) {
        canvas.blend(x + i, y, ink, 0.5);
        canvas.blend(x + i, y + 1, light, 0.22);
    }
}

/// The metal behind the sliders, the same in every column, so that one frame fits every band.
void paintScale(Canvas &canvas, int x, int width) {
    for (const int row : {topRow, zeroRow, bottomRow})
        engrave(canvas, x, EQLayout::bandStrip.y() + row, width);
}

/// The slit of a band with its light between 0 dB and the thumb.
void paintBand(Canvas canvas, int frame) {
    paintRecess(canvas, {slitColumn - 1, 3, 3, canvas.height() - 7});
    const double value = frame / (frames - 1.0);
    const int thumb = topRow + static_cast<int>((1 - value) * (bottomRow - topRow));
    for (int y = std::min(thumb, zeroRow); y <= std::max(thumb, zeroRow); ++y) {
        const double heat = 0.35 + 0.65 * std::abs(y - zeroRow) / (zeroRow - topRow);
        canvas.blend(slitColumn - 1, y, ember, 0.6 * heat);
        canvas.set(slitColumn, y, mix(ink, mix(amber, flame, heat), 0.4 + 0.55 * heat));
        canvas.blend(slitColumn + 1, y, ember, 0.6 * heat);
    }
}

void paintThumb(Canvas canvas, bool held) {
    paintKey(canvas, canvas.bounds(), Key::up);
    for (const int y : {2, 7}) {
        canvas.row(3, y, 5, mix(keyTop, glyph, 0.25));
        canvas.row(3, y + 1, 5, mix(keyBottom, ink, 0.5));
    }
    if (held)
        paintLamp(canvas, {2, 4, 7, 2}, true);
    else
        canvas.fill({2, 5, 7, 1}, mix(keyBottom, ink, 0.75));
}

void paintLabels(Canvas &canvas) {
    const auto centred = [&canvas](int x, int y, std::string_view text) {
        font::drawSmall(canvas, x - font::smallWidth(text) / 2, y, text, print);
    };
    constexpr std::string_view bandNames[] = {"60", "170", "310", "600", "1K",
                                              "3K", "6K",  "12K", "14K", "16K"};
    int x = EQLayout::bandStrip.x() + slitColumn;
    for (const std::string_view name : bandNames) {
        centred(x, 105, name);
        x += EQLayout::bandSpacing;
    }
    centred(EQLayout::preampOrigin.x() + slitColumn, 105, "PREAMP");
    font::drawSmall(canvas, 47, 40, "+12 dB", print);
    font::drawSmall(canvas, 47, 66, "0 dB", print);
    font::drawSmall(canvas, 47, 94, "-12 dB", print);
}

void paintTitleBar(Canvas canvas, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {.bottom = false});
    const std::string_view text = "EQUALIZER";
    const int x = (canvas.width() - titleWidth(text)) / 2 - 1;
    paintGrille(canvas, {.from = 8, .to = x - 8, .fadeRight = true}, focused);
    paintGrille(canvas, {.from = x + titleWidth(text) + 6, .to = 248, .fadeLeft = true}, focused);
    paintTitle(canvas, x, text, focused);
    paintTitleKey(canvas, EQLayout::shadeButton.topLeft(), glyphs::shade, Key::up, focused);
    paintTitleKey(canvas, EQLayout::closeButton.topLeft(), glyphs::close, Key::up, focused);
}

void paintShade(Canvas canvas, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {});
    paintLamp(canvas, {6, 5, 3, 4}, focused);
    font::draw(canvas, 12, 5, "EQUALIZER", ink);
    font::draw(canvas, 12, 4, "EQUALIZER", focused ? glyph : printDim);
    for (const auto &slider : {MainSliders::Slider::eqShadeVolume, MainSliders::Slider::eqShadeBalance})
        paintRecess(canvas, slider.rect().adjusted(0, 2, 0, -1));
    paintTitleKey(canvas, EQLayout::shadeButton.topLeft(), glyphs::unshade, Key::up, focused);
    paintTitleKey(canvas, EQLayout::closeButton.topLeft(), glyphs::close, Key::up, focused);
}

void paintGraph(Sheet &sheet) {
    Canvas back = sheet.sprite("EQ_GRAPH_BACKGROUND");
    back.fill(back.bounds(), glass);
    for (int x = 2; x < back.width(); x += 12)
        for (int y = 0; y < back.height(); y += 3)
            back.set(x, y, dot);
    for (int x = 0; x < back.width(); x += 2)
        back.set(x, 9, mix(dot, print, 0.2));
    Canvas line = sheet.sprite("EQ_PREAMP_LINE");
    line.fill(line.bounds(), mix(glass, amber, 0.38));
    Canvas colors = sheet.sprite("EQ_GRAPH_LINE_COLORS");
    for (int y = 0; y < colors.height(); ++y) {
        const double fall = y / (colors.height() - 1.0);
        colors.set(0, y,
                   fall < 0.5 ? mix(spark, amber, fall * 2) : mix(amber, qRgb(206, 98, 40), fall * 2 - 1));
    }
}

void paintButtons(Sheet &sheet) {
    for (const bool on : {false, true})
        for (const bool down : {false, true}) {
            const QString ending = (on ? QStringLiteral("_SELECTED") : QString()) +
                                   (down ? QStringLiteral("_DEPRESSED") : QString());
            paintToggle(sheet.sprite(QStringLiteral("EQ_ON_BUTTON") + ending),
                        {.label = "ON", .on = on, .down = down});
            paintToggle(sheet.sprite(QStringLiteral("EQ_AUTO_BUTTON") + ending),
                        {.label = "AUTO", .on = on, .down = down});
        }
    paintTextKey(sheet.sprite("EQ_PRESETS_BUTTON"), "PRESETS", {}, Key::up);
    paintTextKey(sheet.sprite("EQ_PRESETS_BUTTON_SELECTED"), "PRESETS", {}, Key::down);
    Canvas close = sheet.sprite("EQ_CLOSE_BUTTON");
    Canvas closeDown = sheet.sprite("EQ_CLOSE_BUTTON_ACTIVE");
    paintTitleKey(close, {0, 0}, glyphs::close, Key::up);
    paintTitleKey(closeDown, {0, 0}, glyphs::close, Key::down);
}

Canvas bandFrame(Canvas grid, int frame) {
    return grid.part(EQLayout::bandFrameRect({}, frame));
}

Sheet equalizerSheet(const QImage &window) {
    Sheet sheet("EQMAIN");
    Canvas grid = sheet.sprite("EQ_SLIDER_BACKGROUND");
    grid.fill(grid.bounds(), ink);
    for (int i = 0; i < frames; ++i) {
        Canvas canvas = bandFrame(grid, i);
        canvas.copy(window, EQLayout::bandStrip.topLeft());
        paintBand(canvas, i);
    }
    Canvas background = sheet.sprite("EQ_WINDOW_BACKGROUND", window, {0, 0});
    constexpr int flat = frames / 2;
    paintBand(background.part({EQLayout::preampOrigin, EQLayout::bandSize}), flat);
    for (int i = 0; i < EQLayout::bandCount; ++i)
        paintBand(background.part({EQLayout::bandOrigin(i), EQLayout::bandSize}), flat);
    paintTitleBar(sheet.sprite("EQ_TITLE_BAR"), false);
    paintTitleBar(sheet.sprite("EQ_TITLE_BAR_SELECTED"), true);
    paintThumb(sheet.sprite("EQ_SLIDER_THUMB"), false);
    paintThumb(sheet.sprite("EQ_SLIDER_THUMB_SELECTED"), true);
    paintGraph(sheet);
    paintButtons(sheet);
    return sheet;
}

Sheet extraSheet() {
    Sheet sheet("EQ_EX");
    paintShade(sheet.sprite("EQ_SHADE_BACKGROUND"), false);
    paintShade(sheet.sprite("EQ_SHADE_BACKGROUND_SELECTED"), true);
    for (const char *part : {"LEFT", "CENTER", "RIGHT"})
        for (const char *slider : {"VOLUME", "BALANCE"}) {
            Canvas thumb = sheet.sprite(QStringLiteral("EQ_SHADE_%1_SLIDER_%2")
                                            .arg(QString::fromLatin1(slider), QString::fromLatin1(part)));
            thumb.gradient(thumb.bounds(), spark, amber);
            thumb.row(0, thumb.height() - 1, thumb.width(), ember);
        }
    struct Row {
        const char *sprite;
        Stencil glyph;
        Key state;
    };
    for (const Row &row : {Row{"EQ_MAXIMIZE_BUTTON_ACTIVE", glyphs::shade, Key::down},
                           Row{"EQ_MINIMIZE_BUTTON_ACTIVE", glyphs::unshade, Key::down},
                           Row{"EQ_SHADE_CLOSE_BUTTON", glyphs::close, Key::up},
                           Row{"EQ_SHADE_CLOSE_BUTTON_ACTIVE", glyphs::close, Key::down}}) {
        Canvas canvas = sheet.sprite(row.sprite);
        paintTitleKey(canvas, {0, 0}, row.glyph, row.state);
    }
    return sheet;
}

/// The window without its sliders.
QImage bareWindow() {
    QImage image(EQLayout::windowSize, QImage::Format_RGB32);
    Canvas canvas(image);
    paintWindow(canvas);
    canvas.row(2, titleHeight, canvas.width() - 4, mix(bodyTop, light, 0.5));
    paintWell(canvas, EQLayout::graph);
    paintRecess(canvas, EQLayout::onButton | EQLayout::autoButton);
    paintRecess(canvas, EQLayout::presetsButton);
    paintScale(canvas, EQLayout::preampOrigin.x() - 5, 25);
    paintScale(canvas, EQLayout::bandStrip.x() - 5, 186);
    paintLabels(canvas);
    return image;
}

} // namespace

std::vector<Sheet> equalizerSheets() {
    return {equalizerSheet(bareWindow()), extraSheet()};
}

} // namespace vantor::art
