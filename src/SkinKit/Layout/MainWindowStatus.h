#pragma once

#include <QString>

#include <optional>

namespace vantor {

/// Which way the clock counts.
enum class TimeMode { elapsed, remaining };

[[nodiscard]] QString rawValue(TimeMode mode);
[[nodiscard]] std::optional<TimeMode> timeModeFromRawValue(const QString &text);

/// The four cells of the clock, 0–9 or blank. Shows at most 99:59.
struct TimeDigits {
    std::optional<int> minutesTens;
    std::optional<int> minutesOnes;
    std::optional<int> secondsTens;
    std::optional<int> secondsOnes;

    TimeDigits() = default; ///< blank
    /// Whole seconds, rounded down, clamped to 0…5999; not finite counts as 0.
    explicit TimeDigits(double seconds);

    static const TimeDigits blank;
    [[nodiscard]] static TimeDigits shown(TimeMode mode, double elapsed, double duration);

    bool operator==(const TimeDigits &) const = default;
};

/// The texts at the bit-rate and sample-rate places, padded with spaces on the left.
namespace MediaInfoText {

[[nodiscard]] QString kbps(std::optional<int> value);
[[nodiscard]] QString khz(std::optional<double> sampleRate);

} // namespace MediaInfoText

/// What the player is doing, as the main window shows it.
struct MainWindowStatus {
    enum class Transport { stopped, loading, playing, paused };

    Transport transport = Transport::stopped;
    TimeMode timeMode = TimeMode::elapsed;
    double elapsed = 0;  ///< seconds
    double duration = 0; ///< seconds, 0 when unknown
    std::optional<int> bitrateKbps;
    std::optional<double> sampleRate; ///< Hz
    std::optional<int> channels;

    [[nodiscard]] bool showsTime() const;
    [[nodiscard]] bool blinksTime() const;
    [[nodiscard]] bool showsMinus() const;
    [[nodiscard]] TimeDigits digits() const;
    [[nodiscard]] std::optional<QString> kbps() const;
    [[nodiscard]] std::optional<QString> khz() const;
    [[nodiscard]] bool stereoSelected() const;
    [[nodiscard]] bool monoSelected() const;
    [[nodiscard]] std::optional<QString> indicator() const;     ///< a sprite name
    [[nodiscard]] std::optional<QString> workIndicator() const; ///< a sprite name

    bool operator==(const MainWindowStatus &) const = default;
};

} // namespace vantor
