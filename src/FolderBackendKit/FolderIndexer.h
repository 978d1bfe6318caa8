#pragma once

#include "AudioCore/Queue/FileMetadata.h"
#include "FolderBackendKit/FolderIndex.h"

#include <atomic>
#include <functional>
#include <stop_token>

namespace vantor {

class FolderWalk;

/// How far a pass is, for whoever watches it from another thread.
struct FolderIndexProgress {
    std::atomic_int done = 0;
    std::atomic_int total = 0; ///< files to read
};

/// Makes the index of a music folder. Any thread; several may use it.
class FolderIndexer {
  public:
    /// Reads the metadata of one file as FileMetadata::read does; called on several threads at once.
    using Loader = std::function<FileMetadata(const QString &path)>;

    /// At most `maxConcurrent` files are read at a time.
    FolderIndexer(Loader loader, int maxConcurrent);

    /// What `previous` holds of files whose size and date have not changed is taken over. None when told to
    /// stop. Throws MusicBackendError when the folder cannot be read.
    [[nodiscard]] std::optional<FolderIndex> build(const QString &root, const FolderIndex &previous,
                                                   const std::stop_token &stop = {},
                                                   FolderIndexProgress *progress = nullptr) const;

  private:
    class Pass;

    Loader m_loader;
    int m_maxConcurrent;
};

} // namespace vantor
