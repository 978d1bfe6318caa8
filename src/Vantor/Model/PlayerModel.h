#pragma once

#include "AudioCore/Playback/Player.h"
#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowScene.h"
#include "Vantor/Model/FrameClock.h"
#include "Vantor/Model/LocalTarget.h"
#include "Vantor/Model/MarqueeLine.h"
#include "Vantor/Model/OutputChoice.h"
#include "Vantor/Model/Preferences.h"
#include "Vantor/Model/QueueImports.h"
#include "Vantor/Model/SkinLoader.h"
#include "Vantor/Model/SkinShelf.h"
#include "Vantor/Model/Visualizer.h"
#include "Vantor/Model/WindowState.h"
#include "Vantor/Remote/RemoteOutput.h"
#include "Vantor/Speaker/StreamTarget.h"

#include <QObject>

#include <chrono>
#include <optional>

class QSettings;

namespace vantor {

/// The one object that the skinned windows and menus talk to: the current skin, the state of the windows, and
/// the commands, which it turns into calls on the player. Main thread. Borrows the player and the settings.
class PlayerModel : public QObject {
    Q_OBJECT

  public:
    PlayerModel(Player &player, QSettings &settings, QObject *parent = nullptr);
    ~PlayerModel() override;

    [[nodiscard]] Player &player() { return m_player; }
    /// The player as what is commanded, also while a speaker is.
    [[nodiscard]] LocalTarget &local() { return m_local; }
    /// The speaker of the music source that the user has selected, if one is.
    [[nodiscard]] RemoteOutput &remote() { return m_remote; }
    /// What the windows show and command: the selected speaker, what a server streams to this computer, or
    /// the player.
    [[nodiscard]] PlaybackTarget &target();
    [[nodiscard]] const PlaybackTarget &target() const;
    /// Whether that is a stream that this computer cannot command at its server.
    [[nodiscard]] bool showsStream() const { return !m_remote.isSelected() && m_stream.isStreaming(); }
    /// As what it shows: the group or the server that streams.
    [[nodiscard]] QString streamName() const { return m_stream.name(); }
    /// Whether what is shown is muted; none when it cannot be.
    [[nodiscard]] std::optional<bool> isMuted() const;
    void setMuted(bool muted);
    /// This computer as a speaker; none at first.
    void setSpeaker(NetworkSpeaker *speaker);
    [[nodiscard]] const Skin &skin() const { return m_skin; }
    /// Where the skin came from; empty for the default one.
    [[nodiscard]] QUrl skinUrl() const { return m_skinUrl; }
    /// What the main window shows now, but for what only the window knows (focus and the pressed control).
    [[nodiscard]] MainWindowScene scene() const;

    [[nodiscard]] Preferences &preferences() { return m_preferences; }
    [[nodiscard]] OutputChoice &output() { return m_output; }
    /// What is on its way into the player's queue.
    [[nodiscard]] QueueImports &imports() { return m_imports; }
    [[nodiscard]] SkinShelf &skins() { return m_skins; }
    [[nodiscard]] WindowState &windows() { return m_windows; }
    [[nodiscard]] const WindowState &windows() const { return m_windows; }
    /// Windows that can be seen watch it, so that things move; it calls advance().
    [[nodiscard]] FrameClock &clock() { return m_clock; }
    [[nodiscard]] TimeMode timeMode() const { return m_timeMode; }
    [[nodiscard]] Visualizer &visualizer() { return m_visualizer; }

    [[nodiscard]] bool isVisualizerMoving() const { return m_visualizer.moves(visualizedState()); }
    /// How soon advance() wants to be called again for things that move; none while everything stands still.
    [[nodiscard]] std::optional<std::chrono::milliseconds> frameInterval() const;
    /// Moves the visualizer, the marquee and the blinking clock on by `elapsed` seconds.
    void advance(double elapsed);

    // Skins. A skin that is refused leaves the present one in place and says so in the marquee.
    void wear(const QUrl &skin);
    void wearDefaultSkin();

    // Music, as QueueImports has it. Skins among the addresses are worn. insert() refuses files while a
    // speaker is selected.
    void open(const QList<QUrl> &urls) { m_imports.open(withoutSkins(urls)); }
    void enqueue(const QList<QUrl> &urls) { m_imports.enqueue(withoutSkins(urls)); }
    void insert(const QList<QUrl> &urls, int row);
    /// Empties the queue, of what is still being added as well.
    void clearQueue();

    void setTimeMode(TimeMode mode);

    // What is selected is commanded.
    void transport(const TransportCommand &command);
    void toggleShuffle();
    void toggleRepeat();
    void setVolume(double volume);   ///< 0…1
    void setBalance(double balance); ///< −1…1, without snapping to the centre
    void setRepeatMode(RepeatMode mode);
    void changeVolume(double by);
    void seekBy(double seconds);
    void showNotice(const QString &text);
    /// What another window's slider says while it is dragged; none when it is let go.
    void showDragText(const std::optional<QString> &text);

    // Dragging a slider (volume, balance or position): the value follows at once, the position is sought when
    // the slider is let go. `fraction` 0…1 of the slider's way.
    void dragSlider(MainWindowControl slider, double fraction);
    void releaseSlider();
    void cancelSlider();
    [[nodiscard]] MarqueeLine &marquee() { return m_marquee; }

  Q_SIGNALS:
    void sceneChanged();
    void skinChanged();
    void streamChanged(); ///< what showsStream() and streamName() say, or how loud it is
    /// A track that was not played or not even taken in: its name and the sentence that says why.
    void trackRefused(const QString &name, const QString &message);
    /// A list of which a part was not taken in.
    void partRefused(const QString &name, const QString &message);
    void skinRefused(const QString &name, const QString &message);
    void sliderCancelled(); ///< what was dragged does not follow the pointer any more

  private:
    [[nodiscard]] bool hearsStream() const;
    [[nodiscard]] PlaybackState visualizedState() const;
    void showFormat(MainWindowStatus &status) const;
    void handle(const PlayerEvent &event);
    void handleFailure(const PlaybackFailure &failure);
    /// The skins are worn.
    [[nodiscard]] QList<QUrl> withoutSkins(const QList<QUrl> &urls);
    void tellOf(int added, const std::vector<SkippedFile> &skipped);
    void watchOutput();
    void notify(const StatusNotice &notice);
    void updateTitle();
    void setSkin(const QUrl &url, const Skin &skin);
    void restoreSettings();
    void store(const char *key, const QVariant &value);

    Player &m_player;
    PlayerEventToken m_observer;
    QSettings &m_settings;
    LocalTarget m_local;
    RemoteOutput m_remote;
    StreamTarget m_stream;
    SkinLoader m_skinLoader;
    QueueImports m_imports;
    Skin m_skin;
    QUrl m_skinUrl;
    MarqueeLine m_marquee;

    Preferences m_preferences;
    OutputChoice m_output;
    std::optional<QString> m_outputProblem; ///< that was last told
    SkinShelf m_skins;
    WindowState m_windows;
    FrameClock m_clock;
    Visualizer m_visualizer;
    TimeMode m_timeMode = TimeMode::elapsed;
    std::optional<double> m_draggedPosition;

    double m_blinkTime = 0;
};

} // namespace vantor
