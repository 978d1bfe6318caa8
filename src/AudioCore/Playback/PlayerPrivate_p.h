#pragma once

#include "AudioCore/Graph/AudioGraph.h"
#include "AudioCore/Playback/Player.h"
#include "AudioCore/Playback/PlayerRules.h"
#include "AudioCore/Playback/TrackStreamer.h"

#include <QElapsedTimer>
#include <QTimer>

#include <map>

namespace vantor {

/// The player's working parts. Commands change the queue and call startCurrentTrack(), seekTo() or stop();
/// every start and seek is a new generation, and what an older one still reports is ignored. So is every
/// follower: a track that is decoded behind the current one, and becomes current when its turn is heard.
class Player::Private {
  public:
    Private(Player &player, std::unique_ptr<TrackResolver> trackResolver,
            std::unique_ptr<OutputDeviceProvider> outputDevices);
    ~Private();

    // Telling the observers.
    void emitEvent(const PlayerEvent &event);
    void setState(PlaybackState newState);
    void setAutoplay(bool autoplay);
    void setCurrentTime(double seconds);
    void setFormat(const std::optional<PlaybackFormat> &newFormat);
    /// Announces the current track unless it was the last one announced.
    void announceTrack();

    // Playing.
    void startCurrentTrack(bool autoplay);
    /// After a step of the queue: announces the new current track and starts it, unless an observer has given
    /// another command.
    void moveToCurrentTrack(bool autoplay);
    void resume();
    void pause();
    void seekTo(double seconds);
    void stop();
    /// Changes the queue; when another track is current afterwards, playback moves to it.
    void editQueue(const std::function<void(PlayQueue &)> &edit);
    [[nodiscard]] double duration() const;

    // What comes next.
    /// Hands the streamer what follows the current track, if that is not what it has already.
    void planFollowers();
    void forgetFollowers();
    /// The current track has been heard to its end and the queue has moved on: the first follower is current.
    void adoptFollower();
    [[nodiscard]] bool endIsHeard(const PlayerNode::Progress &progress);

    // What happens by itself.
    void streamerReported(const TrackStreamer::Report &report);
    void trackFailed(const PlaybackError &error);
    void fail(const PlaybackError &error);
    void trackEnded();
    void tick();
    void showTime(const PlayerNode::Progress &progress);
    /// How many seconds of the rendered sound are still on their way to the ear.
    [[nodiscard]] double unheard() const;

    // The stream from elsewhere.
    [[nodiscard]] bool isStreaming() const { return liveSourceForRate != nullptr; }
    void playStream();
    /// False when there is none.
    bool leaveStream();
    /// A local command takes the output back.
    void preemptStream();
    void endStream();
    void reportFailure(const AudioCoreError &error, const std::optional<Track> &track);

    // What downloads.
    [[nodiscard]] bool isRemote() const { return !url.isEmpty() && !url.isLocalFile(); }
    /// Radio that has been paused for so long that what is at hand is old.
    [[nodiscard]] bool isStale() const;
    /// Shows how the download stands, now and from time to time while there is one.
    void watchDownload();

    // The output.
    void watchDevices();
    [[nodiscard]] std::optional<OutputDeviceDescription> deviceWith(const std::optional<quint32> &id) const;
    [[nodiscard]] PlayerRules::OutputTarget outputTarget() const;
    void ensureOutput();
    void applyLoudness();
    void wakeOutput();
    /// After the devices, the default or the choice have changed.
    void followDevices();
    void outputMoved();
    void outputLost(bool wasReady, const QString &reason);
    [[nodiscard]] double heardNow(bool wasAllHeard) const;
    void replaceOutput(bool wasAllHeard);
    void requestFrom(double seconds);

    struct Follower {
        QUuid trackID;
        std::uint32_t generation = 0;
        QUrl url;
        std::optional<TrackRange> range;
        double seconds = 0;                          ///< how long it plays; infinite when unknown
        std::optional<TrackStreamer::Report> report; ///< once its first sound is decoded, or it failed
        std::optional<PlaybackError> failure;        ///< why it ends early, behind that sound

        void take(const TrackStreamer::Report &report);
        [[nodiscard]] bool isSilent() const { return report && report->error; }
        [[nodiscard]] bool fails() const { return isSilent() || failure; }
    };
    [[nodiscard]] Follower makeFollower(const Track &track);
    [[nodiscard]] TrackStreamer::Request requestFor(const Follower &follower) const;
    void sendFollowers(const Follower *adopted = nullptr);
    std::uint32_t newGeneration() { return ++lastGeneration; }

    Player &q;
    const std::unique_ptr<TrackResolver> resolver;
    const std::unique_ptr<OutputDeviceProvider> devices;

    PlayQueue queue;
    PlaybackState state = PlaybackState::stopped;
    double currentTime = 0;
    double fileDuration = 0; ///< of the loaded file; 0 when unknown
    std::optional<PlaybackFormat> format;
    std::optional<QString> errorMessage;
    float volume = 1;
    float balance = 0;
    EQState eq;
    ReplayGainMode replayGainMode = ReplayGainMode::off;
    bool limiterEnabled = false;
    int consecutiveFailures = 0;
    std::optional<QUuid> lastEmittedTrackID;
    bool autoplayAfterLoad = false; ///< whether sound is wanted: what a start that follows by itself inherits
    QUrl url;                       ///< of the loaded file or stream
    std::optional<TrackRange> range;
    std::uint32_t generation = 0; ///< of the current track
    std::uint32_t lastGeneration = 0;
    unsigned startsAndStops = 0;     ///< so far: tells whether an observer has given another command
    std::vector<Follower> followers; ///< in the order in which they are played
    /// Why the current track ends early: it fails when what was decoded of it has been heard.
    std::optional<PlaybackError> failureAtEnd;
    /// When the current track's last frame is heard; known once it has been rendered.
    std::optional<std::chrono::steady_clock::time_point> endHeardAt;

    /// What the observers have been told of the download.
    struct DownloadState {
        bool isBuffering = false;
        std::optional<double> bufferedTime;
        std::optional<QString> title;
        std::optional<int> bitrate;

        bool operator==(const DownloadState &) const = default;
    };
    [[nodiscard]] DownloadState downloadStateNow() const;
    std::shared_ptr<const DownloadBuffer> download; ///< of the loaded stream, once it has begun
    DownloadState downloadState;
    QElapsedTimer pausedFor;

    std::map<PlayerEventToken, std::function<void(const PlayerEvent &)>> observers;
    quint64 lastToken = 0;
    QTimer timeUpdates;
    QTimer idleTimer;
    QTimer downloadTimer;

    LiveSourceForRate liveSourceForRate; ///< of the stream; none without one

    std::optional<QString> chosenDevice;  ///< by its key, also while it is away
    std::optional<quint32> refusedDevice; ///< does not play although it is there
    PlayerRules::OutputTarget outputMadeFor;
    bool outputIsReplacement = false;
    unsigned outputNumber = 0; ///< of the present output; one that is gone has an older one
    QTimer switchTimer;        ///< runs while the sound fades out on the old device

    // In this order: the output stops before what it renders goes away.
    AnalyzerTap analyzer;
    std::unique_ptr<AudioGraph> graph;
    std::unique_ptr<AudioOutput> output;
    TrackStreamer streamer;
};

} // namespace vantor
