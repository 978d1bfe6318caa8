#pragma once

#include "MusicAssistantKit/Backend/Items/MAPlayers.h"
#include "MusicAssistantKit/Backend/MAServerClock_p.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackend.h"

#include <map>

namespace vantor {

/// What is known of the server's players and queues, and what it is to the user. Main thread; a plain value
/// otherwise. Instants are seconds since 1970 of this computer's clock.
class MAPlayerStore {
  public:
    /// When something was so.
    struct Moment {
        std::optional<double> there; ///< on the server's clock; otherwise just when it was told
        double told = 0;
    };
    /// A queue, and how far its item was when.
    struct Queue {
        MAPlayerQueue record;
        double elapsed = 0;
        Moment moment;
    };

    MAServerClock clock;

    void setLocalClientID(const std::optional<QString> &id);
    [[nodiscard]] const std::optional<QString> &localClientID() const { return m_localClientID; }

    [[nodiscard]] bool hasPlayers() const { return m_hasPlayers; } ///< all there are
    [[nodiscard]] bool hasQueues() const { return m_hasQueues; }
    /// In place of all that was known.
    void setPlayers(const QList<MAPlayer> &players, double now);
    void setQueues(const QList<MAPlayerQueue> &queues, double now);

    // What events tell.
    void apply(const MAPlayer &player, double now);
    void removePlayer(const QString &id);
    void apply(const MAPlayerQueue &queue, double now);
    void applyTime(const QString &queueID, double elapsed, double now);

    /// The player that the server made of localClientID().
    [[nodiscard]] const MAPlayer *localPlayer() const;
    [[nodiscard]] const MAPlayer *player(const QString &id) const;
    [[nodiscard]] const Queue *queue(const QString &id) const;
    /// Of an output; null for one that is not there.
    [[nodiscard]] const MAPlayer *player(const OutputDevice::ID &output) const;
    [[nodiscard]] OutputDevice::ID outputOf(const QString &playerID) const;

    /// What a player plays in unison with, as its leader or group; empty when it plays by itself.
    [[nodiscard]] static QString groupOf(const MAPlayer &player);
    /// The queue that a grouped player plays, as the server said.
    void setActiveQueue(const QString &playerID, const QString &group, const QString &queueID);
    [[nodiscard]] bool knowsActiveQueue(const MAPlayer &player) const;
    [[nodiscard]] QString queueID(const MAPlayer &player) const;

    [[nodiscard]] QList<OutputDevice> devices() const;
    [[nodiscard]] QList<OutputActivity> activities(double now) const;
    [[nodiscard]] std::optional<MusicAssistantOutputState> state(const OutputDevice::ID &output) const;
    [[nodiscard]] NowPlaying nowPlaying(const OutputDevice::ID &output, double now) const;

  private:
    struct ActiveQueue {
        QString group;
        QString queueID;
    };

    void keep(const MAPlayer &player, const Moment &moment);
    void findLocalPlayer();
    [[nodiscard]] bool isOurs(const MAPlayer &player) const;
    [[nodiscard]] Moment momentOf(const std::optional<double> &there, double now);
    [[nodiscard]] double instantOf(const Moment &moment) const {
        return clock.here(moment.there, moment.told);
    }
    [[nodiscard]] bool isShown(const MAPlayer &player) const;
    [[nodiscard]] QList<const MAPlayer *> shownPlayers() const; ///< by name
    [[nodiscard]] OutputDevice device(const MAPlayer &player) const;
    [[nodiscard]] std::optional<QSet<OutputDevice::ID>> groupable(const MAPlayer &player) const;

    bool m_hasPlayers = false;
    bool m_hasQueues = false;
    std::optional<QString> m_localClientID;
    QString m_localPlayer;                 ///< its ID; empty without one
    std::map<QString, MAPlayer> m_players; // whose entries stay where they are
    QHash<QString, Moment> m_playerTimes;  ///< when a player was as far as it says
    std::map<QString, Queue> m_queues;
    QHash<QString, ActiveQueue> m_activeQueues; ///< by player
};

} // namespace vantor
