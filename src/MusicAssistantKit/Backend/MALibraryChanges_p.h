#pragma once

#include "MusicAssistantKit/Wire/MAEnvelope.h"
#include "MusicBackendKit/LibraryChange.h"
#include "Platform/AsyncBroadcast.h"
#include "Platform/Scheduler.h"

namespace vantor {

/// Gathers the server's events about items for a moment and announces what they amount to. Main thread.
class MALibraryChanges {
  public:
    explicit MALibraryChanges(Scheduler &clock) : m_clock(clock) {}

    [[nodiscard]] AsyncStream<LibraryChange> subscribe() { return m_streams.subscribe(eventBuffer); }
    /// `userID`: whose favourites count.
    void take(const MAServerEvent &event, const std::optional<QString> &userID);
    /// Everything may have changed.
    void announceReload();
    /// The same, once that pauses.
    void announceReloadSoon();
    /// Ends the streams.
    void end();

  private:
    void takeItem(const QString &event, const MediaID &id, const MAJSON &item);
    void add(const LibraryChange &change);
    void announceSoon();
    void announce();

    Scheduler &m_clock;
    AsyncBroadcast<LibraryChange> m_streams;
    QHash<MediaID, LibraryChange> m_gathered;
    bool m_played = false;
    bool m_needsReload = false;
    bool m_hasNews = false; ///< since the reload was put off last
    int m_delays = 0;       ///< of the reload, for what goes on
    std::unique_ptr<Scheduler::Pending> m_announcing;
};

} // namespace vantor
