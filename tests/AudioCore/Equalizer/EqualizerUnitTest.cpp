#include "AudioCore/Equalizer/EqualizerUnit.h"

#include "tests/Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <bit>
#include <complex>
#include <limits>
#include <numbers>
#include <random>
#include <thread>

using namespace vantor;

namespace {

using Samples = std::vector<float>;
constexpr double pi = std::numbers::pi;

EQState everyBand(float preamp = -2) {
    return EQState(true, preamp,
                   std::array{6.0F, -4.0F, 12.0F, -12.0F, 3.0F, -7.0F, 9.0F, -3.0F, 5.0F, -8.0F});
}

struct ReadyUnit : EqualizerUnit {
    ReadyUnit(const EQState &state, int rate, PeakingBank::Kernel kernel = PeakingBank::Kernel::vector)
        : EqualizerUnit(kernel) {
        apply(state);
        prepare(rate);
    }
};

Samples noise(int frames) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.5F, 0.5F);
    Samples samples(static_cast<size_t>(frames) * 2);
    std::generate(samples.begin(), samples.end(), [&] { return level(random); });
    return samples;
}

void process(EqualizerUnit &unit, Samples &samples, std::vector<int> blocks) {
    const int frames = static_cast<int>(samples.size() / 2);
    for (int at = 0, next = 0; at < frames; ++next) {
        const int block = std::min(blocks[static_cast<size_t>(next) % blocks.size()], frames - at);
        unit.process(samples.data() + 2 * at, block);
        at += block;
    }
}

// The same bits, so that −0 and NaN count as what they are.
bool identical(const Samples &a, const Samples &b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](float x, float y) {
        return std::bit_cast<uint32_t>(x) == std::bit_cast<uint32_t>(y);
    });
}

// The peaking biquad as textbooks print it, for a bandwidth in octaves.
struct Biquad {
    double b0, b1, b2, a0, a1, a2;

    Biquad(const EQBand &band, double decibels, double rate) {
        const double w0 = 2 * pi * band.frequency / rate;
        const double alpha = std::sin(w0) * std::sinh(std::log(2) / 2 * band.bandwidth * w0 / std::sin(w0));
        const double a = std::pow(10, decibels / 40);
        b0 = 1 + alpha * a;
        b1 = a1 = -2 * std::cos(w0);
        b2 = 1 - alpha * a;
        a0 = 1 + alpha / a;
        a2 = 1 - alpha / a;
    }

    [[nodiscard]] double decibelsAt(double frequency, double rate) const {
        const std::complex<double> z = std::polar(1.0, -2 * pi * frequency / rate);
        return 20 * std::log10(std::abs((b0 + z * (b1 + z * b2)) / (a0 + z * (a1 + z * a2))));
    }
};

double measured(const Samples &impulseResponse, size_t channel, double frequency, double rate) {
    std::complex<double> sum;
    for (size_t frame = 0; frame < impulseResponse.size() / 2; ++frame)
        sum += std::polar<double>(1, -2 * pi * frequency / rate * static_cast<double>(frame)) *
               static_cast<double>(impulseResponse[2 * frame + channel]);
    return 20 * std::log10(std::abs(sum));
}

float largestBend(const Samples &samples) {
    float largest = 0;
    for (size_t at = 4; at < samples.size(); at += 2)
        largest = std::max(largest, std::abs(samples[at] - 2 * samples[at - 2] + samples[at - 4]));
    return largest;
}

} // namespace

TEST(EqualizerUnitTest, ResponseIsTheAnalyticOneAtEveryCentre) {
    for (const int rate : {8000, 22050, 44100, 48000, 96000, 192000}) {
        const EQState state = everyBand();
        ReadyUnit unit(state, rate);
        Samples response(static_cast<size_t>(rate)); // half a second
        response[0] = response[1] = 1;
        process(unit, response, {480});
        for (const EQBand &measuredBand : EQBands::all) {
            if (measuredBand.frequency >= rate / 2.0)
                continue;
            double expected = state.preamp();
            for (int band = 0; band < EQState::bandCount; ++band) {
                const EQBand &shape = EQBands::all[static_cast<size_t>(band)];
                if (shape.frequency < 0.45 * rate)
                    expected +=
                        Biquad(shape, state.band(band), rate).decibelsAt(measuredBand.frequency, rate);
            }
            SCOPED_TRACE(testing::Message() << rate << " Hz, at " << measuredBand.frequency);
            for (const size_t channel : {0U, 1U})
                EXPECT_NEAR(measured(response, channel, measuredBand.frequency, rate), expected, 0.01);
        }
    }
}

TEST(EqualizerUnitTest, LowestBandStaysCleanAtTheHighestRate) {
    constexpr int rate = 192000;
    ReadyUnit unit(EQState(true, 0, std::array{12.0F}), rate);
    const Samples source = noise(rate);
    Samples filtered = source;
    process(unit, filtered, {512});
    const Biquad exact(EQBands::all[0], 12, rate);
    double s1 = 0, s2 = 0, error = 0;
    for (size_t at = 0; at < source.size(); at += 2) {
        const double x = source[at];
        const double y = (exact.b0 * x + s1) / exact.a0;
        s1 = exact.b1 * x - exact.a1 * y + s2;
        s2 = exact.b2 * x - exact.a2 * y;
        error += (y - filtered[at]) * (y - filtered[at]);
    }
    EXPECT_LT(10 * std::log10(error / rate), -120); // decibels below full scale
}

TEST(EqualizerUnitTest, BothKernelsAndAllBlockSizesGiveTheSameBits) {
    const std::vector<std::vector<int>> blockings{{4096}, {1}, {2, 9, 10, 11}, {64, 31}};
    Samples expected = noise(4096);
    ReadyUnit reference(everyBand(), 44100, PeakingBank::Kernel::scalar);
    process(reference, expected, {4096});
    for (const auto &blocks : blockings) {
        ReadyUnit scalar(everyBand(), 44100, PeakingBank::Kernel::scalar);
        ReadyUnit vector(everyBand(), 44100);
        Samples fromScalar = noise(4096);
        Samples fromVector = fromScalar;
        process(scalar, fromScalar, blocks);
        process(vector, fromVector, blocks);
        EXPECT_TRUE(identical(fromScalar, expected));
        EXPECT_TRUE(identical(fromVector, expected));
        scalar.apply(EQState(true, 6, {})); // and while gains glide
        vector.apply(EQState(true, 6, {}));
        process(scalar, fromScalar, blocks);
        process(vector, fromVector, blocks);
        EXPECT_TRUE(identical(fromScalar, fromVector));
    }
}

TEST(EqualizerUnitTest, DisabledPassesEveryBitOnceTheGlideIsOver) {
    EQState state = everyBand(0);
    ReadyUnit unit(state, 48000);
    Samples samples = noise(4800);
    process(unit, samples, {512});
    state.setEnabled(false);
    unit.apply(state);
    process(unit, samples, {512}); // 100 ms
    Samples source = noise(512);
    source[3] = -0.0F;
    source[4] = std::numeric_limits<float>::denorm_min();
    source[5] = std::numeric_limits<float>::signaling_NaN();
    samples = source;
    process(unit, samples, {512});
    EXPECT_TRUE(identical(samples, source));

    state.setEnabled(true);
    unit.apply(state);
    process(unit, samples, {512});
    EXPECT_FALSE(identical(samples, source));

    unit.configureWinampBands(); // flat, which is as good as disabled
    unit.prepare(48000);
    samples = source;
    process(unit, samples, {512});
    EXPECT_TRUE(identical(samples, source));
}

TEST(EqualizerUnitTest, JumpingSettingsMakeNoZipperNoise) {
    constexpr int rate = 48000;
    constexpr double frequency = 310;
    Samples sine(rate * 2);
    for (size_t frame = 0; frame < rate; ++frame)
        sine[2 * frame] = sine[2 * frame + 1] =
            0.1F * static_cast<float>(std::sin(2 * pi * frequency / rate * static_cast<double>(frame)));
    const EQState loud(true, 12, std::array{0.0F, 12.0F, 12.0F, 12.0F});
    EQState off = loud;
    off.setEnabled(false);
    const EQState quiet(true, -12, std::array{12.0F, -12.0F, -12.0F, -12.0F, 12.0F});

    ReadyUnit steady(loud, rate);
    Samples steadySine(sine.begin(), sine.end());
    process(steady, steadySine, {512});
    const float steadyBend = largestBend({steadySine.begin() + rate, steadySine.end()});

    EqualizerUnit unit;
    unit.prepare(rate);
    const std::array states{loud, quiet, off, loud, off, quiet};
    for (int block = 0; block < 90; ++block) { // 11 ms each: most jumps come in the middle of a glide
        if (block % 5 != 0)
            unit.apply(states[static_cast<size_t>(block) % states.size()]);
        unit.process(sine.data() + block * 2 * 533, 533);
    }
    sine.resize(90 * 2 * 533);
    EXPECT_LT(largestBend(sine), 1.25F * steadyBend);
}

TEST(EqualizerUnitTest, BadSamplesAreForgotten) {
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), INFINITY, 3e38F}) {
        ReadyUnit unit(everyBand(12), 48000);
        Samples samples = noise(512);
        samples[100] = samples[102] = bad;
        process(unit, samples, {512});
        EXPECT_TRUE(std::all_of(samples.begin(), samples.end(), [](float s) { return std::isfinite(s); }));
        ReadyUnit fresh(everyBand(12), 48000);
        Samples after = noise(512);
        Samples expected = after;
        process(unit, after, {512});
        process(fresh, expected, {512});
        EXPECT_TRUE(identical(after, expected));
    }
}

TEST(EqualizerUnitTest, SilenceMakesNoDenormalsAndTheCallersModeIsKept) {
    ReadyUnit unit(everyBand(), 48000);
    Samples samples(48000 * 2);
    samples[0] = samples[1] = 1;
    process(unit, samples, {512});
    EXPECT_TRUE(std::none_of(samples.begin(), samples.end(),
                             [](float s) { return std::fpclassify(s) == FP_SUBNORMAL; }));
    volatile float smallest = std::numeric_limits<float>::min();
    EXPECT_GT(smallest / 2, 0);
}

TEST(EqualizerUnitTest, ProcessNeverAllocatesWhileAnotherThreadTurnsKnobs) {
    EqualizerUnit unit;
    unit.prepare(48000);
    std::thread knobs([&unit] {
        for (int turn = 0; turn < 2000; ++turn)
            unit.apply(turn % 2 == 0 ? everyBand(static_cast<float>(turn % 12)) : EQState::flat());
        unit.apply(EQState(true, -6, {}));
    });
    Samples samples = noise(48000);
    const int64_t before = allocationCount();
    for (size_t at = 0; at + 256 <= samples.size(); at += 256)
        unit.process(samples.data() + at, 128);
    EXPECT_EQ(allocationCount(), before);
    knobs.join();
    samples.assign(4800, 0.5F);
    unit.process(samples.data(), 2400);
    EXPECT_FLOAT_EQ(samples.back(), 0.5F * std::pow(10.0F, -0.3F)); // the last setting wins
}
