#include "RemoteFixture.h"
#include "Vantor/Remote/SpeakerRow.h"
#include "Vantor/Remote/SpeakersPanel.h"

#include <QLabel>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>

using namespace vantor;

namespace {

class SpeakersTest : public RemoteFixture {
  protected:
    [[nodiscard]] static Speakers::Row row(const Speakers &speakers, const QString &id) {
        for (const Speakers::Row &row : speakers.rows()) {
            if (row.device.id.rawValue == id)
                return row;
        }
        return {};
    }
    [[nodiscard]] static QStringList names(const QList<OutputDevice> &outputs) {
        QStringList names;
        for (const OutputDevice &output : outputs)
            names.append(output.name);
        return names;
    }
};

} // namespace

TEST_F(SpeakersTest, TellsWhatPlaysWhereAndWhoPlaysAlong) {
    m_made->addSpeaker(u"hall"_qs, u"Hall"_qs, 0);
    Speakers speakers(m_remote);
    ASSERT_TRUE(waitFor([&] { return speakers.rows().size() == 4; }));
    m_made->speaker(u"kitchen"_qs).playing.state = NowPlaying::State::playing;
    m_made->speaker(u"kitchen"_qs).playing.artist = u"Cook"_qs;
    m_made->tell(u"kitchen"_qs);
    ASSERT_TRUE(waitFor(
        [&] { return Speakers::statusOf(row(speakers, u"kitchen"_qs)) == u"Playing Cook - Kitchen 1"_qs; }));
    EXPECT_EQ(Speakers::statusOf(row(speakers, u"bath"_qs)), u"Silent"_qs);
    EXPECT_EQ(names(row(speakers, u"kitchen"_qs).group.joinable), QStringList({u"Bath"_qs, u"Hall"_qs}));

    m_remote.setMember({u"kitchen"_qs}, {u"bath"_qs}, true);
    ASSERT_TRUE(waitFor([&] { return row(speakers, u"bath"_qs).group.leader.has_value(); }));
    EXPECT_EQ(Speakers::statusOf(row(speakers, u"bath"_qs)), u"Plays along with Kitchen"_qs);
    EXPECT_EQ(names(row(speakers, u"kitchen"_qs).group.members), QStringList(u"Bath"_qs));
    m_remote.setMember({u"kitchen"_qs}, {u"bath"_qs}, false);
    EXPECT_TRUE(waitFor([&] { return !row(speakers, u"bath"_qs).group.leader; }));
    m_made->removeSpeaker(u"hall"_qs);
    EXPECT_TRUE(waitFor([&] { return speakers.rows().size() == 3; }));
}

TEST_F(SpeakersTest, EachHasAVolumeAndTheMusicMovesAlong) {
    Speakers speakers(m_remote);
    ASSERT_TRUE(waitFor([&] { return row(speakers, u"bath"_qs).playing.volume.has_value(); }));
    speakers.setVolume({u"bath"_qs}, 0.2);
    EXPECT_EQ(row(speakers, u"bath"_qs).playing.volume, 0.2);
    ASSERT_TRUE(waitFor([&] { return m_made->speaker(u"bath"_qs).playing.volume == 0.2; }));
    EXPECT_EQ(m_made->speaker(u"kitchen"_qs).playing.volume, 0.5);
    EXPECT_FALSE(speakers.canTakeMusic(output(u"bath"_qs))); // nothing but files could be moved

    select(u"kitchen"_qs);
    letPlay(u"kitchen"_qs);
    m_made->failure = u"The bath is locked."_qs;
    speakers.takeMusic(output(u"bath"_qs));
    ASSERT_TRUE(waitFor([&] { return m_told == QStringList(u"The bath is locked."_qs); }));
    EXPECT_EQ(m_remote.device().name, u"Kitchen"_qs);
    m_made->failure.reset();
    speakers.takeMusic(output(u"bath"_qs));
    ASSERT_TRUE(waitFor([&] { return m_remote.device().name == u"Bath"_qs && m_remote.queue().total == 5; }));
    EXPECT_TRUE(waitFor([&] { return m_remote.view().state == PlaybackState::playing; }));
}

TEST_F(SpeakersTest, ASpeakerIsMutedUntilItIsTurnedUp) {
    Speakers speakers(m_remote);
    const auto isMuted = [&](const QString &id) { return row(speakers, id).controls.isMuted; };
    select(u"kitchen"_qs);
    m_made->delay = std::chrono::milliseconds(20);
    for (const QString &id : {u"kitchen"_qs, u"bath"_qs}) { // the selected one, and another
        SCOPED_TRACE(id.toStdString());
        speakers.setMuted({id}, true);
        EXPECT_EQ(isMuted(id), true);
        ASSERT_TRUE(waitFor([&] { return m_made->speaker(id).isMuted == true; }));
        speakers.setVolume({id}, 0.3);
        EXPECT_EQ(isMuted(id), false);
        ASSERT_TRUE(waitFor([&] { return m_made->speaker(id).isMuted == false; }));
        m_made->failure = u"It is stuck."_qs;
        speakers.setMuted({id}, true);
        EXPECT_TRUE(waitFor([&] { return isMuted(id) == false; }));
        m_made->failure.reset();
    }
    EXPECT_EQ(m_told, QStringList({u"It is stuck."_qs, u"It is stuck."_qs}));
    m_made->speaker(u"bath"_qs).isMuted.reset();
    EXPECT_EQ(isMuted(u"bath"_qs), std::nullopt);
}

TEST_F(SpeakersTest, WhatIsNotThereComesLastAndWaitsForItsServer) {
    select(u"bath"_qs);
    letPlay(u"bath"_qs);
    m_made->speakers[1].isAvailable = false; // the kitchen
    m_made->tellActivities();
    Speakers speakers(m_remote);
    ASSERT_TRUE(waitFor([&] { return speakers.rows().last().device.name == u"Kitchen"_qs; }));
    const double before = m_remote.view().elapsed;
    m_browser.setInterrupted(true);
    EXPECT_EQ(Speakers::statusOf(row(speakers, u"bath"_qs)), u"Reconnecting…"_qs);
    EXPECT_EQ(m_remote.title(), u"Reconnecting to Bath…"_qs);
    EXPECT_EQ(m_remote.view().state, PlaybackState::loading);
    EXPECT_NEAR(m_remote.view().elapsed, before, 1);
    m_browser.setInterrupted(false);
    EXPECT_EQ(m_remote.view().state, PlaybackState::playing);
}

TEST_F(SpeakersTest, ThePanelSelectsAndTurnsDown) {
    SpeakersPanel panel(m_remote);
    panel.show();
    const auto rowOf = [&](const QString &name) -> SpeakerRow * {
        for (SpeakerRow *const row : panel.findChildren<SpeakerRow *>()) {
            if (row->findChild<QRadioButton *>()->accessibleName() == name)
                return row;
        }
        return nullptr;
    };
    const std::unique_ptr<QToolButton> button(makeOutputButton(m_remote));
    EXPECT_EQ(button->text(), u"This Computer"_qs);
    ASSERT_NE(rowOf(u"Bath"_qs), nullptr);
    auto *const bath = rowOf(u"Bath"_qs)->findChild<QSlider *>();
    ASSERT_TRUE(waitFor([&] { return bath->isVisible() && bath->value() == 50; }));
    EXPECT_FALSE(rowOf(u"This Computer"_qs)->findChild<QSlider *>()->isVisible());
    bath->setValue(30);
    ASSERT_TRUE(waitFor([&] { return m_made->speaker(u"bath"_qs).playing.volume == 0.3; }));

    auto *const name = rowOf(u"Kitchen"_qs)->findChild<QRadioButton *>();
    QTest::mouseClick(name, Qt::LeftButton, {}, QPoint(8, name->height() / 2));
    EXPECT_EQ(m_remote.device().name, u"Kitchen"_qs);
    EXPECT_EQ(button->text(), u"Kitchen"_qs);
    EXPECT_TRUE(rowOf(u"Kitchen"_qs)->findChild<QRadioButton *>()->isChecked());
    EXPECT_FALSE(rowOf(u"This Computer"_qs)->findChild<QRadioButton *>()->isChecked());
    m_made->removeSpeaker(u"bath"_qs);
    EXPECT_TRUE(waitFor([&] { return !rowOf(u"Bath"_qs); }));
}
