#include "SkinKit/Layout/MainWindowStatus.h"

#include <algorithm>
#include <cmath>

namespace vantor {

QString rawValue(TimeMode mode) {
    return mode == TimeMode::elapsed ? QStringLiteral("elapsed") : QStringLiteral("remaining");
}

std::optional<TimeMode> timeModeFromRawValue(const QString &text) {
    for (const TimeMode mode : {TimeMode::elapsed, TimeMode::remaining}) {
        if (text == rawValue(mode))
            return mode;
    }
    return std::nullopt;
}

const TimeDigits TimeDigits::blank;

TimeDigits::TimeDigits(double seconds) {
    constexpr double longest = 99 * 60 + 59;
    const int whole =
        std::isfinite(seconds) ? static_cast<int>(std::floor(std::clamp(seconds, 0.0, longest))) : 0;
    minutesTens = whole / 600;
    minutesOnes = whole / 60 % 10;
    secondsTens = whole % 60 / 10;
    secondsOnes = whole % 10;
}

TimeDigits TimeDigits::shown(TimeMode mode, double elapsed, double duration) {
    return TimeDigits(mode == TimeMode::elapsed ? elapsed : std::max(0.0, duration - elapsed));
}

QString MediaInfoText::kbps(std::optional<int> value) {
    const int rate = std::max(value.value_or(0), 0);
    QString text = QString::number(rate);
    if (rate >= 10000)
        text = text.left(1) + QLatin1Char('C');
    else if (rate >= 1000)
        text = text.left(2) + QLatin1Char('H');
    return text.rightJustified(3);
}

QString MediaInfoText::khz(std::optional<double> sampleRate) {
    if (!sampleRate || !std::isfinite(*sampleRate))
        return QStringLiteral(" 0");
    const double rate = std::max(0.0, std::round(*sampleRate / 1000));
    const QString digits = QString::number(rate, 'f', 0);
    // Two cells: the display keeps the first digit up to 10 kHz and drops it from 100 kHz on.
    if (rate <= 10)
        return digits.left(1).rightJustified(2);
    return rate < 100 ? digits : digits.mid(1, 2);
}

bool MainWindowStatus::showsTime() const {
    return transport != Transport::stopped;
}

bool MainWindowStatus::blinksTime() const {
    return transport == Transport::paused;
}

bool MainWindowStatus::showsMinus() const {
    return showsTime() && timeMode == TimeMode::remaining;
}

TimeDigits MainWindowStatus::digits() const {
    return showsTime() ? TimeDigits::shown(timeMode, elapsed, duration) : TimeDigits::blank;
}

std::optional<QString> MainWindowStatus::kbps() const {
    return showsTime() ? std::optional(MediaInfoText::kbps(bitrateKbps)) : std::nullopt;
}

std::optional<QString> MainWindowStatus::khz() const {
    return showsTime() ? std::optional(MediaInfoText::khz(sampleRate)) : std::nullopt;
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
    case Transport::playing:
        return QStringLiteral("MAIN_PLAYING_INDICATOR");
    case Transport::paused:
        return QStringLiteral("MAIN_PAUSED_INDICATOR");
    case Transport::loading:
        break;
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
        break;
    }
    return std::nullopt;
}

} // namespace vantor
