#include "Sheet.h"
#include "SkinKit/Layout/MainSliders.h"
#include "Surface.h"

#include <cmath>

namespace vantor::art {

namespace {

using namespace palette;

using MainSliders::frameCount;
using MainSliders::Slider;

/// A slit of light, three rows high, between two columns of a dark slot.
void paintLight(Canvas &canvas, int from, int to, int row, double heat) {
    for (int x = from; x <= to; ++x) {
        const double end = x == from || x == to ? 0.6 : 1;
        canvas.blend(x, row - 1, ember, 0.55 * end * heat);
        canvas.set(x, row, mix(ink, mix(amber, flame, heat), (0.45 + 0.55 * heat) * end));
        canvas.blend(x, row + 1, ember, 0.55 * end * heat);
    }
}

void paintThumb(Canvas canvas, bool held) {
    paintKey(canvas, canvas.bounds(), Key::up);
    const int middle = canvas.width() / 2;
    for (const int x : {middle - 3, middle + 2}) {
        canvas.column(x - 1, 3, canvas.height() - 6, mix(keyBottom, ink, 0.5));
        canvas.column(x, 3, canvas.height() - 6, mix(keyTop, glyph, 0.25));
    }
    const QRect lamp(middle - 1, 2, 2, canvas.height() - 4);
    canvas.fill(lamp, held ? amber : mix(keyBottom, ink, 0.75));
    if (held)
        paintLamp(canvas, lamp, true);
}

Canvas frameOf(Canvas strip, int frame, const QImage &window, QPoint at) {
    Canvas canvas = strip.part(MainSliders::frameRect(strip.bounds(), frame));
    canvas.copy(window, at);
    return canvas;
}

Sheet volumeSheet(const QImage &window) {
    Sheet sheet("VOLUME");
    for (int i = 0; i < frameCount; ++i) {
        Canvas canvas = frameOf(sheet.sprite("MAIN_VOLUME_BACKGROUND"), i, window, Slider::volume.origin);
        paintRecess(canvas, {3, 5, canvas.width() - 6, 3});
        const double level = i / (frameCount - 1.0);
        const int last = 4 + static_cast<int>(std::lround(level * (canvas.width() - 9)));
        if (i > 0)
            paintLight(canvas, 4, last, 6, 0.35 + 0.65 * level);
    }
    paintThumb(sheet.sprite("MAIN_VOLUME_THUMB"), false);
    paintThumb(sheet.sprite("MAIN_VOLUME_THUMB_SELECTED"), true);
    return sheet;
}

/// One strip serves both sides, so the light grows from the middle to both ends.
Sheet balanceSheet(const QImage &window) {
    Sheet sheet("BALANCE");
    for (int i = 0; i < frameCount; ++i) {
        Canvas canvas = frameOf(sheet.sprite("MAIN_BALANCE_BACKGROUND"), i, window, Slider::balance.origin);
        paintRecess(canvas, {3, 5, canvas.width() - 6, 3});
        const double offset = i / (frameCount - 1.0);
        const int middle = canvas.width() / 2;
        const int reach = static_cast<int>(std::lround(offset * (middle - 5)));
        paintLight(canvas, middle - 1 - reach, middle + reach, 6, 0.35 + 0.65 * offset);
        canvas.column(middle - 1, 10, 2, print);
        canvas.column(middle, 10, 2, print);
    }
    paintThumb(sheet.sprite("MAIN_BALANCE_THUMB"), false);
    paintThumb(sheet.sprite("MAIN_BALANCE_THUMB_ACTIVE"), true);
    return sheet;
}

Sheet positionSheet(const QImage &window) {
    Sheet sheet("POSBAR");
    Canvas back = sheet.sprite("MAIN_POSITION_SLIDER_BACKGROUND", window, Slider::position.origin);
    for (int i = 0; i <= 20; ++i) {
        const int x = 14 + i * 11;
        back.column(x, 4, 2, mix(ink, amber, i % 5 == 0 ? 0.6 : 0.28));
    }
    for (const bool held : {false, true}) {
        Canvas thumb =
            sheet.sprite(held ? "MAIN_POSITION_SLIDER_THUMB_SELECTED" : "MAIN_POSITION_SLIDER_THUMB");
        paintThumb(thumb, held);
    }
    return sheet;
}

} // namespace

std::vector<Sheet> sliderSheets(const QImage &window) {
    return {volumeSheet(window), balanceSheet(window), positionSheet(window)};
}

} // namespace vantor::art
