#pragma once

#include "MusicAssistantKit/Connection/MAHTTPTransport.h"
#include "MusicAssistantKit/Connection/MusicAssistantClient.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerConfiguration.h"
#include "MusicBackendKit/MusicBackend.h"
#include "MusicBackendKit/MusicBackendError.h"

namespace vantor {

/// How the connection of a backend stands, in the user's terms. A value.
struct MusicAssistantStatus {
    enum class State { offline, connecting, connected, reconnecting, failed };
    State state = State::offline;
    QString text;                             ///< one sentence; empty when there is nothing to say
    std::optional<MusicAssistantError> error; ///< of `failed`
    /// What the source offers now: the server's list of commands arrives a moment after the connection.
    MusicBackendCapabilities capabilities;
    /// Grows with every successful connection: what was read before may be out of date.
    int connection = 0;

    bool operator==(const MusicAssistantStatus &) const = default;
};

/// What the controls for an output show, beside what plays there. A value.
struct MusicAssistantOutputState {
    OutputControls controls;
    bool isShuffling = false;
    bool isRepeating = false;
    QList<OutputDevice::ID> members; ///< of the group that it leads, itself first; empty without one

    bool operator==(const MusicAssistantOutputState &) const = default;
};

/// A Music Assistant server as a music source: its library, its players and their queues.
///
/// Main thread. connect() signs in and then keeps the connection, through losses, until disconnect();
/// meanwhile requests fail with a sentence, and streams hold what they showed last and go on by themselves.
/// Failures are MusicBackendError, QueueEditError or MusicAssistantError.
///
/// A MediaID's raw value is the server's URI of the item, such as "library://album/12"; an ArtworkRef's is
/// the path and query of its picture on the server.
///
/// libraryChanges() gathers what comes close together. When too much happened to tell it one by one, and
/// after a lost connection, its consumers have missed() some.
///
/// "This Mac" is always among the outputs. It is the player that the server makes of the Sendspin client
/// whose ID setLocalClientID() names.
class MusicAssistantBackend final : public MusicBackend {
  public:
    struct Server {
        QUuid id;     ///< of its configuration
        QString name; ///< as the user calls it
        /// Or why there can be no connection (MusicAssistantBackendErrors), which connect() then throws.
        std::variant<MusicAssistantServerSettings, MusicBackendError> settings;
    };

    /// They outlive the backend and its operations.
    struct Collaborators {
        MAWebSocketTransports &transports;
        MAHTTPTransport &http;
        Scheduler &clock;
    };

    MusicAssistantBackend(const Server &server, const Collaborators &with,
                          const MusicAssistantClient::Timing &timing = {});
    ~MusicAssistantBackend() override;

    [[nodiscard]] QString sourceID() const override;
    [[nodiscard]] QString displayName() const override;
    [[nodiscard]] MusicBackendCapabilities capabilities() const override;
    [[nodiscard]] MusicAssistantStatus status() const;
    /// The present status first, then every change; only the latest waits for a slow consumer. Ends with the
    /// backend.
    [[nodiscard]] AsyncStream<MusicAssistantStatus> statusUpdates();

    QCoro::Task<> connect() override;
    QCoro::Task<> disconnect() override;

    /// The Sendspin client of this computer; none while it does not take part.
    void setLocalClientID(const std::optional<QString> &id);
    /// The server's player for it; none until the server has made it.
    [[nodiscard]] std::optional<QString> localPlayerID() const;

    QCoro::Task<Page<LibraryArtist>> artists(PageRequest page) override;
    /// An artist's all at once.
    QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID> artist, PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracks(MediaID album) override;
    QCoro::Task<Page<LibraryPlaylist>> playlists(PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracksOfPlaylist(MediaID playlist) override;
    QCoro::Task<Page<LibraryRadio>> radios(PageRequest page) override;
    QCoro::Task<SearchResults> search(QString text, int limit) override;
    /// JPEG, or PNG for a picture with transparent parts. The server has fixed sizes: the largest one within
    /// `maxPixels`, but 80 at least.
    QCoro::Task<QByteArray> artwork(ArtworkRef ref, int maxPixels) override;
    QCoro::Task<QList<RecommendationRow>> recommendationRows() override;
    QCoro::Task<QList<RecommendationItem>> recommendationItems(RecommendationRow row) override;
    QCoro::Task<RecommendationItem> resolve(RecommendationItem item) override;

    QCoro::Task<> setFavorite(MediaID id, bool on) override;
    QCoro::Task<std::optional<int>> favoriteCount(MediaKind kind) override;
    QCoro::Task<Page<LibraryArtist>> favoriteArtists(PageRequest page) override;
    QCoro::Task<Page<LibraryAlbum>> favoriteAlbums(PageRequest page) override;
    QCoro::Task<Page<LibraryTrack>> favoriteTracks(PageRequest page) override;
    QCoro::Task<Page<LibraryPlaylist>> favoritePlaylists(PageRequest page) override;
    QCoro::Task<Page<LibraryRadio>> favoriteRadios(PageRequest page) override;
    /// Takes an item out of the library.
    QCoro::Task<> removeFromLibrary(MediaID id);

    // The server carries out edits of playlists after it has accepted them: libraryChanges() tells when.
    QCoro::Task<LibraryPlaylist> createPlaylist(QString name) override;
    QCoro::Task<> renamePlaylist(MediaID id, QString name) override;
    QCoro::Task<> deletePlaylist(MediaID id) override;
    QCoro::Task<> add(QList<MediaID> ids, MediaID playlist) override;
    QCoro::Task<> remove(QList<int> positions, MediaID playlist) override;
    QCoro::Task<> movePlaylistTrack(MediaID playlist, int from, int to) override;
    QCoro::Task<LibraryPlaylist> importPlaylist(QString m3u) override;
    QCoro::Task<QString> exportPlaylist(MediaID id) override;
    QCoro::Task<LibraryRadio> addRadio(QString url, QString name) override;

    AsyncStream<LibraryChange> libraryChanges() override;

    /// This Mac first, then the players that the server shows, by name.
    QCoro::Task<QList<OutputDevice>> outputs() override;
    /// What plays on every output, the present state first; a new list also when an output came, went or
    /// changed otherwise, so that outputs() and outputState() are worth another look.
    AsyncStream<QList<OutputActivity>> activities() override;
    /// None for an output that is not there.
    [[nodiscard]] std::optional<MusicAssistantOutputState> outputState(const OutputDevice::ID &output) const;
    [[nodiscard]] std::optional<OutputControls> controls(const OutputDevice::ID &on) const override;
    QCoro::Task<> setMuted(OutputDevice::ID on, bool isMuted) override;

    QCoro::Task<> play(QList<MediaID> items, OutputDevice on, PlayMode mode) override;
    /// While a volume is on its way to an output, only the latest of further ones follows.
    QCoro::Task<> transport(TransportCommand command, OutputDevice::ID on) override;
    AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID on) override;
    /// Of a long queue only a stretch around the current item.
    AsyncStream<RemoteQueueSnapshot> queue(OutputDevice::ID on) override;
    QCoro::Task<QList<RemoteQueueItem>> queueItems(OutputDevice::ID on, PageRequest page) override;
    QCoro::Task<> edit(QueueEdit edit, OutputDevice::ID on) override;
    QCoro::Task<> saveQueueAsPlaylist(OutputDevice::ID on, QString name) override;
    QCoro::Task<> favoriteCurrentTrack(OutputDevice::ID on) override;
    QCoro::Task<> transfer(OutputDevice::ID from, OutputDevice::ID to, bool autoPlay) override;
    QCoro::Task<> setGroupMembers(OutputDevice::ID leader, QList<OutputDevice::ID> adding,
                                  QList<OutputDevice::ID> removing) override;

    class Private;

  private:
    std::unique_ptr<Private> d;
};

} // namespace vantor
