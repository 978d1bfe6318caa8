#include "AudioCore/Equalizer/EQState.h"

#include "AudioCore/Equalizer/EQJson_p.h"
#include "AudioCore/Equalizer/EQPreset.h"

namespace vantor {

namespace {

float normalised(float decibels) {
    if (std::isnan(decibels))
        return 0;
    return std::clamp(decibels, EQState::gainRange.lower, EQState::gainRange.upper);
}

} // namespace

EQState::EQState(bool isEnabled, float preamp, std::span<const float> gains)
    : m_isEnabled(isEnabled), m_preamp(normalised(preamp)) {
    setGains(gains);
}

float EQState::band(int index) const {
    return index >= 0 && index < bandCount ? m_gains[static_cast<size_t>(index)] : 0.0F;
}

void EQState::setPreamp(float decibels) {
    m_preamp = normalised(decibels);
}

void EQState::setGains(std::span<const float> gains) {
    Gains kept{};
    const auto used = gains.first(std::min(gains.size(), kept.size()));
    std::transform(used.begin(), used.end(), kept.begin(), normalised);
    m_gains = kept;
}

void EQState::setBand(int index, float decibels) {
    if (index >= 0 && index < bandCount)
        m_gains[static_cast<size_t>(index)] = normalised(decibels);
}

EQState EQState::applying(const EQPreset &preset) const {
    return EQState(m_isEnabled, preset.preamp(), preset.gains());
}

QJsonObject EQState::toJson() const {
    QJsonObject object = EQJson::fromLevels(m_preamp, m_gains);
    object.insert(QLatin1StringView("isEnabled"), m_isEnabled);
    return object;
}

std::optional<EQState> EQState::fromJson(const QJsonObject &object) {
    const QJsonValue isEnabled = object.value(QLatin1StringView("isEnabled"));
    const auto levels = EQJson::toLevels(object);
    if (!isEnabled.isBool() || !levels)
        return std::nullopt;
    return EQState(isEnabled.toBool(), levels->preamp, levels->gains);
}

} // namespace vantor
