#pragma once

#include <QImage>
#include <QPoint>

#include <chrono>
#include <cstdint>
#include <ratio>
#include <vector>

namespace vantor {

/// The unit of animated cursor files: 1/60 s.
using Jiffies = std::chrono::duration<std::int64_t, std::ratio<1, 60>>;

/// A decoded mouse pointer, still or animated.
struct SkinCursor {
    struct Frame {
        QImage image;   ///< Format_RGBA8888_Premultiplied, 1–256 pixels a side
        QPoint hotSpot; ///< as the file says, 0–65535: it may lie outside the image

        /// The picture enlarged by a whole factor, nearest neighbour; `factor` below 1 counts as 1.
        [[nodiscard]] QImage upscaled(int factor) const;

        bool operator==(const Frame &) const = default;
    };
    struct Step {
        int frame = 0;       ///< index into `frames`, always valid
        Jiffies duration{0}; ///< 1–2^32-1 when animated

        bool operator==(const Step &) const = default;
    };

    std::vector<Frame> frames; ///< never empty
    std::vector<Step> steps;   ///< never empty; one step of no duration for a still pointer

    bool operator==(const SkinCursor &) const = default;
};

} // namespace vantor
