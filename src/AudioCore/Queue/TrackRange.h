#pragma once

#include <optional>

namespace vantor {

/// The part of a file that a track is, in seconds from the file's start. A value; any thread.
struct TrackRange {
    double start = 0;
    std::optional<double> end = {}; ///< behind the start; none: the file's end

    bool operator==(const TrackRange &) const = default;
};

} // namespace vantor
