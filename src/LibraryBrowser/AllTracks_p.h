#pragma once

#include "MusicBackendKit/MusicBackend.h"

namespace vantor {

/// The tracks of every album of a source, one album after another, by the page. When all albums tell how many
/// tracks they have, any page can be asked for, and every page tells the total; otherwise the pages follow
/// one another from the first on. Main thread; in a shared_ptr, which what is under way holds as well.
class AllTracks : public std::enable_shared_from_this<AllTracks> {
  public:
    explicit AllTracks(std::shared_ptr<MusicBackend> backend);

    QCoro::Task<Page<LibraryTrack>> page(PageRequest request);
    /// The albums may have changed.
    void renew();

  private:
    struct Walk;

    QCoro::Task<> count(std::shared_ptr<Walk> walk);
    QCoro::Task<Page<LibraryTrack>> pageAt(std::shared_ptr<Walk> walk, PageRequest request);
    QCoro::Task<Page<LibraryTrack>> nextPage(std::shared_ptr<Walk> walk, PageRequest request);

    const std::shared_ptr<MusicBackend> m_backend;
    std::shared_ptr<Walk> m_walk; ///< one that nobody waits for any more may still be under way
};

} // namespace vantor
