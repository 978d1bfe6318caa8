#include "demo-track/Effects.h"

#include "demo-track/Filters.h"
#include "demo-track/Score.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vantor::demo {

namespace {

/// Factor before the limiter, set so that the whole piece measures -16 LUFS.
constexpr double masterGain = 0.97;
/// -1.7 dBFS: the peaks between the samples stay below -1 dBFS.
constexpr double ceiling = 0.82;
constexpr double fadeSeconds = 5.0;

void add(float &target, double value) {
    target += static_cast<float>(value);
}

/// Eight delay lines whose outputs are mixed back into each other without loss (a Hadamard matrix).
class Room {
  public:
    Room() {
        for (std::size_t i = 0; i < lines; ++i) {
            m_lines[i].resize(lengths[i]);
            // 60 dB down after the same time, however long the line is.
            m_keep[i] = std::pow(0.001, static_cast<double>(lengths[i]) / (sampleRate * decaySeconds));
        }
    }

    struct Out {
        double left;
        double right;
    };

    [[nodiscard]] Out next(double left, double right) {
        std::array<double, lines> taps{};
        for (std::size_t i = 0; i < lines; ++i)
            taps[i] = m_damping[i].next(m_lines[i][m_position[i]]) * m_keep[i];
        const Out out{taps[0] - taps[2] + taps[4] - taps[6], taps[1] - taps[3] + taps[5] - taps[7]};
        for (std::size_t half = 1; half < lines; half *= 2) {
            for (std::size_t i = 0; i < lines; ++i) {
                if ((i & half) != 0)
                    continue;
                const double sum = taps[i] + taps[i | half];
                taps[i | half] = taps[i] - taps[i | half];
                taps[i] = sum;
            }
        }
        for (std::size_t i = 0; i < lines; ++i) {
            m_lines[i][m_position[i]] = taps[i] * 0.35355339059327373 + (i % 2 == 0 ? left : right);
            m_position[i] = (m_position[i] + 1) % lengths[i];
        }
        return out;
    }

  private:
    static constexpr std::size_t lines = 8;
    static constexpr double decaySeconds = 2.1;
    // Primes between 25 and 80 ms, so that no echo falls on another.
    static constexpr std::array<std::size_t, lines> lengths{1117, 1361, 1613, 1877, 2179, 2521, 2953, 3491};

    std::array<std::vector<double>, lines> m_lines;
    std::array<std::size_t, lines> m_position{};
    std::array<double, lines> m_keep{};
    std::array<Smoother, lines> m_damping{Smoother(5200), Smoother(5000), Smoother(4800), Smoother(4600),
                                          Smoother(4400), Smoother(4200), Smoother(4000), Smoother(3800)};
};

/// For each frame the least of `gain` over the frames from it to `window` frames ahead.
void lookAhead(std::vector<float> &gain, std::size_t window) {
    std::vector<std::size_t> rising; // frames whose gains ascend; the first is the least
    std::size_t first = 0;
    std::vector<float> least(gain.size());
    std::size_t entered = 0;
    for (std::size_t i = 0; i < gain.size(); ++i) {
        for (; entered < gain.size() && entered <= i + window; ++entered) {
            while (rising.size() > first && gain[rising.back()] >= gain[entered])
                rising.pop_back();
            rising.push_back(entered);
        }
        while (rising[first] < i)
            ++first;
        least[i] = gain[rising[first]];
    }
    gain.swap(least);
}

/// Turns the mix down around peaks over the ceiling: 3 ms ahead of them, back within a tenth of a second.
void limit(StereoBuffer &mix) {
    constexpr std::size_t ahead = 132;
    constexpr double release = 0.08;
    std::vector<float> gain(mix.frames());
    for (std::size_t i = 0; i < gain.size(); ++i) {
        const float peak = std::max(std::abs(mix.left[i]), std::abs(mix.right[i]));
        gain[i] = std::min(1.0F, static_cast<float>(ceiling) / std::max(peak, 1e-9F));
    }
    lookAhead(gain, ahead);
    const double back = std::exp(-1.0 / (release * sampleRate));
    double held = 1.0;
    std::vector<double> window(ahead, 1.0);
    double sum = static_cast<double>(ahead);
    for (std::size_t i = 0; i < gain.size(); ++i) {
        const auto wanted = static_cast<double>(gain[i]);
        held = std::min(wanted, 1.0 + (held - 1.0) * back);
        // The mean over the look-ahead has reached the wanted gain when the peak arrives.
        sum += held - window[i % ahead];
        window[i % ahead] = held;
        const auto smooth = static_cast<float>(sum / static_cast<double>(ahead));
        mix.left[i] *= smooth;
        mix.right[i] *= smooth;
    }
}

/// Linear to two thirds of full scale, then bending towards it.
double softBend(double x) {
    constexpr double knee = 0.66;
    const double size = std::abs(x);
    if (size <= knee)
        return x;
    const double over = (size - knee) / (1.0 - knee);
    return std::copysign(knee + (1.0 - knee) * over / (1.0 + 0.5 * over), x);
}

} // namespace

void addDelay(Desk &desk) {
    const auto time = static_cast<std::size_t>(0.75 * secondsPerBeat * sampleRate);
    constexpr double feedback = 0.42;
    std::vector<double> left(time);
    std::vector<double> right(time);
    Smoother leftDull(3400.0);
    Smoother rightDull(3400.0);
    Filter leftThin(260.0);
    Filter rightThin(260.0);
    for (std::size_t i = 0; i < desk.dry.frames(); ++i) {
        const std::size_t at = i % time;
        const double echoLeft = left[at];
        const double echoRight = right[at];
        add(desk.dry.left[i], echoLeft);
        add(desk.dry.right[i], echoRight);
        add(desk.reverbSend.left[i], 0.25 * echoLeft);
        add(desk.reverbSend.right[i], 0.25 * echoRight);
        const auto inLeft = static_cast<double>(desk.delaySend.left[i]);
        const auto inRight = static_cast<double>(desk.delaySend.right[i]);
        left[at] = leftThin.highPass(leftDull.next(inLeft + feedback * echoRight));
        right[at] = rightThin.highPass(rightDull.next(inRight * 0.5 + feedback * echoLeft));
    }
}

void addReverb(Desk &desk) {
    constexpr double level = 0.5;
    Room room;
    Filter leftThin(180.0);
    Filter rightThin(180.0);
    for (std::size_t i = 0; i < desk.dry.frames(); ++i) {
        const Room::Out out = room.next(leftThin.highPass(static_cast<double>(desk.reverbSend.left[i])),
                                        rightThin.highPass(static_cast<double>(desk.reverbSend.right[i])));
        add(desk.dry.left[i], level * out.left);
        add(desk.dry.right[i], level * out.right);
    }
}

void master(StereoBuffer &mix) {
    Filter leftFloor(24.0);
    Filter rightFloor(24.0);
    for (std::size_t i = 0; i < mix.frames(); ++i) {
        mix.left[i] =
            static_cast<float>(softBend(masterGain * leftFloor.highPass(static_cast<double>(mix.left[i]))));
        mix.right[i] =
            static_cast<float>(softBend(masterGain * rightFloor.highPass(static_cast<double>(mix.right[i]))));
    }
    limit(mix);
    const auto fadeFrames = static_cast<std::size_t>(fadeSeconds * sampleRate);
    for (std::size_t i = 0; i < fadeFrames; ++i) {
        const double left = static_cast<double>(i) / static_cast<double>(fadeFrames);
        const auto gain = static_cast<float>(left * left * (3.0 - 2.0 * left));
        mix.left[mix.frames() - 1 - i] *= gain;
        mix.right[mix.frames() - 1 - i] *= gain;
    }
}

} // namespace vantor::demo
