#include "LibraryBrowser/TrackListModel.h"

#include "BrowserFixture.h"
#include "MusicBackendKit/MediaIDTransfer.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>

#include <ctime>

using namespace vantor;
using Content = TrackListModel::Content;

namespace {

class TrackListModelTest : public BrowserFixture {
  protected:
    [[nodiscard]] QStringList titles() const {
        QStringList all;
        for (const LibraryTrack &track : m_model.tracks())
            all.append(track.title);
        return all;
    }
    [[nodiscard]] LibraryTrack track(const QString &title, double duration, int disc, int number) const {
        LibraryTrack made;
        made.id.rawValue = title;
        made.title = title;
        made.duration = duration;
        made.discNumber = disc;
        made.trackNumber = number;
        return made;
    }

    [[nodiscard]] static double cpuTime(clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }

    TrackListModel m_model{m_browser};
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    /// Not where pages are counted: it asks for all that there are.
    void checkModel() {
        m_tester = std::make_unique<QAbstractItemModelTester>(
            &m_model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    }
};

} // namespace

TEST_F(TrackListModelTest, AllTracksAreReadAlbumByAlbumAsTheyComeIntoView) {
    m_made->setSize({.artists = 60, .albumsPerArtist = 4, .tracksPerAlbum = 12});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::all());
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() > 0 && !m_model.isLoading(); }));
    EXPECT_GE(m_model.rowCount(), 100);
    EXPECT_LT(m_model.rowCount(), 130);
    settle();
    EXPECT_LE(countRequests(u"tracks"_qs), 10); // of 240
    m_model.loadAll();
    ASSERT_TRUE(waitFor([&] { return m_model.isComplete(); }));
    ASSERT_EQ(m_model.rowCount(), 60 * 4 * 12);
    EXPECT_EQ(m_model.track(12 * 239 + 5)->title, u"Track 6 of 239"_qs);
}

TEST_F(TrackListModelTest, ColumnsSortAsAReaderWould) {
    checkModel();
    ASSERT_TRUE(connectTo(m_made));
    m_model.showTracks({track(u"Song 10"_qs, 30, 2, 1), track(u"song 9"_qs, 200, 1, 2),
                        track(u"Été"_qs, 100, 1, 10), track(u"Abba"_qs, 100, 1, 1)});
    const QStringList natural = titles();
    using Model = TrackListModel;
    struct Row {
        int column;
        Qt::SortOrder order;
        QStringList expected;
    };
    const Row rows[] = {
        {Model::titleColumn, Qt::AscendingOrder, {u"Abba"_qs, u"Été"_qs, u"song 9"_qs, u"Song 10"_qs}},
        {Model::titleColumn, Qt::DescendingOrder, {u"Song 10"_qs, u"song 9"_qs, u"Été"_qs, u"Abba"_qs}},
        {Model::timeColumn, Qt::AscendingOrder, {u"Song 10"_qs, u"Été"_qs, u"Abba"_qs, u"song 9"_qs}},
        {Model::timeColumn, Qt::DescendingOrder, {u"song 9"_qs, u"Été"_qs, u"Abba"_qs, u"Song 10"_qs}},
        {Model::numberColumn, Qt::AscendingOrder, {u"Abba"_qs, u"song 9"_qs, u"Été"_qs, u"Song 10"_qs}},
        {-1, Qt::AscendingOrder, natural},
    };
    const QPersistentModelIndex ete = m_model.index(2, Model::titleColumn);
    for (const Row &row : rows) {
        m_model.sort(row.column, row.order);
        EXPECT_TRUE(waitFor([&] { return titles() == row.expected; }))
            << row.column << ' ' << row.order << ": " << titles().join(u", "_qs).toStdString();
        EXPECT_EQ(ete.data().toString(), u"Été"_qs);
    }
}

TEST_F(TrackListModelTest, SortingReadsTheRestFirst) {
    checkModel();
    m_made->setSize({.artists = 20, .albumsPerArtist = 2, .tracksPerAlbum = 12});
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::all());
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() > 0; }));
    m_model.sort(TrackListModel::timeColumn, Qt::DescendingOrder);
    ASSERT_TRUE(waitFor([&] { return m_model.isComplete(); }));
    const auto isSorted = [&] {
        return std::ranges::is_sorted(m_model.tracks(), std::ranges::greater(),
                                      [](const LibraryTrack &found) { return found.duration.value_or(0); });
    };
    EXPECT_TRUE(waitFor(isSorted));
    // What comes in later is put in its place.
    for (LibraryTrack &changed : m_made->tracksOf[m_made->allOfAlbums[0].id])
        changed.duration = 5000;
    m_browser.refresh();
    EXPECT_TRUE(
        waitFor([&] { return m_model.isComplete() && m_model.track(0)->duration == 5000 && isSorted(); }));
    EXPECT_EQ(m_model.rowCount(), 480);
}

TEST_F(TrackListModelTest, AHundredThousandTracksAreSortedWithoutHoldingUpTheProgram) {
    ASSERT_TRUE(connectTo(m_made));
    QList<LibraryTrack> many;
    for (int i = 0; i < 100'000; ++i)
        many.append(track(QStringLiteral("Title %1").arg(i * 7919 % 100'000), i % 300, 1, i % 20));
    m_model.showTracks(many);
    const QString first = m_model.track(0)->title;
    QSignalSpy ordered(&m_model, &QAbstractItemModel::layoutChanged);
    const double ownBefore = cpuTime(CLOCK_THREAD_CPUTIME_ID);
    const double allBefore = cpuTime(CLOCK_PROCESS_CPUTIME_ID);
    m_model.sort(TrackListModel::titleColumn, Qt::DescendingOrder);
    EXPECT_EQ(m_model.track(0)->title, first); // not yet
    ASSERT_TRUE(ordered.wait(60'000));
    EXPECT_LT(cpuTime(CLOCK_THREAD_CPUTIME_ID) - ownBefore,
              (cpuTime(CLOCK_PROCESS_CPUTIME_ID) - allBefore) / 3);
    EXPECT_EQ(m_model.track(0)->title, u"Title 99999"_qs);
    EXPECT_EQ(m_model.track(99'899)->title, u"Title 100"_qs);
}

TEST_F(TrackListModelTest, AnAlbumPlaysAsAWhole) {
    m_made->setSize({.artists = 1, .albumsPerArtist = 2, .tracksPerAlbum = 3});
    ASSERT_TRUE(connectTo(m_made));
    const MediaID album = m_made->allOfAlbums[1].id;
    m_model.show(Content::of(album));
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 3; }));
    EXPECT_EQ(m_model.album(), album);
    EXPECT_FALSE(m_model.canFetchMore({}));
    const auto request =
        PlayRequest::play(QSet<MediaID>{m_model.track(1)->id}, m_model.tracks(), m_model.album());
    ASSERT_TRUE(request);
    m_browser.play(*request);
    ASSERT_TRUE(waitFor([&] { return !m_made->played.isEmpty(); }));
    EXPECT_EQ(m_made->played.first().first.items.size(), 3);
    EXPECT_EQ(m_made->played.first().first.mode, PlayMode::replace(1));
}

TEST_F(TrackListModelTest, RowsAreDraggedOnceEachInTheirOrder) {
    ASSERT_TRUE(connectTo(m_made));
    m_model.showTracks({track(u"a"_qs, 1, 1, 1), track(u"b"_qs, 1, 1, 2), track(u"c"_qs, 1, 1, 3)});
    const QModelIndexList cells{m_model.index(2, 0), m_model.index(0, 0), m_model.index(0, 1),
                                m_model.index(2, 1)};
    const std::unique_ptr<QMimeData> data(m_model.mimeData(cells));
    const MediaIDTransfer expected{{{MediaKind::track, u"a"_qs}, {MediaKind::track, u"c"_qs}}};
    EXPECT_EQ(MediaIDTransfer::read(*data), expected);
}

TEST_F(TrackListModelTest, APlaylistFollowsItsOwnChangesOnly) {
    const MediaID playlist{MediaKind::playlist, u"p"_qs};
    m_made->tracksOf[playlist] = {track(u"a"_qs, 1, 1, 1)};
    ASSERT_TRUE(connectTo(m_made));
    m_model.show(Content::of(playlist));
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() == 1; }));
    m_made->tracksOf[playlist].append(track(u"b"_qs, 1, 1, 2));
    m_made->announce(LibraryChange::playlistUpdated({MediaKind::playlist, u"other"_qs}));
    settle();
    EXPECT_EQ(m_model.rowCount(), 1);
    m_made->announce(LibraryChange::playlistUpdated(playlist));
    EXPECT_TRUE(waitFor([&] { return m_model.rowCount() == 2; }));
}
