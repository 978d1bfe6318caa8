#pragma once

#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Graph/SpscRing.h"

namespace vantor {

/// The sound between two frames, for ratios close to 1: a windowed sinc of 48 taps, flat to 0.43 of the
/// sample rate and, at frequencies below that, right to −90 dB. Allocates when made only.
class SendspinInterpolator {
  public:
    static constexpr int taps = 48;
    static constexpr int before = taps / 2 - 1; ///< frames that it looks at before the one it is at or after

    SendspinInterpolator();

    /// The sound at a fractional frame number. Frames outside [`first`, `end`) are silence; the others are
    /// held by the ring.
    [[nodiscard]] StereoFrame at(const SpscRing<StereoFrame> &ring, double position, std::int64_t first,
                                 std::int64_t end) const;

  private:
    static constexpr int phases = 256;

    std::vector<float> m_table; ///< of each phase from 0 to `phases` the taps
};

} // namespace vantor
