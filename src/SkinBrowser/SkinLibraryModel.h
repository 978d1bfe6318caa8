#pragma once

#include "SkinLibrary/Index/SkinRecord.h"
#include "SkinLibrary/Ingest/SkinIndexer.h"

#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace vantor {

class FolderWatcher;
class SharedSkinIndex;

/// The user's skins folder as the program knows it: its index, kept up to date by passes in the background.
///
/// A pass runs when a folder is set, when something in it changes (FolderWatcher, a moment after the last
/// change) and when reindex() asks for one; a change during a pass leads to another one after it. Main
/// thread; nothing blocks. The destructor cancels a running pass and waits for its batch.
class SkinLibraryModel : public QObject {
    Q_OBJECT
  public:
    explicit SkinLibraryModel(const QUrl &index, QObject *parent = nullptr);
    ~SkinLibraryModel() override;

    [[nodiscard]] const QUrl &index() const;

    /// Local path in NativePath's form; empty without one. Setting it starts a pass.
    [[nodiscard]] QString folder() const { return m_folder; }
    void setFolder(const QString &path);

    /// Starts a pass, or another one after the running one. `full`: every file counts as changed.
    void reindex(bool full = false);
    /// Ends the pass after the batch at hand. What it has done stays.
    void cancel();
    [[nodiscard]] bool isIndexing() const { return m_isIndexing; }
    /// Of the running pass, else of the last one.
    [[nodiscard]] const SkinIndexProgress &progress() const { return m_progress; }
    [[nodiscard]] const SkinIndexCounts &counts() const { return m_counts; }
    /// The last finished pass of this run; none before.
    [[nodiscard]] const std::optional<SkinIndexSummary> &summary() const { return m_summary; }

    /// Why the index or the folder cannot be used, as a sentence for the user; empty when all is well.
    [[nodiscard]] QString problem() const { return m_problem; }
    /// Whether problem() is about the database, so that resetIndex() can help.
    [[nodiscard]] bool isIndexUnusable() const { return m_isIndexUnusable; }
    /// Deletes the index and starts a pass that builds it anew. No file of the user's is touched. The
    /// windows' readers are told by indexAboutToReset(), to let go of the file until contentChanged().
    void resetIndex();

    /// Why changes in the folder are only looked for now and then, as a sentence for the user; empty when
    /// they are seen at once.
    [[nodiscard]] QString watchNote() const;

    /// Indexes these archives at once (a download, a file just dropped), also while a pass runs.
    void add(const QStringList &paths);

    /// Moves the file to the Trash and takes it out of the index, also while a pass runs. Other files of the
    /// skin stay. Emits trashed() or trashFailed() with the sentence for the user.
    void moveToTrash(const QString &path, const QString &name);

  Q_SIGNALS:
    void folderChanged();
    void progressChanged(); ///< also when a pass begins and ends
    void problemChanged();
    void watchNoteChanged();
    /// The rows changed: a batch was written, skins went, the index was reset. At most four times a second.
    void contentChanged();
    void indexAboutToReset();
    void trashed(const QString &path, const QString &name);
    void trashFailed(const QString &message);

  private:
    /// What the next turn of the worker shall do.
    struct Turn {
        bool pass = false;
        bool full = false;
        bool reset = false;
    };
    struct Problem {
        QString sentence;
        bool isIndexUnusable = false;
    };

    void begin(const Turn &turn);
    void finish(const std::optional<SkinIndexSummary> &summary, const Problem &problem);
    void advance(const SkinIndexProgress &progress, const SkinIndexCounts &counts);
    void setCounts(const SkinIndexCounts &counts);
    void setProblem(const Problem &problem);
    void noteContent();
    void runErrand(std::function<void()> errand);

    // On a worker thread.
    void work(const Turn &turn, const QUrl &folder, const std::stop_token &stop);
    [[nodiscard]] SkinIndexSummary pass(bool full, const QUrl &folder, const std::stop_token &stop);
    void readCounts();
    /// The problem that `action` runs into; an empty one when all is well.
    template <class Action>
    [[nodiscard]] static Problem attempt(const Action &action);
    /// Has the main thread do this.
    template <class Action>
    void post(Action action);

    const std::unique_ptr<SharedSkinIndex> m_index;
    QString m_folder;
    std::unique_ptr<FolderWatcher> m_watcher;

    bool m_isBusy = false; ///< the worker has its turn
    bool m_isIndexing = false;
    Turn m_next;
    std::stop_source m_stopPass;
    std::stop_source m_quit;

    SkinIndexProgress m_progress;
    SkinIndexCounts m_counts;
    std::optional<SkinIndexSummary> m_summary;
    QString m_problem;
    bool m_isIndexUnusable = false;
    QTimer m_contentPause;
    bool m_hasNewContent = false;

    QThreadPool m_passes;  ///< one thread: never more than one pass
    QThreadPool m_errands; ///< one thread, for what shall not wait for a pass
};

} // namespace vantor
