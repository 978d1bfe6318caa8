#include "SkinKit/Layout/MainWindowStatus.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vantor;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::string text(const TimeDigits &digits) {
    std::string cells;
    for (const auto &digit : {digits.minutesTens, digits.minutesOnes, digits.secondsTens, digits.secondsOnes})
        cells += digit ? std::to_string(*digit) : std::string("_");
    return cells;
}

} // namespace

TEST(MainWindowStatusTest, ClockCountsUpOrDownWithinItsFourCells) {
    using enum TimeMode;
    const std::tuple<TimeMode, double, double, const char *> cases[] = {
        {elapsed, 59.99, 300, "0059"},       {elapsed, 754, 0, "1234"},     {elapsed, 6000, 0, "9959"},
        {elapsed, 1e300, 0, "9959"},         {elapsed, -3, 10, "0000"},     {elapsed, infinity, 10, "0000"},
        {elapsed, notANumber, 10, "0000"},   {remaining, 10.5, 71, "0100"}, {remaining, 80, 71, "0000"},
        {remaining, 10, notANumber, "0000"},
    };
    for (const auto &[mode, time, duration, expected] : cases)
        EXPECT_EQ(text(TimeDigits::shown(mode, time, duration)), expected) << time << " of " << duration;
}

TEST(MainWindowStatusTest, RatesFitTheirCells) {
    const std::pair<int, const char *> bitrates[] = {
        {-5, "  0"},   {96, " 96"},   {999, "999"},   {1000, "10H"},
        {1411, "14H"}, {9999, "99H"}, {10000, " 1C"}, {std::numeric_limits<int>::max(), " 2C"}};
    for (const auto &[value, expected] : bitrates)
        EXPECT_EQ(MediaInfoText::kbps(value).toStdString(), expected) << value;
    const std::pair<double, const char *> sampleRates[] = {
        {notANumber, " 0"}, {infinity, " 0"}, {-300, " 0"},  {8000, " 8"},   {10000, " 1"}, {10500, "11"},
        {44100, "44"},      {99499, "99"},    {99500, "00"}, {192000, "92"}, {1e300, "00"}};
    for (const auto &[value, expected] : sampleRates)
        EXPECT_EQ(MediaInfoText::khz(value).toStdString(), expected) << value;
    EXPECT_EQ(MediaInfoText::kbps({}) + MediaInfoText::khz({}), QStringLiteral("  0 0"));
}

TEST(MainWindowStatusTest, TimeModesSurviveTheSettings) {
    EXPECT_EQ(timeModeFromRawValue(rawValue(TimeMode::remaining)), TimeMode::remaining);
    EXPECT_EQ(timeModeFromRawValue(QStringLiteral("elapsed")), TimeMode::elapsed);
    EXPECT_EQ(timeModeFromRawValue(QStringLiteral("Elapsed")), std::nullopt);
}
