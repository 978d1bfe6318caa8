#include "FolderBackendKit/FolderTrackNumbers.h"
#include "FolderBackendKit/FolderWalk.h"

#include <gtest/gtest.h>

namespace vantor {

TEST(FolderNamesTest, AlbumFoldersGiveTitleAndYear) {
    const struct {
        const char *name;
        const char *title;
        std::optional<int> year;
    } rows[] = {
        {"1977 - Rumours", "Rumours", 1977},
        {"1977–Rumours", "Rumours", 1977},
        {"1977-Rumours (2004)", "Rumours (2004)", 1977},
        {"Rumours (1977)", "Rumours", 1977},
        {"Rumours(1977)", "Rumours", 1977},
        {"Greatest Hits (Live) (1999)", "Greatest Hits (Live)", 1999},
        {"1899 - Something", "1899 - Something", std::nullopt},
        {"2101 - Something", "2101 - Something", std::nullopt},
        {"1900 - First", "First", 1900},
        {"Last (2100)", "Last", 2100},
        {"1899 - Something (1999)", "1899 - Something", 1999},
        {"Rumours (1977) Remaster", "Rumours (1977) Remaster", std::nullopt},
        {"1984", "1984", std::nullopt},
        {"(1984)", "(1984)", std::nullopt},
        {"1984 - ", "1984 - ", std::nullopt},
        {"19845 - Title", "19845 - Title", std::nullopt},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto [title, year] = FolderWalk::parseAlbumFolder(QString::fromUtf8(row.name));
        EXPECT_EQ(title, QString::fromUtf8(row.title));
        EXPECT_EQ(year, row.year);
    }
}

TEST(FolderNamesTest, DiscFoldersGiveTheirNumber) {
    const std::pair<const char *, std::optional<int>> rows[] = {
        {"Disc 1", 1},          {"CD02", 2},       {"disk 3", 3},
        {"CD 010", 10},         {"DISC 0012", 12}, {"Disc", std::nullopt},
        {"Disc 1 (Bonus)", {}}, {"Disc 1234", {}}, {"My Disc 1", {}},
        {"Disc-1", {}},
    };
    for (const auto &[name, number] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(FolderWalk::discNumber(QString::fromUtf8(name)), number);
    }
}

TEST(FolderNamesTest, ArtistsSortWithoutTheirArticle) {
    const std::pair<const char *, const char *> rows[] = {
        {"The Beatles", "Beatles"},
        {"THE BAND", "BAND"},
        {"The", "The"},
        {"The ", "The "},
        {"The  ", "The  "},
        {"Theatre", "Theatre"},
        {"The X", "X"},
        {"Them The Band", "Them The Band"},
    };
    for (const auto &[name, sortName] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(FolderWalk::sortName(QString::fromUtf8(name)), QString::fromUtf8(sortName));
    }
}

TEST(FolderNamesTest, BlanksAroundNamesAreNotShown) {
    const std::pair<const char *, const char *> rows[] = {{"  Abba ", "Abba"}, {"A  b", "A  b"}, {" ", " "}};
    for (const auto &[name, shown] : rows)
        EXPECT_EQ(FolderWalk::displayName(QString::fromUtf8(name)), QString::fromUtf8(shown));
}

TEST(FolderNamesTest, TagNumbersAreWhatStandsBeforeTheSlash) {
    const std::pair<const char *, std::optional<int>> rows[] = {
        {"3/12", 3}, {" 7 ", 7}, {"-2", -2},  {"+4/5", 4},         {"", {}},
        {"/12", {}}, {"A1", {}}, {"3.5", {}}, {"99999999999", {}}, {"0012", 12},
    };
    for (const auto &[text, number] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(FolderTrackNumbers::parse(QString::fromUtf8(text)), number);
    }
}

TEST(FolderNamesTest, StemsGiveNumberAndTitle) {
    const struct {
        const char *stem;
        const char *title;
        std::optional<int> track;
    } rows[] = {
        {"01 - Intro", "Intro", 1},
        {"07.Song", "Song", 7},
        {"12_ Song ", "Song", 12},
        {"1-02 Song", "02 Song", 1},
        {"2001 A Space Odyssey", "2001 A Space Odyssey", std::nullopt},
        {"99Luftballons", "99Luftballons", std::nullopt},
        {"04", "04", std::nullopt},
        {"04 - ", "04 - ", std::nullopt},
        {"Song 01", "Song 01", std::nullopt},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.stem);
        const FolderTrackNumbers::Stem expected{QString::fromUtf8(row.title), row.track};
        EXPECT_EQ(FolderTrackNumbers::parseStem(QString::fromUtf8(row.stem)), expected);
    }
}

} // namespace vantor
