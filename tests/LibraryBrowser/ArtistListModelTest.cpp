#include "LibraryBrowser/ArtistListModel.h"

#include "BrowserFixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

using namespace vantor;

namespace {

class ArtistListModelTest : public BrowserFixture {
  protected:
    void name(int artist, const QString &text) const { m_made->allArtists[artist].name = text; }
    [[nodiscard]] bool isRead(int rows) {
        return waitFor([&] { return !m_model.isLoading() && m_model.rowCount() == rows; });
    }

    ArtistListModel m_model{m_browser};
    QAbstractItemModelTester m_tester{&m_model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

} // namespace

TEST_F(ArtistListModelTest, ArtistsThatAreOneToTheUserAreOneRowWhereverTheyStand) {
    m_made->setSize({.artists = 250, .albumsPerArtist = 0});
    name(3, u"Simon & Garfunkel"_qs);
    name(120, u"simon and garfunkel"_qs);
    name(249, u"SIMON&GARFUNKEL;"_qs);
    m_model.open();
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(isRead(248));
    EXPECT_EQ(m_model.item(3)->title(), u"Simon & Garfunkel"_qs);
    EXPECT_EQ(m_model.item(3)->ids().size(), 3);
    EXPECT_EQ(m_model.group(m_made->allArtists[249].id)->name, u"Simon & Garfunkel"_qs);
}

TEST_F(ArtistListModelTest, NothingIsReadBeforeItIsOpened) {
    m_made->setSize({.artists = 5});
    ASSERT_TRUE(connectTo(m_made));
    settle();
    EXPECT_EQ(countRequests(u"artists"_qs), 0);
    m_model.open();
    EXPECT_TRUE(isRead(5));
}

TEST_F(ArtistListModelTest, AFailureOnTheWayIsGoneOnFrom) {
    m_made->setSize({.artists = 350, .albumsPerArtist = 0});
    m_made->delay = std::chrono::milliseconds(5);
    m_model.open();
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(waitFor([&] { return m_model.rowCount() >= 200; }));
    m_made->failure = u"Gone."_qs;
    ASSERT_TRUE(waitFor([&] { return m_model.failure().has_value(); }));
    EXPECT_EQ(m_model.failure()->sentence, u"Gone."_qs);
    EXPECT_GE(m_model.rowCount(), 200);
    m_made->failure.reset();
    m_model.retry();
    ASSERT_TRUE(isRead(350));
    EXPECT_EQ(countRequests(u"artists 0"_qs), 1);
}

TEST_F(ArtistListModelTest, ARefreshTouchesOnlyWhatChanged) {
    m_made->setSize({.artists = 250, .albumsPerArtist = 0});
    m_model.open();
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(isRead(250));
    const QPersistentModelIndex last = m_model.index(249, 0);
    const QSignalSpy resets(&m_model, &QAbstractItemModel::modelReset);
    struct Row {
        const char *what;
        std::function<void()> change;
        int rows;
    };
    const Row rows[] = {
        {"nothing", [] {}, 250},
        {"two gone", [&] { m_made->allArtists.remove(10, 2); }, 248},
        {"one new",
         [&] { m_made->allArtists.insert(50, {{MediaKind::artist, u"new"_qs}, u"New"_qs, {}, {}, {}}); },
         249},
        {"renamed", [&] { name(100, u"Renamed"_qs); }, 249},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        row.change();
        m_browser.refresh();
        EXPECT_GE(m_model.rowCount(), 248); // all the time
        ASSERT_TRUE(isRead(row.rows));
        EXPECT_EQ(last.data().toString(), u"Artist 249"_qs);
    }
    EXPECT_EQ(m_model.item(50)->title(), u"New"_qs);
    EXPECT_EQ(m_model.item(100)->title(), u"Renamed"_qs);
    EXPECT_TRUE(resets.isEmpty());
}

TEST_F(ArtistListModelTest, AFavouriteIsMarkedOnTheRowOfItsGroup) {
    m_made->setSize({.artists = 2});
    name(1, m_made->allArtists[0].name);
    m_model.open();
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(isRead(1));
    EXPECT_FALSE(m_model.item(0)->isFavorite());
    m_browser.setFavorite({m_made->allArtists[1].id}, true);
    EXPECT_TRUE(waitFor([&] { return m_model.item(0)->isFavorite() == true; }));
}
