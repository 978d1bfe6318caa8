#include "Sheet.h"

namespace vantor::art {

namespace {

using namespace palette;

QByteArray line(Color color, const char *comment) {
    return QByteArray::number(qRed(color)) + ',' + QByteArray::number(qGreen(color)) + ',' +
           QByteArray::number(qBlue(color)) + ", // " + comment + "\r\n";
}

QByteArray hex(Color color) {
    return '#' + QByteArray::number(color & 0xffffffU, 16).rightJustified(6, '0').toUpper();
}

/// 0 the hottest, 1 the coolest.
Color heat(double coolness) {
    struct Stop {
        double at;
        Color color;
    };
    constexpr Stop stops[] = {{0, qRgb(255, 240, 208)},
                              {0.25, flame},
                              {0.5, qRgb(255, 150, 44)},
                              {0.78, qRgb(204, 88, 30)},
                              {1.0, ember}};
    const Stop *from = stops;
    for (const Stop &to : stops) {
        if (coolness <= to.at && to.at > from->at)
            return mix(from->color, to.color, (coolness - from->at) / (to.at - from->at));
        if (coolness >= to.at)
            from = &to;
    }
    return stops[0].color;
}

QByteArray visualizerColors() {
    QByteArray text = line(glass, "background") + line(dot, "dots");
    for (int i = 0; i < 16; ++i)
        text += line(heat(i / 15.0), i == 0 ? "spectrum, top" : i == 15 ? "spectrum, bottom" : "spectrum");
    for (int i = 0; i < 5; ++i)
        text += line(mix(spark, qRgb(224, 120, 36), i / 4.0), "oscilloscope");
    return text + line(qRgb(214, 214, 236), "peaks");
}

QByteArray playlistStyle() {
    return "[Text]\r\nNormal=" + hex(qRgb(222, 196, 160)) + "\r\nCurrent=" + hex(qRgb(255, 176, 64)) +
           "\r\nNormalBG=" + hex(glass) + "\r\nSelectedBG=" + hex(qRgb(58, 56, 88)) + "\r\nFont=Arial\r\n";
}

/// Windows whose corners are softened by two steps.
QByteArray regions() {
    const auto section = [](const char *name, int width, int height) {
        const QByteArray w = QByteArray::number(width);
        const QByteArray h = QByteArray::number(height);
        const QByteArray w2 = QByteArray::number(width - 2);
        const QByteArray h2 = QByteArray::number(height - 2);
        return QByteArray("[") + name + "]\r\nNumPoints=8\r\nPointList=2,0, " + w2 + ",0, " + w + ",2, " + w +
               ',' + h2 + ", " + w2 + ',' + h + ", 2," + h + ", 0," + h2 + ", 0,2\r\n\r\n";
    };
    return section("Normal", 275, 116) + section("WindowShade", 275, 14) + section("Equalizer", 275, 116) +
           section("EqualizerWS", 275, 14);
}

constexpr const char *readme =
    "Meridian\r\n"
    "========\r\n"
    "The default skin of Vantor: indigo graphite, light from the top left, and one amber\r\n"
    "for everything that glows.\r\n"
    "\r\n"
    "Drawn in code by the Vantor project and free under the MIT licence: use it, change\r\n"
    "it, share it.\r\n";

} // namespace

std::vector<SkinFile> textFiles() {
    return {{"viscolor.txt", visualizerColors()},
            {"pledit.txt", playlistStyle()},
            {"region.txt", regions()},
            {"readme.txt", readme}};
}

} // namespace vantor::art
