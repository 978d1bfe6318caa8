#include "SkinKit/Layout/MainWindowStatus.h"

#include <algorithm>
#include <cmath>

namespace vantor {

QString rawValue(TimeMode mode) {
    return mode == TimeMode::elapsed ? QStringLiteral("elapsed") : QStringLiteral("remaining");
}

std::optional<TimeMode> timeModeFromRawValue(const QString &text) {
    for (const TimeMode mode : {TimeMode::elapsed, TimeMode::remaining}) {
        if (rawValue(mode) == text)
            return mode;
    }
    return std::nullopt;
}

const TimeDigits TimeDigits::blank;

TimeDigits::TimeDigits(double seconds) {
    constexpr double most = 99 * 60 + 59;
    const int whole =
        std::isfinite(seconds) ? static_cast<int>(std::clamp(std::floor(seconds), 0.0, most)) : 0;
    minutesTens = whole / 600;
    minutesOnes = whole / 60 % 10;
    secondsTens = whole % 60 / 10;
    secondsOnes = whole % 10;
}

TimeDigits TimeDigits::shown(TimeMode mode, double elapsed, double duration) {
    return TimeDigits(mode == TimeMode::elapsed ? elapsed : std::max(0.0, duration - elapsed));
}

QString MediaInfoText::kbps(std::optional<int> value) {
    constexpr int width = 3;
    if (!value)
        return QStringLiteral("  0");
    const QString digits = QString::number(std::max(*value, 0));
    QString text = digits;
    if (*value >= 10000)
        text = digits.left(1) + QLatin1Char('C'); // hundreds of hundreds
    else if (*value >= 1000)
        text = digits.left(2) + QLatin1Char('H'); // hundreds
    return text.rightJustified(width);
}

QString MediaInfoText::khz(std::optional<double> sampleRate) {
    constexpr int width = 2;
    constexpr double most = 1e15; // far beyond any rate, and safe to convert
    if (!sampleRate || !std::isfinite(*sampleRate))
        return QStringLiteral(" 0");
    const auto rate = static_cast<qint64>(std::clamp(std::round(*sampleRate / 1000), 0.0, most));
    const QString digits = QString::number(rate);
    const QString text = rate >= 100 ? digits.mid(1, 2) : digits.left(rate <= 10 ? 1 : 2);
    return text.rightJustified(width);
}

bool MainWindowStatus::showsTime() const {
    return transport != Transport::stopped;
}

bool MainWindowStatus::blinksTime() const {
    return transport == Transport::paused;
}

bool MainWindowStatus::showsMinus() const {
    return transport != Transport::stopped && timeMode == TimeMode::remaining;
}

TimeDigits MainWindowStatus::digits() const {
    return transport == Transport::stopped ? TimeDigits::blank
                                           : TimeDigits::shown(timeMode, elapsed, duration);
}

std::optional<QString> MainWindowStatus::kbps() const {
    return transport == Transport::stopped ? std::nullopt : std::optional(MediaInfoText::kbps(bitrateKbps));
}

std::optional<QString> MainWindowStatus::khz() const {
    return transport == Transport::stopped ? std::nullopt : std::optional(MediaInfoText::khz(sampleRate));
}

bool MainWindowStatus::stereoSelected() const {
    return transport != Transport::stopped && channels == 2;
}

bool MainWindowStatus::monoSelected() const {
    return transport != Transport::stopped && channels == 1;
}

std::optional<QString> MainWindowStatus::indicator() const {
    switch (transport) {
    case Transport::stopped:
        return QStringLiteral("MAIN_STOPPED_INDICATOR");
    case Transport::loading:
        return std::nullopt;
    case Transport::playing:
        return QStringLiteral("MAIN_PLAYING_INDICATOR");
    case Transport::paused:
        return QStringLiteral("MAIN_PAUSED_INDICATOR");
    }
    return std::nullopt;
}

std::optional<QString> MainWindowStatus::workIndicator() const {
    switch (transport) {
    case Transport::loading:
        return QStringLiteral("MAIN_WORKING_INDICATOR");
    case Transport::playing:
        return QStringLiteral("MAIN_NOT_WORKING_INDICATOR");
    case Transport::stopped:
    case Transport::paused:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace vantor
