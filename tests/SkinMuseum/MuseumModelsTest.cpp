#include "MuseumFixture.h"
#include "SkinMuseum/Client/MuseumDownloader.h"
#include "SkinMuseum/Client/MuseumScreenshotCache.h"
#include "SkinMuseum/Model/MuseumDownloads.h"
#include "SkinMuseum/Model/MuseumListModel.h"
#include "SkinMuseum/Model/MuseumPictures.h"

using namespace vantor;
using namespace vantor::test;

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;
using Notice = MuseumListModel::Notice;

namespace {

class MuseumModelsTest : public MuseumFixture {
  protected:
    [[nodiscard]] QString name(int row) const { return m_list.index(row).data().toString(); }
    [[nodiscard]] bool shows(int row, const QString &expected) {
        return waitFor([&] { return row < m_list.rowCount() && name(row) == expected; });
    }
    [[nodiscard]] bool settles(Notice notice) {
        return waitFor([&] { return !m_list.isQuerying() && m_list.notice() == notice; });
    }
    /// Shows the first rows and waits for them.
    void begin() {
        m_list.setQuery({}, true);
        m_list.setInView(0, 10);
        ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    }

    std::shared_ptr<MuseumResultCache> m_results =
        std::make_shared<MuseumResultCache>(m_folder.path("results"), MuseumResultCache::Limits());
    MuseumClient m_client = client(m_results);
    MuseumListModel m_list{m_client};
};

} // namespace

TEST_F(MuseumModelsTest, AllRowsAreThereAndAreReadWhereOneLooks) {
    begin();
    EXPECT_EQ(m_list.rowCount(), 130);
    EXPECT_EQ(m_list.skin(m_list.index(125)), nullptr);
    m_list.setInView(120, 129);
    EXPECT_TRUE(shows(129, u"Skin 129"_qs));
    EXPECT_EQ(m_list.skin(m_list.index(70)), nullptr); // nobody looked there
    EXPECT_EQ(m_museum.count(Kind::page), 2);
    m_list.setInView(50, 61);
    EXPECT_TRUE(shows(60, u"Skin 60"_qs));
    EXPECT_EQ(*m_list.skin(m_list.index(60)), skin(60));
    m_list.setQuery({}, true); // the same
    EXPECT_EQ(m_museum.count(Kind::page), 3);
}

TEST_F(MuseumModelsTest, ASearchGrowsByThePageUntilItsEnd) {
    begin();
    m_list.setQuery(u"  skin  1 "_qs, false);
    EXPECT_EQ(m_list.rowCount(), 130); // those before, for the moment
    ASSERT_TRUE(waitFor([&] { return !m_list.isQuerying(); }));
    EXPECT_EQ(m_list.rowCount(), 37); // 1, 10 … 19, 100 … 129 without every tenth
    EXPECT_EQ(name(0), u"Skin 1"_qs);
    m_list.setQuery(u"skin"_qs, false);
    ASSERT_TRUE(waitFor([&] { return !m_list.isQuerying(); }));
    EXPECT_EQ(m_list.rowCount(), 120);
    m_list.setInView(40, 59);
    EXPECT_TRUE(waitFor([&] { return m_list.rowCount() == 117 && !name(116).isEmpty(); }));
}

TEST_F(MuseumModelsTest, RowsThatAreDroppedLeaveNoGaps) {
    m_museum.onRows = [](QJsonArray &rows) {
        for (qsizetype i = 0; i < rows.size(); i += 2)
            rows[i] = QJsonValue::Null;
    };
    m_list.setQuery({}, true);
    m_list.setInView(0, 10);
    ASSERT_TRUE(shows(0, u"Skin 1"_qs));
    EXPECT_EQ(m_list.rowCount(), 30 + 70);
    m_list.setInView(20, 40);
    ASSERT_TRUE(shows(30, u"Skin 61"_qs));
    m_list.setInView(40, 65);
    ASSERT_TRUE(shows(64, u"Skin 129"_qs));
    EXPECT_EQ(m_list.rowCount(), 65);
}

TEST_F(MuseumModelsTest, AMuseumThatClaimsToHaveMoreThanItHasEnds) {
    begin();
    m_museum.onRows = [](QJsonArray &rows) { rows = {}; };
    m_list.setInView(110, 120);
    EXPECT_TRUE(waitFor([&] { return m_list.rowCount() == 60; }));
}

TEST_F(MuseumModelsTest, WhatWasSeenBeforeIsShownWithoutTheMuseum) {
    begin();
    m_museum.goOffline();
    MuseumListModel later(m_client);
    later.setQuery({}, true);
    later.setInView(0, 10);
    EXPECT_TRUE(waitFor([&] { return later.notice() == Notice::cached; }));
    EXPECT_EQ(later.index(5).data().toString(), u"Skin 5"_qs);
    EXPECT_EQ(later.rowCount(), 130);
    later.setInView(70, 80); // which nobody has seen
    EXPECT_TRUE(waitFor([&] { return later.notice() == Notice::failed; }));
    EXPECT_EQ(later.error(), MuseumError::offline());
    EXPECT_EQ(later.rowCount(), 130);
    ASSERT_TRUE(m_museum.open());
    later.retry();
    EXPECT_TRUE(waitFor([&] { return later.index(70).data().toString() == u"Skin 70"_qs; }));
    EXPECT_EQ(later.notice(), Notice::none);
}

TEST_F(MuseumModelsTest, RowsThatCouldNotBeReadComeOnceTheMuseumAnswersAgain) {
    begin();
    m_museum.faults[Kind::page] = Fault::fails;
    m_list.setInView(62, 70);
    ASSERT_TRUE(settles(Notice::failed));
    m_museum.faults.clear();
    m_list.setInView(120, 129);
    ASSERT_TRUE(shows(129, u"Skin 129"_qs));
    m_list.setInView(62, 70);
    EXPECT_TRUE(shows(62, u"Skin 62"_qs));
    EXPECT_EQ(m_list.notice(), Notice::none);
}

TEST_F(MuseumModelsTest, WhatWasSeenLongAgoIsShownWhileTheMuseumTakesItsTime) {
    begin();
    ASSERT_TRUE(waitFor([&] { return !QDir(m_folder.path("results")).isEmpty(); }));
    m_museum.faults[Kind::page] = Fault::hangs;
    const auto cache =
        std::make_shared<MuseumResultCache>(m_folder.path("results"), MuseumResultCache::Limits(),
                                            [] { return QDateTime::currentDateTimeUtc().addDays(30); });
    MuseumClient slow = client(cache);
    MuseumListModel later(slow);
    later.setQuery({}, true);
    const auto isShown = [&] { return later.index(5).data().toString() == u"Skin 5"_qs; };
    EXPECT_TRUE(waitFor([&] { return isShown() || later.notice() != Notice::none; }));
    EXPECT_TRUE(isShown());
    EXPECT_EQ(later.notice(), Notice::none);
    EXPECT_TRUE(waitFor([&] { return later.notice() == Notice::cached; }));
    EXPECT_TRUE(isShown());
}

TEST_F(MuseumModelsTest, AQueryWithoutAnAnswerShowsNothingAndCanBeTriedAgain) {
    begin();
    m_museum.faults[Kind::page] = Fault::fails;
    m_list.setQuery(u"skin 5"_qs, true);
    EXPECT_TRUE(settles(Notice::failed));
    EXPECT_EQ(m_list.error(), MuseumError::http(500));
    EXPECT_EQ(m_list.rowCount(), 0);
    m_museum.faults.clear();
    m_list.retry();
    EXPECT_TRUE(shows(0, u"Skin 5"_qs));
    EXPECT_EQ(m_list.notice(), Notice::none);
}

TEST_F(MuseumModelsTest, ASearchThatTheMuseumPutsOffShowsNoneOfTheRowsBefore) {
    begin();
    m_museum.faults[Kind::page] = Fault::limitsRate;
    m_museum.faultsLeft = 1;
    QStringList heldUp;
    QObject::connect(&m_list, &MuseumListModel::stateChanged, [&] {
        if (m_list.isHeldUp())
            heldUp.append(name(0));
    });
    m_list.setQuery(u"skin 5"_qs, true);
    ASSERT_TRUE(shows(0, u"Skin 5"_qs));
    EXPECT_EQ(heldUp, QStringList{QString()});
    EXPECT_FALSE(m_list.isHeldUp());
}

TEST_F(MuseumModelsTest, OnlyTheLastOfManyQueriesCounts) {
    m_museum.latency = 20;
    for (const QString &text : {u"skin 1"_qs, u"skin 2"_qs, u"skin 3"_qs})
        m_list.setQuery(text, true);
    ASSERT_TRUE(shows(0, u"Skin 3"_qs));
    EXPECT_FALSE(waitFor([&] { return name(0) != u"Skin 3"_qs; }, std::chrono::milliseconds(150)));
}

TEST_F(MuseumModelsTest, ShowsNoSkinThatIsNotForEverybodyWhateverTheMuseumSends) {
    m_museum.onRows = [](QJsonArray &rows) {
        QJsonObject row = rows[1].toObject();
        row.insert(u"nsfw"_qs, true);
        rows[1] = row;
    };
    m_list.setQuery({}, false);
    m_list.setInView(0, 10);
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    EXPECT_EQ(name(1), u"Skin 2"_qs);
}

TEST_F(MuseumModelsTest, DownloadsAFewAtATimeAndTellsHowEachIsGoing) {
    QDir().mkpath(m_folder.path("skins"));
    m_museum.latency = 20;
    MuseumDownloader downloader(m_transport, m_agent);
    MuseumDownloads downloads(downloader, [](const QString &) { return QtFuture::makeReadyFuture(QUrl()); });
    QStringList finished;
    QStringList failed;
    QObject::connect(&downloads, &MuseumDownloads::finished,
                     [&](const QString &md5) { finished.append(md5); });
    QObject::connect(&downloads, &MuseumDownloads::failed, [&](const QString &md5) { failed.append(md5); });
    MuseumSkin wrong = skin(3);
    wrong.md5 = skin(4).md5;
    for (int i = 10; i < 20; ++i) {
        downloads.start(skin(i), m_folder.path("skins"));
        downloads.start(skin(i), m_folder.path("skins"));
    }
    downloads.start(wrong, m_folder.path("skins"));
    EXPECT_EQ(downloads.countUnderWay(), 11);
    EXPECT_TRUE(downloads.state(skin(10).md5)->isRunning);
    EXPECT_FALSE(downloads.state(skin(19).md5)->isRunning);
    ASSERT_TRUE(waitFor([&] { return finished.size() + failed.size() == 11; }));
    EXPECT_EQ(failed, QStringList{wrong.md5});
    EXPECT_EQ(downloads.state(wrong.md5)->error, MuseumError::checksumMismatch());
    EXPECT_EQ(downloads.state(skin(10).md5), nullptr);
    EXPECT_EQ(m_museum.count(Kind::archive), 11);
    EXPECT_LE(m_museum.mostAtOnce(), MuseumDownloads::mostAtOnce);
    downloads.start(skin(4), m_folder.path("skins")); // once more
    EXPECT_TRUE(waitFor([&] { return finished.size() == 11; }));
}

TEST_F(MuseumModelsTest, DownloadsThatAreCancelledLeaveNothing) {
    QDir().mkpath(m_folder.path("skins"));
    m_museum.faults[Kind::archive] = Fault::hangs;
    const auto patient =
        std::make_shared<QtMuseumTransport>(QList<QSslCertificate>{m_certificate.certificate()});
    MuseumDownloader downloader(patient, m_agent);
    MuseumDownloads downloads(downloader, [](const QString &) { return QtFuture::makeReadyFuture(QUrl()); });
    QStringList ended;
    QObject::connect(&downloads, &MuseumDownloads::finished, [&](const QString &md5) { ended.append(md5); });
    QObject::connect(&downloads, &MuseumDownloads::failed, [&](const QString &md5) { ended.append(md5); });
    for (int i = 0; i < 6; ++i)
        downloads.start(skin(i), m_folder.path("skins"));
    ASSERT_TRUE(waitFor([&] { return m_museum.count(Kind::archive) == 4; }));
    downloads.cancel(skin(5).md5);
    EXPECT_EQ(downloads.state(skin(5).md5), nullptr);
    m_museum.faults.clear();
    for (int i = 0; i < 4; ++i)
        downloads.cancel(skin(i).md5);
    EXPECT_TRUE(waitFor([&] { return downloads.countUnderWay() == 0; })); // the last one had its turn
    EXPECT_EQ(ended, QStringList{skin(4).md5});
    EXPECT_EQ(downloads.state(skin(0).md5), nullptr);
    EXPECT_EQ(QDir(m_folder.path("skins/Museum")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{u"Skin 4.wsz"_qs});
    patient->close();
}

TEST_F(MuseumModelsTest, PicturesOfWhatIsInViewComeFirst) {
    m_museum.latency = 10;
    MuseumScreenshotCache cache(m_transport, m_agent, m_folder.path("screenshots"),
                                {.maxConcurrentFetches = 1});
    MuseumPictures pictures(cache);
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(pictures.picture(skin(i), 209).isNull());
    QCoreApplication::processEvents();
    pictures.forgetRequests(); // scrolled on
    EXPECT_TRUE(pictures.picture(skin(120), 209).isNull());
    ASSERT_TRUE(waitFor([&] { return !pictures.picture(skin(120), 209).isNull(); }));
    EXPECT_EQ(pictures.picture(skin(120), 209).size(), QSize(165, 209));
    EXPECT_LE(m_museum.count(Kind::screenshot), MuseumPictures::mostLoads + 1);
    EXPECT_TRUE(pictures.picture(skin(120), 348).isNull()); // the same in another size, from what is there
    ASSERT_TRUE(waitFor([&] { return !pictures.picture(skin(120), 348).isNull(); }));

    m_museum.faults[Kind::screenshot] = Fault::garbles;
    EXPECT_TRUE(pictures.picture(skin(121), 209).isNull());
    EXPECT_TRUE(waitFor([&] { return pictures.hasFailed(skin(121).md5); }));
    const auto asked = m_museum.count(Kind::screenshot);
    EXPECT_TRUE(pictures.picture(skin(121), 209).isNull());
    EXPECT_FALSE(
        waitFor([&] { return m_museum.count(Kind::screenshot) > asked; }, std::chrono::milliseconds(100)));

    // A damaged one is fetched again.
    m_museum.faults.clear();
    m_folder.write(("screenshots/" + skin(122).md5.toLatin1()).constData(),
                   FakeMuseum::screenshot(122).left(FakeMuseum::screenshot(122).size() / 2));
    EXPECT_TRUE(pictures.picture(skin(122), 209).isNull());
    ASSERT_TRUE(waitFor([&] { return pictures.hasFailed(skin(122).md5); }));
    pictures.forgetFailures();
    EXPECT_TRUE(waitFor([&] { return !pictures.picture(skin(122), 209).isNull(); }));
}
