#include "Surface.h"

#include "Font.h"

#include <algorithm>
#include <cstdint>

namespace vantor::art {

namespace {

using namespace palette;

/// −1 … 1, the same for a row in every window and on every run.
double grain(int row) {
    auto bits = static_cast<std::uint32_t>(row) * 2654435761U;
    bits ^= bits >> 15U;
    bits *= 2246822519U;
    bits ^= bits >> 13U;
    return static_cast<double>(bits & 0xffU) / 127.5 - 1;
}

Color lighten(Color color, double amount) {
    return amount >= 0 ? mix(color, qRgb(255, 255, 255), amount) : mix(color, qRgb(0, 0, 0), -amount);
}

} // namespace

void paintBody(Canvas &canvas, const QRect &area, double topTone, double bottomTone) {
    const bool brushed = topTone != bottomTone;
    const double last = std::max(1, area.height() - 1);
    for (int y = 0; y < area.height(); ++y) {
        const Color metal = mix(bodyTop, bodyBottom, topTone + (bottomTone - topTone) * y / last);
        canvas.row(area.x(), area.y() + y, area.width(), brushed ? lighten(metal, grain(y) * 0.012) : metal);
    }
}

void paintFrame(Canvas &canvas, const Sides &sides) {
    const QRect area = canvas.bounds();
    const int left = sides.left ? 1 : 0;
    const int right = sides.right ? 1 : 0;
    const Color lit = mix(bodyTop, light, 0.6);
    if (sides.top)
        canvas.row(left, 1, area.width() - left - right, lit);
    if (sides.left)
        canvas.column(1, sides.top ? 1 : 0, area.height(), lit);
    if (sides.right)
        canvas.column(area.right() - 1, sides.top ? 2 : 0, area.height(), shade);
    if (sides.bottom)
        canvas.row(sides.left ? 2 : 0, area.bottom() - 1, area.width() - (sides.left ? 2 : 0), shade);
    if (sides.top)
        canvas.row(0, 0, area.width(), ink);
    if (sides.left)
        canvas.column(0, 0, area.height(), ink);
    if (sides.right)
        canvas.column(area.right(), 0, area.height(), ink);
    if (sides.bottom)
        canvas.row(0, area.bottom(), area.width(), ink);
    // The outline follows the corners that the window's region cuts off.
    if (sides.left && sides.top)
        canvas.set(1, 1, ink);
    if (sides.right && sides.top)
        canvas.set(area.right() - 1, 1, ink);
    if (sides.left && sides.bottom)
        canvas.set(1, area.bottom() - 1, ink);
    if (sides.right && sides.bottom)
        canvas.set(area.right() - 1, area.bottom() - 1, ink);
}

void paintWindow(Canvas &canvas) {
    paintBody(canvas, canvas.bounds());
    paintFrame(canvas, {});
}

void paintBar(Canvas &canvas, bool focused) {
    const QRect area(0, 0, canvas.width(), titleHeight);
    const double calm = focused ? 0 : 0.35;
    canvas.gradient(area, mix(barTop, barBottom, calm), mix(barBottom, barTop, calm * 0.3));
    canvas.row(0, titleHeight - 2, area.width(), shade);
    canvas.row(0, titleHeight - 1, area.width(), ink);
}

void paintGrille(Canvas &canvas, const Grille &grille, bool focused) {
    constexpr int pitch = 5; // divides the 25 columns of the tiles of other windows
    constexpr double reach = 60;
    for (int row = 0; row < 4; ++row)
        for (int x = grille.from; x <= grille.to; ++x) {
            if ((x + (row % 2 == 0 ? 0 : 3)) % pitch != 0)
                continue;
            double strength = focused ? 1 : 0.55;
            if (grille.fadeLeft)
                strength *= std::min(1.0, (x - grille.from) / reach + 0.1);
            if (grille.fadeRight)
                strength *= std::min(1.0, (grille.to - x) / reach + 0.1);
            const int y = 3 + row * 2;
            canvas.blend(x, y, ink, 0.9 * strength);
            canvas.blend(x + 1, y + 1, light, 0.4 * strength);
        }
}

int titleWidth(std::string_view text) {
    return 7 + font::titleWidth(text);
}

void paintTitle(Canvas &canvas, int x, std::string_view text, bool focused) {
    const QRect lamp(x, 5, 3, 4);
    paintLamp(canvas, lamp, focused);
    font::drawTitle(canvas, x + 7, 5, text, ink);
    font::drawTitle(canvas, x + 7, 4, text, focused ? glyph : printDim);
}

void paintWell(Canvas &canvas, const QRect &inside) {
    const QRect rim = inside.adjusted(-1, -1, 1, 1);
    const QRect outer = rim.adjusted(-1, -1, 1, 1);
    for (int x = outer.left() + 1; x < outer.right(); ++x) {
        canvas.blend(x, outer.top(), shade, 0.7);
        canvas.blend(x, outer.bottom(), light, 0.6);
    }
    for (int y = outer.top() + 1; y < outer.bottom(); ++y) {
        canvas.blend(outer.left(), y, shade, 0.7);
        canvas.blend(outer.right(), y, light, 0.6);
    }
    canvas.fill(rim, ink);
    canvas.fill(inside, glass);
    for (const QPoint corner : {rim.topLeft(), rim.topRight(), rim.bottomLeft(), rim.bottomRight()})
        canvas.set(corner.x(), corner.y(), shade);
    // The displays' own light catches the lower edge of the glass.
    canvas.row(inside.left(), inside.bottom(), inside.width(), mix(glass, amber, 0.07));
    canvas.row(inside.left(), inside.top(), inside.width(), ink);
}

void paintRecess(Canvas &canvas, const QRect &inside) {
    const QRect rim = inside.adjusted(-1, -1, 1, 1);
    for (int x = rim.left() + 1; x < rim.right(); ++x) {
        canvas.blend(x, rim.top(), shade, 0.75);
        canvas.blend(x, rim.bottom(), light, 0.5);
    }
    for (int y = rim.top() + 1; y < rim.bottom(); ++y) {
        canvas.blend(rim.left(), y, shade, 0.75);
        canvas.blend(rim.right(), y, light, 0.5);
    }
    canvas.fill(inside, ink);
}

void paintKey(Canvas &canvas, const QRect &area, Key state) {
    const QRect cap = area.adjusted(1, 1, -1, -1);
    canvas.fill(area, ink);
    if (state == Key::up) {
        canvas.gradient(cap, keyTop, keyBottom);
        canvas.edges(cap, mix(keyTop, light, 0.9), mix(keyBottom, shade, 0.6));
        canvas.row(cap.left() + 1, cap.top(), cap.width() - 2, mix(light, glyph, 0.35));
    } else {
        canvas.gradient(cap, downTop, downBottom);
        canvas.edges(cap, mix(downTop, ink, 0.6), mix(downBottom, light, 0.25));
    }
    // Corners of the cap are a touch round.
    for (const QPoint corner : {cap.topLeft(), cap.topRight(), cap.bottomLeft(), cap.bottomRight()})
        canvas.blend(corner.x(), corner.y(), ink, 0.55);
}

void paintLamp(Canvas &canvas, const QRect &area, bool on) {
    if (!on) {
        canvas.fill(area, unlit);
        canvas.row(area.left(), area.top(), area.width(), ink);
        return;
    }
    const QRect halo = area.adjusted(-1, -1, 1, 1);
    for (int y = halo.top(); y <= halo.bottom(); ++y)
        for (int x = halo.left(); x <= halo.right(); ++x)
            if (!area.contains(x, y))
                canvas.blend(x, y, amber, 0.22);
    canvas.gradient(area, flame, amber);
    if (area.width() > 2)
        canvas.row(area.left() + 1, area.top() + area.height() / 3, area.width() - 2, spark);
}

void paintToggle(Canvas canvas, const Toggle &toggle) {
    const QRect area = canvas.bounds();
    paintKey(canvas, area, toggle.down ? Key::down : Key::up);
    const int sink = toggle.down ? 1 : 0;
    const int width = font::width(toggle.label);
    const int x = (area.width() - width + 1) / 2;
    const int y = area.height() > 12 ? 3 : 2;
    const QRect lamp(x, (area.height() > 12 ? 10 : 8) + sink, width, 2);
    if (!toggle.down && !toggle.on)
        canvas.row(lamp.x(), lamp.bottom() + 1, lamp.width(), mix(keyBottom, light, 0.4));
    paintLamp(canvas, lamp, toggle.on);
    if (!toggle.down)
        font::draw(canvas, x, y + 1, toggle.label, mix(keyTop, ink, 0.45));
    font::draw(canvas, x, y + sink, toggle.label, toggle.on ? spark : glyph);
}

void paintTextKey(Canvas canvas, std::string_view first, std::string_view second, Key state) {
    paintKey(canvas, canvas.bounds(), state);
    const int lines = second.empty() ? 1 : 2;
    int y = (canvas.height() - (lines * 7 - 2)) / 2;
    for (const std::string_view line : {first, second}) {
        const int x = (canvas.width() - font::smallWidth(line) + 1) / 2;
        if (state == Key::up)
            font::drawSmall(canvas, x, y + 1, line, mix(keyTop, ink, 0.45));
        font::drawSmall(canvas, x, y, line, state == Key::down ? flame : glyph);
        y += 7;
    }
}

void paintTitleKey(Canvas &canvas, QPoint at, Stencil symbol, Key state, bool focused) {
    paintKey(canvas, {at, QSize(9, 9)}, state);
    if (state == Key::down)
        canvas.glowing(at.x() + 2, at.y() + 2, symbol, flame, 0.15);
    else
        canvas.stencil(at.x() + 2, at.y() + 2, symbol, focused ? glyph : print);
}

} // namespace vantor::art
