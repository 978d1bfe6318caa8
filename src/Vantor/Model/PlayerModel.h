#pragma once

#include "AudioCore/Playback/Player.h"
#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowScene.h"
#include "Vantor/Model/FrameClock.h"
#include "Vantor/Model/LocalTarget.h"
#include "Vantor/Model/MarqueeLine.h"
#include "Vantor/Model/OutputChoice.h"
#include "Vantor/Model/Preferences.h"
#include "Vantor/Model/SkinLoader.h"
#include "Vantor/Model/SkinShelf.h"
#include "Vantor/Model/TrackImporter.h"
#include "Vantor/Model/Visualizer.h"
#include "Vantor/Model/WindowState.h"
#include "Vantor/Remote/RemoteOutput.h"
#include "Vantor/Speaker/StreamTarget.h"

#include <QObject>

#include <chrono>
#include <map>
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
    /// This computer as a speaker; none at first.
    void setSpeaker(NetworkSpeaker *speaker);
    [[nodiscard]] const Skin &skin() const { return m_skin; }
    /// Where the skin came from; empty for the default one.
    [[nodiscard]] QUrl skinUrl() const { return m_skinUrl; }
    /// What the main window shows now, but for what only the window knows (focus and the pressed control).
    [[nodiscard]] MainWindowScene scene() const;

    [[nodiscard]] Preferences &preferences() { return m_preferences; }
    [[nodiscard]] OutputChoice &output() { return m_output; }
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

    // Music. open() replaces the queue once its first track is known to be playable and plays it; enqueue()
    // only adds to the end. Skins among the addresses are worn. Files play on this computer only: open()
    // selects it, and insert() refuses them while a speaker is selected.
    void open(const QList<QUrl> &urls);
    void enqueue(const QList<QUrl> &urls);
    /// Adds in front of a row, or at the end for a row that there is not, and plays nothing by itself. What
    /// comes in while the queue changes goes in front of the same track.
    void insert(const QList<QUrl> &urls, int row);
    /// Finds the local files of library items and hands them over; not called when it cannot.
    using TrackSource =
        std::function<void(const QList<MediaID> &, const std::function<void(const std::vector<Track> &)> &)>;
    /// Until one is set, library items cannot be played.
    void setLibrary(const TrackSource &library) { m_library = library; }
    [[nodiscard]] bool hasLibrary() const { return static_cast<bool>(m_library); }
    // The same with items of the library, which the selected speaker plays; its queue takes them at the end.
    void openItems(const QList<MediaID> &ids);
    void enqueueItems(const QList<MediaID> &ids) { insertItems(ids, -1); }
    void insertItems(const QList<MediaID> &ids, int row);
    /// Empties the queue, of what is still being added as well.
    void clearQueue();
    [[nodiscard]] bool isImporting() const { return !m_imports.empty() || !m_heldImports.empty(); }
    /// What the import that ended last left out, and why.
    [[nodiscard]] const std::vector<SkippedFile> &skippedFiles() const { return m_skippedFiles; }
    /// From here to releaseImports() what is opened and enqueued waits, in its order.
    void holdImports() { m_holdsImports = true; }
    void releaseImports();

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
    void importsFinished(); ///< nothing is left to import
    void sliderCancelled(); ///< what was dragged does not follow the pointer any more

  private:
    /// What is done with the tracks of an import.
    struct ImportPlan {
        bool replaces = false;         ///< the queue, once the first track is there, which is played
        std::optional<QUuid> before{}; ///< the track in front of which they go, else at the end
    };
    struct HeldImport {
        QList<QUrl> music;
        ImportPlan plan;
    };

    [[nodiscard]] bool hearsStream() const;
    [[nodiscard]] PlaybackState visualizedState() const;
    void showFormat(MainWindowStatus &status) const;
    void handle(const PlayerEvent &event);
    void handleFailure(const PlaybackFailure &failure);
    [[nodiscard]] ImportPlan planInFrontOf(int row) const;
    void startImport(const QList<QUrl> &urls, const ImportPlan &plan);
    void startImport(const QList<MediaID> &ids, const ImportPlan &plan);
    void addTracks(const std::vector<Track> &tracks, ImportPlan &plan);
    void importMusic(const QList<QUrl> &music, const ImportPlan &plan);
    void takeTracks(quint64 import, const std::vector<Track> &tracks);
    void finishImport(quint64 import, int added, const std::vector<SkippedFile> &skipped);
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
    TrackImporter m_importer;
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
    TrackSource m_library;
    bool m_holdsImports = false;
    std::vector<HeldImport> m_heldImports;
    std::map<quint64, ImportPlan> m_imports; ///< under way, by number
    std::vector<SkippedFile> m_skippedFiles;
};

} // namespace vantor
