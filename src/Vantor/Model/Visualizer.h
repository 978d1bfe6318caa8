#pragma once

#include "AudioCore/Analysis/VisBars.h"
#include "AudioCore/Analysis/VisFrame.h"
#include "AudioCore/Playback/PlaybackState.h"
#include "SkinKit/Rendering/MainWindowScene.h"

#include <QElapsedTimer>
#include <QObject>

#include <optional>
#include <vector>

class QSettings;

namespace vantor {

class AnalyzerTap;

/// What the visualizer shows.
enum class VisualizerMode { spectrum, oscilloscope, off };

/// The moving picture of the sound: its mode and look, kept in the settings, and the picture of this moment.
/// Main thread. Borrows the tap and the settings.
class Visualizer : public QObject {
    Q_OBJECT

  public:
    Visualizer(AnalyzerTap &tap, QSettings &settings, QObject *parent = nullptr);

    [[nodiscard]] VisualizerMode mode() const { return m_mode; }
    [[nodiscard]] bool hasThinBars() const { return m_thinBars; }
    [[nodiscard]] bool showsPeaks() const { return m_peaks; }
    [[nodiscard]] ScopeStyle scopeStyle() const { return m_scopeStyle; }

    void setMode(VisualizerMode mode);
    void cycleMode();
    void setThinBars(bool thin);
    void setShowsPeaks(bool shows);
    void setScopeStyle(ScopeStyle style);

    [[nodiscard]] const VisualizerPicture &picture() const { return m_picture; }
    /// What advance() has made, one for each time that the display is refreshed; picture() is the last.
    [[nodiscard]] const std::vector<VisualizerPicture> &pictures() const { return m_pictures; }
    static constexpr int mostPictures = 6;
    static constexpr double pictureSeconds = 1.0 / 60;
    /// Whether advance() would change the picture.
    [[nodiscard]] bool moves(PlaybackState state) const;
    /// Paused keeps the last picture; stopped, and as long as a track is loading, the bars fall and it is
    /// cleared.
    void advance(PlaybackState state, double elapsed);

  Q_SIGNALS:
    void changed(); ///< mode or look

  private:
    void store(const char *key, const QVariant &value);
    void clear();
    void step(PlaybackState state, double elapsed);
    void stepBars(const std::optional<VisFrame> &frame, PlaybackState state);
    [[nodiscard]] std::optional<VisFrame> nextFrame(double elapsed);

    AnalyzerTap &m_tap;
    QSettings &m_settings;
    VisualizerMode m_mode = VisualizerMode::spectrum;
    ScopeStyle m_scopeStyle = ScopeStyle::lines;
    bool m_thinBars = false;
    bool m_peaks = true;

    VisBars m_bars;
    VisualizerPicture m_picture;
    std::vector<VisualizerPicture> m_pictures;
    QElapsedTimer m_sinceFrame; ///< of sound; invalid before the first
};

} // namespace vantor
