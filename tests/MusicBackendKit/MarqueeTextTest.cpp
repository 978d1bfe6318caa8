#include "MusicBackendKit/MarqueeText.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vantor;

TEST(MarqueeTextTest, Sentences) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::pair<QString, const char *> rows[] = {
        {MarqueeText::track(u"Ann"_qs, u"Song"_qs, 245.9, 12), "12. Ann - Song (4:05)"},
        {MarqueeText::track({}, u"Song"_qs, 0, std::nullopt), "Song"},
        {MarqueeText::track({}, u"Song"_qs, nan, 1), "1. Song"},
        {MarqueeText::time(3605), "60:05"},
        {MarqueeText::time(59.9), "0:59"},
        {MarqueeText::time(-1), "0:00"},
        {MarqueeText::time(nan), "0:00"},
        {MarqueeText::volume(0.755), "Volume: 76%"},
        {MarqueeText::volume(7), "Volume: 100%"},
        {MarqueeText::volume(nan), "Volume: 0%"},
        {MarqueeText::balance(0.004), "Balance: Center"},
        {MarqueeText::balance(-0.5), "Balance: 50% Left"},
        {MarqueeText::balance(2), "Balance: 100% Right"},
        {MarqueeText::balance(nan), "Balance: Center"},
        {MarqueeText::seek(0.999, 200), "Seek to: 3:19/3:20 (99%)"},
        {MarqueeText::seek(-1, 61), "Seek to: 0:00/1:01 (0%)"},
        {MarqueeText::equalizer(14000, 12), "EQ: 14KHz +12 dB"},
        {MarqueeText::equalizer(999, 0.05), "EQ: 999Hz +0.1 dB"},
        {MarqueeText::equalizer({}, -3.25), "EQ: Preamp -3.2 dB"},
        {MarqueeText::equalizer(60, -0.05), "EQ: 60Hz 0 dB"},
        {MarqueeText::equalizer(60, nan), "EQ: 60Hz 0 dB"},
    };
    for (const auto &[shown, expected] : rows)
        EXPECT_EQ(shown.toStdString(), expected);
}

TEST(MarqueeTextTest, WhatAnOutputPlays) {
    NowPlaying playing = NowPlaying::idle({u"speaker"_qs}, 0);
    EXPECT_EQ(MarqueeText::display(playing, 1), u"Vantor"_qs);
    playing.title = QString();
    playing.artist = u"Ann"_qs;
    playing.item = MediaID{MediaKind::track, u"1"_qs};
    playing.state = NowPlaying::State::loading;
    EXPECT_EQ(MarqueeText::display(playing, {}), u"Vantor"_qs);
    playing.title = u"Song"_qs;
    EXPECT_EQ(MarqueeText::display(playing, {}), u"Buffering…"_qs);
    playing.item.reset();
    playing.duration = 61;
    EXPECT_EQ(MarqueeText::display(playing, 3), u"3. Ann - Song (1:01)"_qs);
}
