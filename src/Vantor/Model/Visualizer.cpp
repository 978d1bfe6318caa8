#include "Vantor/Model/Visualizer.h"

#include "AudioCore/Analysis/AnalyzerTap.h"
#include "Vantor/Model/StoredValue.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

constexpr const char *modeKey = "visualizer.mode";
constexpr const char *scopeKey = "visualizer.scope";
constexpr const char *thinKey = "visualizer.thinBars";
constexpr const char *peaksKey = "visualizer.peaks";

template <class Value>
struct Name {
    Value value;
    const char *name;
};

constexpr std::array modeNames{Name<VisualizerMode>{VisualizerMode::spectrum, "spectrum"},
                               Name<VisualizerMode>{VisualizerMode::oscilloscope, "oscilloscope"},
                               Name<VisualizerMode>{VisualizerMode::off, "off"}};
constexpr std::array scopeNames{Name<ScopeStyle>{ScopeStyle::dots, "dots"},
                                Name<ScopeStyle>{ScopeStyle::lines, "lines"},
                                Name<ScopeStyle>{ScopeStyle::solid, "solid"}};

template <class Names, class Value>
Value fromName(const Names &names, const QString &text, Value fallback) {
    for (const auto &[value, name] : names) {
        if (text == QLatin1String(name))
            return value;
    }
    return fallback;
}

template <class Names, class Value>
QString toName(const Names &names, Value of) {
    for (const auto &[value, name] : names) {
        if (value == of)
            return QLatin1String(name);
    }
    return {};
}

} // namespace

Visualizer::Visualizer(AnalyzerTap &tap, QSettings &settings, QObject *parent)
    : QObject(parent), m_tap(tap), m_settings(settings) {
    m_mode = fromName(modeNames, settings.value(QLatin1String(modeKey)).toString(), m_mode);
    m_scopeStyle = fromName(scopeNames, settings.value(QLatin1String(scopeKey)).toString(), m_scopeStyle);
    m_thinBars = StoredValue::boolean(settings, QLatin1String(thinKey), m_thinBars);
    m_peaks = StoredValue::boolean(settings, QLatin1String(peaksKey), m_peaks);
    clear();
}

void Visualizer::setMode(VisualizerMode mode) {
    m_mode = mode;
    store(modeKey, toName(modeNames, mode));
}

void Visualizer::cycleMode() {
    setMode(static_cast<VisualizerMode>((static_cast<std::size_t>(m_mode) + 1) % modeNames.size()));
}

void Visualizer::setThinBars(bool thin) {
    m_thinBars = thin;
    store(thinKey, thin);
}

void Visualizer::setShowsPeaks(bool shows) {
    m_peaks = shows;
    store(peaksKey, shows);
}

void Visualizer::setScopeStyle(ScopeStyle style) {
    m_scopeStyle = style;
    store(scopeKey, toName(scopeNames, style));
}

void Visualizer::store(const char *key, const QVariant &value) {
    m_settings.setValue(QLatin1String(key), value);
    clear();
    Q_EMIT changed();
}

void Visualizer::clear() {
    m_picture = std::monostate();
    m_bars = VisBars();
    if (m_thinBars)
        m_bars.columnsPerBar = 1;
}

bool Visualizer::moves(PlaybackState state) const {
    if (state == PlaybackState::playing)
        return m_mode != VisualizerMode::off;
    return state != PlaybackState::paused && !std::holds_alternative<std::monostate>(m_picture);
}

void Visualizer::advance(PlaybackState state, double elapsed) {
    m_pictures.clear();
    if (state == PlaybackState::paused || m_mode == VisualizerMode::off)
        return;
    const int count = std::clamp(static_cast<int>(std::lround(elapsed / pictureSeconds)), 1, mostPictures);
    for (int i = 0; i < count; ++i) {
        step(state, elapsed / count);
        m_pictures.push_back(m_picture);
    }
}

void Visualizer::step(PlaybackState state, double elapsed) {
    const std::optional<VisFrame> frame = state == PlaybackState::playing ? nextFrame(elapsed) : std::nullopt;
    if (m_mode == VisualizerMode::spectrum)
        stepBars(frame, state);
    else if (frame)
        m_picture = VisualizerScope{frame->scope, m_scopeStyle};
    else if (state != PlaybackState::playing)
        clear();
}

void Visualizer::stepBars(const std::optional<VisFrame> &frame, PlaybackState state) {
    m_bars.step(frame ? std::span<const float>(frame->spectrum) : std::span<const float>());
    const bool atRest = std::ranges::all_of(m_bars.fallingBars, [](float bar) { return bar <= 0; }) &&
                        std::ranges::all_of(m_bars.peakPositions, [](int peak) { return peak <= 0; });
    if (state != PlaybackState::playing && atRest) {
        clear();
        return;
    }
    VisualizerBars bars{m_bars.heights, {}, m_thinBars};
    if (m_peaks)
        bars.peaks = m_bars.peaks;
    m_picture = bars;
}

// After a time without pictures (a pause, a hidden window) the analyser must not take the sound that went by
// for one enormous delivery.
std::optional<VisFrame> Visualizer::nextFrame(double elapsed) {
    constexpr qint64 longestGap = 250; // ms
    if (!m_sinceFrame.isValid() || m_sinceFrame.elapsed() > longestGap)
        m_tap.resetCursor();
    m_sinceFrame.start();
    return m_tap.frame(elapsed);
}

} // namespace vantor
