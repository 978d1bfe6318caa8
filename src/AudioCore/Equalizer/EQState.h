#pragma once

#include "AudioCore/Equalizer/EQBands.h"

#include <QJsonObject>

#include <optional>
#include <span>

namespace vantor {

class EQPreset;

/// The settings of the ten-band equalizer. Levels are in decibels. However a level is set, it is normalised:
/// NaN becomes 0 and everything else is clamped to `gainRange`.
class EQState {
  public:
    struct GainRange {
        float lower;
        float upper;
    };

    static constexpr int bandCount = static_cast<int>(EQBands::all.size());
    static constexpr GainRange gainRange{-12.0F, 12.0F};
    using Gains = std::array<float, bandCount>;

    /// Flat: enabled, every level 0.
    EQState() = default;
    /// Keeps the first ten gains; missing ones are 0.
    EQState(bool isEnabled, float preamp, std::span<const float> gains);

    [[nodiscard]] static EQState flat() { return {}; }

    /// False bypasses the equalizer.
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }
    [[nodiscard]] float preamp() const { return m_preamp; }
    [[nodiscard]] const Gains &gains() const { return m_gains; }
    /// 0 for an index outside 0…9.
    [[nodiscard]] float band(int index) const;

    void setEnabled(bool isEnabled) { m_isEnabled = isEnabled; }
    void setPreamp(float decibels);
    void setGains(std::span<const float> gains);
    /// An index outside 0…9 is ignored.
    void setBand(int index, float decibels);

    /// The preset's levels with this state's `isEnabled`.
    [[nodiscard]] EQState applying(const EQPreset &preset) const;

    [[nodiscard]] QJsonObject toJson() const;
    /// None when a key is missing or of the wrong type; levels are normalised.
    [[nodiscard]] static std::optional<EQState> fromJson(const QJsonObject &object);

    bool operator==(const EQState &) const = default;

  private:
    bool m_isEnabled = true;
    float m_preamp = 0;
    Gains m_gains{};
};

} // namespace vantor
