#pragma once

#include <QJsonObject>

#include <optional>
#include <span>
#include <vector>

/// The keys "preamp" and "gains", which stored equalizer states and presets share.
namespace vantor::EQJson {

struct Levels {
    float preamp = 0;
    std::vector<float> gains; ///< as many as were stored
};

[[nodiscard]] QJsonObject fromLevels(float preamp, std::span<const float> gains);
/// None when a key is missing or of the wrong type.
[[nodiscard]] std::optional<Levels> toLevels(const QJsonObject &object);

} // namespace vantor::EQJson
