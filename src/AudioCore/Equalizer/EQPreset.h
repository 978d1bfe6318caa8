#pragma once

#include "AudioCore/Equalizer/EQState.h"

#include <QString>

#include <vector>

namespace vantor {

/// A named setting of the equalizer. Levels are in decibels and normalised as in EQState.
class EQPreset {
  public:
    EQPreset(const QString &name, float preamp, std::span<const float> gains);

    /// The presets that come with the program, in the order of the menu.
    [[nodiscard]] static const std::vector<EQPreset> &builtIn();

    /// The classic slider scale has the steps 1…64 with 33 in the middle. 32 steps lead down to −12 dB and
    /// 31 up to +12 dB, so the halves differ. Values outside count as the nearest step; the level is rounded
    /// to a tenth.
    [[nodiscard]] static float decibelsFromWinampValue(int value);
    /// The nearest step; NaN counts as 0 dB.
    [[nodiscard]] static int winampValueFromDecibels(float decibels);

    [[nodiscard]] const QString &id() const { return m_name; }
    [[nodiscard]] const QString &name() const { return m_name; }
    [[nodiscard]] float preamp() const { return m_preamp; }
    [[nodiscard]] const EQState::Gains &gains() const { return m_gains; }

    [[nodiscard]] QJsonObject toJson() const;
    /// None when a key is missing or of the wrong type; levels are normalised.
    [[nodiscard]] static std::optional<EQPreset> fromJson(const QJsonObject &object);

    bool operator==(const EQPreset &) const = default;

  private:
    using SliderValues = std::array<int, EQState::bandCount>;

    EQPreset(const QString &name, const SliderValues &sliderValues);

    QString m_name;
    float m_preamp = 0;
    EQState::Gains m_gains{};
};

} // namespace vantor
