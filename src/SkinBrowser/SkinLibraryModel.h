#pragma once

#include "SkinLibrary/Index/SkinRecord.h"
#include "SkinLibrary/Ingest/SkinIndexer.h"

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <optional>

namespace vantor {

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

    /// Local path; empty without one. Setting it starts a pass.
    [[nodiscard]] QString folder() const;
    void setFolder(const QString &path);

    /// Starts a pass, or another one after the running one. `full`: every file counts as changed.
    void reindex(bool full = false);
    /// Ends the pass after the batch at hand. What it has done stays.
    void cancel();
    [[nodiscard]] bool isIndexing() const;
    /// Of the running pass, else of the last one.
    [[nodiscard]] const SkinIndexProgress &progress() const;
    [[nodiscard]] const SkinIndexCounts &counts() const;
    /// The last finished pass of this run; none before.
    [[nodiscard]] const std::optional<SkinIndexSummary> &summary() const;

    /// Why the index or the folder cannot be used, as a sentence for the user; empty when all is well.
    [[nodiscard]] QString problem() const;
    /// Whether problem() is about the database, so that resetIndex() can help.
    [[nodiscard]] bool isIndexUnusable() const;
    /// Deletes the index and starts a pass that builds it anew. No file of the user's is touched. The
    /// windows' readers are told by indexAboutToReset(), to let go of the file.
    void resetIndex();

    /// Indexes these archives at once (a download, a file just dropped).
    void add(const QStringList &paths);

    /// Moves the file to the Trash and takes it out of the index. Emits trashed() or trashFailed() with the
    /// sentence for the user.
    void moveToTrash(const QString &path, const QString &name);

  signals:
    void folderChanged();
    void progressChanged(); ///< also when a pass begins and ends
    void problemChanged();
    /// The rows changed: a batch was written, skins went, the index was reset. At most four times a second.
    void contentChanged();
    void indexAboutToReset();
    void trashed(const QString &path, const QString &name);
    void trashFailed(const QString &message);
};

} // namespace vantor
