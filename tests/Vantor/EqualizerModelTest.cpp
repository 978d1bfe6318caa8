#include "Vantor/Model/EqualizerModel.h"

#include "AudioCore/Equalizer/EQFFile.h"
#include "PlayerFixture.h"
#include "Vantor/Model/EQPresetFile.h"

#include <QSignalSpy>

using namespace vantor;

namespace {

EQPreset preset(const char *name, float everyBand) {
    return {QLatin1String(name), 0, std::vector<float>(10, everyBand)};
}

EQState flatWithBand(int band, float gain) {
    EQState state;
    state.setBand(band, gain);
    return state;
}

class EqualizerModelTest : public PlayerFixture {
  protected:
    EqualizerModelTest() { start(); }

    /// As the next launch of the program does.
    void start() {
        m_equalizer.reset();
        m_equalizer.emplace(m_player, m_settings, m_folder.path("data"));
        QObject::connect(&*m_equalizer, &EqualizerModel::noticed, &m_model,
                         [this](const QString &sentence) { m_notices.append(sentence); });
    }
    void playTwo() {
        m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
        play(0);
    }
    void play(int index) {
        m_player.play(index);
        ASSERT_TRUE(waitFor([&] { return m_player.queue().currentIndex() == index; }));
    }
    [[nodiscard]] QStringList names() const {
        QStringList names;
        for (const EQPreset &kept : m_equalizer->presets())
            names.append(kept.name());
        return names;
    }
    [[nodiscard]] QStringList takeNotices() { return std::exchange(m_notices, {}); }

    std::optional<EqualizerModel> m_equalizer;
    QStringList m_notices;
};

} // namespace

TEST_F(EqualizerModelTest, TheSettingLastsOverLaunches) {
    m_equalizer->setPreamp(-3.5F);
    m_equalizer->setBand(9, 20);
    m_equalizer->setEnabled(false);
    m_equalizer->setAuto(true);
    EQState expected = flatWithBand(9, 12);
    expected.setPreamp(-3.5F);
    expected.setEnabled(false);
    EXPECT_EQ(m_player.eq(), expected);
    m_equalizer.reset();
    m_player.setEq({});
    start();
    EXPECT_EQ(m_player.eq(), expected);
    EXPECT_TRUE(m_equalizer->isAuto());
}

TEST_F(EqualizerModelTest, StoredRubbishIsAsIfNothingWereStored) {
    for (const char *stored :
         {"", "{", "[]", R"({"gains":3,"isEnabled":true,"preamp":1})", R"({"preamp":1})"}) {
        SCOPED_TRACE(stored);
        m_settings.setValue(QStringLiteral("equalizer"), QLatin1String(stored));
        m_folder.write("data/equalizer-presets.json", stored);
        m_folder.write("data/equalizer-tracks.json",
                       QByteArray(R"({"version":2,"presets":[)") + stored + "]}");
        start();
        EXPECT_EQ(m_player.eq(), EQState());
        EXPECT_EQ(names(), QStringList());
    }
}

TEST_F(EqualizerModelTest, WithAutoATrackKeepsItsOwnSetting) {
    const EQState common = flatWithBand(0, 4);
    const EQState own = flatWithBand(5, -7);
    m_equalizer->setBand(0, 4);
    playTwo();
    m_equalizer->setAuto(true);
    EXPECT_EQ(m_player.eq(), common);
    EXPECT_FALSE(m_equalizer->hasTrackSetting());
    m_equalizer->setBand(0, 0);
    m_equalizer->setBand(5, -7);
    EXPECT_TRUE(m_equalizer->hasTrackSetting());

    QSignalSpy replaced(&*m_equalizer, &EqualizerModel::settingReplaced);
    play(1);
    EXPECT_EQ(m_player.eq(), common);
    play(0);
    EXPECT_EQ(m_player.eq(), own);
    EXPECT_EQ(replaced.count(), 2);
    m_equalizer->setAuto(false);
    EXPECT_EQ(m_player.eq(), common);
    m_equalizer->keepForTrack(); // used only with Auto
    m_equalizer->setBand(0, 9);
    m_equalizer->setAuto(true);
    EXPECT_EQ(m_player.eq(), common);
    m_equalizer->setBand(0, 0);
    m_equalizer->setBand(5, -7);

    start();
    EXPECT_EQ(m_player.eq(), own);
    m_equalizer->forgetTrack();
    EXPECT_EQ(m_player.eq(), flatWithBand(0, 9));
    EXPECT_FALSE(m_equalizer->hasTrackSetting());
    start();
    EXPECT_EQ(m_player.eq(), flatWithBand(0, 9));
}

TEST_F(EqualizerModelTest, OwnPresetsAreSavedRenamedAndRemoved) {
    m_equalizer->setAllBands(6);
    for (const char *name : {"night", " day  time ", "   "})
        m_equalizer->savePreset(QLatin1String(name));
    EXPECT_EQ(names(), QStringList({u"day time"_qs, u"night"_qs}));
    m_equalizer->setAllBands(-6);
    m_equalizer->savePreset(u"night"_qs);
    m_equalizer->renamePreset(u"night"_qs, u"day time"_qs);
    EXPECT_EQ(takeNotices(), QStringList(u"There is a preset named day time already"_qs));
    m_equalizer->renamePreset(u"night"_qs, u"Abend"_qs);
    m_equalizer->renamePreset(u"none"_qs, u"other"_qs);
    start();
    EXPECT_EQ(m_equalizer->presets(), (std::vector{preset("Abend", -6), preset("day time", 6)}));
    m_equalizer->removePreset(u"Abend"_qs);
    start();
    EXPECT_EQ(names(), QStringList(u"day time"_qs));
}

TEST_F(EqualizerModelTest, PresetFilesAreTakenOrSaidToBeUnreadable) {
    const QByteArray one = EQFFile::serialize(std::vector{preset("one", 12)});
    const QByteArray library = EQFFile::serialize(std::vector{preset("b", 12), preset("a", -12)});
    const struct {
        const char *name;
        QByteArray bytes;
        QStringList notices;
        float gain; ///< of the first band, afterwards
        QStringList presets;
    } rows[] = {
        {"rubbish.eqf", "RIFF", {u"This file is not an equalizer preset file."_qs}, 0, {}},
        {"cut.eqf", one.chopped(1), {u"This equalizer preset file is incomplete."_qs}, 0, {}},
        {"empty.eqf", EQFFile::serialize({}), {u"There are no presets in empty.eqf"_qs}, 0, {}},
        {"huge.eqf",
         one + QByteArray(268 * 9000, '\0'),
         {u"This equalizer preset file is incomplete."_qs},
         0,
         {}},
        {"one.eqf", one, {}, 12, {}},
        {"library.q1", library, {u"Added 2 presets"_qs}, 12, {u"a"_qs, u"b"_qs}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        m_equalizer->loadFile(m_folder.write(row.name, row.bytes));
        EXPECT_TRUE(waitFor([&] { return m_notices == row.notices && m_player.eq().band(0) == row.gain; }));
        EXPECT_EQ(names(), row.presets);
        m_notices.clear();
    }
    m_equalizer->loadFile(m_folder.path("missing.eqf"));
    m_equalizer->loadFile(m_folder.path());
    EXPECT_TRUE(waitFor([&] { return m_notices.size() == 2; }));
    m_notices.clear();

    m_equalizer->saveFile(m_folder.path("Mine.eqf"));
    m_equalizer->saveLibrary(m_folder.path("All.eqf"));
    m_equalizer->saveFile(m_folder.path("no/such/folder.eqf"));
    EXPECT_TRUE(waitFor([&] { return m_notices == QStringList(u"Could not write folder.eqf"_qs); }));
    EXPECT_EQ(EQFFile::parse(TestFolder::read(m_folder.path("Mine.eqf"))), std::vector{preset("Mine", 12)});
    EXPECT_EQ(EQFFile::parse(TestFolder::read(m_folder.path("All.eqf"))),
              (std::vector{preset("a", -12), preset("b", 12)}));
    // What was asked for last stays, and the end waits for it.
    for (const float gain : {1.0F, 2.0F, 3.0F}) {
        m_equalizer->setAllBands(gain);
        m_equalizer->saveFile(m_folder.path("Mine.eqf"));
    }
    m_equalizer.reset();
    EXPECT_NEAR(EQFFile::parse(TestFolder::read(m_folder.path("Mine.eqf"))).at(0).gains()[0], 3, 0.3);
}

TEST_F(EqualizerModelTest, AFolderThatCannotBeWrittenIsNoSecret) {
    m_folder.write("data", "a file where the folder should be");
    m_equalizer->savePreset(u"night"_qs);
    EXPECT_TRUE(
        waitFor([&] { return m_notices == QStringList(u"Could not save the equalizer presets"_qs); }));
    EXPECT_EQ(names(), QStringList(u"night"_qs));
}
