#include "SkinKit/Loading/BaseSpritePainter_p.h"

namespace vantor {

using namespace BaseColors;

namespace {

constexpr int frames = 28;

QString latin(const char *text) {
    return QString::fromLatin1(text);
}

bool has(const Sprite &sprite, const char *part) {
    return sprite.name.contains(QLatin1StringView(part));
}

bool isPressed(const Sprite &sprite) {
    return has(sprite, "_ACTIVE") || has(sprite, "_DEPRESSED");
}

QRgb mixed(QRgb from, QRgb to, int step, int steps) {
    const auto channel = [&](int a, int b) { return a + (b - a) * step / steps; };
    return qRgb(channel(qRed(from), qRed(to)), channel(qGreen(from), qGreen(to)),
                channel(qBlue(from), qBlue(to)));
}

// A quiet green at the bottom of a scale, amber at its top.
QRgb levelColor(int step, int steps) {
    return mixed(lamp, busyLamp, step, steps);
}

/// What a button carries, by the start of its sprite's name; the longer of two names comes first.
struct Label {
    const char *prefix;
    const char *text;
    std::initializer_list<const char *> picture;
};

const Label labels[] = {
    {"MAIN_PREVIOUS_BUTTON", "", {"##...#", "##..##", "##.###", "######", "##.###", "##..##", "##...#"}},
    {"MAIN_PLAY_BUTTON", "", {"#....", "###..", "####.", "#####", "####.", "###..", "#...."}},
    {"MAIN_PAUSE_BUTTON", "", {"##.##", "##.##", "##.##", "##.##", "##.##", "##.##", "##.##"}},
    {"MAIN_STOP_BUTTON", "", {"######", "######", "######", "######", "######", "######"}},
    {"MAIN_NEXT_BUTTON", "", {"#...##", "##..##", "###.##", "######", "###.##", "##..##", "#...##"}},
    {"MAIN_EJECT_BUTTON", "", {"...#...", "..###..", ".#####.", "#######", ".......", "#######"}},
    {"MAIN_OPTIONS_BUTTON", "", {"#####", ".....", "#####", ".....", "#####"}},
    {"MAIN_MINIMIZE_BUTTON", "", {".....", ".....", ".....", ".....", "#####"}},
    {"MAIN_SHADE_BUTTON_SELECTED", "", {"#####", "#...#", "#...#", "#...#", "#####"}},
    {"MAIN_SHADE_BUTTON", "", {"#####", "#####", ".....", ".....", "....."}},
    {"MAIN_CLOSE_BUTTON", "", {"#...#", ".#.#.", "..#..", ".#.#.", "#...#"}},
    {"EQ_CLOSE_BUTTON", "", {"#...#", ".#.#.", "..#..", ".#.#.", "#...#"}},
    {"PLAYLIST_CLOSE", "", {"#...#", ".#.#.", "..#..", ".#.#.", "#...#"}},
    {"EQ_MAXIMIZE_BUTTON", "", {"#####", "#...#", "#...#", "#...#", "#####"}},
    {"PLAYLIST_EXPAND", "", {"#####", "#...#", "#...#", "#...#", "#####"}},
    {"PLAYLIST_COLLAPSE", "", {"#####", "#####", ".....", ".....", "....."}},
    {"MAIN_SHUFFLE_BUTTON", "SHUFFLE", {}},
    {"MAIN_REPEAT_BUTTON", "REP", {}},
    {"MAIN_EQ_BUTTON", "EQ", {}},
    {"MAIN_PLAYLIST_BUTTON", "PL", {}},
    {"EQ_ON_BUTTON", "ON", {}},
    {"EQ_AUTO_BUTTON", "AUTO", {}},
    {"EQ_PRESETS_BUTTON", "PRESETS", {}},
    {"PLAYLIST_ADD_URL", "ADD\nURL", {}},
    {"PLAYLIST_ADD_DIR", "ADD\nDIR", {}},
    {"PLAYLIST_ADD_FILE", "ADD\nFILE", {}},
    {"PLAYLIST_REMOVE_ALL", "REM\nALL", {}},
    {"PLAYLIST_CROP", "CROP", {}},
    {"PLAYLIST_REMOVE_SELECTED", "REM\nSEL", {}},
    {"PLAYLIST_REMOVE_MISC", "REM\nMISC", {}},
    {"PLAYLIST_INVERT_SELECTION", "INV\nSEL", {}},
    {"PLAYLIST_SELECT_ZERO", "SEL\nZERO", {}},
    {"PLAYLIST_SELECT_ALL", "SEL\nALL", {}},
    {"PLAYLIST_SORT_LIST", "SORT\nLIST", {}},
    {"PLAYLIST_FILE_INFO", "FILE\nINFO", {}},
    {"PLAYLIST_MISC_OPTIONS", "MISC\nOPTS", {}},
    {"PLAYLIST_NEW_LIST", "NEW\nLIST", {}},
    {"PLAYLIST_SAVE_LIST", "SAVE\nLIST", {}},
    {"PLAYLIST_LOAD_LIST", "LOAD\nLIST", {}},
};

const Label *labelOf(const Sprite &sprite) {
    const auto *found = std::ranges::find_if(
        labels, [&](const Label &label) { return sprite.name.startsWith(QLatin1StringView(label.prefix)); });
    return found == std::end(labels) ? nullptr : found;
}

QPoint centre(const QRect &rect, std::initializer_list<const char *> picture) {
    const auto height = static_cast<int>(picture.size());
    const auto width = static_cast<int>(std::strlen(*picture.begin()));
    return {rect.x() + (rect.width() - width) / 2, rect.y() + (rect.height() - height) / 2};
}

} // namespace

void BaseSpritePainter::paint(const Sprite &sprite) {
    const bool done = paintFont(sprite) || paintWindow(sprite) || paintPlaylistPiece(sprite) ||
                      paintTitleBar(sprite) || paintSlider(sprite) || paintDisplay(sprite);
    if (!done)
        paintButton(sprite);
}

void BaseSpritePainter::raised(const QRect &rect) {
    m_canvas.fill(rect, faceColor);
    m_canvas.edge(rect, faceLight, faceDark);
}

void BaseSpritePainter::pressedDown(const QRect &rect) {
    m_canvas.fill(rect, pressedFace);
    m_canvas.edge(rect, faceDark, faceLight);
}

void BaseSpritePainter::field(const QRect &rect) {
    m_canvas.fill(rect, fieldColor);
    m_canvas.edge(rect, faceDark, faceLight);
}

void BaseSpritePainter::face(const QRect &rect) {
    m_canvas.fill(rect, faceColor);
}

bool BaseSpritePainter::paintFont(const Sprite &sprite) {
    const QPoint at(sprite.x, sprite.y);
    const qsizetype underscore = sprite.name.lastIndexOf(QLatin1Char('_'));
    const uint number = sprite.name.mid(underscore + 1).toUInt();
    if (sprite.name.startsWith(latin("CHARACTER_"))) {
        // Brackets of every kind share a cell; the square ones, which come first, stay.
        if (number == U'<' || number == U'>' || number == U'{' || number == U'}')
            return true;
        m_canvas.fill(sprite.rect(), fieldColor);
        m_canvas.character(at, QChar::toUpper(char32_t{number}), fieldLit);
    } else if (sprite.name.startsWith(latin("DIGIT_"))) {
        m_canvas.fill(sprite.rect(), fieldColor);
        m_canvas.digit(at, static_cast<int>(number), lamp);
    } else {
        // The minus signs are cut out of the digits' own segments.
        return sprite.name.endsWith(latin("MINUS_SIGN"));
    }
    return true;
}

bool BaseSpritePainter::paintWindow(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    if (sprite.name == latin("MAIN_WINDOW_BACKGROUND"))
        mainWindow(rect);
    else if (sprite.name == latin("EQ_WINDOW_BACKGROUND"))
        equalizerWindow(rect);
    else
        return false;
    return true;
}

void BaseSpritePainter::mainWindow(const QRect &rect) {
    raised(rect);
    field({9, 21, 94, 46});    // letters, clock and visualizer
    field({108, 24, 160, 12}); // marquee
    field({109, 41, 19, 10});  // bit rate
    field({154, 41, 14, 10});  // sample rate
    m_canvas.text({131, 43}, latin("KBPS"), ink);
    m_canvas.text({171, 43}, latin("KHZ"), ink);
    field({106, 56, 70, 15});
    field({176, 56, 40, 15});
    field({15, 71, 250, 12});
    const char letters[] = "OAIDV";
    const int tops[] = {26, 33, 40, 48, 55};
    for (std::size_t i = 0; i < std::size(tops); ++i)
        m_canvas.character({12, tops[i]}, static_cast<uchar>(letters[i]), fieldDim);
}

void BaseSpritePainter::equalizerWindow(const QRect &rect) {
    raised(rect);
    field({85, 16, 115, 21});
    m_canvas.text({45, 38}, latin("+12"), ink);
    m_canvas.text({49, 65}, latin("0"), ink);
    m_canvas.text({45, 93}, latin("-12"), ink);
    m_canvas.centredText({12, 102, 32, 8}, latin("PREAMP"), ink);
    const char *bands[] = {"60", "170", "310", "600", "1K", "3K", "6K", "12K", "14K", "16K"};
    for (int i = 0; i < 10; ++i)
        m_canvas.centredText({76 + 18 * i, 102, 18, 8}, latin(bands[i]), ink);
}

bool BaseSpritePainter::paintTitleBar(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    const bool selected = sprite.name.endsWith(latin("_SELECTED"));
    const bool isBar =
        has(sprite, "TITLE_BAR") || has(sprite, "MAIN_SHADE_BACKGROUND") || has(sprite, "PLAYLIST_TOP_");
    if (!isBar)
        return false;
    m_canvas.fill(rect, selected ? faceColor : pressedFace);
    m_canvas.fill({rect.x(), rect.y(), rect.width(), 1}, faceLight);
    m_canvas.fill({rect.x(), rect.y() + 13, rect.width(), 1}, faceDark);
    for (int y = 4; y <= 8; y += 2)
        m_canvas.fill({rect.x() + 4, rect.y() + y, rect.width() - 8, 1}, selected ? faceLight : faceColor);
    const QRect bar(rect.x(), rect.y(), rect.width(), 14);
    if (has(sprite, "MAIN_SHADE_BACKGROUND")) {
        field({rect.x() + 77, rect.y() + 3, 81, 9});
        field({rect.x() + 225, rect.y() + 3, 19, 9});
        const char *picture[] = {"MAIN_PREVIOUS_BUTTON", "MAIN_PLAY_BUTTON", "MAIN_PAUSE_BUTTON",
                                 "MAIN_STOP_BUTTON",     "MAIN_NEXT_BUTTON", "MAIN_EJECT_BUTTON"};
        const QRect places[] = {{169, 2, 7, 10}, {176, 2, 10, 10}, {186, 2, 9, 10},
                                {195, 2, 9, 10}, {204, 2, 10, 10}, {215, 2, 10, 10}};
        m_canvas.fill({rect.x() + 168, rect.y() + 2, 57, 10}, selected ? faceColor : pressedFace);
        for (std::size_t i = 0; i < std::size(places); ++i)
            symbol(places[i].translated(rect.topLeft()), picture[i]);
    } else if (has(sprite, "TITLE_BAR")) {
        const QString caption = latin(has(sprite, "EQ_")         ? "EQUALIZER"
                                      : has(sprite, "PLAYLIST_") ? "PLAYLIST"
                                                                 : "VANTOR");
        const int width = 5 * static_cast<int>(caption.size()) + 9;
        m_canvas.fill({bar.center().x() - width / 2, bar.y() + 2, width, 10},
                      selected ? faceColor : pressedFace);
        m_canvas.centredText(bar, caption, selected ? ink : faceLight);
    }
    if (rect.width() == 275)
        titleButtons(bar, has(sprite, "MAIN_"));
    return true;
}

void BaseSpritePainter::titleButtons(const QRect &bar, bool withOptions) {
    const struct {
        const char *name;
        int x;
        bool mainOnly;
    } buttons[] = {{"MAIN_OPTIONS_BUTTON", 6, true},
                   {"MAIN_MINIMIZE_BUTTON", 244, true},
                   {"MAIN_SHADE_BUTTON", 254, false},
                   {"MAIN_CLOSE_BUTTON", 264, false}};
    for (const auto &button : buttons) {
        if (withOptions || !button.mainOnly)
            paintButton({latin(button.name), bar.x() + button.x, bar.y() + 3, 9, 9});
    }
}

bool BaseSpritePainter::paintSlider(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    if (sprite.name == latin("MAIN_VOLUME_BACKGROUND")) {
        volumeStrip(rect);
    } else if (sprite.name == latin("EQ_SLIDER_BACKGROUND")) {
        bandStrip(rect);
    } else if (sprite.name == latin("MAIN_POSITION_SLIDER_BACKGROUND")) {
        field(rect);
        m_canvas.fill({rect.x() + 4, rect.center().y(), rect.width() - 8, 1}, fieldDim);
    } else if (sprite.name == latin("MAIN_SHADE_POSITION_BACKGROUND")) {
        m_canvas.fill(rect, fieldColor);
    } else if (has(sprite, "_THUMB") || has(sprite, "SCROLL_HANDLE")) {
        raised(rect);
        const bool lit = has(sprite, "_SELECTED") || isPressed(sprite);
        const QPoint middle = rect.center();
        const QRgb color = lit ? lamp : ink;
        if (rect.width() > 4 && has(sprite, "EQ_SLIDER"))
            m_canvas.fill({rect.x() + 3, middle.y(), rect.width() - 6, 1}, color);
        else if (rect.width() > 4)
            m_canvas.fill({middle.x(), rect.y() + 3, 1, rect.height() - 6}, color);
    } else {
        return false;
    }
    return true;
}

void BaseSpritePainter::volumeStrip(const QRect &rect) {
    constexpr int frameHeight = 15;
    for (int frame = 0; frame < frames; ++frame) {
        const QRect groove(rect.x(), rect.y() + frame * frameHeight, rect.width(), 13);
        m_canvas.fill({groove.x(), groove.y(), groove.width(), frameHeight}, fieldColor);
        const int length = (groove.width() - 6) * frame / (frames - 1);
        m_canvas.fill({groove.x() + 3, groove.y() + 5, groove.width() - 6, 3}, faceDark);
        m_canvas.fill({groove.x() + 3, groove.y() + 5, length, 3}, levelColor(frame, frames - 1));
    }
}

void BaseSpritePainter::bandStrip(const QRect &rect) {
    m_canvas.fill(rect, faceColor);
    for (int frame = 0; frame < frames; ++frame) {
        const QRect groove(rect.x() + frame % 14 * 15, rect.y() + frame / 14 * 65, 14, 63);
        const int length = (groove.height() - 4) * (frame + 1) / frames;
        m_canvas.fill(groove, faceColor);
        field({groove.x() + 4, groove.y(), 6, groove.height()});
        m_canvas.fill({groove.x() + 6, groove.bottom() - 1 - length, 2, length},
                      levelColor(frame, frames - 1));
    }
}

bool BaseSpritePainter::paintDisplay(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    const bool lit = has(sprite, "_SELECTED");
    if (has(sprite, "MAIN_STEREO") || has(sprite, "MAIN_MONO")) {
        m_canvas.fill(rect, fieldColor);
        m_canvas.centredText(rect, latin(has(sprite, "STEREO") ? "STEREO" : "MONO"), lit ? lamp : fieldDim);
    } else if (has(sprite, "WORKING_INDICATOR")) {
        // Only the first three columns are seen; the two overlap from the fourth on.
        m_canvas.fill(rect, fieldColor);
        m_canvas.fill({rect.x(), rect.y() + 1, 2, 7}, has(sprite, "_NOT_") ? lamp : busyLamp);
    } else if (has(sprite, "_INDICATOR")) {
        m_canvas.fill(rect, fieldColor);
        const Label *label = labelOf({latin(has(sprite, "PLAYING")  ? "MAIN_PLAY_BUTTON"
                                            : has(sprite, "PAUSED") ? "MAIN_PAUSE_BUTTON"
                                                                    : "MAIN_STOP_BUTTON")});
        m_canvas.pattern(centre(rect, label->picture), label->picture, lamp);
    } else if (has(sprite, "CLUTTER_BAR_BACKGROUND")) {
        m_canvas.fill(rect, fieldColor);
        const char letters[] = "OAIDV";
        const int tops[] = {4, 11, 18, 26, 33};
        for (std::size_t i = 0; i < std::size(tops) && !has(sprite, "DISABLED"); ++i)
            m_canvas.character(rect.topLeft() + QPoint(2, tops[i]), static_cast<uchar>(letters[i]), fieldDim);
    } else if (has(sprite, "CLUTTER_BAR_BUTTON_")) {
        m_canvas.fill(rect, fieldColor);
        const QString letter = sprite.name.section(QLatin1Char('_'), -2, -2);
        m_canvas.text(rect.topLeft() + QPoint(2, 1), letter, lamp);
    } else if (has(sprite, "GRAPH_BACKGROUND") || has(sprite, "VISUALIZER_BACKGROUND")) {
        m_canvas.fill(rect, fieldColor);
    } else if (has(sprite, "GRAPH_LINE_COLORS")) {
        for (int y = 0; y < rect.height(); ++y)
            m_canvas.fill({rect.x(), rect.bottom() - y, 1, 1}, levelColor(y, rect.height() - 1));
    } else if (has(sprite, "PREAMP_LINE")) {
        m_canvas.fill(rect, fieldDim);
    } else {
        return false;
    }
    return true;
}

void BaseSpritePainter::symbol(const QRect &place, const char *button) {
    const Label *label = labelOf({latin(button)});
    m_canvas.pattern(centre(place, label->picture), label->picture, ink);
}

void BaseSpritePainter::paintButton(const Sprite &sprite) {
    const QRect rect = sprite.rect();
    const Label *label = labelOf(sprite);
    if (has(sprite, "_TILE") || has(sprite, "_MENU_BAR") || has(sprite, "_LIST_BAR")) {
        face(rect); // repeated along an edge: no bevel that would show the seams
        m_canvas.fill({rect.x(), rect.y(), 1, rect.height()}, faceLight);
        return;
    }
    // On a toggle "selected" is the lit state; elsewhere it is the button that is held down.
    // The name of one button ends like a state: what it removes is the selected rows.
    const bool named = sprite.name == latin("PLAYLIST_REMOVE_SELECTED");
    const bool selected =
        (sprite.name.endsWith(latin("_SELECTED")) && !named) || has(sprite, "_SELECTED_DEPRESSED");
    const bool toggle = has(sprite, "SHUFFLE") || has(sprite, "REPEAT") || has(sprite, "_ON_") ||
                        has(sprite, "_AUTO_") || has(sprite, "MAIN_EQ_") || has(sprite, "MAIN_PLAYLIST_");
    const bool down = isPressed(sprite) || (selected && !toggle && !has(sprite, "MAIN_SHADE_BUTTON"));
    if (down)
        pressedDown(rect);
    else
        raised(rect);
    if (!label)
        return;
    const QPoint shift(down ? 1 : 0, down ? 1 : 0);
    const QRgb color = toggle && selected ? lamp : ink;
    if (label->picture.size() > 0)
        m_canvas.pattern(centre(rect, label->picture) + shift, label->picture, color);
    const QStringList lines = latin(label->text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const int lineHeight = rect.height() / std::max(1, static_cast<int>(lines.size()));
    for (int i = 0; i < lines.size(); ++i)
        m_canvas.centredText(QRect(rect.x(), rect.y() + i * lineHeight, rect.width(), lineHeight),
                             lines.at(i), color);
}

} // namespace vantor
