#include "MuseumFixture.h"
#include "SkinMuseum/Client/MuseumScreenshotCache.h"

#include <QCoroFuture>

using namespace vantor;
using namespace vantor::test;

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;

namespace {

class MuseumCachesTest : public MuseumFixture {
  protected:
    [[nodiscard]] std::shared_ptr<MuseumResultCache> results(const MuseumResultCache::Limits &limits = {}) {
        return std::make_shared<MuseumResultCache>(m_folder.path("results"), limits,
                                                   [this] { return m_now; });
    }
    [[nodiscard]] std::unique_ptr<MuseumScreenshotCache>
    screenshots(const MuseumScreenshotCache::Limits &limits = {}) {
        return std::make_unique<MuseumScreenshotCache>(m_transport, m_agent, m_folder.path("screenshots"),
                                                       limits, [this] { return m_now; });
    }
    [[nodiscard]] static QCoro::Task<QByteArray> bytes(QFuture<QByteArray> future);
    [[nodiscard]] QStringList files(const char *folder) const {
        return QDir(m_folder.path(folder)).entryList(QDir::Files, QDir::Name);
    }

    QDateTime m_now = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);
};

QCoro::Task<QByteArray> MuseumCachesTest::bytes(QFuture<QByteArray> future) {
    QByteArray picture = co_await future;
    co_return picture;
}

} // namespace

TEST_F(MuseumCachesTest, WhatWasSeenBeforeIsThereWithoutTheMuseum) {
    const MuseumQuery query = MuseumQuery::browse(false);
    const auto online = outcomeOf(client(results()).page(query));
    ASSERT_TRUE(online.value);
    m_museum.goOffline();
    EXPECT_EQ(outcomeOf(client(results()).page(query)).error, MuseumError::offline());
    using Cached = MuseumClient::CachedPage;
    const auto cached = [&](const MuseumQuery &asked) {
        return *outcomeOf(client(results()).cachedPage(asked)).value;
    };
    EXPECT_EQ(cached(query), (Cached{*online.value, false}));
    EXPECT_EQ(cached(query.at(60)), std::nullopt);
    m_now = m_now.addSecs(86'400);
    EXPECT_EQ(cached(query), (Cached{*online.value, false}));
    m_now = m_now.addSecs(1);
    EXPECT_EQ(cached(query), (Cached{*online.value, true}));
    ASSERT_EQ(files("results").size(), 1);
    m_folder.write(("results/" + files("results").first().toLatin1()).constData(), "{\"data\":");
    EXPECT_EQ(cached(query), std::nullopt);
}

TEST_F(MuseumCachesTest, ResultsStayWithinTheirLimits) {
    const auto kept = [&](const MuseumResultCache::Limits &limits) {
        QDir(m_folder.path("results")).removeRecursively();
        auto cache = results(limits);
        for (int i = 0; i < 6; ++i) {
            m_now = m_now.addSecs(1);
            cache->store(QString::number(i), QByteArray(100, static_cast<char>('0' + i)));
        }
        cache->store(u"large"_qs, QByteArray(MuseumResultCache::maxAnswer + 1, 'x'));
        QByteArray found;
        for (int i = 0; i < 6; ++i) {
            if (const auto entry = *outcomeOf(cache->page(QString::number(i))).value)
                found += entry->answer.left(1);
        }
        return found;
    };
    EXPECT_EQ(kept({}), "012345");
    EXPECT_EQ(kept({.maxEntries = 2}), "45");
    EXPECT_EQ(kept({.maxBytes = 300}), "345");
    EXPECT_EQ(kept({.maxBytes = 299}), "45");
}

TEST_F(MuseumCachesTest, AScreenshotIsFetchedOnceForAllAndKept) {
    auto cache = screenshots();
    const auto one = started(bytes(cache->screenshot(skin(1))));
    const auto same = started(bytes(cache->screenshot(skin(1))));
    ASSERT_TRUE(waitFor([&] { return one->isThere() && same->isThere(); }));
    EXPECT_EQ(one->value, FakeMuseum::screenshot(1));
    EXPECT_EQ(same->value, one->value);
    EXPECT_EQ(outcomeOf(bytes(cache->screenshot(skin(1)))).value, one->value);
    EXPECT_EQ(m_museum.count(Kind::screenshot), 1);
    EXPECT_EQ(m_museum.requests().constLast().headers.value("user-agent"), m_agent);
    cache.reset();
    m_museum.goOffline();
    cache = screenshots(); // the next run
    EXPECT_EQ(outcomeOf(bytes(cache->screenshot(skin(1)))).value, one->value);
    EXPECT_EQ(outcomeOf(bytes(cache->screenshot(skin(2)))).error, MuseumError::offline());
}

TEST_F(MuseumCachesTest, SaysWhyThereIsNoScreenshotAndAsksAgain) {
    auto cache = screenshots();
    const std::pair<Fault, MuseumError> rows[] = {{Fault::fails, MuseumError::http(500)},
                                                  {Fault::garbles, MuseumError::decoding()},
                                                  {Fault::truncates, MuseumError::offline()},
                                                  {Fault::isEndless, MuseumError::tooLarge()}};
    for (const auto &[fault, expected] : rows) {
        m_museum.faults[Kind::screenshot] = fault;
        EXPECT_EQ(outcomeOf(bytes(cache->screenshot(skin(1)))).error, expected) << static_cast<int>(fault);
    }
    MuseumSkin stray = skin(1);
    stray.md5 = u"../../stray"_qs;
    EXPECT_EQ(outcomeOf(bytes(cache->screenshot(stray))).error, MuseumError::decoding());
    EXPECT_TRUE(files("screenshots").isEmpty());
    m_museum.faults.clear();
    EXPECT_EQ(outcomeOf(bytes(cache->screenshot(skin(1)))).value, FakeMuseum::screenshot(1));
    cache.reset();
    m_folder.write(("screenshots/" + skin(1).md5.toLatin1()).constData(), "damaged");
    EXPECT_EQ(outcomeOf(bytes(screenshots()->screenshot(skin(1)))).value, FakeMuseum::screenshot(1));
}

TEST_F(MuseumCachesTest, FetchesFewScreenshotsAtOnceAndForgetsTheOldest) {
    m_museum.latency = 5;
    const qint64 size = FakeMuseum::screenshot(0).size();
    auto cache = screenshots({.maxDiskBytes = size * 10, .maxMemoryEntries = 2, .maxConcurrentFetches = 3});
    std::vector<std::shared_ptr<Outcome<QByteArray>>> outcomes;
    const auto areThere = [&] {
        return std::ranges::all_of(outcomes, [](const auto &one) { return one->isThere(); });
    };
    for (int i = 0; i < 20; ++i) {
        outcomes.push_back(started(bytes(cache->screenshot(skin(i)))));
        if (i % 10 == 9) {
            ASSERT_TRUE(waitFor(areThere));
            m_now = m_now.addSecs(1);
        }
    }
    EXPECT_EQ(m_museum.mostAtOnce(), 3);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(outcomes[static_cast<std::size_t>(i)]->value, FakeMuseum::screenshot(i)) << i;
    cache.reset();
    const QStringList kept = files("screenshots");
    qint64 bytes = 0;
    for (const QString &file : kept)
        bytes += QFileInfo(m_folder.path("screenshots") + u'/' + file).size();
    EXPECT_LE(bytes, size * 10);
    EXPECT_GE(kept.size(), 7);
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(kept.contains(skin(i).md5)) << i;
}

TEST_F(MuseumCachesTest, WhoeverWaitsForAScreenshotHearsThatTheCacheHasGone) {
    m_museum.faults[Kind::screenshot] = Fault::hangs;
    auto cache = screenshots({.maxConcurrentFetches = 1});
    const auto fetched = started(bytes(cache->screenshot(skin(1))));
    const auto waiting = started(bytes(cache->screenshot(skin(2))));
    ASSERT_TRUE(waitFor([&] { return !m_museum.requests().isEmpty(); }));
    cache.reset();
    m_transport->close();
    EXPECT_TRUE(waitFor([&] { return fetched->error && waiting->error; }));
}
