#include "AudioCore/Equalizer/EQJson_p.h"

#include <QJsonArray>

#include <charconv>

namespace vantor::EQJson {

namespace {

constexpr QLatin1StringView preampKey("preamp");
constexpr QLatin1StringView gainsKey("gains");

// The shortest decimal that reads back as the same float: 5.8 and not 5.800000190734863.
double shortestDecimal(float value) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
    double decimal = 0;
    std::from_chars(text.data(), written.ptr, decimal);
    return decimal;
}

std::optional<float> level(const QJsonValue &value) {
    if (!value.isDouble())
        return std::nullopt;
    constexpr double farOutside = 1000;
    return static_cast<float>(std::clamp(value.toDouble(), -farOutside, farOutside));
}

} // namespace

QJsonObject fromLevels(float preamp, std::span<const float> gains) {
    QJsonArray list;
    for (const float gain : gains)
        list.append(shortestDecimal(gain));
    return {{preampKey, shortestDecimal(preamp)}, {gainsKey, list}};
}

std::optional<Levels> toLevels(const QJsonObject &object) {
    const auto preamp = level(object.value(preampKey));
    const QJsonValue gains = object.value(gainsKey);
    if (!preamp || !gains.isArray())
        return std::nullopt;
    Levels levels{*preamp, {}};
    for (const QJsonValue stored : gains.toArray()) {
        const auto gain = level(stored);
        if (!gain)
            return std::nullopt;
        levels.gains.push_back(*gain);
    }
    return levels;
}

} // namespace vantor::EQJson
