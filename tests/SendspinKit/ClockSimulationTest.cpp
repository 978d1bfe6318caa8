#include "tests/Support/FakeSendspin/SendspinSimulation.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How well a session knows the server's clock over some time.
class SendspinClockSimulation : public testing::Test {
  protected:
    struct Outcome {
        std::chrono::microseconds synchronizedAfter{-1};
        int synchronizations = 0;
        std::vector<std::int64_t> errors; ///< from `settled` on, in microseconds, in their order of size

        /// What the given part of the errors stays below.
        [[nodiscard]] std::int64_t percentile(double part) const {
            return errors[static_cast<std::size_t>(part * static_cast<double>(errors.size() - 1))];
        }
    };

    static Outcome run(SendspinSimulation &simulation, std::chrono::seconds settled,
                       std::chrono::seconds length) {
        Outcome outcome;
        simulation.session.start(simulation.configuration);
        for (std::chrono::microseconds time{0}; time < length; time += 20ms) {
            simulation.advance(20ms);
            for (const SendspinEvent &event : std::exchange(simulation.events, {})) {
                if (!std::holds_alternative<SendspinEvent::Synchronized>(event.content))
                    continue;
                if (++outcome.synchronizations == 1)
                    outcome.synchronizedAfter = time + 20ms;
            }
            if (time >= settled)
                outcome.errors.push_back(std::abs(simulation.clockError()));
        }
        std::sort(outcome.errors.begin(), outcome.errors.end());
        return outcome;
    }
};

struct NetworkRow {
    const char *name;
    FakeNetwork network;
    std::chrono::seconds length;
    std::int64_t steady; ///< microseconds that 99 of 100 predictions are wrong by at most
};

const NetworkRow networks[] = {
    {"ideal", {.base = 1ms}, 10min, 5},
    {"10 ms jitter", {.base = 1ms, .jitter = 10ms}, 2h, 1000},
    {"10 ms jitter and 50 ms bursts",
     {.base = 1ms, .jitter = 10ms, .burst = 50ms, .burstLength = 500ms, .burstPeriod = 5s},
     2h,
     2000},
};

} // namespace

TEST_F(SendspinClockSimulation, KeepsTheClockForHours) {
    for (const NetworkRow &row : networks) {
        SCOPED_TRACE(row.name);
        SendspinSimulation simulation;
        simulation.server.network = row.network;
        simulation.server.setClock(3'600'000'000'000, 50);
        const Outcome outcome = run(simulation, 60s, row.length);
        EXPECT_EQ(outcome.synchronizations, 1) << "lost it on the way";
        EXPECT_LT(outcome.percentile(0.99), row.steady);
        EXPECT_NEAR(simulation.session.clock().filter.drift(), 50e-6, 1e-6);
    }
}

TEST_F(SendspinClockSimulation, IsReadyWithinASecond) {
    for (const NetworkRow &row : networks) {
        for (unsigned seed = 1; seed <= 10; ++seed) {
            SCOPED_TRACE(row.name);
            SendspinSimulation simulation(seed);
            simulation.server.network = row.network;
            simulation.server.setClock(-2'000'000'000, -50);
            const Outcome outcome = run(simulation, 2s, 30s);
            EXPECT_LE(outcome.synchronizedAfter, 1s);
            EXPECT_GE(outcome.synchronizedAfter, 0s);
            EXPECT_LT(outcome.percentile(1), 10'000) << "so that playing goes on without a jump";
        }
    }
}

TEST_F(SendspinClockSimulation, IsWrongByHalfOfWhatOneWayTakesLonger) {
    SendspinSimulation simulation;
    simulation.server.network = {.base = 1ms, .jitter = 2ms, .toServer = 6ms};
    const Outcome outcome = run(simulation, 60s, 5min);
    EXPECT_NEAR(static_cast<double>(outcome.percentile(0.5)), 3000, 300);
}

TEST_F(SendspinClockSimulation, RecoversFromAClockThatIsSet) {
    for (const std::int64_t jump : {3'600'000'000L, -3'600'000'000L, 150'000L}) {
        SCOPED_TRACE(jump);
        SendspinSimulation simulation;
        simulation.server.network = {.base = 1ms, .jitter = 10ms};
        simulation.server.setClock(0, 50);
        EXPECT_EQ(run(simulation, 0s, 5min).synchronizations, 1);
        simulation.server.setClock(jump, 50);
        simulation.advance(4s);
        EXPECT_LT(std::abs(simulation.clockError()), 5000);
        ASSERT_EQ(simulation.events.size(), 1U);
        EXPECT_TRUE(std::holds_alternative<SendspinEvent::Synchronized>(simulation.events[0].content));
    }
}
