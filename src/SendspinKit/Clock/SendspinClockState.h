#pragma once

#include "SendspinKit/Clock/SendspinTimeFilter.h"

#include <optional>
#include <vector>

namespace vantor {

/// One question for the server's time and its answer: four instants in microseconds, within
/// ±SendspinIncoming::maxInstant.
struct SendspinClockSample {
    std::int64_t t1 = 0; ///< the client sent; the client's clock
    std::int64_t t2 = 0; ///< the server received; the server's clock
    std::int64_t t3 = 0; ///< the server sent; the server's clock
    std::int64_t t4 = 0; ///< the client received; the client's clock

    /// The time on the way there and back.
    [[nodiscard]] std::int64_t roundTrip() const { return (t4 - t1) - (t3 - t2); }
    /// The offset of the clocks if both ways took as long; a number of half microseconds.
    [[nodiscard]] double measurement() const { return static_cast<double>((t2 - t1) + (t3 - t4)) / 2; }
    /// How wrong that is at most: half the round trip, whole microseconds.
    [[nodiscard]] std::int64_t maxError() const { return roundTrip() / 2; }

    bool operator==(const SendspinClockSample &) const = default;
};

/// Several samples in a row, of which one counts: the one that the network delayed least. A value.
struct SendspinClockBurst {
    static constexpr int defaultSize = 8;

    int size = defaultSize; ///< how many samples are kept
    std::vector<SendspinClockSample> samples;

    /// Without effect once `size` are held.
    void add(const SendspinClockSample &sample);
    [[nodiscard]] bool isFull() const { return std::ssize(samples) >= size; }
    /// The sample with the smallest maximal error, the first one of several; none when there is no sample
    /// whose round trip took 2 microseconds or more.
    [[nodiscard]] std::optional<SendspinClockSample> best() const;
};

/// What is known of the server's clock on one connection. A value: copies are snapshots.
struct SendspinClockState {
    SendspinTimeFilter filter;
    int acceptedSamples = 0; ///< that the filter took
    int finishedBursts = 0;

    /// Gives the best sample of the burst to the filter.
    void finish(const SendspinClockBurst &burst);
    void reset();

    bool operator==(const SendspinClockState &) const = default;
};

} // namespace vantor
