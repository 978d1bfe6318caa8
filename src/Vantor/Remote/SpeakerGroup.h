#pragma once

#include "MusicBackendKit/OutputDevice.h"

#include <QList>

namespace vantor {

class LibraryBrowser;

/// With which others an output plays, or may play. A value.
struct SpeakerGroup {
    std::optional<OutputDevice> leader; ///< in whose group it plays as a member
    QList<OutputDevice> members;        ///< of the group that it leads, without itself
    QList<OutputDevice> joinable;       ///< what may play along with it, or does

    /// As the browser's source tells it now. Main thread.
    [[nodiscard]] static SpeakerGroup of(const OutputDevice &output, const LibraryBrowser &browser);

    bool operator==(const SpeakerGroup &) const = default;
};

} // namespace vantor
