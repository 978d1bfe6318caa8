#include "SendspinKit/Clock/SendspinClockState.h"

namespace vantor {

namespace {
/// A round trip below that, in microseconds, is no measurement: its error would count as none.
constexpr std::int64_t shortestRoundTrip = 2;
} // namespace

void SendspinClockBurst::add(const SendspinClockSample &sample) {
    if (!isFull())
        samples.push_back(sample);
}

std::optional<SendspinClockSample> SendspinClockBurst::best() const {
    std::optional<SendspinClockSample> best;
    for (const SendspinClockSample &sample : samples) {
        if (sample.roundTrip() >= shortestRoundTrip && (!best || sample.maxError() < best->maxError()))
            best = sample;
    }
    return best;
}

void SendspinClockState::finish(const SendspinClockBurst &burst) {
    if (const auto best = burst.best()) {
        const std::int64_t before = filter.lastUpdate();
        filter.update(best->measurement(), best->maxError(), best->t4);
        acceptedSamples += filter.lastUpdate() != before ? 1 : 0;
    }
    ++finishedBursts;
}

void SendspinClockState::reset() {
    filter.reset();
    acceptedSamples = 0;
    finishedBursts = 0;
}

} // namespace vantor
