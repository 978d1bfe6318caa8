#include "MuseumFixture.h"

using namespace vantor;
using namespace vantor::test;
using namespace std::chrono_literals;

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;

TEST_F(MuseumFixture, PagesAndSearchesTheMuseum) {
    const auto first = outcomeOf(client().page(MuseumQuery::browse(false)));
    ASSERT_TRUE(first.value);
    EXPECT_EQ(first.value->skins.size(), 60);
    EXPECT_EQ(first.value->skins.at(9), skin(10)); // the one before is not for everybody
    EXPECT_EQ(first.value->total, 117);
    EXPECT_TRUE(first.value->hasMore);
    const auto all = outcomeOf(client().page(MuseumQuery::browse(true, 60, 120)));
    ASSERT_TRUE(all.value);
    EXPECT_EQ(all.value->skins.size(), 10);
    EXPECT_FALSE(all.value->hasMore);
    const auto found = outcomeOf(client().page(MuseumQuery::search(u"skin 12"_qs, true)));
    ASSERT_TRUE(found.value);
    EXPECT_EQ(found.value->skins.size(), 11);

    const FakeMuseum::Request request = m_museum.requests().constFirst();
    EXPECT_TRUE(request.isWellFormed);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.headers.value("content-type"), "application/json");
    EXPECT_EQ(request.headers.value("user-agent"), "Vantor/1.2 (+https://vantor.kelvane.co)");
}

TEST_F(MuseumFixture, SaysWhatWentWrong) {
    struct Row {
        Fault fault;
        MuseumError expected;
    };
    const Row rows[] = {
        {Fault::fails, MuseumError::http(500)},
        {Fault::reportsError, MuseumError::graphQL(u"The shelves are being dusted"_qs)},
        {Fault::garbles, MuseumError::decoding()},
        {Fault::wrongContent, MuseumError::decoding()},
        {Fault::isEndless, MuseumError::decoding()},
        {Fault::truncates, MuseumError::offline()},
        {Fault::claimsMore, MuseumError::offline()},
        {Fault::hangs, MuseumError::offline()},
        {Fault::redirects, MuseumError::http(302)},
    };
    m_museum.redirectTarget = QUrl(u"http://127.0.0.1:1/graphql"_qs);
    for (const Row &row : rows) {
        m_museum.faults[Kind::page] = row.fault;
        const auto outcome = outcomeOf(client().page(MuseumQuery::browse(false)));
        EXPECT_EQ(outcome.error, row.expected) << static_cast<int>(row.fault);
    }
    EXPECT_TRUE(m_waits.isEmpty());
    m_museum.goOffline();
    EXPECT_EQ(outcomeOf(client().page(MuseumQuery::browse(false))).error, MuseumError::offline());
}

TEST_F(MuseumFixture, GivesTheMuseumThePatienceItAsksForOnce) {
    struct Row {
        QByteArray header;
        QList<std::chrono::milliseconds> waits;
    };
    const Row rows[] = {{"7", {7s}}, {"0", {0s}}, {"30", {10s}}, {"99999999999999999999", {10s}},
                        {"-1", {}},  {"1.5", {}}, {"", {}},      {"Wed, 21 Oct 2026 07:28:00 GMT", {}}};
    m_museum.faults[Kind::page] = Fault::limitsRate;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.header.data());
        m_museum.retryAfter = row.header;
        m_museum.faultsLeft = 1;
        m_waits.clear();
        const auto outcome = outcomeOf(client().page(MuseumQuery::browse(false)));
        EXPECT_EQ(m_waits, row.waits);
        EXPECT_EQ(outcome.value.has_value(), !row.waits.isEmpty());
        if (row.waits.isEmpty())
            EXPECT_EQ(outcome.error, MuseumError::http(429));
    }
    m_museum.retryAfter = "1";
    m_museum.faultsLeft = 2;
    EXPECT_EQ(outcomeOf(client().page(MuseumQuery::browse(false))).error, MuseumError::http(429));
}

TEST_F(MuseumFixture, TalksOnlyToWhomItCanTrust) {
    const auto ask = [&](const std::shared_ptr<MuseumTransport> &transport, const QUrl &endpoint) {
        MuseumClient museum(transport, nullptr, m_agent, endpoint);
        const auto outcome = outcomeOf(museum.page(MuseumQuery::browse(false)));
        transport->close();
        return outcome.error;
    };
    const QList trusted{m_certificate.certificate()};
    QUrl otherName = m_museum.url();
    otherName.setHost(u"127.0.0.1"_qs);
    EXPECT_EQ(ask(std::make_shared<QtMuseumTransport>(), m_museum.url()), MuseumError::offline());
    EXPECT_EQ(ask(std::make_shared<QtMuseumTransport>(trusted), otherName), MuseumError::offline());

    FakeMuseum open(content()); // without encryption
    ASSERT_TRUE(open.open());
    EXPECT_EQ(ask(std::make_shared<QtMuseumTransport>(trusted), open.url()), MuseumError::offline());
    m_museum.faults[Kind::page] = Fault::redirects;
    m_museum.redirectTarget = open.url();
    EXPECT_EQ(ask(std::make_shared<QtMuseumTransport>(trusted), m_museum.url()), MuseumError::http(302));
    EXPECT_TRUE(open.requests().isEmpty());
}

TEST_F(MuseumFixture, FollowsARedirectionToAnotherSecureAddress) {
    FakeMuseum other(content());
    other.tls = m_certificate.serverConfiguration();
    ASSERT_TRUE(other.open());
    m_museum.faults[Kind::screenshot] = Fault::redirects;
    m_museum.redirectTarget = other.url(u"/screenshots/3.png"_qs);
    const MuseumRequest request{.url = skin(3).screenshotURL, .userAgent = m_agent, .maxBytes = 1 << 20};
    const auto outcome = outcomeOf(m_transport->send(request));
    EXPECT_EQ(outcome.value->body, FakeMuseum::screenshot(3));
    EXPECT_EQ(other.count(Kind::screenshot), 1);
}

TEST_F(MuseumFixture, WhatIsUnderWayEndsWithTheTransport) {
    m_museum.faults[Kind::page] = Fault::hangs;
    std::optional<MuseumClient> museum(client());
    const auto outcome = started(museum->page(MuseumQuery::browse(false)));
    ASSERT_TRUE(waitFor([&] { return !m_museum.requests().isEmpty(); }));
    museum.reset();
    m_transport->close();
    ASSERT_TRUE(waitFor([&] { return outcome->isThere(); }));
    EXPECT_EQ(outcome->error, MuseumError::offline());
}
