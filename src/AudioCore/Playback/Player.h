#pragma once

#include "AudioCore/Analysis/AnalyzerTap.h"
#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Equalizer/EQState.h"
#include "AudioCore/Graph/LiveSource.h"
#include "AudioCore/NowPlaying/NowPlayingCommandTarget.h"
#include "AudioCore/Output/OutputDeviceProvider.h"
#include "AudioCore/Playback/PlaybackState.h"
#include "AudioCore/PlaybackFormat.h"
#include "AudioCore/Queue/PlayQueue.h"
#include "AudioCore/ReplayGain.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace vantor {

/// Finds the local file or the web address behind a track; throws AudioCoreError::unresolvableSource when
/// there is none.
class TrackResolver {
  public:
    virtual ~TrackResolver() = default;
    [[nodiscard]] virtual QUrl resolve(const Track &track) const = 0;
};

/// Plain files, and addresses as they are.
class FileTrackResolver final : public TrackResolver {
  public:
    [[nodiscard]] QUrl resolve(const Track &track) const override;
};

/// The playback engine: the queue, the audio graph, volume and balance, the spectrum tap and the decoding
/// that feeds them. Lives on the main thread; files are opened and decoded elsewhere. Events are delivered on
/// the main thread after the state that they tell of has been set. Values out of range are clamped.
class Player : public QObject, public NowPlayingCommandTarget {
    Q_OBJECT

  public:
    Player(std::unique_ptr<TrackResolver> resolver, std::unique_ptr<OutputDeviceProvider> outputDevices,
           QObject *parent = nullptr);
    ~Player() override;

    [[nodiscard]] const PlayQueue &queue() const;
    [[nodiscard]] PlaybackState state() const;
    /// Whether it plays, or will as soon as what is loading is there. A change while it loads is told by
    /// stateChanged(), too.
    [[nodiscard]] bool wantsToPlay() const;
    [[nodiscard]] double currentTime() const; ///< seconds, of the sound that is heard now
    [[nodiscard]] double duration() const;    ///< seconds, of the current track; 0 when unknown
    [[nodiscard]] std::optional<PlaybackFormat> currentFormat() const;
    [[nodiscard]] std::optional<QString> errorMessage() const;
    /// True while a track that downloads waits for data.
    [[nodiscard]] bool isBuffering() const;
    /// Seconds from the start up to where a track that downloads is there; none for radio, for local files
    /// and while it is not known.
    [[nodiscard]] std::optional<double> bufferedTime() const;
    /// What a radio station says it plays now: "Artist - Title" or the like.
    [[nodiscard]] std::optional<QString> streamTitle() const;
    [[nodiscard]] std::optional<int> streamBitrate() const; ///< kbit/s, as a radio station says
    [[nodiscard]] float volume() const;                     ///< 0…1
    [[nodiscard]] float balance() const;                    ///< −1…1
    [[nodiscard]] const EQState &eq() const;
    [[nodiscard]] ReplayGainMode replayGainMode() const;
    [[nodiscard]] bool isLimiterEnabled() const;
    [[nodiscard]] RepeatMode repeatMode() const;
    [[nodiscard]] bool isShuffled() const;
    [[nodiscard]] AnalyzerTap &analyzer();
    /// The largest sample, 0…1 and above, rendered since the last call.
    [[nodiscard]] float takePeak();
    /// Of the output in use; empty before the first sound.
    [[nodiscard]] QString outputName() const;

    /// The devices that there are now, in the system's order.
    [[nodiscard]] std::vector<OutputDeviceDescription> outputDevices() const;
    /// The one that plays; none before the first sound and without a sound system.
    [[nodiscard]] std::optional<OutputDeviceDescription> outputDevice() const;
    /// The key of the device that the user has chosen, whether it is there or not; none follows the system's
    /// default.
    [[nodiscard]] std::optional<QString> chosenOutputDevice() const;

    void enqueue(const std::vector<Track> &tracks);
    /// Adds the tracks in front of a row; at the end for a row that there is not.
    void insertTracks(const std::vector<Track> &tracks, int row);
    void play() override;
    void play(int index);
    void pause() override;
    void togglePause();
    void togglePlayPause() override;
    void stop() override;
    void next() override;
    void previous() override;
    /// Radio, and what downloads and has no known duration, goes on as it is.
    void seek(double seconds) override;
    void removeTrack(int index);
    void removeTracks(const IndexSet &indices);
    void cropTracks(const IndexSet &keeping);
    void moveTracks(const IndexSet &indices, int offset);
    /// `order`: old indices in their new order; not a permutation changes nothing.
    void reorderTracks(const std::vector<int> &order);
    void sortQueue(PlaylistSortKey key);
    void reverseQueue();
    void randomizeQueue();
    void clearQueue();
    /// Installs a queue without starting it.
    void restoreQueue(std::vector<Track> tracks, std::optional<int> currentIndex, RepeatMode repeatMode,
                      bool isShuffled);

    void setVolume(float volume);
    void setBalance(float balance);
    void setEq(const EQState &eq);
    /// Plays files as loud as their tags ask for, before the preamp. Off at first. Without the limiter a gain
    /// stays so small that the peak which the tags tell is not clipped.
    void setReplayGainMode(ReplayGainMode mode);
    /// Holds down what would go beyond full scale, after everything else. Off at first.
    void setLimiterEnabled(bool enabled);
    void setRepeatMode(RepeatMode mode);
    void setShuffled(bool on);

    /// Plays on the device with that key whenever it is there, else, and with none, on the system's default.
    /// What plays goes on at the same place. A device that refuses is reported as a failure, and the default
    /// plays.
    void chooseOutputDevice(const std::optional<QString> &key);
    /// Chooses one of the devices that there are now; an unknown id is reported as a failure.
    void outputDeviceChanged(quint32 deviceID);

    /// Gives the output to a stream, which shares the equalizer, the balance and the analyzer; how loud it
    /// is, the stream knows itself. What plays is paused and keeps its place. `sourceForRate` is asked now
    /// and whenever the sound goes on through another output; it never returns null.
    ///
    /// A command that starts, pauses or moves local playback takes the output back: the stream is over, as
    /// StreamPreempted tells. stop() ends it, too, as StreamEnded tells like endStream().
    void startStream(const LiveSourceForRate &sourceForRate);
    /// Without effect when there is none.
    void endStream();
    [[nodiscard]] bool isStreaming() const;
    /// The stream, if there is one, is over for this reason, which is reported as a failure.
    void failStream(const AudioCoreError &error);

    PlayerEventToken addEventObserver(std::function<void(const PlayerEvent &)> callback);
    void removeEventObserver(PlayerEventToken token);

  Q_SIGNALS:
    void queueChanged();
    void stateChanged();
    void currentTimeChanged();
    void formatChanged();
    void downloadChanged(); ///< buffering, the buffered time, or the stream's title or bit rate
    void volumeChanged();
    void balanceChanged();
    void eqChanged();
    void loudnessChanged(); ///< replay gain or limiter
    void streamingChanged();
    /// The devices, the chosen one or the one that plays.
    void outputDevicesChanged();

  private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vantor
