#include "LocalPlayback/Playlists/PlaylistFile.h"

#include "LocalPlayback/LocalPlaybackError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

class PlaylistFileTest : public testing::Test {
  protected:
    [[nodiscard]] QUrl url(const QString &name) const { return QUrl::fromLocalFile(m_folder.filePath(name)); }
    QUrl write(const QString &name, const QByteArray &bytes) const {
        QDir(m_folder.path()).mkpath(QFileInfo(m_folder.filePath(name)).path());
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return url(name);
    }
    /// File names of the entries and, behind "!", of what was skipped.
    [[nodiscard]] static QString summary(const PlaylistFile::Contents &contents) {
        QStringList names;
        for (const PlaylistEntry &entry : contents.entries)
            names << entry.url.fileName();
        for (const SkippedFile &file : contents.skipped)
            names << u'!' + file.url.fileName() + u' ' + file.reason;
        return names.join(u' ');
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(PlaylistFileTest, FindsWhatTheLineMeans) {
    write(u"a b.mp3"_qs, "");
    write(u"100%41.mp3"_qs, "");
    write(u"sub/c.mp3"_qs, "");
    write(u"back\\slash.mp3"_qs, "");
    const struct {
        const char *line;
        QUrl expected;
    } rows[] = {
        {"a b.mp3", url(u"a b.mp3"_qs)},
        {"./sub/../a b.mp3", url(u"a b.mp3"_qs)},
        {"a%20b.mp3", url(u"a b.mp3"_qs)},
        {"100%41.mp3", url(u"100%41.mp3"_qs)},
        {"gone%20.mp3", url(u"gone%20.mp3"_qs)},
        {"sub\\c.mp3", url(u"sub/c.mp3"_qs)},
        {"back\\slash.mp3", url(u"back\\slash.mp3"_qs)},
        {"/etc/x.mp3", QUrl::fromLocalFile(u"/etc/x.mp3"_qs)},
        {"file:///m/%C3%BC.mp3", QUrl::fromLocalFile(u"/m/ü.mp3"_qs)},
        {"HTTP://radio.example/a?b=c", QUrl(u"http://radio.example/a?b=c"_qs)},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.line);
        const auto contents = PlaylistFile::read(write(u"list.m3u"_qs, row.line));
        ASSERT_EQ(summary({{}, contents.skipped}), QString());
        ASSERT_EQ(contents.entries.size(), 1U);
        EXPECT_EQ(contents.entries.front().url, row.expected);
    }
    const auto xspf = PlaylistFile::read(
        write(u"list.xspf"_qs, "<playlist><trackList><track><location>sub/c%2emp3</location></track>"
                               "</trackList></playlist>"));
    EXPECT_EQ(xspf.entries, (std::vector<PlaylistEntry>{{url(u"sub/c.mp3"_qs), {}}}));
}

TEST_F(PlaylistFileTest, FollowsListsInsideListsButNoCirclesAndNotTooDeep) {
    for (int depth = 0; depth <= 5; ++depth)
        write(u"deep%1.m3u"_qs.arg(depth),
              "d" + QByteArray::number(depth) + "\ndeep" + QByteArray::number(depth + 1) + ".m3u\n");
    write(u"twice.pls"_qs, "File1=one.m3u\nFile2=one.m3u");
    write(u"one.m3u"_qs, "x");
    write(u"sub/circle.m3u"_qs, "y\n../sub/other.m3u\nz");
    write(u"sub/other.m3u"_qs, "w\ncircle.m3u");
    const struct {
        const char *name;
        QString expected;
    } rows[] = {
        {"deep0.m3u", u"d0 d1 d2 d3 d4 !deep5.m3u This playlist lies too deep inside other playlists."_qs},
        {"twice.pls", u"x x"_qs},
        {"sub/circle.m3u", u"y w z !circle.m3u This playlist contains itself."_qs},
        {"missing.m3u", u"!missing.m3u This playlist could not be read."_qs},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(summary(PlaylistFile::read(url(QLatin1String(row.name)))), row.expected);
    }
}

TEST_F(PlaylistFileTest, StaysBoundedAndSaysWhatWasLeftOut) {
    const struct {
        const char *name;
        QByteArray bytes;
        size_t entries;
        QString skipped;
    } rows[] = {
        {"long.m3u", QByteArray("a\n").repeated(100'001), 100'000,
         u"!long.m3u This playlist is too long; its end was left out."_qs},
        {"large.m3u", QByteArray((16 << 20) + 1, '#'), 0, u"!large.m3u This playlist file is too large."_qs},
        {"picture.m3u", QByteArray(100, '\0'), 0, u"!picture.m3u This playlist file is damaged."_qs},
        {"old.m3u", "mms://a/b\nc", 1, u"!b This kind of address is not supported."_qs},
        {"both.m3u", "x\nfull.m3u\ny", 100'000,
         u"!full.m3u This playlist is too long; its end was left out. "
         "!both.m3u This playlist is too long; its end was left out."_qs},
    };
    write(u"full.m3u"_qs, QByteArray("a\n").repeated(100'000));
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto contents = PlaylistFile::read(write(QLatin1String(row.name), row.bytes));
        EXPECT_EQ(contents.entries.size(), row.entries);
        EXPECT_EQ(summary({{}, contents.skipped}), row.skipped);
    }
    // A list that repeats another: the number of files read is bounded as well.
    write(u"empty.m3u"_qs, "");
    const auto repeated = PlaylistFile::read(write(u"r.m3u"_qs, QByteArray("empty.m3u\n").repeated(5000)));
    EXPECT_EQ(repeated.skipped.size(), 5000U - 999U);
}

TEST_F(PlaylistFileTest, WhatIsWrittenIsReadBack) {
    std::vector<Track> tracks;
    std::vector<PlaylistEntry> expected;
    for (const QString &path :
         {m_folder.filePath(u"plain.mp3"_qs), m_folder.filePath(u"sub/ü €.mp3"_qs), u"/elsewhere/x.mp3"_qs,
          m_folder.filePath(u"#hash.mp3"_qs), m_folder.filePath(u" blank.mp3 "_qs),
          m_folder.filePath(u"line\nbreak.mp3"_qs), m_folder.filePath(u"50%25.mp3"_qs)}) {
        Track track;
        track.title = u"Title\n%1"_qs.arg(tracks.size());
        track.artist = tracks.empty() ? QString() : u"Artist"_qs;
        track.duration = 61.6;
        track.source = QUrl::fromLocalFile(path);
        expected.push_back({QUrl::fromLocalFile(path),
                            (tracks.empty() ? u"Title %1"_qs : u"Artist - Title %1"_qs).arg(tracks.size())});
        tracks.push_back(track);
    }
    tracks.push_back(tracks.back());
    tracks.back().source = MediaID{MediaKind::track, u"7"_qs}; // has no address
    for (const QString &name : {u"list.m3u8"_qs, u"list.PLS"_qs}) {
        SCOPED_TRACE(name.toStdString());
        PlaylistFile::write(url(name), tracks);
        EXPECT_EQ(PlaylistFile::read(url(name)), (PlaylistFile::Contents{expected, {}}));
    }
    QFile file(m_folder.filePath(u"list.m3u8"_qs));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("#EXTM3U\n#EXTINF:62,Title 0\nplain.mp3\n"
                                          "#EXTINF:62,Artist - Title 1\nsub/\xC3\xBC \xE2\x82\xAC.mp3\n"));
    EXPECT_THROW(PlaylistFile::write(url(u"no/folder/x.pls"_qs), tracks), LocalPlaybackError);
}
