#pragma once

#include "MadeBackend.h"

namespace vantor {

/// A made-up source with speakers that have queues, play, and are told what to do. Time goes by only as far
/// as instants are compared: nothing plays on to the next item.
class MadeSpeakers : public MadeBackend {
  public:
    struct Speaker {
        NowPlaying playing;
        QList<RemoteQueueItem> items;
        std::optional<int> current;
        bool isShuffled = false;
        bool repeats = false;
        std::optional<OutputDevice::ID> leader{};
        std::optional<bool> isMuted = false; ///< none: it cannot be muted
        std::vector<AsyncStreamProducer<NowPlaying>> playings{};
        std::vector<AsyncStreamProducer<RemoteQueueSnapshot>> queues{};
    };

    MadeSpeakers();

    /// One that stands still, with a queue of so many items, "Kitchen 1" and so on, of 200 seconds.
    Speaker &addSpeaker(const QString &id, const QString &name, int items,
                        std::optional<double> volume = 0.5);
    /// It is switched off.
    void removeSpeaker(const QString &id);
    [[nodiscard]] Speaker &speaker(const QString &id) { return m_speakers.at(id); }
    [[nodiscard]] QStringList titles(const QString &id) const;
    /// Tells its state and queue to whoever listens.
    void tell(const QString &id);
    void tellActivities();

    int window = 1000;    ///< how many items of a queue a snapshot holds, from the current one on
    QStringList buffered; ///< items that must not be changed
    QList<std::pair<TransportCommand, QString>> commands;
    QList<QueueEdit> edits;
    QStringList savedQueues;
    QStringList favoriteTracks;
    int peakCommands = 0; ///< under way at the same time

    [[nodiscard]] std::optional<OutputControls> controls(const OutputDevice::ID &on) const override;
    QCoro::Task<> setMuted(OutputDevice::ID on, bool isMuted) override;
    QCoro::Task<> play(QList<MediaID> items, OutputDevice on, PlayMode mode) override;
    QCoro::Task<> transport(TransportCommand command, OutputDevice::ID on) override;
    AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID on) override;
    AsyncStream<RemoteQueueSnapshot> queue(OutputDevice::ID on) override;
    AsyncStream<QList<OutputActivity>> activities() override;
    QCoro::Task<QList<RemoteQueueItem>> queueItems(OutputDevice::ID on, PageRequest page) override;
    QCoro::Task<> edit(QueueEdit edit, OutputDevice::ID on) override;
    QCoro::Task<> saveQueueAsPlaylist(OutputDevice::ID on, QString name) override;
    QCoro::Task<> favoriteCurrentTrack(OutputDevice::ID on) override;
    QCoro::Task<> transfer(OutputDevice::ID from, OutputDevice::ID to, bool autoPlay) override;
    QCoro::Task<> setGroupMembers(OutputDevice::ID leader, QList<OutputDevice::ID> adding,
                                  QList<OutputDevice::ID> removing) override;

  private:
    [[nodiscard]] Speaker &find(const OutputDevice::ID &on);
    [[nodiscard]] RemoteQueueSnapshot snapshot(const QString &id) const;
    void setCurrent(Speaker &speaker, std::optional<int> row, bool plays);
    void carryOut(Speaker &speaker, const TransportCommand &command);
    void carryOut(Speaker &speaker, const QueueEdit &edit);

    std::map<QString, Speaker> m_speakers;
    AsyncStreamProducer<QList<OutputActivity>> m_activities;
    int m_underWay = 0;
};

} // namespace vantor
