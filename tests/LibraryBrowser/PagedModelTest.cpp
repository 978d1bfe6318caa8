#include "BrowserFixture.h"
#include "LibraryBrowser/LibraryListModel.h"
#include "LibraryBrowser/TrackListModel.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>

using namespace vantor;

namespace {

/// Looks at a stretch of rows and asks for more as views do, but from within every signal, which is the worst
/// moment. Never by itself: what it was not told of it has not seen.
class Onlooker : public QObject {
  public:
    Onlooker(LibraryModel &model, int column, int height)
        : m_model(model), m_column(column), m_height(height) {
        const auto look = [this] { this->look(); };
        connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, this, look);
        connect(&model, &QAbstractItemModel::rowsInserted, this, look);
        connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, this, look);
        connect(&model, &QAbstractItemModel::rowsRemoved, this, look);
        connect(&model, &QAbstractItemModel::dataChanged, this, look);
        connect(&model, &QAbstractItemModel::layoutChanged, this, look);
        connect(&model, &QAbstractItemModel::modelReset, this, look);
    }

    void scrollTo(int row) {
        m_top = row;
        look();
    }
    [[nodiscard]] int top() const { return std::clamp(m_top, 0, std::max(m_model.rowCount() - m_height, 0)); }
    /// What it saw last.
    [[nodiscard]] const QStringList &titles() const { return m_titles; }

  private:
    void look() {
        const int end = std::min(top() + m_height, m_model.rowCount());
        QStringList titles;
        for (int row = top(); row < end; ++row)
            titles.append(m_model.index(row, m_column).data().toString());
        m_titles = titles;
        if (end == m_model.rowCount() && m_model.canFetchMore({}))
            m_model.fetchMore({});
    }

    LibraryModel &m_model;
    int m_column;
    int m_height;
    int m_top = 0;
    QStringList m_titles;
};

class PagedModelTest : public BrowserFixture {
  protected:
    void SetUp() override {
        grow();
        ASSERT_TRUE(connectTo(m_made));
    }

    /// Another library with other titles.
    void grow() {
        const int albums = static_cast<int>(m_random.bounded(5) == 0 ? 0 : m_random.bounded(2000));
        m_made->setSize({.artists = 1, .albumsPerArtist = albums, .tracksPerAlbum = 2});
        ++m_version;
        for (LibraryAlbum &album : m_made->allOfAlbums) {
            album.title += u" v%1"_qs.arg(m_version);
            for (LibraryTrack &track : m_made->tracksOf[album.id])
                track.title += u" v%1"_qs.arg(m_version);
        }
    }
    [[nodiscard]] QStringList albums() const {
        QStringList titles;
        for (const LibraryAlbum &album : m_made->allOfAlbums)
            titles.append(album.title);
        return titles;
    }
    [[nodiscard]] QStringList tracks() const {
        QStringList titles;
        for (const LibraryAlbum &album : m_made->allOfAlbums) {
            for (const LibraryTrack &track : m_made->tracksOf[album.id])
                titles.append(track.title);
        }
        return titles;
    }

    /// Scrolls, changes the source, makes it late, broken and well again.
    void stir(LibraryModel &model, Onlooker &onlooker) {
        switch (m_random.bounded(8)) {
        case 0:
            grow();
            m_browser.refresh();
            break;
        case 1:
            m_browser.refresh();
            break;
        case 2:
            m_made->failure = u"Gone."_qs;
            break;
        case 3:
            m_made->failure.reset();
            model.retry();
            break;
        default:
            onlooker.scrollTo(static_cast<int>(m_random.bounded(2000)));
        }
        m_made->delay = std::chrono::milliseconds(static_cast<int>(m_random.bounded(4)) - 1);
        if (m_random.bounded(3) != 0)
            QCoreApplication::processEvents(QEventLoop::AllEvents, static_cast<int>(m_random.bounded(3)));
    }

    /// Then leaves it alone: what is in view has to come by itself.
    template <class Expected>
    void expectAllSeen(LibraryModel &model, int column, const Expected &expected, bool isChecked) {
        Onlooker onlooker(model, column, m_random.bounded(4) == 0 ? 1200 : 50);
        const auto tester = isChecked ? std::make_unique<QAbstractItemModelTester>(
                                            &model, QAbstractItemModelTester::FailureReportingMode::Fatal)
                                      : nullptr;
        for (int step = 0; step < 40; ++step)
            stir(model, onlooker);
        m_made->failure.reset();
        m_made->delay = std::chrono::milliseconds(static_cast<int>(m_random.bounded(2)) - 1);
        model.retry();
        onlooker.scrollTo(static_cast<int>(m_random.bounded(2000)));
        const QStringList all = expected();
        EXPECT_TRUE(waitFor([&] {
            const QStringList inView =
                all.mid(onlooker.top(), std::max<qsizetype>(onlooker.titles().size(), 50));
            return model.hasAnswer() && onlooker.titles() == inView;
        })) << "rows "
            << model.rowCount() << " of " << all.size() << ", seen at " << onlooker.top() << ": "
            << onlooker.titles().join(u", "_qs).left(200).toStdString();
    }

    QRandomGenerator m_random{1};
    int m_version = 0;
};

} // namespace

TEST_F(PagedModelTest, WhateverHappensMeanwhileWhatIsInViewComes) {
    for (quint32 seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        m_random.seed(seed);
        m_made->tellsTotal = seed % 4 != 0;
        m_made->tellsTrackCounts = seed % 2 == 0;
        const bool isChecked = seed % 5 == 0;
        LibraryListModel list(m_browser);
        list.show(LibraryListModel::Content::albums());
        expectAllSeen(list, 0, [this] { return albums(); }, isChecked);
        TrackListModel table(m_browser);
        table.show(TrackListModel::Content::all());
        if (seed % 3 == 0)
            table.sort(TrackListModel::timeColumn);
        const auto natural = [&] {
            table.sort(-1);
            return tracks();
        };
        expectAllSeen(table, TrackListModel::titleColumn, natural, isChecked);
        table.sort(TrackListModel::timeColumn, Qt::DescendingOrder);
        EXPECT_TRUE(waitFor([&] {
            return table.isComplete() && table.rowCount() == tracks().size() &&
                   std::ranges::is_sorted(table.tracks(), std::ranges::greater(), &LibraryTrack::duration);
        })) << table.rowCount();
    }
}

TEST_F(PagedModelTest, AListThatComesAsAWholeIsReadAnewWhereverItIsLookedAt) {
    const MediaID playlist{MediaKind::playlist, u"p"_qs};
    const auto name = [&](const QString &title) {
        m_made->tracksOf[playlist].clear();
        for (int i = 0; i < 250; ++i) {
            LibraryTrack track;
            track.id.rawValue = QString::number(i);
            track.title = title.arg(i);
            m_made->tracksOf[playlist].append(track);
        }
    };
    name(u"Old %1"_qs);
    TrackListModel table(m_browser);
    Onlooker onlooker(table, TrackListModel::titleColumn, 20);
    onlooker.scrollTo(150);
    table.show(TrackListModel::Content::of(playlist));
    ASSERT_TRUE(waitFor([&] { return onlooker.titles().value(0) == u"Old 150"_qs; }));
    name(u"New %1"_qs);
    m_made->announce(LibraryChange::playlistUpdated(playlist));
    ASSERT_TRUE(waitFor([&] { return onlooker.titles().value(0) == u"New 150"_qs; }));
    onlooker.scrollTo(230);
    settle();
    EXPECT_EQ(table.rowCount(), 250);
    EXPECT_EQ(table.track(249)->title, u"New 249"_qs);
}

TEST_F(PagedModelTest, ATotalThatCannotBeTakesNoMemory) {
    m_made->setSize({.artists = 1, .albumsPerArtist = 3, .tracksPerAlbum = 0});
    m_made->claimedTotal = std::numeric_limits<int>::max();
    LibraryListModel list(m_browser);
    list.show(LibraryListModel::Content::albums());
    ASSERT_TRUE(waitFor([&] { return list.hasAnswer(); }));
    EXPECT_EQ(list.rowCount(), LibraryListModel::maxRows);
    (void)list.item(500'000); // is empty, and so the end
    EXPECT_TRUE(waitFor([&] { return list.rowCount() == 500'000; }));
    list.loadAll();
    EXPECT_TRUE(waitFor([&] { return list.isComplete(); }));
    EXPECT_EQ(list.rowCount(), 3);
}
