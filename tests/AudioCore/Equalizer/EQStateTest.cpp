#include "AudioCore/Equalizer/EQPreset.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

#include <limits>

using namespace vantor;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

} // namespace

TEST(EQStateTest, EveryWayOfSettingNormalises) {
    struct {
        const char *name;
        std::vector<float> gains;
        EQState::Gains expected;
    } const rows[] = {
        {"none", {}, {}},
        {"padded", {1, -2, 3}, {1, -2, 3}},
        {"eleven", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
        {"outside", {12.5F, -INFINITY, notANumber, INFINITY}, {12, -12, 0, 12}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const EQState expected(false, 0, row.expected);
        EQState set = EQState::flat();
        set.setEnabled(false);
        set.setGains(row.gains);
        EXPECT_EQ(set, expected);
        EXPECT_EQ(expected.applying(EQPreset({}, notANumber, row.gains)), expected);
        set.setGains({});
        set.setBand(-1, 5);
        for (size_t band = 0; band < row.gains.size(); ++band)
            set.setBand(static_cast<int>(band), row.gains[band]);
        EXPECT_EQ(set, expected);
    }
    EXPECT_EQ(EQState(true, 99, {}).preamp(), 12);
}

TEST(EQStateTest, JsonKeepsValuesAndRefusesWrongTypes) {
    const EQPreset &rock = EQPreset::builtIn()[13];
    const EQState state = EQState(false, -3.3F, {}).applying(rock);
    EXPECT_EQ(EQState::fromJson(state.toJson()), state);
    EXPECT_EQ(EQPreset::fromJson(rock.toJson()), rock);
    struct {
        const char *json;
        std::optional<EQState> expected;
    } const rows[] = {
        {R"({"isEnabled":false,"preamp":1e300,"gains":[-40,5.8]})",
         EQState(false, 12, std::array{-12.0F, 5.8F})},
        {R"({"isEnabled":1,"preamp":0,"gains":[]})", {}},
        {R"({"isEnabled":true,"gains":[]})", {}},
        {R"({"isEnabled":true,"preamp":0,"gains":[1,"2"]})", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.json);
        const QJsonDocument document = QJsonDocument::fromJson(row.json);
        ASSERT_TRUE(document.isObject());
        EXPECT_EQ(EQState::fromJson(document.object()), row.expected);
    }
    const QByteArray stored = QJsonDocument(rock.toJson()).toJson(QJsonDocument::Compact);
    EXPECT_TRUE(stored.startsWith(R"({"gains":[4.6,2.7,-3.8,)")) << stored.constData();
}

TEST(EQPresetTest, SliderScaleIsUnevenAndReversible) {
    struct {
        int value;
        float decibels;
    } const rows[] = {{-7, -12}, {1, -12}, {31, -0.8F}, {33, 0}, {34, 0.4F}, {48, 5.8F}, {64, 12}, {70, 12}};
    for (const auto &row : rows)
        EXPECT_EQ(EQPreset::decibelsFromWinampValue(row.value), row.decibels) << row.value;
    for (int value = 1; value <= 64; ++value)
        EXPECT_EQ(EQPreset::winampValueFromDecibels(EQPreset::decibelsFromWinampValue(value)), value);
    EXPECT_EQ(EQPreset::winampValueFromDecibels(6), 49);        // 15.5 steps up
    EXPECT_EQ(EQPreset::winampValueFromDecibels(-0.1875F), 32); // half a step down
    EXPECT_EQ(EQPreset::winampValueFromDecibels(notANumber), 33);
    EXPECT_EQ(EQPreset::winampValueFromDecibels(20), 64);
}

TEST(EQPresetTest, BuiltInPresetsAreEighteenWithoutPreamp) {
    QSet<QString> names;
    for (const EQPreset &preset : EQPreset::builtIn()) {
        names.insert(preset.id());
        EXPECT_EQ(preset.preamp(), 0) << qPrintable(preset.name());
    }
    EXPECT_EQ(names.size(), 18);
    EXPECT_EQ(EQState::flat().applying(EQPreset::builtIn().front()), EQState::flat());
    EXPECT_EQ(EQPreset::builtIn()[1],
              EQPreset(QStringLiteral("Classical"), 0,
                       std::array{0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, -4.9F, -4.9F, -4.9F, -6.4F}));
}
