#include "LocalPlayback/Playlists/PlaylistFile.h"

#include "LocalPlayback/LocalPlaybackError.h"
#include "tests/LocalPlayback/FolderFixture.h"

using namespace vantor;

using PlaylistFileTest = test::FolderFixture;

namespace {

/// File names of the entries and, behind "!", of what was skipped, behind "~" in part.
QString summary(const PlaylistFile::Contents &contents) {
    QStringList names;
    for (const PlaylistEntry &entry : contents.entries)
        names << entry.url.fileName();
    for (const SkippedFile &file : contents.skipped)
        names << (file.isPartial ? u'~' : u'!') + file.url.fileName() + u' ' + file.reason;
    return names.join(u' ');
}

} // namespace

TEST_F(PlaylistFileTest, FindsWhatTheLineMeans) {
    makeFolder(u"sub"_qs);
    for (const QString &name : {u"a b.mp3"_qs, u"100%41.mp3"_qs, u"sub/c.mp3"_qs, u"back\\slash.mp3"_qs})
        write(name, "");
    const std::pair<QByteArray, QUrl> rows[] = {
        {"a%20b.mp3", url(u"a b.mp3"_qs)},
        {"100%41.mp3", url(u"100%41.mp3"_qs)},
        {"gone%20.mp3", url(u"gone%20.mp3"_qs)},
        {"sub\\c.mp3", url(u"sub/c.mp3"_qs)},
        {"back\\slash.mp3", url(u"back\\slash.mp3"_qs)},
        {"/etc/x.mp3", QUrl::fromLocalFile(u"/etc/x.mp3"_qs)},
        {"file:///m/%C3%BC.mp3", QUrl::fromLocalFile(u"/m/ü.mp3"_qs)},
        {"HTTP://radio.example/a?b=c", QUrl(u"http://radio.example/a?b=c"_qs)},
        {"<playlist><trackList><track><location>sub/c%2emp3</location></track></trackList></playlist>",
         url(u"sub/c.mp3"_qs)},
    };
    for (const auto &[line, expected] : rows)
        EXPECT_EQ(PlaylistFile::read(write(u"list.m3u"_qs, line)),
                  (PlaylistFile::Contents{.entries = {{expected, {}}}, .skipped = {}}))
            << line.toStdString();
}

TEST_F(PlaylistFileTest, FollowsListsWithinBoundsAndSaysWhatWasLeftOut) {
    constexpr auto most = static_cast<qsizetype>(PlaylistFile::maxEntries);
    makeFolder(u"sub"_qs);
    for (int depth = 0; depth <= 5; ++depth)
        write(u"deep%1.m3u"_qs.arg(depth),
              QStringLiteral("d%1\ndeep%2.m3u").arg(depth).arg(depth + 1).toUtf8());
    write(u"one.m3u"_qs, "x");
    write(u"sub/other.m3u"_qs, "w\n../circle.m3u");
    write(u"full.m3u"_qs, QByteArray("a\n").repeated(most));
    const struct {
        QString name;
        QByteArray bytes;
        QString expected;
    } rows[] = {
        {u"deep.m3u8"_qs, "deep1.m3u",
         u"d1 d2 d3 d4 !deep5.m3u This playlist lies too deep inside other playlists."_qs},
        {u"twice.pls"_qs, "File1=one.m3u\nFile2=one.m3u", u"x x"_qs},
        {u"circle.m3u"_qs, "y\nsub/other.m3u\nz", u"y w z !circle.m3u This playlist contains itself."_qs},
        {u"gap.m3u"_qs, "gone.m3u\nx", u"x !gone.m3u This playlist could not be read."_qs},
        {u"large.m3u"_qs, QByteArray(PlaylistFile::maxBytes + 1, '#'),
         u"!large.m3u This playlist file is too large."_qs},
        {u"old.m3u"_qs, "mms://a/b\nc", u"c !b This kind of address is not supported."_qs},
        {u"picture.m3u"_qs, QByteArray(9, '\0'), u"!picture.m3u This playlist file is damaged."_qs},
        {u"long.m3u"_qs, "a\nfull.m3u\nb",
         QStringList(most, u"a"_qs).join(u' ') +
             u" ~full.m3u This playlist is too long; its end was left out. "
             "~long.m3u This playlist is too long; its end was left out."_qs},
        {u"fan.m3u"_qs, "y\n" + QByteArray("one.m3u\n").repeated(1'000),
         u"y "_qs + QStringList(999, u"x"_qs).join(u' ') +
             u" !one.m3u Too many playlists are inside each other."_qs},
    };
    for (const auto &row : rows)
        EXPECT_TRUE(summary(PlaylistFile::read(write(row.name, row.bytes))) == row.expected)
            << row.name.toStdString();
    write(u"self.m3u"_qs, QByteArray("self.m3u\n").repeated(most / 2));
    const QUrl selves = write(u"selves.m3u"_qs, QByteArray("self.m3u\n").repeated(3));
    EXPECT_LT(PlaylistFile::read(selves).skipped.size(), PlaylistFile::maxEntries + 5);
}

TEST_F(PlaylistFileTest, WhatIsWrittenIsReadBack) {
    std::vector<Track> tracks;
    std::vector<PlaylistEntry> expected;
    for (const QUrl &file :
         {url(u"plain.mp3"_qs), url(u"sub/ü €.mp3"_qs), QUrl::fromLocalFile(u"/elsewhere/x"_qs),
          url(u"#hash.mp3"_qs), url(u" blank.mp3 "_qs), url(u"line\nbreak.mp3"_qs), url(u"50%25.mp3"_qs),
          QUrl(u"https://radio.example/a%20b"_qs)}) {
        Track track;
        track.title = u"New\nline"_qs;
        track.artist = tracks.empty() ? QString() : u"Artist"_qs;
        track.duration = 61.6;
        track.source = file;
        expected.push_back({file, tracks.empty() ? u"New line"_qs : u"Artist - New line"_qs});
        tracks.push_back(track);
    }
    tracks.push_back(tracks.back());
    tracks.back().source = MediaID{MediaKind::track, u"7"_qs}; // has no address
    for (const QString &name : {u"list.m3u8"_qs, u"list.PLS"_qs}) {
        PlaylistFile::write(url(name), tracks);
        EXPECT_EQ(PlaylistFile::read(url(name)), (PlaylistFile::Contents{expected, {}}))
            << name.toStdString();
    }
    EXPECT_TRUE(read(u"list.m3u8"_qs)
                    .startsWith("#EXTM3U\n#EXTINF:62,New line\nplain.mp3\n"
                                "#EXTINF:62,Artist - New line\nsub/\xC3\xBC \xE2\x82\xAC.mp3\n"));

    std::vector<Track> parts(4, tracks.front());
    parts[0].range = parts[2].range = TrackRange{0, 60};
    parts[1].range = TrackRange{60, {}};
    parts[2].source = parts[3].source = url(u"other disc.flac"_qs);
    parts[2].album = u"Dusk"_qs;
    PlaylistFile::write(url(u"parts.m3u8"_qs), parts);
    EXPECT_EQ(read(u"parts.m3u8"_qs),
              "#EXTM3U\n#EXTINF:-1,plain\nplain.mp3\n#EXTINF:-1,Dusk\nother disc.flac\n"
              "#EXTINF:62,New line\nother disc.flac\n");
    EXPECT_THROW(PlaylistFile::write(url(u"no/folder/x.pls"_qs), tracks), LocalPlaybackError);

    tracks.assign(PlaylistFile::maxEntries, tracks.front());
    PlaylistFile::write(url(u"most.m3u8"_qs), tracks);
    const PlaylistFile::Contents most = PlaylistFile::read(url(u"most.m3u8"_qs));
    EXPECT_EQ(most.entries.size(), tracks.size());
    EXPECT_TRUE(most.skipped.empty());
    const auto refusal = [&] {
        try {
            PlaylistFile::write(url(u"most.m3u8"_qs), tracks);
        } catch (const LocalPlaybackError &error) {
            return error.description();
        }
        return QString();
    };
    tracks.push_back(tracks.front());
    EXPECT_EQ(refusal(), u"The playlist is too long to be saved."_qs);
    const QString longPath = u'/' + QString(4000, u'x') + u'/';
    tracks.assign(static_cast<size_t>(PlaylistFile::maxBytes / longPath.size()), tracks.front());
    for (Track &track : tracks)
        track.source = QUrl::fromLocalFile(longPath);
    EXPECT_EQ(refusal(), u"The playlist is too long to be saved."_qs);
    EXPECT_EQ(PlaylistFile::read(url(u"most.m3u8"_qs)), most) << "the list from before is still there";
}
