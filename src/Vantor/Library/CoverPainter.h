#pragma once

#include "LibraryBrowser/LibraryItem.h"
#include "MusicLibraryKit/ArtworkCache.h"

#include <QCache>
#include <QPixmap>

namespace vantor {

/// Draws the covers of a view, or what stands for them while they are not there. Main thread; borrows the
/// cache.
class CoverPainter : public QObject {
    Q_OBJECT

  public:
    CoverPainter(ArtworkCache &artwork, QObject *parent);

    /// Square and with round corners; artists are round.
    void draw(QPainter &painter, const QRect &place, const std::optional<ArtworkRef> &artwork,
              std::optional<MediaKind> kind, const QPalette &colors);

  Q_SIGNALS:
    /// One has come.
    void changed(const vantor::ArtworkRef &artwork);

  private:
    struct Key {
        ArtworkRef artwork;
        int side = 0; ///< in the screen's pixels
        bool isRound = false;

        bool operator==(const Key &) const = default;
        friend size_t qHash(const Key &key, size_t seed = 0) noexcept {
            return qHashMulti(seed, key.artwork, key.side, key.isRound);
        }
    };

    [[nodiscard]] QPixmap cover(const Key &key, double ratio);

    ArtworkCache &m_artwork;
    QCache<Key, QPixmap> m_covers; ///< ready to be put on the screen; cost in KiB
};

} // namespace vantor
