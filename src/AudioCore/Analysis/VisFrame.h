#pragma once

#include <array>

namespace vantor {

/// The data of one analyser picture.
struct VisFrame {
    static constexpr int columnCount = 75;
    static constexpr int scopeLength = 76;

    std::array<float, columnCount> spectrum{}; ///< levels 0…1
    std::array<float, scopeLength> scope{};    ///< samples −1…1
    int sampleCount = 0;                       ///< how many samples the picture was made from

    bool operator==(const VisFrame &) const = default;
};

} // namespace vantor
