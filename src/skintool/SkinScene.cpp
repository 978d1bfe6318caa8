#include "skintool/SkinScene.h"

namespace vantor {

namespace {

VisualizerBars comparisonBars() {
    VisualizerBars bars;
    for (std::size_t column = 0; column < bars.heights.size(); ++column) {
        const std::size_t band = column / 4;
        if (column % 4 == 3) // the gap between two bars
            continue;
        bars.heights[column] = static_cast<int>(15 - band * 5 % 13);
        bars.peaks[column] = bars.heights[column] + 1;
    }
    return bars;
}

} // namespace

MainWindowScene skinScene(SkintoolOptions::State state) {
    MainWindowScene scene;
    if (state == SkintoolOptions::State::idle)
        return scene;
    scene.status.transport = MainWindowStatus::Transport::playing;
    scene.status.elapsed = 83;
    scene.status.duration = 245;
    scene.status.bitrateKbps = 128;
    scene.status.sampleRate = 44'100;
    scene.status.channels = 2;
    scene.volume = 0.78;
    scene.position = scene.status.elapsed / scene.status.duration;
    scene.repeat = true;
    scene.equalizerOpen = true;
    scene.playlistOpen = true;
    scene.marquee = QStringLiteral("1. Comparison - Title (4:05)");
    scene.visualizer = comparisonBars();
    return scene;
}

} // namespace vantor
