#include "LibraryBrowser/LibraryListModel.h"

#include "BrowserFixture.h"
#include "MusicBackendKit/MediaIDTransfer.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>

using namespace vantor;
using Content = LibraryListModel::Content;

namespace {

class LibraryListModelTest : public BrowserFixture {
  protected:
    [[nodiscard]] QString titleOf(int row) const {
        const LibraryItem *const item = m_model.item(row);
        return item ? item->title() : QString();
    }
    [[nodiscard]] bool isThere(int row) {
        return waitFor([&] { return m_model.item(row) != nullptr; });
    }

    LibraryListModel m_model{m_browser};
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    /// Not where pages are counted: it asks for all that there are.
    void checkModel() {
        m_tester = std::make_unique<QAbstractItemModelTester>(
            &m_model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    }
};

} // namespace

TEST_F(LibraryListModelTest, AllRowsAreThereAtOnceAndOnlyThePagesLookedAtAreRead) {
    m_made->setSize({.artists = 500, .albumsPerArtist = 5, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::albums());
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 2500; }));
    ASSERT_TRUE(isThere(1234));
    EXPECT_EQ(titleOf(1234), u"Album 1234"_qs);
    settle();
    const QStringList expected{u"albums 0+100"_qs, u"albums 1200+100"_qs};
    EXPECT_EQ(m_made->requests.filter(u"albums"_qs), expected);
}

TEST_F(LibraryListModelTest, WhatWasScrolledPastIsNotReadBeforeWhatIsInView) {
    m_made->setSize({.artists = 1, .albumsPerArtist = 5000, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::albums());
    ASSERT_TRUE(isThere(0));
    m_made->delay = std::chrono::milliseconds(5);
    m_made->requests.clear();
    for (int row = 100; row < 5000; row += 100)
        (void)m_model.item(row);
    ASSERT_TRUE(isThere(4999));
    EXPECT_LE(m_made->requests.size(), 12); // of 49
    EXPECT_TRUE(m_made->requests.first().startsWith(u"albums 4900"_qs))
        << m_made->requests.first().toStdString();
}

TEST_F(LibraryListModelTest, WithoutATotalPagesFollowOneAnother) {
    m_made->tellsTotal = false;
    m_made->setSize({.artists = 1, .albumsPerArtist = 250, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::albums());
    for (const int count : {100, 200, 250}) {
        ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == count; })) << count;
        EXPECT_EQ(m_model.canFetchMore({}), count < 250);
        m_model.fetchMore({});
        m_model.fetchMore({}); // the one under way is enough
    }
    EXPECT_EQ(countRequests(u"albums"_qs), 3);
    EXPECT_TRUE(m_model.isComplete());
    EXPECT_EQ(titleOf(249), u"Album 249"_qs);
}

TEST_F(LibraryListModelTest, AnswersOfTheSourceBeforeAreDropped) {
    checkModel();
    m_made->setSize({.artists = 1, .albumsPerArtist = 30, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_made->delay = std::chrono::milliseconds(40);
    m_model.show(Content::albums());
    const auto other = std::make_shared<MadeBackend>(
        MadeBackend::Size{.artists = 1, .albumsPerArtist = 7, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(other));
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 7; }));
    settle(std::chrono::milliseconds(80));
    EXPECT_EQ(m_model.rowCount(), 7);
    EXPECT_FALSE(m_made->isConnected);
    m_browser.setBackend(nullptr);
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_FALSE(m_model.hasAnswer());
}

TEST_F(LibraryListModelTest, AModelMayGoWhileItWaits) {
    m_made->setSize({.artists = 1, .albumsPerArtist = 30, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_made->delay = std::chrono::milliseconds(10);
    {
        LibraryListModel brief(m_browser);
        brief.show(Content::albums());
    }
    settle();
    EXPECT_EQ(countRequests(u"albums"_qs), 1);
}

TEST_F(LibraryListModelTest, AFailureIsToldAndRetriedWhereItHappened) {
    checkModel();
    m_made->setSize({.artists = 1, .albumsPerArtist = 250, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_made->failure = u"The server does not answer."_qs;
    m_model.show(Content::albums());
    ASSERT_TRUE(waitFor([&] { return m_model.failure().has_value(); }));
    EXPECT_EQ(m_model.failure()->sentence, *m_made->failure);
    EXPECT_FALSE(m_model.isLoading());
    EXPECT_EQ(m_model.rowCount(), 0);

    m_made->failure.reset();
    m_model.retry();
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 250; }));
    EXPECT_FALSE(m_model.failure());

    m_made->failure = u"Gone again."_qs;
    (void)m_model.item(220);
    ASSERT_TRUE(waitFor([&] { return m_model.failure().has_value(); }));
    EXPECT_EQ(m_model.rowCount(), 250);
    const qsizetype asked = m_made->requests.size();
    (void)m_model.item(150); // not until it is tried again
    settle();
    EXPECT_EQ(m_made->requests.size(), asked);
    m_made->failure.reset();
    m_model.retry();
    EXPECT_TRUE(isThere(220));
}

TEST_F(LibraryListModelTest, ARefreshKeepsTheRowsAndReadsAgainWhatIsLookedAt) {
    checkModel();
    m_made->setSize({.artists = 1, .albumsPerArtist = 250, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::albums());
    ASSERT_TRUE(isThere(0));
    ASSERT_TRUE(isThere(120));
    const QPersistentModelIndex kept = m_model.index(120, 0);
    const QSignalSpy resets(&m_model, &QAbstractItemModel::modelReset);

    m_made->setSize({.artists = 1, .albumsPerArtist = 180, .tracksPerAlbum = 0});
    m_made->allOfAlbums[120].title = u"Renamed"_qs;
    m_browser.refresh();
    EXPECT_EQ(m_model.rowCount(), 250);
    ASSERT_TRUE(waitFor([&] { return titleOf(120) == u"Renamed"_qs; }));
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 180; }));
    EXPECT_TRUE(kept.isValid());

    m_made->setSize({});
    m_browser.refresh();
    EXPECT_TRUE(waitFor([&] { return m_model.rowCount() == 0; }));
    m_made->setSize({.artists = 1, .albumsPerArtist = 3, .tracksPerAlbum = 0});
    m_browser.refresh();
    EXPECT_TRUE(waitFor([&] { return m_model.rowCount() == 3; }));
    EXPECT_TRUE(resets.isEmpty());
}

TEST_F(LibraryListModelTest, PlaylistsFollowWhatTheSourceAnnounces) {
    LibraryPlaylist playlist;
    playlist.id.rawValue = u"a"_qs;
    playlist.name = u"First"_qs;
    m_made->allPlaylists = {playlist};
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::playlists());
    ASSERT_TRUE(isThere(0));
    m_made->allPlaylists[0].name = u"Second"_qs;
    m_made->announce(LibraryChange::playlistUpdated(playlist.id));
    EXPECT_TRUE(waitFor([&] { return titleOf(0) == u"Second"_qs; }));
    m_made->announce(LibraryChange::favoriteChanged(playlist.id, true));
    EXPECT_TRUE(waitFor([&] { return m_model.item(0)->isFavorite() == true; }));
    EXPECT_EQ(countRequests(u"playlists"_qs), 2);
}

TEST_F(LibraryListModelTest, RowsAreDraggedAsTheIdsOfTheirItems) {
    m_made->setSize({.artists = 1, .albumsPerArtist = 5, .tracksPerAlbum = 0});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::albums());
    ASSERT_TRUE(isThere(4));
    const std::unique_ptr<QMimeData> data(m_model.mimeData({m_model.index(1, 0), m_model.index(3, 0)}));
    const MediaIDTransfer expected{{m_made->allOfAlbums[1].id, m_made->allOfAlbums[3].id}};
    EXPECT_EQ(MediaIDTransfer::read(*data), expected);
}
