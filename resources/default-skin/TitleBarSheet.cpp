#include "Font.h"
#include "Places.h"
#include "Sheet.h"
#include "Surface.h"

#include <string_view>

namespace vantor::art {

namespace {

using namespace palette;
using places::titleKeyRow;

void paintKeys(Canvas &canvas, bool focused, Stencil shadeGlyph) {
    paintTitleKey(canvas, places::optionsX, titleKeyRow, glyphs::menu, Key::up, focused);
    paintTitleKey(canvas, places::minimizeX, titleKeyRow, glyphs::minimize, Key::up, focused);
    paintTitleKey(canvas, places::shadeX, titleKeyRow, shadeGlyph, Key::up, focused);
    paintTitleKey(canvas, places::closeX, titleKeyRow, glyphs::close, Key::up, focused);
}

void paintMainTitle(Canvas canvas, std::string_view text, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {.bottom = false});
    const int x = (canvas.width() - titleWidth(text)) / 2 - 1;
    paintGrille(canvas, {.from = 20, .to = x - 8, .fadeRight = true}, focused);
    paintGrille(canvas, {.from = x + titleWidth(text) + 6, .to = 238, .fadeLeft = true}, focused);
    paintTitle(canvas, x, text, focused);
    paintKeys(canvas, focused, glyphs::shade);
}

/// The one-line form has no sprites for its transport keys: they are part of the bar.
void paintShadeTransport(Canvas &canvas, bool focused) {
    constexpr Stencil symbols[] = {"#..#/#.##/####/#.##/#..#",      "#.../###./####/###./#...",
                                   "##.##/##.##/##.##/##.##/##.##", "####/####/####/####",
                                   "#..#/##.#/####/##.#/#..#",      ".##./####/..../####"};
    std::size_t i = 0;
    for (const places::ShadeKey &key : places::shadeTransport) {
        const QSize size = stencilSize(symbols[i]);
        const int x = key.x + (key.width - size.width() + 1) / 2;
        const int y = 7 - size.height() / 2;
        canvas.stencil(x, y + 1, symbols[i], ink);
        canvas.stencil(x, y, symbols[i], focused ? glyph : printDim);
        ++i;
    }
}

void paintShade(Canvas canvas, bool focused) {
    paintBar(canvas, focused);
    paintFrame(canvas, {});
    paintTitle(canvas, 22, "VANTOR", focused);
    paintWell(canvas, {77, 3, 81, 8});
    paintRecess(canvas, places::shadePosition.adjusted(0, 1, 0, -1));
    paintShadeTransport(canvas, focused);
    paintKeys(canvas, focused, glyphs::unshade);
}

void paintShadePosition(Sheet &sheet) {
    Canvas back = sheet.sprite("MAIN_SHADE_POSITION_BACKGROUND");
    Canvas bar = sheet.sprite("MAIN_SHADE_BACKGROUND_SELECTED");
    for (int y = 0; y < back.height(); ++y)
        for (int x = 0; x < back.width(); ++x)
            back.set(x, y, bar.at(places::shadePosition.x() + x, places::shadePosition.y() + y));
    for (const char *name :
         {"MAIN_SHADE_POSITION_THUMB", "MAIN_SHADE_POSITION_THUMB_LEFT", "MAIN_SHADE_POSITION_THUMB_RIGHT"}) {
        Canvas thumb = sheet.sprite(name);
        thumb.gradient(thumb.bounds(), spark, amber);
        thumb.row(0, 6, 3, ember);
    }
}

void paintTitleKeys(Sheet &sheet) {
    struct Row {
        const char *sprite;
        Stencil glyph;
        Key state;
    };
    for (const Row &row : {Row{"MAIN_OPTIONS_BUTTON", glyphs::menu, Key::up},
                           Row{"MAIN_OPTIONS_BUTTON_DEPRESSED", glyphs::menu, Key::down},
                           Row{"MAIN_MINIMIZE_BUTTON", glyphs::minimize, Key::up},
                           Row{"MAIN_MINIMIZE_BUTTON_DEPRESSED", glyphs::minimize, Key::down},
                           Row{"MAIN_SHADE_BUTTON", glyphs::shade, Key::up},
                           Row{"MAIN_SHADE_BUTTON_DEPRESSED", glyphs::shade, Key::down},
                           Row{"MAIN_SHADE_BUTTON_SELECTED", glyphs::unshade, Key::up},
                           Row{"MAIN_SHADE_BUTTON_SELECTED_DEPRESSED", glyphs::unshade, Key::down},
                           Row{"MAIN_CLOSE_BUTTON", glyphs::close, Key::up},
                           Row{"MAIN_CLOSE_BUTTON_DEPRESSED", glyphs::close, Key::down}}) {
        Canvas canvas = sheet.sprite(row.sprite);
        paintTitleKey(canvas, 0, 0, row.glyph, row.state);
    }
}

struct ClutterLetter {
    const char *sprite;
    Stencil letter;
    int row; ///< of the letter's cell in the bar
};
constexpr ClutterLetter clutterLetters[] = {
    {"MAIN_CLUTTER_BAR_BUTTON_O_SELECTED", ".##./#..#/#..#/#..#/.##.", 3},
    {"MAIN_CLUTTER_BAR_BUTTON_A_SELECTED", ".##./#..#/####/#..#/#..#", 11},
    {"MAIN_CLUTTER_BAR_BUTTON_I_SELECTED", "###/.#./.#./.#./###", 18},
    {"MAIN_CLUTTER_BAR_BUTTON_D_SELECTED", "###./#..#/#..#/#..#/###.", 25},
    {"MAIN_CLUTTER_BAR_BUTTON_V_SELECTED", "#...#/#...#/.#.#./.#.#./..#..", 33},
};

int letterX(const ClutterLetter &letter) {
    return (8 - stencilSize(letter.letter).width()) / 2;
}

void paintClutterBar(Canvas canvas, Color letters) {
    canvas.fill(canvas.bounds().adjusted(0, 1, 0, -1), mix(bodyTop, shade, 0.55));
    canvas.edges(canvas.bounds(), shade, mix(bodyTop, light, 0.25));
    for (const ClutterLetter &letter : clutterLetters)
        canvas.stencil(letterX(letter), letter.row + 1, letter.letter, letters);
}

} // namespace

Sheet titleBarSheet(const QImage &window) {
    Sheet sheet("TITLEBAR");
    for (const bool focused : {false, true}) {
        const char *const ending = focused ? "_SELECTED" : "";
        const auto sprite = [&](const char *stem) {
            return sheet.sprite(QString::fromLatin1(stem) + QString::fromLatin1(ending));
        };
        paintMainTitle(sprite("MAIN_TITLE_BAR"), "VANTOR", focused);
        paintMainTitle(sprite("MAIN_EASTER_EGG_TITLE_BAR"), "HIGH NOON", focused);
        paintShade(sprite("MAIN_SHADE_BACKGROUND"), focused);
    }
    paintShadePosition(sheet);
    paintTitleKeys(sheet);
    paintClutterBar(sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND", window, places::clutterBar), print);
    paintClutterBar(sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND_DISABLED", window, places::clutterBar),
                    mix(bodyTop, print, 0.25));
    for (const ClutterLetter &letter : clutterLetters) {
        Canvas bar = sheet.sprite("MAIN_CLUTTER_BAR_BACKGROUND");
        Canvas lit = sheet.sprite(letter.sprite);
        for (int y = 0; y < lit.height(); ++y)
            for (int x = 0; x < lit.width(); ++x)
                lit.set(x, y, bar.at(x, letter.row + y));
        lit.glowing(letterX(letter), 1, letter.letter, flame, 0.12);
    }
    return sheet;
}

} // namespace vantor::art
