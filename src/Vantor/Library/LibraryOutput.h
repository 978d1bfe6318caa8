#pragma once

#include "FolderBackendKit/LocalOutput.h"
#include "Vantor/Model/PlayerModel.h"

namespace vantor {

/// The program's own player as the output of a music folder. Main thread; borrows the model.
class LibraryOutput : public QObject, public LocalOutput {
    Q_OBJECT

  public:
    using TrackFinder = std::function<std::optional<MediaID>(const QUrl &)>;

    explicit LibraryOutput(PlayerModel &model, QObject *parent = nullptr);
    ~LibraryOutput() override;

    /// Tells which item of the library a file is.
    void setTrackFinder(const TrackFinder &finder) { m_finder = finder; }

    void play(const std::vector<Track> &tracks, PlayMode mode) override;
    void transport(TransportCommand command) override;
    AsyncStream<NowPlaying> nowPlaying() override;

  private:
    [[nodiscard]] NowPlaying present() const;
    void tell();

    PlayerModel &m_model;
    PlayerEventToken m_observer;
    TrackFinder m_finder;
    std::vector<AsyncStreamProducer<NowPlaying>> m_listeners;
};

} // namespace vantor
