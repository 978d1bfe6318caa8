#include "LibraryBrowser/LibraryEdits.h"

#include "BrowserFixture.h"
#include "LibraryBrowser/LibraryListModel.h"
#include "LibraryBrowser/LibraryNowPlaying.h"
#include "LibraryBrowser/TrackListModel.h"

#include <QSignalSpy>

using namespace vantor;

namespace {

class LibraryEditsTest : public BrowserFixture {
  protected:
    LibraryEditsTest() {
        m_made->setSize({.artists = 2, .albumsPerArtist = 2, .tracksPerAlbum = 4});
        m_made->offers |= MusicBackendCapability::playlists | MusicBackendCapability::playlistEditing;
        m_playlist = m_made->addPlaylist(u"Road"_qs, m_made->tracksOf.value({MediaKind::album, u"0"_qs})).id;
    }
    [[nodiscard]] QStringList titles() const {
        QStringList titles;
        for (const LibraryTrack &track : m_tracks.tracks())
            titles.append(track.title.section(u' ', 1, 1));
        return titles;
    }

    MediaID m_playlist;
    LibraryEdits m_edits{m_browser};
    TrackListModel m_tracks{m_browser};
};

} // namespace

TEST_F(LibraryEditsTest, OpenListsFollowAndChangesComeOneAfterAnother) {
    ASSERT_TRUE(connectTo(m_made));
    LibraryListModel playlists(m_browser);
    playlists.show(LibraryListModel::Content::playlists());
    m_tracks.show(TrackListModel::Content::of(m_playlist));
    ASSERT_TRUE(waitFor([&] { return m_tracks.isComplete() && playlists.rowCount() == 1; }));
    m_made->delay = std::chrono::milliseconds(10);
    m_edits.move(m_playlist, 0, 2, [] {});
    m_edits.remove({0}, m_playlist, [] {});
    EXPECT_TRUE(m_edits.isBusy());
    EXPECT_TRUE(waitFor([&] { return titles() == QStringList({u"3"_qs, u"1"_qs, u"4"_qs}); }));
    m_edits.add({{MediaKind::track, u"1/1"_qs}}, m_playlist, [] {});
    EXPECT_TRUE(waitFor([&] { return titles().value(3) == u"2"_qs; }));
    LibraryPlaylist made;
    m_edits.createPlaylist(u"New"_qs, {{MediaKind::track, u"2/0"_qs}},
                           [&](const LibraryPlaylist &playlist) { made = playlist; });
    EXPECT_TRUE(waitFor([&] { return made.name == u"New"_qs && playlists.rowCount() == 2; }));
    EXPECT_EQ(m_made->tracksOf.value(made.id).size(), 1);
    m_edits.renamePlaylist(made.id, u"Old"_qs, [] {});
    EXPECT_TRUE(waitFor([&] { return playlists.item(1) && playlists.item(1)->title() == u"Old"_qs; }));
    m_edits.deletePlaylist(m_playlist, [] {});
    EXPECT_TRUE(waitFor([&] { return playlists.rowCount() == 1; }));
}

TEST_F(LibraryEditsTest, WhatFailsIsToldAndWhatFollowsIsDone) {
    ASSERT_TRUE(connectTo(m_made));
    const QSignalSpy failed(&m_browser, &LibraryBrowser::failed);
    bool isDone = false;
    m_edits.renamePlaylist({MediaKind::playlist, u"none"_qs}, u"x"_qs, [] { ADD_FAILURE(); });
    QString exported;
    m_edits.exportPlaylist(m_playlist, [&](const QString &m3u) { exported = m3u; });
    m_edits.addRadio({u"http://r"_qs, u"R"_qs}, [&] { isDone = true; });
    ASSERT_TRUE(waitFor([&] { return isDone; }));
    ASSERT_EQ(failed.size(), 1);
    EXPECT_EQ(failed.first().first().toString(), u"Could not find playlist none."_qs);
    EXPECT_TRUE(exported.contains(u"Road"_qs));
    EXPECT_EQ(m_made->allRadios.size(), 1);

    // What was asked of one source says nothing about the next one.
    m_made->delay = std::chrono::milliseconds(20);
    m_edits.deletePlaylist(m_playlist, [] { ADD_FAILURE(); });
    m_browser.setBackend(std::make_shared<MadeBackend>());
    EXPECT_TRUE(waitFor([&] { return !m_edits.isBusy(); }));
    EXPECT_TRUE(m_made->allPlaylists.isEmpty());
}

TEST_F(LibraryEditsTest, WhatPlaysIsKnownByItsTrackAndItsAlbum) {
    LibraryNowPlaying playing(m_browser);
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(waitFor([&] { return m_browser.output().has_value(); }));
    NowPlaying now = NowPlaying::idle(OutputDevice::thisMacID(), 0);
    now.state = NowPlaying::State::playing;
    now.item = MediaID{MediaKind::track, u"1/2"_qs};
    now.album = u"Album 1"_qs;
    now.artist = u"Somebody else"_qs;
    now.artwork = ArtworkRef{u"Album 1"_qs};
    m_made->tellPlaying(now);
    ASSERT_TRUE(waitFor([&] { return playing.isOn(*now.item); }));
    EXPECT_TRUE(playing.sounds());
    const auto album = [&](int number) { return LibraryItem{m_made->allOfAlbums[number]}; };
    EXPECT_TRUE(playing.isOn(album(1))); // a compilation: by its cover
    EXPECT_FALSE(playing.isOn(album(0)));
    now.artwork.reset();
    m_made->tellPlaying(now);
    now.state = NowPlaying::State::stopped;
    const QSignalSpy changed(&playing, &LibraryNowPlaying::changed);
    m_made->tellPlaying(now);
    ASSERT_TRUE(waitFor([&] { return !changed.isEmpty(); }));
    EXPECT_FALSE(playing.isOn(*now.item));
    m_browser.setBackend(nullptr);
    m_made->tellPlaying(now); // nobody listens any more
    settle();
}
