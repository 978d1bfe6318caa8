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

using Transport = MainWindowStatus::Transport;

} // namespace

TEST(MainWindowStatusTest, ClockCountsUpOrDownWithinItsFourCells) {
    const struct {
        TimeMode mode;
        double elapsed;
        double duration;
        const char *expected;
    } cases[] = {
        {TimeMode::elapsed, 0, 0, "0000"},           {TimeMode::elapsed, 59.99, 300, "0059"},
        {TimeMode::elapsed, 754, 0, "1234"},         {TimeMode::elapsed, 5999.9, 0, "9959"},
        {TimeMode::elapsed, 6000, 0, "9959"},        {TimeMode::elapsed, 1e300, 0, "9959"},
        {TimeMode::elapsed, -3, 10, "0000"},         {TimeMode::elapsed, infinity, 10, "0000"},
        {TimeMode::elapsed, notANumber, 10, "0000"}, {TimeMode::remaining, 10.5, 71, "0100"},
        {TimeMode::remaining, 80, 71, "0000"},       {TimeMode::remaining, 10, notANumber, "0000"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(testing::Message() << row.elapsed << " of " << row.duration);
        EXPECT_EQ(text(TimeDigits::shown(row.mode, row.elapsed, row.duration)), row.expected);
    }
}

TEST(MainWindowStatusTest, RatesFitTheirCells) {
    const std::pair<std::optional<int>, const char *> bitrates[] = {{std::nullopt, "  0"},
                                                                    {-5, "  0"},
                                                                    {0, "  0"},
                                                                    {96, " 96"},
                                                                    {999, "999"},
                                                                    {1000, "10H"},
                                                                    {1411, "14H"},
                                                                    {9999, "99H"},
                                                                    {10000, " 1C"},
                                                                    {12345, " 1C"},
                                                                    {std::numeric_limits<int>::max(), " 2C"}};
    for (const auto &[value, expected] : bitrates)
        EXPECT_EQ(MediaInfoText::kbps(value).toStdString(), expected) << value.value_or(-1);

    const std::pair<std::optional<double>, const char *> sampleRates[] = {
        {std::nullopt, " 0"}, {notANumber, " 0"}, {infinity, " 0"}, {-48000, " 0"},
        {-300, " 0"},         {8000, " 8"},       {10000, " 1"},    {10500, "11"},
        {11025, "11"},        {44100, "44"},      {48000, "48"},    {99499, "99"},
        {99500, "00"},        {176400, "76"},     {192000, "92"},   {1e300, "00"}};
    for (const auto &[value, expected] : sampleRates)
        EXPECT_EQ(MediaInfoText::khz(value).toStdString(), expected) << value.value_or(-1);
}

TEST(MainWindowStatusTest, EachTransportStateLightsItsOwnParts) {
    const struct {
        Transport transport;
        TimeMode mode;
        int channels;
        const char *expected; // time, blink, minus, stereo, mono | digits | kbps | khz | indicator | work
    } cases[] = {
        {Transport::stopped, TimeMode::remaining, 2, "-----|____|none|none|MAIN_STOPPED_INDICATOR|none"},
        {Transport::loading, TimeMode::elapsed, 1, "t---m|0005|128|44|none|MAIN_WORKING_INDICATOR"},
        {Transport::playing, TimeMode::remaining, 2,
         "t-ms-|0055|128|44|MAIN_PLAYING_INDICATOR|MAIN_NOT_WORKING_INDICATOR"},
        {Transport::paused, TimeMode::elapsed, 6, "tb---|0005|128|44|MAIN_PAUSED_INDICATOR|none"},
    };
    for (const auto &row : cases) {
        const MainWindowStatus status{row.transport, row.mode, 5, 60, 128, 44100, row.channels};
        const auto orNone = [](const std::optional<QString> &value) {
            return value ? value->toStdString() : std::string("none");
        };
        const std::string flags{status.showsTime() ? 't' : '-', status.blinksTime() ? 'b' : '-',
                                status.showsMinus() ? 'm' : '-', status.stereoSelected() ? 's' : '-',
                                status.monoSelected() ? 'm' : '-'};
        EXPECT_EQ(flags + "|" + text(status.digits()) + "|" + orNone(status.kbps()) + "|" +
                      orNone(status.khz()) + "|" + orNone(status.indicator()) + "|" +
                      orNone(status.workIndicator()),
                  row.expected);
    }
    MainWindowStatus unknown;
    unknown.transport = Transport::playing;
    EXPECT_FALSE(unknown.stereoSelected() || unknown.monoSelected());
}

TEST(MainWindowStatusTest, TimeModesSurviveTheSettings) {
    EXPECT_EQ(timeModeFromRawValue(rawValue(TimeMode::remaining)), TimeMode::remaining);
    EXPECT_EQ(timeModeFromRawValue(QStringLiteral("elapsed")), TimeMode::elapsed);
    EXPECT_EQ(timeModeFromRawValue(QStringLiteral("Elapsed")), std::nullopt);
}
