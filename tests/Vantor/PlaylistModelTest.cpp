#include "Vantor/Model/PlaylistModel.h"

#include "PlayerFixture.h"
#include "PlaylistShown.h"
#include "Vantor/Model/TrackFinder.h"

using namespace vantor;
using Selecting = PlaylistModel::Selecting;

namespace {

Track made(const QString &artist, const QString &title, double duration = 60) {
    Track track;
    track.id = QUuid::createUuid();
    track.artist = artist;
    track.title = title;
    track.duration = duration;
    track.source = QUrl::fromLocalFile(QStringLiteral("/music/%1 %2.flac").arg(artist, title));
    return track;
}

class PlaylistModelTest : public PlayerFixture {
  protected:
    /// One track a letter, with the letter as its title.
    void fill(const char *letters) {
        std::vector<Track> tracks;
        for (const char *letter = letters; *letter != 0; ++letter)
            tracks.push_back(made({}, QString(QLatin1Char(*letter))));
        m_player.enqueue(tracks);
    }
    [[nodiscard]] std::string shown() const { return shownRows(m_playlist); }

    PlaylistModel m_playlist{m_model, m_settings};
};

} // namespace

TEST_F(PlaylistModelTest, KeysSelectFromTheCursor) {
    fill("abcdef");
    m_playlist.moveCursor(1, Selecting::only);
    EXPECT_EQ(shown(), "[a]bcdef"); // the first step shows the cursor
    m_playlist.moveCursor(2, Selecting::only);
    m_playlist.moveCursor(1, Selecting::extending);
    EXPECT_EQ(shown(), "ab[c][d]ef");
    m_playlist.moveCursor(-3, Selecting::extending);
    EXPECT_EQ(shown(), "[a][b][c]def"); // the range turns round its anchor
    m_playlist.moveCursor(100, Selecting::only);
    EXPECT_EQ(shown(), "abcde[f]");
    m_playlist.moveCursor(std::numeric_limits<int>::min(), Selecting::extending);
    EXPECT_EQ(shown(), "[a][b][c][d][e][f]");
    m_playlist.select(2, Selecting::toggling);
    m_playlist.invertSelection();
    EXPECT_EQ(shown(), "ab[c]def");
    m_playlist.select(6, Selecting::only);
    m_playlist.select(-1, Selecting::only);
    EXPECT_EQ(shown(), "ab[c]def");
}

TEST_F(PlaylistModelTest, RemovingGoesOnWithTheNextRow) {
    fill("abcdef");
    m_playlist.select(1, Selecting::only);
    m_playlist.select(3, Selecting::toggling);
    m_playlist.removeSelected();
    EXPECT_EQ(shown(), "a[c]ef");
    m_playlist.select(3, Selecting::only);
    m_playlist.removeSelected();
    EXPECT_EQ(shown(), "ac[e]");
    m_playlist.select(0, Selecting::toggling);
    m_playlist.crop();
    EXPECT_EQ(shown(), "[a][e]");
    m_playlist.removeAll();
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(m_playlist.cursor(), std::nullopt);
    m_playlist.moveCursor(1, Selecting::only);
    m_playlist.removeSelected();
    m_playlist.crop();
}

TEST_F(PlaylistModelTest, SelectedRowsMoveTogetherUpToTheEnds) {
    fill("abcdef");
    m_playlist.select(1, Selecting::only);
    m_playlist.select(3, Selecting::toggling);
    EXPECT_EQ(m_playlist.moveSelected(1), 1);
    EXPECT_EQ(shown(), "ac[b]e[d]f");
    EXPECT_EQ(m_playlist.moveSelected(5), 1);
    EXPECT_EQ(m_playlist.moveSelected(1), 0);
    EXPECT_EQ(shown(), "ace[b]f[d]");
    EXPECT_EQ(m_playlist.moveSelected(-9), -3);
    EXPECT_EQ(shown(), "[b]a[d]cef");
    m_playlist.select(2, Selecting::extending); // from the row clicked last, wherever it went
    EXPECT_EQ(shown(), "ba[d]cef");
    // The cursor stays on its track, also on one that is not selected, and so does the begin of a range.
    m_playlist.select(5, Selecting::only);
    m_playlist.select(0, Selecting::toggling);
    m_playlist.select(0, Selecting::toggling);
    EXPECT_EQ(m_playlist.moveSelected(-5), -5);
    EXPECT_EQ(shown(), "[f]badce");
    EXPECT_EQ(m_playlist.cursor(), 1);
    m_playlist.select(2, Selecting::extending);
    EXPECT_EQ(shown(), "f[b][a]dce");
}

TEST_F(PlaylistModelTest, CursorAndRangesGoWithTheirTracksAndEndWithThem) {
    fill("abcdef");
    m_playlist.select(4, Selecting::only);
    m_playlist.local().reverse();
    EXPECT_EQ(m_playlist.cursor(), 1);
    m_playlist.select(3, Selecting::extending);
    EXPECT_EQ(shown(), "f[e][d][c]ba");
    m_playlist.removeAll();
    fill("uvwxyz");
    m_playlist.select(3, Selecting::extending);
    EXPECT_EQ(shown(), "uvw[x]yz");
}

TEST_F(PlaylistModelTest, ListsAreSortedAsPeopleSort) {
    m_player.restoreQueue({made({}, QStringLiteral("Track 10")), made({}, QStringLiteral("track 9")),
                           made(QStringLiteral("Alba"), QStringLiteral("Z")),
                           made({}, QStringLiteral("Track 9"))},
                          0, RepeatMode::off, false);
    m_playlist.local().sortByTitle();
    QStringList titles;
    for (int row = 0; row < 4; ++row)
        titles += m_playlist.track(row)->title;
    EXPECT_EQ(titles, QStringList({QStringLiteral("Z"), QStringLiteral("track 9"), QStringLiteral("Track 9"),
                                   QStringLiteral("Track 10")}));
    EXPECT_EQ(m_player.queue().currentIndex(), 3);
}

TEST_F(PlaylistModelTest, DuplicatesGoButNotTheOneThatPlays) {
    fill("abab");
    m_player.restoreQueue(m_player.queue().tracks(), 2, RepeatMode::off, false);
    m_playlist.local().removeDuplicates();
    EXPECT_EQ(shown(), "ba");
    EXPECT_EQ(m_player.queue().currentIndex(), 1);

    std::vector<Track> parts(3, m_player.queue().tracks().front());
    for (Track &part : parts)
        part.id = QUuid::createUuid();
    parts[0].range = TrackRange{0, 5};
    parts[1].range = TrackRange{5, 9};
    m_player.restoreQueue(parts, std::nullopt, RepeatMode::off, false);
    m_playlist.local().removeDuplicates();
    EXPECT_EQ(m_player.queue().count(), 3) << "parts of one file";
}

TEST_F(PlaylistModelTest, MissingFilesAreRemovedAndOthersStay) {
    fill("x");
    m_player.enqueue({Track::file(writeTone("here.wav", 1))});
    fill("y");
    m_playlist.local().removeMissing();
    EXPECT_TRUE(waitFor([&] { return shown() == "here"; }));
}

TEST_F(PlaylistModelTest, TheSceneHasWhatIsSeenOnly) {
    m_playlist.setSize({275, 116});
    std::vector<Track> tracks;
    for (int i = 1; i <= 20; ++i)
        tracks.push_back(made(QStringLiteral("A"), QStringLiteral("T%1").arg(i), i == 7 ? 0 : 61));
    m_player.restoreQueue(tracks, 6, RepeatMode::off, false);
    m_playlist.select(5, Selecting::only);
    m_playlist.scrollTo(4);
    const PlaylistWindowScene scene = m_playlist.scene();
    const std::vector<PlaylistRow> expected{
        {QStringLiteral("5. A - T5"), QStringLiteral("1:01"), false, false},
        {QStringLiteral("6. A - T6"), QStringLiteral("1:01"), false, true},
        {QStringLiteral("7. A - T7"), QString(), true, false},
        {QStringLiteral("8. A - T8"), QStringLiteral("1:01"), false, false}};
    EXPECT_EQ(scene.rows, expected);
    EXPECT_EQ(scene.scroll, 0.25);
    EXPECT_EQ(scene.runningTime, QStringLiteral("1:01/19:19+"));
    m_playlist.scrollTo(999);
    EXPECT_EQ(m_playlist.firstRow(), 16);
    m_playlist.setSize({275, 232}); // what is scrolled past the end comes back
    EXPECT_EQ(m_playlist.firstRow(), 20 - PlaylistWindowLayout::visibleRows({275, 232}));
    const int elsewhere = m_playlist.firstRow();
    m_player.play(0);
    EXPECT_EQ(m_playlist.firstRow(), elsewhere); // the user is looking at something else
    m_playlist.scrollTo(0);
    m_player.play(19);
    EXPECT_EQ(m_playlist.firstRow(), elsewhere); // what plays is followed
}

TEST_F(PlaylistModelTest, TheSizeIsRememberedAndNonsenseIsNot) {
    m_playlist.setSize({333, 200});
    EXPECT_EQ(PlaylistModel(m_model, m_settings).size(), QSize(325, 203));
    m_settings.setValue(QStringLiteral("playlist.size"), QStringLiteral("wide"));
    EXPECT_EQ(PlaylistModel(m_model, m_settings).size(), QSize(275, 116));
}

TEST_F(PlaylistModelTest, TypedWordsFindTheNextTrack) {
    m_player.enqueue({made(QStringLiteral("Abel"), QStringLiteral("Rain")),
                      made(QStringLiteral("Émile"), QStringLiteral("Alba")), made({}, QStringLiteral("Snow")),
                      made(QStringLiteral("Abel"), QStringLiteral("Rust"))});
    const std::pair<const char *, int> typed[] = {{"e", 1}, {"m", 1}, {"i", 1}};
    for (const auto &[letter, row] : typed) {
        m_playlist.type(QLatin1String(letter));
        EXPECT_EQ(m_playlist.cursor(), row) << letter;
    }
    EXPECT_EQ(m_playlist.scene().runningTime, QStringLiteral("FIND: emi"));
    m_playlist.endTyping();
    m_playlist.type(QStringLiteral("a"));
    EXPECT_EQ(m_playlist.cursor(), 3); // behind the cursor first
    m_playlist.endTyping();
    m_playlist.type(QStringLiteral("now")); // nothing begins with it
    EXPECT_EQ(m_playlist.cursor(), 2);
    m_playlist.type(QStringLiteral("zzz"));
    EXPECT_EQ(m_playlist.cursor(), 2);
}

TEST_F(PlaylistModelTest, ALongListIsSearchedBitByBitAndOverChanges) {
    std::vector<Track> tracks(200'000, made(QStringLiteral("Ünknown"), QStringLiteral("Título")));
    tracks.push_back(made(QStringLiteral("Zoë"), QStringLiteral("Here")));
    const int last = static_cast<int>(tracks.size()) - 1;
    m_player.enqueue(tracks);
    const auto type = [&](const char *letters) {
        m_playlist.select(0, Selecting::only);
        m_playlist.type(QLatin1String(letters));
        EXPECT_EQ(m_playlist.cursor(), 0); // the key has not waited
    };
    type("z");
    m_playlist.type(QStringLiteral("o"));
    EXPECT_TRUE(waitFor([&] { return m_playlist.cursor() == last; }));
    m_playlist.endTyping();
    type("zoe");
    m_player.removeTracks({1, 2});
    m_playlist.endTyping();
    EXPECT_EQ(m_playlist.cursor(), last - 2);
    type("zoe");
    m_playlist.cancelTyping();
    EXPECT_EQ(m_playlist.cursor(), 0);
    type("zoe");
    m_playlist.select(5, Selecting::only); // the user has another idea
    m_playlist.endTyping();
    EXPECT_EQ(m_playlist.cursor(), 5);
}

TEST_F(PlaylistModelTest, AnImportStaysInFrontOfItsRowAndInOrder) {
    fill("ab");
    m_model.insert({writeTone("1.wav", 1), writeTone("2.wav", 1), writeTone("3.wav", 1)}, 1);
    m_player.insertTracks({made({}, QStringLiteral("c"))}, 0); // the rows move under it
    EXPECT_TRUE(waitFor([&] { return shown() == "ca123b"; })) << shown();
    EXPECT_EQ(m_player.state(), PlaybackState::stopped);
    m_model.insert({writeTone("4.wav", 1)}, 99);
    EXPECT_TRUE(waitFor([&] { return shown() == "ca123b4"; }));
}

TEST_F(PlaylistModelTest, ListsAreSavedAndFailuresSaid) {
    fill("ab");
    const QUrl list = file("list.m3u8");
    m_playlist.local().save(list);
    EXPECT_TRUE(waitFor([&] { return QFile::exists(list.toLocalFile()); }));
    m_playlist.local().save(file("no/such/folder/list.pls"));
    EXPECT_TRUE(waitFor([&] { return m_model.scene().marquee != QStringLiteral("Vantor"); }));
}

TEST(TrackFinderTest, EveryWordMustOccurSomewhere) {
    std::vector<Track> tracks{made(QStringLiteral("Björn Ögren"), QStringLiteral("Night Train")),
                              made(QStringLiteral("Trio"), QStringLiteral("The NIGHT")),
                              made(QStringLiteral("Trio"), QStringLiteral("Ｆｕｌｌ Straße"))};
    tracks[1].album = QStringLiteral("Harbour");
    TrackFinder finder(tracks);
    const std::pair<QString, std::vector<int>> queries[] = {
        {{}, {0, 1, 2}},
        {QStringLiteral("nig"), {0, 1}},
        {QStringLiteral("night t"), {0, 1}},
        {QStringLiteral("night tra"), {0}},
        {QStringLiteral("  TRIO   night "), {1}},
        {QStringLiteral("bjorn ogren"), {0}},
        {QStringLiteral("harbour"), {1}},
        {QStringLiteral("full straße"), {2}},
        {QStringLiteral(".flac trio"), {1, 2}},
        {QStringLiteral("nothing"), {}},
        {QStringLiteral("n"), {0, 1}},
    };
    for (const auto &[query, expected] : queries)
        EXPECT_EQ(finder.find(query), expected) << query.toStdString();
}
