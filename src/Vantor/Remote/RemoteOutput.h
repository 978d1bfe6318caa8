#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "Vantor/Remote/LatestSender.h"
#include "Vantor/Remote/OutputMemory.h"
#include "Vantor/Remote/RemotePlayback.h"

#include <QImage>
#include <QTimer>

namespace vantor {

class ArtworkCache;

/// The output that the user has selected, when it is a speaker of the music source and not this computer:
/// what it plays, and the commands over it. The selection is remembered for each source. To select an output
/// moves no music and stops none.
///
/// This computer is a speaker like the others while what it plays comes from the source (followHere()).
///
/// What is commanded shows at once and is put right when the server says otherwise; what fails is told by
/// failed(). A speaker that goes away stays selected, unavailable, until it comes back or another output is
/// chosen. Main thread; borrows the settings, the browser and the pictures.
class RemoteOutput : public QObject, public PlaybackTarget {
    Q_OBJECT

  public:
    explicit RemoteOutput(QSettings &settings, QObject *parent = nullptr);

    /// Whose source and output it follows from now on, with the pictures of that source; nullptr before they
    /// go.
    void setBrowser(LibraryBrowser *browser, ArtworkCache *pictures = nullptr);
    [[nodiscard]] LibraryBrowser *browser() const { return m_browser; }

    /// Whether a speaker is selected, be it there or not.
    [[nodiscard]] bool isSelected() const { return m_device.has_value(); }
    [[nodiscard]] bool isAvailable() const { return m_backend != nullptr; }
    /// The speaker; only while one is selected.
    [[nodiscard]] const OutputDevice &device() const { return *m_device; }
    /// Whether that speaker is this computer.
    [[nodiscard]] bool isHere() const { return m_device && m_device->kind == OutputDevice::Kind::thisMac; }
    /// All outputs of the source, and the selected one; those that are not there come last.
    [[nodiscard]] QList<OutputDevice> outputs() const;
    void select(const OutputDevice &output);
    /// Whether what was heard here last is what the source plays on this computer, which it can pause and go
    /// on with; else it is what the program plays by itself.
    void followHere(bool follow);
    /// This computer instead.
    void deselect();

    [[nodiscard]] PlaybackView view() const override;
    void transport(const TransportCommand &command) override;
    /// What plays, with what is expected of it.
    [[nodiscard]] NowPlaying nowPlaying() const { return m_playback.nowPlaying(); }
    /// The main window's title line.
    [[nodiscard]] QString title() const;
    /// Of what plays, once it has been loaded; else null.
    [[nodiscard]] const QImage &artwork() const { return m_artwork; }
    [[nodiscard]] const RemoteQueueSnapshot &queue() const { return m_playback.queue(); }
    /// With what is expected of them.
    [[nodiscard]] OutputControls controls() const;
    void setMuted(bool isMuted);

    /// Also of the source of a speaker that is not there.
    [[nodiscard]] MusicBackendCapabilities capabilities() const;
    /// Whether the source itself plays its items, wherever that is.
    [[nodiscard]] bool playsItems() const;
    /// Where the source plays: on the speaker, or on this computer when that is one of its outputs.
    void play(const QList<MediaID> &items, const PlayMode &mode);
    /// Has one output play along with another, or no longer.
    void setMember(const OutputDevice::ID &leader, const OutputDevice::ID &member, bool isMember);
    void saveQueue(const QString &name);
    void favoriteCurrent();

    /// The source, as long as the speaker is there.
    [[nodiscard]] const std::shared_ptr<MusicBackend> &backend() const { return m_backend; }
    /// Tells the error of an operation.
    void fail(const std::exception_ptr &error);

  Q_SIGNALS:
    void selectionChanged(); ///< another output, or whether it is available
    void changed();          ///< anything that view() or title() tells
    void itemChanged();      ///< something else plays
    void seeked(double seconds);
    void queueChanged();
    void failed(const QString &sentence);

  private:
    void recall();
    void remember(const OutputDevice &output);
    void takeOutput();
    [[nodiscard]] bool playsHere() const;
    void takeInterruption();
    void watch(const std::shared_ptr<MusicBackend> &backend);
    QCoro::Task<> followPlaying();
    QCoro::Task<> followQueue();
    QCoro::Task<> send(TransportCommand command);
    QCoro::Task<> report(QCoro::Task<> operation);
    QCoro::Task<> carryOut(QCoro::Task<> operation);
    void askForArtwork();
    void takeControls();
    /// False, and told, when the speaker is not there.
    bool isReady();
    void forgetExpectations();
    void take(const NowPlaying &told);
    void startClock();

    OutputMemory m_memory;
    LibraryBrowser *m_browser = nullptr;
    std::optional<OutputDevice> m_device;
    bool m_followsHere = false;
    std::shared_ptr<MusicBackend> m_backend;
    std::shared_ptr<char> m_watch = std::make_shared<char>(); ///< whose streams and answers count
    AsyncStream<NowPlaying> m_playingStream;
    AsyncStream<RemoteQueueSnapshot> m_queueStream;
    RemotePlayback m_playback;
    std::optional<double> m_stoodAt; ///< while the source has lost its server, in seconds of what played
    std::optional<OutputControls> m_controls; ///< as the server told them
    Expected<bool> m_muted;
    ArtworkCache *m_pictures = nullptr;
    QImage m_artwork;
    LatestSender m_volumeSender;
    LatestSender m_seekSender;
    QTimer m_clock;  ///< to the next whole second of the speaker
    QTimer m_expiry; ///< to when nothing is expected any more
};

} // namespace vantor
