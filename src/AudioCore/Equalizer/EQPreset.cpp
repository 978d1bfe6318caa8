#include "AudioCore/Equalizer/EQPreset.h"

#include "AudioCore/Equalizer/EQJson_p.h"

namespace vantor {

namespace {

constexpr QLatin1StringView nameKey("name");

constexpr int lowestStep = 1;
constexpr int middleStep = 33;
constexpr int highestStep = 64;
constexpr float stepsAbove = highestStep - middleStep;
constexpr float stepsBelow = middleStep - lowestStep;

} // namespace

EQPreset::EQPreset(const QString &name, float preamp, std::span<const float> gains) : m_name(name) {
    const EQState normalised(true, preamp, gains);
    m_preamp = normalised.preamp();
    m_gains = normalised.gains();
}

EQPreset::EQPreset(const QString &name, const SliderValues &sliderValues) : m_name(name) {
    std::transform(sliderValues.begin(), sliderValues.end(), m_gains.begin(), decibelsFromWinampValue);
}

const std::vector<EQPreset> &EQPreset::builtIn() {
    const auto preset = [](const char *name, const SliderValues &sliderValues) {
        return EQPreset(QString::fromLatin1(name), sliderValues);
    };
    static const std::vector<EQPreset> presets{
        preset("Flat", {33, 33, 33, 33, 33, 33, 33, 33, 33, 33}),
        preset("Classical", {33, 33, 33, 33, 33, 33, 20, 20, 20, 16}),
        preset("Club", {33, 33, 38, 42, 42, 42, 38, 33, 33, 33}),
        preset("Dance", {48, 44, 36, 32, 32, 22, 20, 20, 32, 32}),
        preset("Full Bass", {48, 48, 48, 42, 35, 25, 18, 15, 14, 14}),
        preset("Full Bass & Treble", {44, 42, 33, 20, 24, 35, 46, 50, 52, 52}),
        preset("Full Treble", {16, 16, 16, 25, 37, 50, 58, 58, 58, 60}),
        preset("Laptop speakers/headphones", {40, 50, 41, 26, 28, 35, 40, 48, 53, 56}),
        preset("Large hall", {49, 49, 42, 42, 33, 24, 24, 24, 33, 33}),
        preset("Live", {24, 33, 39, 41, 42, 42, 39, 37, 37, 36}),
        preset("Party", {44, 44, 33, 33, 33, 33, 33, 33, 44, 44}),
        preset("Pop", {29, 40, 44, 45, 41, 30, 28, 28, 29, 29}),
        preset("Reggae", {33, 33, 31, 22, 33, 43, 43, 33, 33, 33}),
        preset("Rock", {45, 40, 23, 19, 26, 39, 47, 50, 50, 50}),
        preset("Ska", {28, 24, 25, 31, 39, 42, 47, 48, 50, 48}),
        preset("Soft", {40, 35, 30, 28, 30, 39, 46, 48, 50, 52}),
        preset("Soft Rock", {39, 39, 36, 31, 25, 23, 26, 31, 37, 47}),
        preset("Techno", {45, 42, 33, 23, 24, 33, 45, 48, 48, 47}),
    };
    return presets;
}

float EQPreset::decibelsFromWinampValue(int value) {
    const int steps = std::clamp(value, lowestStep, highestStep) - middleStep;
    const float perStep = steps >= 0 ? stepsAbove : stepsBelow;
    const float decibels = static_cast<float>(steps) * EQState::gainRange.upper / perStep;
    return std::round(decibels * 10) / 10;
}

int EQPreset::winampValueFromDecibels(float decibels) {
    if (std::isnan(decibels))
        return middleStep;
    const float level = std::clamp(decibels, EQState::gainRange.lower, EQState::gainRange.upper);
    const float scaled = level * (level >= 0 ? stepsAbove : stepsBelow);
    const int step = static_cast<int>(std::round(scaled / EQState::gainRange.upper)) + middleStep;
    return std::clamp(step, lowestStep, highestStep);
}

QJsonObject EQPreset::toJson() const {
    QJsonObject object = EQJson::fromLevels(m_preamp, m_gains);
    object.insert(nameKey, m_name);
    return object;
}

std::optional<EQPreset> EQPreset::fromJson(const QJsonObject &object) {
    const QJsonValue name = object.value(nameKey);
    const auto levels = EQJson::toLevels(object);
    if (!name.isString() || !levels)
        return std::nullopt;
    return EQPreset(name.toString(), levels->preamp, levels->gains);
}

} // namespace vantor
