#include "LibraryBrowser/LibraryBrowser.h"

#include "BrowserFixture.h"
#include "LibraryBrowser/LibraryRecommendations.h"

#include <QSignalSpy>

using namespace vantor;

namespace {

using LibraryBrowserTest = BrowserFixture;

} // namespace

TEST_F(LibraryBrowserTest, SectionsAreThoseThatTheSourceOffers) {
    using Section = LibrarySection;
    using Capability = MusicBackendCapability;
    const QList<Section> bare{Section::artists, Section::albums, Section::tracks};
    const std::pair<MusicBackendCapabilities, QList<Section>> rows[] = {
        {{}, bare},
        {Capability::search | Capability::artwork | Capability::localOutput, bare},
        {Capability::playlists, bare + QList{Section::playlists}},
        {Capability::radio | Capability::favorites, bare + QList{Section::radios, Section::favorites}},
        {Capability::recommendations, bare + QList{Section::recommendations}},
    };
    for (const auto &[capabilities, expected] : rows)
        EXPECT_EQ(librarySections(capabilities), expected) << capabilities.toInt();
}

TEST_F(LibraryBrowserTest, ASourceThatCannotBeReachedIsToldAndTriedAgain) {
    m_made->failure = u"No route to host."_qs;
    m_browser.setBackend(m_made);
    ASSERT_TRUE(waitFor([&] { return m_browser.state() == LibraryBrowser::State::failed; }));
    EXPECT_EQ(m_browser.failure()->sentence, u"No route to host."_qs);
    EXPECT_FALSE(m_browser.connected());
    m_made->failure.reset();
    m_browser.retry();
    ASSERT_TRUE(waitFor([&] { return m_browser.connected() != nullptr; }));
    EXPECT_FALSE(m_browser.failure());
}

TEST_F(LibraryBrowserTest, TheOutputIsTheChosenOneWhileItIsThere) {
    EXPECT_FALSE(m_browser.output());
    OutputDevice kitchen;
    kitchen.id = {u"a"_qs};
    kitchen.name = u"Kitchen"_qs;
    OutputDevice bath = kitchen;
    bath.id = {u"b"_qs};
    bath.name = u"Bath"_qs;
    m_made->speakers = {kitchen, bath};
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(waitFor([&] { return m_browser.output().has_value(); }));
    EXPECT_EQ(m_browser.output()->name, u"Kitchen"_qs);
    m_browser.chooseOutput({u"b"_qs});
    EXPECT_EQ(m_browser.output()->name, u"Bath"_qs);
    m_browser.play(PlayRequest::append({MediaKind::album, u"7"_qs}));
    ASSERT_TRUE(waitFor([&] { return !m_made->played.isEmpty(); }));
    EXPECT_EQ(m_made->played.first().second.rawValue, u"b"_qs);
    EXPECT_EQ(m_made->played.first().first, PlayRequest::append({MediaKind::album, u"7"_qs}));
}

TEST_F(LibraryBrowserTest, RequestsToPlayAreCarriedOutInTheirOrderAndOneAtATime) {
    ASSERT_TRUE(connectTo(m_made));
    m_made->delay = std::chrono::milliseconds(50);
    m_browser.play(PlayRequest::play({MediaKind::album, u"1"_qs}));
    m_made->delay = std::chrono::milliseconds(0);
    m_browser.play(PlayRequest::append({MediaKind::album, u"2"_qs}));
    ASSERT_TRUE(waitFor([&] { return m_made->played.size() == 2; }));
    EXPECT_EQ(m_made->played[1].first, PlayRequest::append({MediaKind::album, u"2"_qs}));
}

TEST_F(LibraryBrowserTest, WhatCannotBeDoneIsToldInASentence) {
    ASSERT_TRUE(connectTo(m_made));
    settle();
    const QSignalSpy failed(&m_browser, &LibraryBrowser::failed);
    m_made->failure = u"The speaker is gone."_qs;
    m_browser.play(PlayRequest::play({MediaKind::album, u"7"_qs}));
    m_browser.setFavorite({{MediaKind::track, u"7"_qs}}, true);
    ASSERT_TRUE(waitFor([&] { return failed.size() == 2; }));
    EXPECT_EQ(failed.at(0).first().toString(), u"The speaker is gone."_qs);
    EXPECT_TRUE(m_made->favoritesSet.isEmpty());
}

TEST_F(LibraryBrowserTest, RecommendationsAreShelvesOfWhatThereIs) {
    m_made->offers |= MusicBackendCapability::recommendations;
    m_made->setSize({.artists = 2, .albumsPerArtist = 2});
    const auto row = [](const char *name, bool isEnabled = true) {
        return RecommendationRow{.provider = u"p"_qs,
                                 .itemID = QLatin1String(name),
                                 .name = QLatin1String(name),
                                 .subtitle = {},
                                 .icon = {},
                                 .isEnabledByDefault = isEnabled,
                                 .providerName = {}};
    };
    const QList<RecommendationItem> items{
        RecommendationItem::artist(m_made->allArtists[1]), RecommendationItem::album(m_made->allOfAlbums[2]),
        RecommendationItem::other({u"A Mix"_qs, u"uri:mix"_qs, {}, {}, {}})};
    m_made->recommended = {{row("new"), items}, {row("empty"), {}}, {row("hidden", false), items}};
    LibraryRecommendations recommendations(m_browser);
    recommendations.open();
    ASSERT_TRUE(connectTo(m_made));
    ASSERT_TRUE(waitFor([&] { return recommendations.shelves().size() == 1; }));
    const LibraryListModel &shelf = *recommendations.shelves().front().items;
    ASSERT_EQ(shelf.rowCount(), 3);
    EXPECT_EQ(shelf.item(0)->kind(), MediaKind::artist);
    EXPECT_EQ(shelf.item(1)->title(), u"Album 2"_qs);
    EXPECT_EQ(shelf.item(2)->kind(), std::nullopt);
    EXPECT_EQ(countRequests(u"recommended"_qs), 2);

    m_made->recommended.clear();
    m_made->announce(LibraryChange::played());
    EXPECT_TRUE(waitFor([&] { return recommendations.shelves().empty(); }));
}
