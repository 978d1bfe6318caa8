#pragma once

#include "tests/Support/FakeMusicAssistant/FakeLibrary.h"

#include <map>

namespace vantor {

/// The made-up speakers of a FakeMusicAssistant and their queues, which play what is in a FakeLibrary without
/// a sound: kitchen, living-room and bedroom, which can be grouped; office without a volume; garden, which is
/// not there; downstairs, a group of kitchen and living-room. One thread.
class FakePlayers : public QObject {
  public:
    struct Entry {
        QString id; ///< of the queue item
        QString uri;
    };
    struct Queue {
        QList<Entry> entries;
        int current = -1;
        double elapsed = 0;
        double age = 0; ///< seconds since `elapsed` was right
        QString state = QStringLiteral("idle");
        bool isShuffling = false;
        QString repeatMode = QStringLiteral("off");
    };

    FakePlayers(FakeMusicAssistant &server, FakeLibrary &library);

    // What they are; to be changed at any time, before changed().
    std::map<QString, QJsonObject> players; ///< as the server sends them
    std::map<QString, Queue> queues;
    /// So many items from the current one on can neither be moved nor removed.
    int buffered = 2;
    /// play_media starts a list of tracks at its start item, which servers do not do.
    bool heedsStartItem = false;

    /// Lets what plays go on.
    void advance(double seconds);
    /// By itself from now on, in real time.
    void run();
    /// Tells everybody about a player and its queue.
    void changed(const QString &id);
    /// What the server does when a Sendspin client connects: at once a hidden player that speaks the
    /// protocol, later one that is shown.
    void addSendspinClient(const QString &clientID, const QString &name);
    void showSendspinClient(const QString &clientID, const QString &name);
    /// Of the player that is shown.
    [[nodiscard]] static QString shownID(const QString &clientID) { return QStringLiteral("up-") + clientID; }
    [[nodiscard]] QJsonObject queueRecord(const QString &id) const;
    /// At the end of a queue.
    void append(const QString &id, const QStringList &uris);

  private:
    using Args = QJsonObject;
    using Handler = FakeMusicAssistant::CommandHandler;

    void addPlayer(const QString &id, const QString &name, const QString &type, bool hasVolume);
    void addPlayerCommands();
    void addQueueCommands();
    void addEditCommands();
    /// Of one player or queue, which has to be there.
    void command(const QString &name, const QString &idName, const QStringList &more, const Handler &handler);
    [[nodiscard]] QJsonObject playerRecord(const QString &id) const;
    [[nodiscard]] QJsonValue queueItem(const Queue &queue, const QString &id, int index) const;
    [[nodiscard]] double durationOf(const Queue &queue) const;
    [[nodiscard]] QString activeQueue(const QString &playerID) const;
    void playMedia(Queue &queue, const Args &args);
    /// Brings what follows the current entry into another order, always the same, or back into its own.
    void setShuffling(Queue &queue, bool isShuffling);
    void go(const QString &id, int index);
    void itemsChanged(const QString &id);
    [[nodiscard]] static int find(const Queue &queue, const QJsonValue &itemOrIndex);

    FakeMusicAssistant &m_server;
    FakeLibrary &m_library;
    QTimer m_timer;
    int m_nextEntry = 1;
};

} // namespace vantor
