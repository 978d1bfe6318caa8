#pragma once

#include "MusicAssistantKit/Backend/MADecodedAside_p.h"
#include "MusicAssistantKit/Backend/MALibraryChanges_p.h"
#include "MusicAssistantKit/Backend/MAOutputWatchers_p.h"
#include "MusicAssistantKit/Backend/MAServerCommands.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackend.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"

namespace vantor {

/// What the operations share. They are in Operations/, by their role, and hold the backend while they run;
/// what runs by itself, here, holds it only for the length of a request.
class MusicAssistantBackend::Private : public QObject {
  public:
    Private(MusicAssistantBackend &backend, const Server &chosen, const Collaborators &collaborators,
            const MusicAssistantClient::Timing &timing);

    /// One command. Fails with MusicBackendError::unsupported for one that the server does not have, with
    /// `needed`, or else with what the client fails with.
    QCoro::Task<MAJSON> call(QString command, QJsonObject args, MusicBackendCapabilities needed);
    /// Arguments, as they are sent: servers take frames of 4 MiB.
    static constexpr qsizetype mostBytesAtOnce = (4 << 20) - (4 << 10);
    /// URIs in as many messages as it takes. Fails with the sentence for one that fits into none.
    [[nodiscard]] static QList<QStringList> inMessages(const QStringList &uris);
    /// As call(); of what the server carries out later and says how that stands.
    QCoro::Task<> callTask(QString command, QJsonObject args, MusicBackendCapabilities needed);
    /// Ends when the list of commands is there, or will not come.
    QCoro::Task<> probed();

    [[nodiscard]] bool canMovePlaylistTracks() const;
    /// With what the server can do.
    [[nodiscard]] LibraryPlaylist withEditing(LibraryPlaylist playlist) const;
    [[nodiscard]] Page<LibraryPlaylist> withEditing(Page<LibraryPlaylist> page) const;

    // Of outputs.
    /// The player of an output. Fails with the sentence for one that is not there.
    QCoro::Task<MAPlayer> player(OutputDevice::ID output);
    /// The queue that it plays from.
    QCoro::Task<QString> queueID(OutputDevice::ID output);
    /// call() about an output: that the server has not got its player means that the output is not there.
    QCoro::Task<MAJSON> callOutput(OutputDevice::ID output, QString command, QJsonObject args,
                                   MusicBackendCapabilities needed);

    /// Asked for in one go.
    static constexpr int mostQueueItems = 1'000;
    /// A stretch of a queue. Fails when the answer is no list.
    QCoro::Task<QList<RemoteQueueItem>> queuePage(OutputDevice::ID output, QString queue, PageRequest page);

    /// A list, or a stretch of one, made into records. Fails when the answer is no list; entries that cannot
    /// be read are left out, but count.
    template <typename Record>
    struct Decoded {
        QList<Record> records;
        qsizetype count = 0;
    };
    template <typename Record>
    using Read = Record (*)(const MAReader &);
    template <typename Record>
    static QCoro::Task<Decoded<Record>> decoded(MAJSON list, Read<Record> read);
    template <typename Record>
    static Record decodedOne(const MAJSON &item, Read<Record> read);

    void tellStatus();
    void setState(MusicAssistantStatus::State state, const QString &text,
                  const std::optional<MusicAssistantError> &error = {});
    void follow();
    void takeState(const MusicAssistantClient::ConnectionState &state);
    QCoro::Task<> followStates();
    QCoro::Task<> followEvents();
    QCoro::Task<> probe();
    void readPlayers();
    void readPlayersIn(std::chrono::milliseconds delay);
    using Reload = QCoro::Task<> (MAOutputWatchers::*)();
    QCoro::Task<> keepReading(Reload reload);
    void end();
    [[nodiscard]] MusicBackendCapabilities capabilities() const;

    MusicAssistantBackend &q;
    const Server server;
    const Collaborators with;
    std::shared_ptr<MusicAssistantClient> client; ///< none when there can be no connection
    MusicAssistantStatus status;
    AsyncBroadcast<MusicAssistantStatus> statuses;
    MAServerCommands commands;
    bool isProbing = false;
    AsyncBroadcast<bool> whenProbed;
    MALibraryChanges changes;
    MAOutputWatchers watchers;
    QHash<QString, int> counts;                      ///< of lists, by command and arguments
    QHash<QString, MAJSON> recommended;              ///< items that came with their rows, by the row's ID
    QHash<QString, std::optional<int>> volumesOnWay; ///< by player: the one that follows

  private:
    int m_probe = 0; ///< the one whose answer counts
    // Of the connection under way.
    AsyncStream<MusicAssistantClient::ConnectionState> m_states;
    AsyncStream<MAServerEvent> m_events;
    std::unique_ptr<Scheduler::Pending> m_readingPlayers;
};

template <typename Record>
QCoro::Task<MusicAssistantBackend::Private::Decoded<Record>>
MusicAssistantBackend::Private::decoded(MAJSON list, Read<Record> read) {
    if (list.kind() != MAJSON::Kind::array)
        throw MusicAssistantBackendErrors::unreadableAnswer();
    const qsizetype count = list.size();
    const QList<Record> records = co_await decodedAside(list, read);
    co_return Decoded<Record>{records, count};
}

template <typename Record>
Record MusicAssistantBackend::Private::decodedOne(const MAJSON &item, Read<Record> read) {
    try {
        return read(MAReader(item));
    } catch (const MADecodingError &) {
        throw MusicAssistantBackendErrors::unreadableAnswer();
    }
}

} // namespace vantor
