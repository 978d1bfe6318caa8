#pragma once

#include "AudioCore/NowPlaying/NowPlayingCenter.h"
#include "AudioCore/Playback/PlaybackState.h"
#include "Vantor/Mpris/ArtworkFiles.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QTimer>
#include <QVariantMap>

#include <map>

namespace vantor {

class Commands;
class PlayerModel;

/// What plays, and the commands over it, on the message bus: MPRIS 2's player interface, in its names, types
/// and units (times in microseconds). What the desktop commands comes to the program's own commands, by the
/// handlers of the bridge and, for Shuffle, directly; but LoopStatus goes to the model, because the command
/// knows no repeating of one track, and Volume and OpenUri, because they carry a value. Main thread; borrows
/// the model and the commands.
class MprisPlayer : public QDBusAbstractAdaptor, public NowPlayingCenter {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(QString LoopStatus READ loopStatus WRITE setLoopStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate CONSTANT)
    Q_PROPERTY(double MaximumRate READ rate CONSTANT)
    Q_PROPERTY(bool Shuffle READ isShuffled WRITE setShuffled)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ canGoNext)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ canPlay)
    Q_PROPERTY(bool CanPause READ canPause)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ canControl CONSTANT)

  public:
    /// The properties that have changed, and their values.
    using Tell = std::function<void(const QVariantMap &changed)>;

    MprisPlayer(QObject *service, PlayerModel &model, Commands &commands, const QString &artworkFolder,
                Tell tell);
    ~MprisPlayer() override;

    void publish(const NowPlayingInfo &info) override;
    void clear() override;
    void setHandler(NowPlayingCommand command, Handler handler) override;
    void setEnabled(NowPlayingCommand command, bool enabled) override;

    [[nodiscard]] QString playbackStatus() const;
    [[nodiscard]] QString loopStatus() const;
    [[nodiscard]] double rate() const { return 1; }
    [[nodiscard]] bool isShuffled() const;
    [[nodiscard]] QVariantMap metadata() const;
    [[nodiscard]] double volume() const;
    [[nodiscard]] qlonglong position() const;
    [[nodiscard]] bool canGoNext() const;
    [[nodiscard]] bool canGoPrevious() const;
    [[nodiscard]] bool canPlay() const;
    [[nodiscard]] bool canPause() const;
    [[nodiscard]] bool canSeek() const;
    [[nodiscard]] bool canControl() const { return true; }

    void setLoopStatus(const QString &status);
    void setRate(double rate);
    void setShuffled(bool on);
    void setVolume(double volume);

  public Q_SLOTS: // whose names are the bus's
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    void Stop();
    void Play();
    void Seek(qlonglong Offset);
    void SetPosition(const QDBusObjectPath &TrackId, qlonglong Position);
    void OpenUri(const QString &Uri);

  Q_SIGNALS:
    void Seeked(qlonglong Position);

  private:
    struct Command {
        Handler handler;
        bool enabled = false;
    };

    void run(NowPlayingCommand command, double seconds = 0);
    [[nodiscard]] bool offers(NowPlayingCommand command) const;
    void handle(const PlayerEvent &event);
    void showArtwork();
    void takeArtwork(const QImage &artwork);
    [[nodiscard]] QDBusObjectPath trackPath() const;
    [[nodiscard]] QVariantMap localMetadata() const;
    [[nodiscard]] QVariantMap remoteMetadata() const;
    void tellChanges();
    [[nodiscard]] QVariantMap properties() const;

    PlayerModel &m_model;
    Commands &m_programCommands;
    PlayerEventToken m_observer;
    std::map<NowPlayingCommand, Command> m_commands;
    std::optional<NowPlayingInfo> m_info;
    ArtworkFiles m_artworkFiles;
    qint64 m_artworkKey = 0; ///< of the picture whose path is here or on its way
    QString m_artworkPath;
    Tell m_tell;
    QVariantMap m_told; ///< the properties as the bus knows them
    QTimer m_telling;   ///< changes of one moment are told together
};

} // namespace vantor
