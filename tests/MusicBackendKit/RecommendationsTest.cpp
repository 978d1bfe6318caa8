#include "MusicBackendKit/Recommendations.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(RecommendationsTest, OnlyAReferenceToARecordIsAMapping) {
    LibraryTrack track;
    track.id.rawValue = u"7"_qs;
    track.title = u"Song"_qs;
    track.artistName = u"Ann"_qs;
    const auto record = RecommendationItem::track(track);
    EXPECT_EQ(record.id(), u"track:7"_qs);
    EXPECT_EQ(record.mediaID(), track.id);
    EXPECT_EQ(record.name(), u"Song"_qs);
    EXPECT_EQ(record.subtitle(), u"Ann"_qs);
    EXPECT_EQ(record.kind(), MediaKind::track);
    EXPECT_FALSE(record.isMapping());

    RecommendationItem::Other other{
        u"Mix"_qs, u"library://playlist/1"_qs, {}, MediaKind::playlist, ArtworkRef{u"a"_qs}};
    const auto mapping = RecommendationItem::other(other);
    EXPECT_TRUE(mapping.isMapping());
    EXPECT_EQ(mapping.id(), u"library://playlist/1"_qs);
    EXPECT_EQ(mapping.kind(), MediaKind::playlist);
    EXPECT_EQ(mapping.artwork(), other.artwork);
    EXPECT_FALSE(mapping.mediaID());
    other.kind.reset();
    EXPECT_FALSE(RecommendationItem::other(other).isMapping());
}

TEST(RecommendationsTest, RowsOfDifferentProvidersDiffer) {
    RecommendationRow one;
    one.provider = u"a"_qs;
    one.itemID = u"b.c"_qs;
    RecommendationRow two;
    two.provider = u"a.b"_qs;
    two.itemID = u"c"_qs;
    EXPECT_NE(one.id(), two.id());
}
