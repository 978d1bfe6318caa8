#include "MusicBackendKit/MusicBackend.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "tests/Support/EmptyBackend.h"

#include <QCoroTimer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

MediaID artistID(const QString &name) {
    return {MediaKind::artist, name};
}

/// A library of albums that answers late.
class SlowBackend : public EmptyBackend {
  public:
    struct Artist {
        QStringList albums;
        std::chrono::milliseconds delay;
    };
    QHash<QString, Artist> library;
    int running = 0;
    int mostRunning = 0;
    int requests = 0;

    QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID> artist, PageRequest page) override {
        ++requests;
        mostRunning = std::max(mostRunning, ++running);
        const Artist found = library.value(artist->rawValue);
        QTimer timer;
        timer.start(found.delay);
        co_await timer;
        --running;
        if (found.albums.isEmpty())
            throw MusicBackendError::notFound(*artist);
        QList<LibraryAlbum> albums;
        for (const QString &title : found.albums.mid(page.offset, page.limit)) {
            LibraryAlbum album;
            album.title = title;
            albums.append(album);
        }
        co_return Page<LibraryAlbum>::make(albums, page, std::nullopt);
    }
};

QStringList titles(const QList<LibraryAlbum> &albums) {
    QStringList all;
    for (const LibraryAlbum &album : albums)
        all.append(album.title);
    return all;
}

/// The error of an operation, or none.
template <typename Task>
QCoro::Task<std::optional<MusicBackendError>> failureOf(Task task) {
    std::optional<MusicBackendError> failure;
    try {
        co_await task;
    } catch (const MusicBackendError &error) {
        failure = error;
    }
    co_return failure;
}

ArtistGroup groupOf(std::initializer_list<QString> names) {
    ArtistGroup group;
    for (const QString &name : names)
        group.members.append({artistID(name), name, {}, {}, {}});
    return group;
}

} // namespace

TEST(MusicBackendTest, AllAlbumsPagesUpToItsLimit) {
    const auto backend = std::make_shared<SlowBackend>();
    backend->library.insert(u"ann"_qs, {{u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs}, {}});
    const std::tuple<int, int, QStringList, int> rows[] = {
        {2, 100, {u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs}, 3},
        {5, 100, {u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs}, 2}, // a full page may have another behind it
        {2, 3, {u"1"_qs, u"2"_qs, u"3"_qs}, 2},
        {2, 0, {}, 0},
    };
    for (const auto &[pageSize, limit, expected, requests] : rows) {
        backend->requests = 0;
        EXPECT_EQ(titles(QCoro::waitFor(backend->allAlbums(artistID(u"ann"_qs), pageSize, limit))), expected);
        EXPECT_EQ(backend->requests, requests);
    }
}

TEST(MusicBackendTest, AlbumsOfAGroupComeAtOnceAndInOrder) {
    const auto backend = std::make_shared<SlowBackend>();
    backend->library.insert(u"ann"_qs, {{u"z"_qs, u"b"_qs, u"c"_qs}, std::chrono::milliseconds(30)});
    backend->library.insert(u"Ann"_qs, {{u"y"_qs}, std::chrono::milliseconds(1)});
    backend->library.insert(u"ANN"_qs, {{u"x"_qs, u"a"_qs}, std::chrono::milliseconds(15)});
    MusicBackend &source = *backend;
    const auto task = [&] { return source.albums(groupOf({u"ann"_qs, u"Ann"_qs, u"ANN"_qs}), 2); };
    EXPECT_EQ(titles(QCoro::waitFor(task())),
              (QStringList{u"z"_qs, u"b"_qs, u"c"_qs, u"y"_qs, u"x"_qs, u"a"_qs}));
    EXPECT_EQ(backend->mostRunning, 3);
}

TEST(MusicBackendTest, OneMembersFailureFailsTheGroupAndLeavesNothingBehind) {
    auto backend = std::make_shared<SlowBackend>();
    backend->library.insert(u"late"_qs, {{u"z"_qs}, std::chrono::milliseconds(20)});
    MusicBackend &source = *backend;
    const auto failure = QCoro::waitFor(failureOf(source.albums(groupOf({u"nobody"_qs, u"late"_qs}), 2)));
    EXPECT_EQ(failure, MusicBackendError::notFound(artistID(u"nobody"_qs)));
    EXPECT_EQ(failure->description(), u"Could not find artist nobody."_qs);

    // What still runs keeps the backend, and lets it go at its end.
    const std::weak_ptr<SlowBackend> watched = backend;
    backend.reset();
    QCoro::waitFor([](std::weak_ptr<SlowBackend> alive) -> QCoro::Task<> {
        QTimer timer;
        timer.start(1);
        while (!alive.expired())
            co_await timer;
    }(watched));
    EXPECT_TRUE(watched.expired());
}

TEST(MusicBackendTest, WhatASourceLacksIsUnsupported) {
    const auto backend = std::shared_ptr<MusicBackend>(std::make_shared<EmptyBackend>());
    const auto failure = QCoro::waitFor(failureOf(backend->addRadio(u"http://h"_qs, u"h"_qs)));
    EXPECT_EQ(failure, MusicBackendError::unsupported(MusicBackendCapability::radio));
    EXPECT_EQ(QCoro::waitFor(failureOf(backend->transfer({}, {}, true)))->description(),
              u"This music source does not support that."_qs);
    const auto item = RecommendationItem::artist({artistID(u"a"_qs), u"A"_qs, {}, {}, {}});
    EXPECT_EQ(QCoro::waitFor(backend->resolve(item)), item);
}

TEST(MusicBackendTest, TheDefaultQueueIsEmptyOnce) {
    const auto backend = std::shared_ptr<MusicBackend>(std::make_shared<EmptyBackend>());
    const auto stream = backend->queue({u"speaker"_qs});
    const auto first = QCoro::waitFor(stream.next());
    EXPECT_EQ(first, RemoteQueueSnapshot::empty({u"speaker"_qs}));
    EXPECT_FALSE(QCoro::waitFor(stream.next()));
    const auto changes = backend->libraryChanges();
    EXPECT_FALSE(QCoro::waitFor(changes.next()));
}
