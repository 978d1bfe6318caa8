#include "LibraryBrowser/LibrarySearch.h"

#include "BrowserFixture.h"

using namespace vantor;

namespace {

class LibrarySearchTest : public BrowserFixture {
  protected:
    void SetUp() override {
        m_made->setSize({.artists = 30, .albumsPerArtist = 1, .tracksPerAlbum = 2});
        ASSERT_TRUE(connectTo(m_made));
    }
    [[nodiscard]] bool isFound(int albums) {
        return waitFor([&] { return m_search.isSettled() && m_search.albums().rowCount() == albums; });
    }

    LibrarySearch m_search{m_browser};
};

} // namespace

TEST_F(LibrarySearchTest, TypingIsWaitedForAndEveryKindIsFound) {
    for (const QString &text : {u"1"_qs, u"12"_qs, u"  12 "_qs})
        m_search.setText(text);
    ASSERT_TRUE(isFound(1));
    EXPECT_EQ(m_search.artists().item(0)->title(), u"Artist 12"_qs);
    EXPECT_EQ(m_search.tracks().rowCount(), 2);
    EXPECT_EQ(m_made->requests.filter(u"search"_qs), QStringList{u"search 12"_qs});
    m_search.setText(u" "_qs);
    EXPECT_FALSE(m_search.isActive());
    EXPECT_FALSE(m_search.hasResults());
}

TEST_F(LibrarySearchTest, ALateAnswerToAnEarlierTextIsDropped) {
    m_made->searchDelay = [](const QString &text) {
        return std::chrono::milliseconds(text == u"1"_qs ? 250 : 0);
    };
    m_search.setText(u"1"_qs);
    ASSERT_TRUE(waitFor([&] { return countRequests(u"search"_qs) == 1; }));
    m_search.setText(u"Album 29"_qs);
    ASSERT_TRUE(isFound(1));
    settle(std::chrono::milliseconds(250));
    EXPECT_EQ(m_search.albums().rowCount(), 1);
    EXPECT_EQ(m_search.albums().item(0)->title(), u"Album 29"_qs);
}

TEST_F(LibrarySearchTest, WhatWasFoundStaysUntilTheNextAnswer) {
    m_search.setText(u"Album 2"_qs);
    ASSERT_TRUE(isFound(11));
    m_search.setText(u"Album 29"_qs);
    EXPECT_FALSE(m_search.isSettled());
    EXPECT_EQ(m_search.albums().rowCount(), 11);
    ASSERT_TRUE(isFound(1));
    m_search.setText(u"nothing of the kind"_qs);
    ASSERT_TRUE(isFound(0));
    EXPECT_FALSE(m_search.hasResults());
}

TEST_F(LibrarySearchTest, AFailureIsToldAndRetried) {
    m_made->failure = u"The server is asleep."_qs;
    m_search.setText(u"Album"_qs);
    ASSERT_TRUE(waitFor([&] { return m_search.failure().has_value(); }));
    EXPECT_EQ(m_search.failure()->sentence, u"The server is asleep."_qs);
    m_made->failure.reset();
    m_search.retry();
    EXPECT_TRUE(isFound(30));
    EXPECT_FALSE(m_search.failure());
}

TEST_F(LibrarySearchTest, AnotherSourceEndsTheSearch) {
    m_search.setText(u"Album"_qs);
    ASSERT_TRUE(isFound(30));
    m_search.setText(u"Alb"_qs);
    m_browser.setBackend(nullptr);
    settle(std::chrono::milliseconds(150));
    EXPECT_FALSE(m_search.isActive());
    EXPECT_FALSE(m_search.hasResults());
}
