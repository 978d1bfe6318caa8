#include "Font.h"
#include "Sheet.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "Surface.h"

#include <string_view>

namespace vantor::art {

namespace {

using namespace palette;

// Nine rows high, so that they sit on the middle row of their keys.
constexpr Stencil previousGlyph =
    "##....##/##...###/##..####/##.#####/########/##.#####/##..####/##...###/##....##";
constexpr Stencil playGlyph =
    "##....../####..../#####.../#######./########/#######./#####.../####..../##......";
constexpr Stencil pauseGlyph =
    "###..###/###..###/###..###/###..###/###..###/###..###/###..###/###..###/###..###";
constexpr Stencil stopGlyph = "########/########/########/########/########/########/########/########";
constexpr Stencil nextGlyph =
    "##....##/###...##/####..##/#####.##/########/#####.##/####..##/###...##/##....##";
constexpr Stencil ejectGlyph =
    "....##..../...####.../..######../.########./##########/........../##########/##########";

void paintSymbolKey(Canvas canvas, const QRect &area, Stencil symbol, Key state) {
    paintKey(canvas, area, state);
    const QSize size = stencilSize(symbol);
    const int x = area.x() + (area.width() - size.width()) / 2;
    const int y = area.y() + (area.height() - size.height()) / 2;
    if (state == Key::down) {
        canvas.glowing(x, y + 1, symbol, flame, 0.13);
        canvas.stencil(x, y + 1, symbol, flame);
        return;
    }
    canvas.stencil(x + 1, y + 1, symbol, mix(keyBottom, ink, 0.6));
    canvas.stencil(x, y, symbol, glyph);
}

Sheet transportSheet(const QImage &window) {
    constexpr Stencil symbols[] = {previousGlyph, playGlyph, pauseGlyph, stopGlyph, nextGlyph, ejectGlyph};
    Sheet sheet("CBUTTONS");
    std::size_t i = 0;
    for (const auto button : MainWindowLayout::transports) {
        const QRect place = MainWindowLayout::rect(button);
        for (const bool pressed : {false, true}) {
            // The cap is as large as its place; one sprite is a column wider.
            Canvas canvas = sheet.sprite(MainWindowLayout::spriteName(button, pressed));
            canvas.copy(window, place.topLeft());
            paintSymbolKey(canvas, {QPoint(0, 0), place.size()}, symbols[i], pressed ? Key::down : Key::up);
        }
        ++i;
    }
    return sheet;
}

Sheet toggleSheet() {
    Sheet sheet("SHUFREP");
    for (const char *suffix : {"", "_DEPRESSED", "_SELECTED", "_SELECTED_DEPRESSED", "_DEPRESSED_SELECTED"}) {
        const QString ending = QString::fromLatin1(suffix);
        const bool on = ending.contains(QStringLiteral("SELECTED"));
        const bool down = ending.contains(QStringLiteral("DEPRESSED"));
        if (!ending.endsWith(QStringLiteral("_DEPRESSED_SELECTED"))) {
            paintToggle(sheet.sprite(QStringLiteral("MAIN_SHUFFLE_BUTTON") + ending),
                        {.label = "SHUFFLE", .on = on, .down = down});
            paintToggle(sheet.sprite(QStringLiteral("MAIN_REPEAT_BUTTON") + ending),
                        {.label = "LOOP", .on = on, .down = down});
        }
        if (!ending.endsWith(QStringLiteral("_SELECTED_DEPRESSED"))) {
            paintToggle(sheet.sprite(QStringLiteral("MAIN_EQ_BUTTON") + ending),
                        {.label = "EQ", .on = on, .down = down});
            paintToggle(sheet.sprite(QStringLiteral("MAIN_PLAYLIST_BUTTON") + ending),
                        {.label = "PL", .on = on, .down = down});
        }
    }
    return sheet;
}

Sheet channelSheet(const QImage &window) {
    struct Row {
        const char *sprite;
        std::string_view label;
        QPoint at;
        bool on;
    };
    Sheet sheet("MONOSTER");
    for (const Row &row : {Row{"MAIN_MONO", "MONO", MainWindowLayout::mono, false},
                           Row{"MAIN_MONO_SELECTED", "MONO", MainWindowLayout::mono, true},
                           Row{"MAIN_STEREO", "STEREO", MainWindowLayout::stereo, false},
                           Row{"MAIN_STEREO_SELECTED", "STEREO", MainWindowLayout::stereo, true}}) {
        Canvas canvas = sheet.sprite(row.sprite, window, row.at);
        const int x = (canvas.width() - font::smallWidth(row.label)) / 2;
        font::drawSmall(canvas, x, 2, row.label, row.on ? flame : mix(glass, printDim, 0.42));
    }
    return sheet;
}

Sheet indicatorSheet() {
    Sheet sheet("PLAYPAUS");
    struct Row {
        const char *sprite;
        Stencil symbol;
        Color color;
    };
    for (const Row &row :
         {Row{"MAIN_PLAYING_INDICATOR", "/..#/..###/..#####/..######/..#####/..###/..#", flame},
          Row{"MAIN_PAUSED_INDICATOR", "/..##.##/..##.##/..##.##/..##.##/..##.##/..##.##/..##.##", flame},
          Row{"MAIN_STOPPED_INDICATOR", "//..#####/..#####/..#####/..#####/..#####",
              mix(glass, amber, 0.5)}}) {
        Canvas canvas = sheet.sprite(row.sprite);
        canvas.fill(canvas.bounds(), glass);
        canvas.glowing(0, 0, row.symbol, row.color, 0.1);
        canvas.stencil(0, 0, row.symbol, row.color);
    }
    // Only the first columns of the two show, left of the play symbol; the second starts inside the first.
    Canvas working = sheet.sprite("MAIN_WORKING_INDICATOR");
    Canvas idle = sheet.sprite("MAIN_NOT_WORKING_INDICATOR");
    idle.fill(idle.bounds(), glass);
    working.fill(working.bounds(), glass);
    working.fill({0, 1, 2, 7}, spark);
    return sheet;
}

} // namespace

std::vector<Sheet> buttonSheets(const QImage &window) {
    return {transportSheet(window), toggleSheet(), channelSheet(window), indicatorSheet()};
}

} // namespace vantor::art
