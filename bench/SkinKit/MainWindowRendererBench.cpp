#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "SkinKit/Sprites/SkinSprites.h"

#include <QPainter>

#include <benchmark/benchmark.h>

namespace {

using namespace vantor;

/// Every sheet at its full size, so that nothing is skipped.
Skin benchSkin() {
    Skin skin;
    const auto &sheets = SkinSprites::sheets();
    for (auto it = sheets.cbegin(); it != sheets.cend(); ++it) {
        QRect covered;
        for (const Sprite &sprite : it.value())
            covered |= QRect({0, 0}, QPoint(sprite.x + sprite.width - 1, sprite.y + sprite.height - 1));
        QImage sheet(covered.size(), QImage::Format_RGBX8888);
        sheet.fill(Qt::darkCyan);
        skin.sheets.insert(it.key(), sheet);
    }
    return skin;
}

MainWindowScene busyScene() {
    MainWindowScene scene;
    scene.status = {MainWindowStatus::Transport::playing, TimeMode::remaining, 83, 271, 320, 44100, 2};
    scene.position = 0.3;
    scene.shuffle = true;
    scene.equalizerOpen = true;
    scene.marquee = QStringLiteral("1. Vantor Demo Ensemble - Sixteen Bars in Search of a Melody (4:31)");
    VisualizerBars bars;
    for (std::size_t i = 0; i < bars.heights.size(); ++i) {
        bars.heights[i] = static_cast<int>(i / 4 * 7 % 16);
        bars.peaks[i] = bars.heights[i] + 1;
    }
    scene.visualizer = bars;
    return scene;
}

void fullRepaint(benchmark::State &state) {
    const auto scale = static_cast<int>(state.range(0));
    const Skin skin = benchSkin();
    MainWindowScene scene = busyScene();
    QImage window(MainWindowRenderer::size(false, scale), QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&window);
        ++scene.marqueeOffset;
        MainWindowRenderer::draw(painter, skin, scene, scale);
    }
}
BENCHMARK(fullRepaint)->Arg(1)->Arg(2)->Arg(4)->Unit(benchmark::kMicrosecond);

/// A frame while a song plays: what the window repaints sixty times a second.
void visualizerRepaint(benchmark::State &state) {
    const auto scale = static_cast<int>(state.range(0));
    const Skin skin = benchSkin();
    MainWindowScene before = busyScene();
    MainWindowScene after = before;
    std::get<VisualizerBars>(after.visualizer).heights[0] += 1;
    QImage window(MainWindowRenderer::size(false, scale), QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&window);
        painter.scale(scale, scale);
        painter.setClipRegion(MainWindowRenderer::changed(skin, before, after));
        painter.resetTransform();
        MainWindowRenderer::draw(painter, skin, after, scale);
        std::swap(before, after);
    }
}
BENCHMARK(visualizerRepaint)->Arg(2)->Unit(benchmark::kMicrosecond);

} // namespace
