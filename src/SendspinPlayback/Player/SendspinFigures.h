#pragma once

#include <cstdint>

namespace vantor {

/// How a stream is doing. A value.
struct SendspinFigures {
    double offset = 0;              ///< server's clock less the local one, microseconds
    double drift = 0;               ///< of those two, microseconds in a microsecond
    std::int64_t clockError = 0;    ///< standard deviation of the offset, microseconds; greatest: unknown
    double error = 0;               ///< seconds that the sound is heard before its time, smoothed
    double ratio = 1;               ///< frames of the stream for each frame of the output
    double bufferedMs = 0;          ///< how long the sound that is there lasts
    std::int64_t bufferedBytes = 0; ///< of it, what is still coded
    int bitrate = 0;                ///< kbit/s of what came lately; 0: unknown
    std::int64_t late = 0;          ///< chunks whose time was over, since the player was made
    std::int64_t dropped = 0;       ///< chunks that did not fit or could not be decoded
    std::int64_t resyncs = 0;       ///< jumps for missing sound or a large error
    bool isPlaying = false;         ///< sound is heard

    bool operator==(const SendspinFigures &) const = default;
};

} // namespace vantor
