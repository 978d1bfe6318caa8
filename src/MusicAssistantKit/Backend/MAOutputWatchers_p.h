#pragma once

#include "MusicAssistantKit/Backend/MAPlayerStore_p.h"
#include "Platform/AsyncBroadcast.h"

namespace vantor {

/// Follows the server's players and queues for whoever watches outputs. Events are only put down when they
/// come; what they amount to is worked out a little later, once for all of them. Main thread.
class MAOutputWatchers : public QObject {
  public:
    /// Sends a command. The task keeps what it needs alive, and fails with any exception.
    using Call = std::function<QCoro::Task<MAJSON>(QString command, QJsonObject args)>;

    MAOutputWatchers(Scheduler &clock, Call call) : m_clock(clock), m_call(std::move(call)) {}

    [[nodiscard]] const MAPlayerStore &store() const { return m_store; }
    void setLocalClientID(const std::optional<QString> &id);

    void take(const MAServerEvent &event);
    /// Reads all players and queues, and what is watched. Fails as the command does.
    QCoro::Task<> reload();
    /// Of players only.
    QCoro::Task<> reloadPlayers();
    /// Ends the streams and forgets what was known.
    void end();

    [[nodiscard]] AsyncStream<NowPlaying> nowPlaying(const OutputDevice::ID &output);
    [[nodiscard]] AsyncStream<RemoteQueueSnapshot> queue(const OutputDevice::ID &output);
    [[nodiscard]] AsyncStream<QList<OutputActivity>> activities();

  private:
    struct NowPlayingWatch {
        AsyncBroadcast<NowPlaying> streams;
        NowPlaying last;
    };
    struct QueueWatch {
        AsyncBroadcast<RemoteQueueSnapshot> streams;
        std::optional<RemoteQueueSnapshot> last;
        QString queueID; ///< whose items these are
        QList<RemoteQueueItem> items;
        qint64 total = 0; ///< as it was when the items were read
        bool isStale = true;
        std::unique_ptr<Scheduler::Pending> pause; ///< before the items are read again
        bool isReading = false;
    };
    struct Overview {
        QList<OutputActivity> activities;
        QList<OutputDevice> devices;
        QList<std::optional<MusicAssistantOutputState>> states;
        bool operator==(const Overview &) const = default;
    };

    void workOutSoon();
    void workOut();
    void publish();
    void publishNowPlaying();
    void publishActivities();
    void publishQueue(const OutputDevice::ID &output, QueueWatch &watch);
    [[nodiscard]] NowPlaying present(const OutputDevice::ID &output) const;
    [[nodiscard]] Overview overview() const;
    [[nodiscard]] bool needsItems(const QueueWatch &watch, const MAPlayerStore::Queue &queue) const;
    QCoro::Task<> readItems(OutputDevice::ID output, QString queueID);
    QCoro::Task<> askActiveQueue(QString playerID, QString group);
    void askActiveQueues();

    Scheduler &m_clock;
    const Call m_call;
    MAPlayerStore m_store;
    // What the events since the last look said, the latest of each kind.
    QHash<QString, MAJSON> m_newPlayers; ///< null: removed
    QHash<QString, MAJSON> m_newQueues;
    QHash<QString, double> m_newTimes;
    QSet<QString> m_changedItems; ///< of queues
    std::unique_ptr<Scheduler::Pending> m_workingOut;
    QSet<QString> m_asked;                           ///< players whose active queue is being asked for
    std::map<QString, NowPlayingWatch> m_nowPlaying; ///< by output
    std::map<QString, QueueWatch> m_queues;
    AsyncBroadcast<QList<OutputActivity>> m_activities;
    Overview m_overview;
};

} // namespace vantor
