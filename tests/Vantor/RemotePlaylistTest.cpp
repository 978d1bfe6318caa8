#include "Vantor/Remote/RemotePlaylist.h"

#include "PlaylistShown.h"
#include "RemoteFixture.h"
#include "Vantor/Model/PlaylistModel.h"
#include "Vantor/Remote/QueueMoves.h"
#include "Vantor/Windows/PlaylistCommands.h"

#include <QMenu>

using namespace vantor;
using Selecting = PlaylistModel::Selecting;

namespace {

class RemotePlaylistTest : public RemoteFixture {
  protected:
    void SetUp() override {
        RemoteFixture::SetUp();
        select(u"kitchen"_qs);
        ASSERT_TRUE(waitFor([&] { return m_playlist.count() == 5; }));
    }
    /// The number at the end of each title, the selected ones in brackets.
    [[nodiscard]] std::string shown() const {
        return shownRows(m_playlist,
                         [](const Track &track) { return track.title.section(QLatin1Char(' '), -1); });
    }
    [[nodiscard]] bool isInStep() {
        return waitFor([&] {
            QStringList titles;
            for (int row = 0; row < m_playlist.count(); ++row)
                titles.append(m_playlist.track(row)->title);
            return titles == m_made->titles(u"kitchen"_qs);
        });
    }

    PlaylistModel m_playlist{m_model, m_settings};
};

} // namespace

TEST(QueueMoves, OnlyWhatWasMovedMoves) {
    const struct {
        const char *after;
        const char *moved;
        int edits;
    } rows[] = {{"bcdea", "a", 1},  {"eabcd", "e", 1},  {"cabde", "c", 1},  {"bcade", "a", 1},
                {"deabc", "de", 2}, {"bdeac", "ac", 2}, {"abcde", "ab", 0}, {"edcba", "abcde", 4}};
    const QStringList before{u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs, u"e"_qs};
    for (const auto &[text, movedText, count] : rows) {
        SCOPED_TRACE(text);
        QStringList after = QString::fromLatin1(text).split(QString(), Qt::SkipEmptyParts);
        const QStringList moved = QString::fromLatin1(movedText).split(QString(), Qt::SkipEmptyParts);
        QStringList list = before;
        const QList<QueueEdit> edits = QueueMoves::edits(before, after, {moved.begin(), moved.end()});
        for (const QueueEdit &edit : edits) {
            EXPECT_TRUE(moved.contains(edit.itemID));
            EXPECT_NE(edit.shift, 0);
            const auto from = list.indexOf(edit.itemID);
            list.move(from, from + edit.shift);
        }
        EXPECT_EQ(list, after);
        EXPECT_EQ(edits.size(), count);
    }
}

TEST_F(RemotePlaylistTest, ThePlaylistIsTheSpeakersAndTheFilesComeBack) {
    Track track;
    track.id = QUuid::createUuid();
    track.title = u"mine"_qs;
    m_player.enqueue({track});
    EXPECT_EQ(shown(), "12345");
    EXPECT_EQ(m_playlist.currentIndex(), 0);
    EXPECT_EQ(m_playlist.scene().rows[0].title, u"1. Kitchen 1"_qs);
    EXPECT_EQ(m_playlist.scene().rows[0].length, u"3:20"_qs);
    EXPECT_TRUE(m_playlist.scene().rows[0].current);
    m_playlist.select(2, Selecting::only);
    m_playlist.play(3);
    EXPECT_TRUE(m_playlist.scene().rows[3].current); // before the server knows
    ASSERT_TRUE(waitFor([&] { return m_remote.title() == u"4. Kitchen 4 (3:20)"_qs; }));
    EXPECT_EQ(shown(), "12[3]45"); // the selection outlives what the server tells
    m_remote.deselect();
    EXPECT_EQ(m_playlist.track(0)->title, u"mine"_qs);
    EXPECT_EQ(m_playlist.count(), 1);
    EXPECT_FALSE(m_playlist.hasSelection());
}

TEST_F(RemotePlaylistTest, EditsShowAtOnceAndGoInTurn) {
    m_made->delay = std::chrono::milliseconds(30);
    m_playlist.select(1, Selecting::only);
    m_playlist.removeSelected();
    EXPECT_EQ(shown(), "1[3]45");
    for (int i = 0; i < 2; ++i) // as a drag does, row by row
        EXPECT_EQ(m_playlist.moveSelected(1), 1);
    EXPECT_EQ(shown(), "145[3]");
    ASSERT_TRUE(waitFor([&] { return m_made->edits.size() == 2; }));
    EXPECT_EQ(m_made->edits[0], QueueEdit::remove({u"kitchen-1"_qs}));
    EXPECT_EQ(m_made->edits[1], QueueEdit::move(u"kitchen-2"_qs, 2));
    EXPECT_TRUE(isInStep());
    EXPECT_EQ(shown(), "145[3]");
    m_playlist.selectAll();
    m_playlist.removeSelected();
    ASSERT_TRUE(waitFor([&] { return m_made->edits.size() == 3; }));
    EXPECT_EQ(m_made->edits.last(), QueueEdit::clear());
    EXPECT_TRUE(isInStep());
}

TEST_F(RemotePlaylistTest, WhatTheServerRefusesGoesBackToItsPlace) {
    m_made->buffered = QStringList{u"kitchen-1"_qs};
    m_playlist.select(1, Selecting::only);
    m_playlist.moveSelected(3);
    EXPECT_EQ(shown(), "1345[2]");
    ASSERT_TRUE(waitFor([&] { return !m_told.isEmpty(); }));
    EXPECT_EQ(m_told, QStringList(u"Track already buffered"_qs));
    EXPECT_EQ(shown(), "1[2]345");
    // Another client's change is shown, too.
    m_made->speaker(u"kitchen"_qs).items.removeLast();
    m_made->tell(u"kitchen"_qs);
    EXPECT_TRUE(isInStep());
}

TEST_F(RemotePlaylistTest, ALongQueueIsLoadedWhereItIsSeen) {
    m_made->window = 50;
    m_made->addSpeaker(u"hall"_qs, u"Hall"_qs, 5000);
    ASSERT_TRUE(waitFor([&] { return !output(u"hall"_qs).name.isEmpty(); }));
    select(u"hall"_qs);
    EXPECT_EQ(m_playlist.count(), 5000);
    EXPECT_EQ(m_playlist.track(49)->title, u"Hall 50"_qs);
    EXPECT_EQ(m_playlist.track(4321)->title, u"…"_qs);
    m_playlist.scrollTo(4321);
    ASSERT_TRUE(waitFor([&] { return m_playlist.track(4321)->title == u"Hall 4322"_qs; }));
    EXPECT_EQ(m_made->requests.filter(u"queue "_qs), QStringList(u"queue 4300+100"_qs));
    EXPECT_EQ(m_playlist.track(3000)->title, u"…"_qs);
    m_made->tell(u"hall"_qs); // which does not take away what was loaded
    m_playlist.select(4321, Selecting::only);
    m_playlist.removeSelected();
    ASSERT_TRUE(waitFor([&] { return m_made->edits.size() == 1; }));
    EXPECT_EQ(m_made->edits[0], QueueEdit::remove({u"hall-4321"_qs}));
    m_playlist.select(3000, Selecting::only);
    m_playlist.select(3500, Selecting::extending);
    m_playlist.removeSelected();
    EXPECT_EQ(m_told, QStringList(u"The rest of the list is still loading"_qs));
    EXPECT_EQ(m_made->edits.size(), 1);
}

TEST_F(RemotePlaylistTest, APageThatFailedComesByItselfLater) {
    m_made->window = 50;
    m_made->addSpeaker(u"hall"_qs, u"Hall"_qs, 5000);
    ASSERT_TRUE(waitFor([&] { return !output(u"hall"_qs).name.isEmpty(); }));
    select(u"hall"_qs);
    m_made->failure = u"Busy."_qs;
    m_made->delay = std::chrono::milliseconds(-1); // at once
    m_playlist.scrollTo(4321);
    EXPECT_EQ(m_made->requests.filter(u"queue 4300"_qs).size(), 1);
    m_made->failure.reset();
    EXPECT_TRUE(waitFor([&] { return m_playlist.track(4321)->title == u"Hall 4322"_qs; }));
    EXPECT_EQ(m_made->requests.filter(u"queue 4300"_qs).size(), 2);
    // Rows that shift while a page is under way.
    m_made->delay = std::chrono::milliseconds(50);
    m_playlist.select(0, Selecting::only);
    m_playlist.scrollTo(2010);
    m_playlist.removeSelected();
    m_playlist.scrollTo(2010);
    EXPECT_TRUE(waitFor([&] { return m_playlist.track(2011)->title == u"Hall 2013"_qs; }));
}

TEST_F(RemotePlaylistTest, WhatIsAboutFilesIsNotOffered) {
    QWidget window;
    Commands commands(m_model);
    PlaylistCommands entries(m_playlist, m_model, commands, window);
    const auto offered = [&] {
        QMenu menu;
        m_playlist.select(0, Selecting::only);
        entries.fillMenu(menu);
        QStringList texts;
        for (const QAction *const action : menu.findChildren<QAction *>()) {
            if (action->isEnabled() && !action->isSeparator())
                texts.append(action->text());
        }
        return texts;
    };
    for (const char *text : {"Remove Selected", "Remove All", "Save List…", "Select All"})
        EXPECT_TRUE(offered().contains(QString::fromUtf8(text))) << text;
    for (const char *text : {"Crop to Selection", "File Info…", "Show in Folder", "Sort", "Add Files…",
                             "Remove More", "Load List…", "Jump to File…"})
        EXPECT_FALSE(offered().contains(QString::fromUtf8(text))) << text;
    entries.run(PlaylistMenuEntry::sort, {});
    EXPECT_EQ(m_model.scene().marquee, u"This music source does not support that."_qs);
    m_remote.saveQueue(u"Evening"_qs);
    ASSERT_TRUE(waitFor([&] { return m_made->savedQueues == QStringList(u"Evening"_qs); }));
    m_made->offers.setFlag(MusicBackendCapability::queueEditing, false);
    EXPECT_FALSE(offered().contains(u"Remove Selected"_qs));
    m_remote.deselect();
    EXPECT_TRUE(offered().contains(u"Add Files…"_qs));
}
