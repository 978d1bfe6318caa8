#pragma once

#include "AudioCore/Playback/Player.h"
#include "MusicBackendKit/MediaID.h"
#include "Vantor/Model/TrackImporter.h"

#include <functional>
#include <map>
#include <optional>

namespace vantor {

class RemoteOutput;

/// Files, folders, lists, addresses and items of the library on their way into the queue. Files play on this
/// computer only, items where the selection is. Main thread; borrows both.
class QueueImports : public QObject {
    Q_OBJECT

  public:
    QueueImports(Player &player, RemoteOutput &remote, QObject *parent = nullptr);

    /// Replaces the queue once the first track is known to be playable and plays it. Selects this computer.
    void open(const QList<QUrl> &music) { start(music, {.replaces = true}); }
    void enqueue(const QList<QUrl> &music) { start(music, {}); }
    /// Adds in front of a row, or at the end for a row that there is not, and plays nothing by itself. What
    /// comes in while the queue changes goes in front of the same track.
    void insert(const QList<QUrl> &music, int row);

    /// Finds the local files of library items and hands them over; not called when it cannot.
    using TrackSource =
        std::function<void(const QList<MediaID> &, const std::function<void(const std::vector<Track> &)> &)>;
    /// Until one is set, items that this computer plays from its files cannot be played.
    void setLibrary(const TrackSource &library) { m_library = library; }
    [[nodiscard]] bool hasLibrary() const { return static_cast<bool>(m_library); }
    // The same with items of the library. Where their source plays them, its queue takes them at the end.
    void openItems(const QList<MediaID> &ids);
    void enqueueItems(const QList<MediaID> &ids) { insertItems(ids, -1); }
    void insertItems(const QList<MediaID> &ids, int row);

    /// What is under way adds no more.
    void cancel();
    [[nodiscard]] bool isImporting() const { return !m_imports.empty() || !m_held.empty(); }
    /// What the import that ended last left out, and why.
    [[nodiscard]] const std::vector<SkippedFile> &skippedFiles() const { return m_skippedFiles; }
    /// From here to release() what is opened and enqueued waits, in its order.
    void hold() { m_isHolding = true; }
    void release();

  Q_SIGNALS:
    /// So many tracks came, and these did not, or not as a whole.
    void finished(int added, const std::vector<vantor::SkippedFile> &skipped);
    void allFinished(); ///< nothing is left to import

  private:
    /// What is done with the tracks of an import.
    struct Plan {
        bool replaces = false;         ///< the queue, once the first track is there, which is played
        std::optional<QUuid> before{}; ///< the track in front of which they go, else at the end
    };
    struct Held {
        QList<QUrl> music;
        Plan plan;
    };

    [[nodiscard]] Plan planInFrontOf(int row) const;
    void start(const QList<QUrl> &music, const Plan &plan);
    void start(const QList<MediaID> &ids, const Plan &plan);
    void import(const QList<QUrl> &music, const Plan &plan);
    void take(quint64 import, const std::vector<Track> &tracks);
    void add(const std::vector<Track> &tracks, Plan &plan);
    void finish(quint64 import, int added, const std::vector<SkippedFile> &skipped);

    Player &m_player;
    RemoteOutput &m_remote;
    TrackImporter m_importer;
    TrackSource m_library;
    bool m_isHolding = false;
    std::vector<Held> m_held;
    std::map<quint64, Plan> m_imports; ///< under way, by number
    std::vector<SkippedFile> m_skippedFiles;
};

} // namespace vantor
