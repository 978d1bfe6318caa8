#include "AudioCore/Queue/Track.h"

#include <QHash>

namespace vantor {

size_t qHash(const Track::Source &source, size_t seed) noexcept {
    return std::visit([&](const auto &value) { return qHash(value, seed); }, source);
}

// Entries have ids of their own; equal tracks have equal ids.
size_t qHash(const Track &track, size_t seed) noexcept {
    return qHash(track.id, seed);
}

} // namespace vantor
