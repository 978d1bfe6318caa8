#pragma once

#include <cstdint>
#include <optional>

namespace vantor {

/// Decides which stretch of the ring each picture shows, so that it moves evenly although sound arrives in
/// bursts: it stays one burst and a little slack behind the writer and advances with the clock. A value.
struct VisReadCursor {
    int window = 0;   ///< samples that one picture needs
    int readable = 0; ///< how many of the newest samples the ring still holds
    double slackSeconds = 0.02;

    std::optional<int64_t> position; ///< the write count at which the last picture ended
    int64_t largestDelivery = 0;     ///< the most samples seen to arrive at once
    std::optional<int64_t> lastWriteCount;
    double stalledSeconds = 0; ///< since samples last arrived
    double carry = 0;          ///< fraction of a sample left over from the last step

    /// Where the picture to show now ends; none as long as there is too little sound. `elapsed`: seconds
    /// since the last call; `sampleRate`: Hz, above 0.
    [[nodiscard]] std::optional<int64_t> next(int64_t writeCount, double elapsed, double sampleRate);

    bool operator==(const VisReadCursor &) const = default;

  private:
    void trackDelivery(int64_t writeCount, double elapsed);
};

} // namespace vantor
