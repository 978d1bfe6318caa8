#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "Vantor/Model/PlaybackTarget.h"
#include "Vantor/Remote/Expected.h"
#include "Vantor/Remote/LatestSender.h"
#include "Vantor/Remote/OutputMemory.h"

#include <QTimer>

namespace vantor {

/// The output that the user has selected, when it is a speaker of the music source and not this computer:
/// what it plays, and the commands over it. The selection is remembered for each source. To select an output
/// moves no music and stops none.
///
/// What is commanded shows at once and is put right when the server says otherwise; what fails is told by
/// failed(). A speaker that goes away stays selected, unavailable, until it comes back or another output is
/// chosen. Main thread; borrows the settings and the browser.
class RemoteOutput : public QObject, public PlaybackTarget {
    Q_OBJECT

  public:
    explicit RemoteOutput(QSettings &settings, QObject *parent = nullptr);
    ~RemoteOutput() override;

    /// Whose source and output it follows from now on; nullptr before the browser goes.
    void setBrowser(LibraryBrowser *browser);
    [[nodiscard]] LibraryBrowser *browser() const { return m_browser; }

    /// Whether a speaker is selected, be it there or not.
    [[nodiscard]] bool isSelected() const { return m_device.has_value(); }
    [[nodiscard]] bool isAvailable() const { return m_backend != nullptr; }
    /// The speaker; only while one is selected.
    [[nodiscard]] const OutputDevice &device() const { return *m_device; }
    void select(const OutputDevice &output);
    /// This computer.
    void deselect();

    [[nodiscard]] PlaybackView view() const override;
    void transport(const TransportCommand &command) override;
    /// What plays, with what is expected of it.
    [[nodiscard]] NowPlaying nowPlaying() const;
    /// The main window's title line.
    [[nodiscard]] QString title() const;
    /// Encoded, when it plays something that has a picture; empty otherwise or before it was loaded.
    [[nodiscard]] const QByteArray &artwork() const { return m_artwork; }

    [[nodiscard]] const RemoteQueueSnapshot &queue() const { return m_queue; }
    void play(const QList<MediaID> &items, PlayMode mode);
    void saveQueue(const QString &name);
    void favoriteCurrent();
    [[nodiscard]] MusicBackendCapabilities capabilities() const;

    /// The source, while the speaker is there: for operations of its queue. Failures go to fail().
    [[nodiscard]] const std::shared_ptr<MusicBackend> &backend() const { return m_backend; }
    /// Tells an error, or that the output is not available.
    void fail(const std::exception_ptr &error);

  Q_SIGNALS:
    void selectionChanged(); ///< another output, or whether it is available
    void changed();          ///< what plays, its time or volume
    void seeked(double seconds);
    void queueChanged();
    void failed(const QString &sentence);

  private:
    void takeOutput();
    void takeSource();
    void watch();
    QCoro::Task<> followPlaying();
    QCoro::Task<> followQueue();
    QCoro::Task<> send(TransportCommand command);
    QCoro::Task<> loadArtwork(ArtworkRef ref);
    void take(const NowPlaying &playing);
    void startClock();

    LibraryBrowser *m_browser = nullptr;
    OutputMemory m_memory;
    std::optional<OutputDevice> m_device;
    std::shared_ptr<MusicBackend> m_backend; ///< while the speaker is there
    AsyncStream<NowPlaying> m_playingStream;
    AsyncStream<RemoteQueueSnapshot> m_queueStream;
    NowPlaying m_playing;
    RemoteQueueSnapshot m_queue;
    QByteArray m_artwork;
    Expected<NowPlaying::State> m_state;
    Expected<double> m_volume;
    Expected<std::pair<double, double>> m_place; ///< seconds, at an instant
    Expected<bool> m_shuffle;
    Expected<bool> m_repeat;
    LatestSender m_volumeSender;
    LatestSender m_seekSender;
    QTimer m_clock; ///< to the next whole second of the speaker
};

} // namespace vantor
