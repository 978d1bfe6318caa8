#pragma once

#include "MusicBackendKit/ArtworkRef.h"

#include <QStringList>

#include <optional>
#include <vector>

/// The covers of albums: images in their folders, else what is embedded in their tracks. Any thread.
namespace vantor::FolderArtwork {

/// An image file.
struct Image {
    QString relativePath;
    double modified = 0; ///< seconds since 1970

    bool operator==(const Image &) const = default;
};

/// In lower case; the first that is there is the cover.
[[nodiscard]] const QStringList &coverNames();

/// The one that is most likely the front cover: by coverNames(), then by what its name holds, then the first.
[[nodiscard]] std::optional<Image> best(const std::vector<Image> &images);

/// Names an image, or an audio file for the picture in it. A file that is rewritten gets another name.
[[nodiscard]] ArtworkRef ref(const QString &relativePath, double modified);

/// A JPEG or PNG image neither side of which exceeds `maxPixels`. When the named one is broken, the next best
/// in its folder stands in, and last what is embedded in the first audio file there. Reads from disk: worker
/// threads. Throws MusicBackendError when there is none.
[[nodiscard]] QByteArray data(const ArtworkRef &ref, const QString &root, int maxPixels);

} // namespace vantor::FolderArtwork
