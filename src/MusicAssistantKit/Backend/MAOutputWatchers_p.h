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
    // Read all there are, and what is watched, anew. Fail as the command does.
    QCoro::Task<> reloadPlayers();
    QCoro::Task<> reloadQueues();
    /// Another server may answer from now on.
    void forgetClock() { m_store.clock = {}; }
    /// See MAServerClock::read().
    void readClock(double there, double from, double to);
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
        qint64 offset = 0; ///< from which the items were asked for
        qint64 told = 0;   ///< as many the queue had then, as it said
        qint64 total = 0;  ///< as many it has
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

    /// None when what was asked for is of interest no more.
    template <typename Record>
    QCoro::Task<std::optional<QList<Record>>> readAll(QString command, Record (*decode)(const MAReader &));
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
    int m_era = 0; ///< grows with every end(): an answer from before tells nothing
    // What the events since the last look said, the latest of each kind.
    QHash<QString, MAJSON> m_newPlayers; ///< null: removed
    QHash<QString, MAJSON> m_newQueues;
    QHash<QString, double> m_newTimes;
    QSet<QString> m_changedItems; ///< of queues
    std::unique_ptr<Scheduler::Pending> m_workingOut;
    int m_listsInWork = 0;                           ///< older than events that come meanwhile
    QSet<QString> m_asked;                           ///< players whose active queue is being asked for
    std::map<QString, NowPlayingWatch> m_nowPlaying; ///< by output
    std::map<QString, QueueWatch> m_queues;
    AsyncBroadcast<QList<OutputActivity>> m_activities;
    Overview m_overview;
};

} // namespace vantor
