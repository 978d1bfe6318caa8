#pragma once

#include "FolderBackendKit/LocalOutput.h"
#include "Vantor/Model/PlayerModel.h"

namespace vantor {

/// The program's own player as the output of a music folder. Main thread; borrows the model.
class LibraryOutput : public QObject, public LocalOutput {
    Q_OBJECT

  public:
    using TrackFinder = std::function<std::optional<MediaID>(const QUrl &)>;
    using Receiver = std::function<void(const std::vector<Track> &)>;

    explicit LibraryOutput(PlayerModel &model, QObject *parent = nullptr);
    ~LibraryOutput() override;

    /// Tells which item of the library a file is.
    void setTrackFinder(const TrackFinder &finder) { m_finder = finder; }
    /// What comes to be played goes there instead, until there is none.
    void setReceiver(const Receiver &receiver) { m_receiver = receiver; }

    void play(const std::vector<Track> &tracks, PlayMode mode) override;
    void transport(TransportCommand command) override;
    AsyncStream<NowPlaying> nowPlaying() override;

  private:
    [[nodiscard]] NowPlaying present() const;
    void tell();

    PlayerModel &m_model;
    PlayerEventToken m_observer;
    TrackFinder m_finder;
    Receiver m_receiver;
    std::vector<AsyncStreamProducer<NowPlaying>> m_listeners;
};

} // namespace vantor
