#include "FolderBackendKit/FolderIndexFile.h"
#include "FolderBackendKit/FolderIndexer.h"
#include "FolderBackendKit/FolderLibrary.h"
#include "tests/Support/MusicFiles.h"

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

#include <vector>

using namespace vantor;

namespace {

constexpr int collectionSize = 5000;
constexpr int indexSize = 100'000;

/// Made once; every scan of it reads from memory what the system keeps of it.
const QString &collection() {
    static const QTemporaryDir folder;
    static const QString path = [] {
        test::MusicFiles().writeCollection(folder.path(), collectionSize);
        return folder.path();
    }();
    return path;
}

FolderIndex scanned(const FolderIndex &previous, int threads) {
    return *FolderIndexer(FileMetadata::read, threads).build(collection(), previous);
}

/// The yardstick: the same tags by the library alone, on one thread.
void bareTags(benchmark::State &state) {
    std::vector<QByteArray> paths;
    QDirIterator files(collection(),
                       {QStringLiteral("*.flac"), QStringLiteral("*.mp3"), QStringLiteral("*.ogg")},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.push_back(QFile::encodeName(files.next()));
    for (auto _ : state) {
        for (const QByteArray &path : paths) {
            const TagLib::FileRef file(path.constData());
            benchmark::DoNotOptimize(file.file()->properties());
            benchmark::DoNotOptimize(file.audioProperties()->lengthInMilliseconds());
        }
    }
    state.counters["files"] = static_cast<double>(paths.size());
}
BENCHMARK(bareTags)->Unit(benchmark::kMillisecond);

void firstScan(benchmark::State &state) {
    FolderIndex index;
    for (auto _ : state)
        index = scanned({}, static_cast<int>(state.range(0)));
    state.counters["loaded"] = index.summary.loaded;
}
BENCHMARK(firstScan)->ArgName("threads")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The yardstick: the listing of a tree with sizes and dates by a program made for it.
void bareListing(benchmark::State &state) {
    const QStringList arguments{collection(), QStringLiteral("-printf"), QStringLiteral("%p %s %T@\n")};
    for (auto _ : state) {
        QProcess find;
        find.setStandardOutputFile(QProcess::nullDevice());
        find.start(QStringLiteral("find"), arguments);
        find.waitForFinished();
    }
}
BENCHMARK(bareListing)->Unit(benchmark::kMillisecond)->UseRealTime();

void rescan(benchmark::State &state) {
    const FolderIndex known = scanned({}, 2);
    FolderIndex index;
    for (auto _ : state)
        index = scanned(known, 2);
    state.counters["reused"] = index.summary.reused;
}
BENCHMARK(rescan)->Unit(benchmark::kMillisecond)->UseRealTime();

/// As a scan of that many files would make it.
FolderIndex largeIndex() {
    using test::MusicFiles;
    FolderIndex index;
    index.root = QStringLiteral("/music");
    for (int number = 0; number < indexSize; ++number) {
        const int album = number / MusicFiles::tracksPerAlbum;
        const int artist = album / MusicFiles::albumsPerArtist;
        const QString artistName = MusicFiles::artist(artist);
        const QString albumFolder = QStringLiteral("%1/%2").arg(artistName, MusicFiles::album(album));
        const MediaID artistID{MediaKind::artist, artistName};
        if (static_cast<int>(index.artists.size()) == artist)
            index.artists.push_back({artistID, artistName, artistName.sliced(4), std::nullopt, std::nullopt});
        if (static_cast<int>(index.albums.size()) == album)
            index.albums.push_back({{MediaKind::album, albumFolder},
                                    MusicFiles::album(album),
                                    artistID,
                                    artistName,
                                    MusicFiles::yearOfAlbum(album),
                                    MusicFiles::tracksPerAlbum,
                                    std::nullopt,
                                    std::nullopt});
        const QString title = MusicFiles::title(number);
        index.tracks.push_back({{title, number % 10 + 1, std::nullopt, 200.0, 320, 44100.0, 2},
                                QStringLiteral("%1/%2.flac").arg(albumFolder, title),
                                1'000'000 + number,
                                1.7e9 + number,
                                album});
    }
    return index;
}

/// From the file to a library that can be browsed and searched.
void openIndex(benchmark::State &state) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("index"));
    FolderIndexFile::write(file, largeIndex());
    state.counters["bytes"] = static_cast<double>(QFile(file).size());
    for (auto _ : state) {
        auto index = FolderIndexFile::read(file);
        if (!index)
            return state.SkipWithError("the index could not be read");
        benchmark::DoNotOptimize(FolderLibrary(*std::move(index)));
    }
}
BENCHMARK(openIndex)->Unit(benchmark::kMillisecond);

void saveIndex(benchmark::State &state) {
    const QTemporaryDir folder;
    const FolderIndex index = largeIndex();
    for (auto _ : state)
        FolderIndexFile::write(folder.filePath(QStringLiteral("index")), index);
}
BENCHMARK(saveIndex)->Unit(benchmark::kMillisecond)->UseRealTime();

/// One keystroke after the other.
void search(benchmark::State &state, const char *text) {
    static const FolderLibrary library(largeIndex());
    const QString query = QString::fromUtf8(text);
    qsizetype found = 0;
    for (auto _ : state)
        found = library.search(query, 100).tracks.size();
    state.counters["tracks"] = static_cast<double>(found);
}
BENCHMARK_CAPTURE(search, oneLetter, "t")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(search, oneWord, "rio")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(search, threeWords, "blue the in")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(search, eightLetters, "i t a b c d e f")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(search, nothing, "zzz")->Unit(benchmark::kMillisecond);

} // namespace
