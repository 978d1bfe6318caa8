#include "LocalPlayback/Queue/QueueStore.h"

#include "LocalPlayback/LocalPlaybackError.h"
#include "LocalPlayback/Queue/QueueFile.h"
#include "tests/LocalPlayback/FolderFixture.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"

#include <QProcess>
#include <QRandomGenerator>

#include <thread>

using namespace vantor;

namespace {

class QueueStoreTest : public test::FolderFixture {
  protected:
    QueueStore m_store{url(u"queue.json"_qs)};
};

} // namespace

TEST_F(QueueStoreTest, EveryFieldSurvivesOfWhatHasAForm) {
    QueueSnapshot snapshot = test::madeQueue(3);
    snapshot.items[0].album = u"Line\nbreak"_qs;
    snapshot.items[0].bitrate = 320;
    snapshot.items[0].sampleRate = 44100.5;
    snapshot.items[0].channels = 2;
    snapshot.items[0].range = TrackRange{71 / 75.0, 4000.04};
    snapshot.items[2].range = TrackRange{4000.04, {}};
    snapshot.items[1].source = MediaID{MediaKind::radio, u"library://radio/7"_qs};
    snapshot.repeatMode = RepeatMode::one;
    snapshot.isShuffled = true;
    for (const std::optional<int> current : {std::optional<int>(), std::optional(0), std::optional(2)}) {
        snapshot.currentIndex = current;
        m_store.save(snapshot);
        EXPECT_EQ(m_store.load(), snapshot);
    }
    snapshot.items[2].source = QUrl(u"https://example.org/a%20b?c=%2F"_qs);
    QueueSnapshot withOther = snapshot;
    withOther.items[0].source = QUrl(u"ftp://example.org/stream"_qs);
    m_store.save(withOther);
    snapshot.items.erase(snapshot.items.begin());
    snapshot.currentIndex = 1;
    EXPECT_EQ(m_store.load(), snapshot);
}

TEST_F(QueueStoreTest, TheFileHasTheDocumentedKeysInOrder) {
    QueueSnapshot snapshot = test::madeQueue(1);
    snapshot.items[0].source = MediaID{MediaKind::album, u"5"_qs};
    snapshot.items.push_back(test::madeQueue(2).items[1]);
    snapshot.currentIndex = 1;
    snapshot.repeatMode = RepeatMode::all;
    m_store.save(snapshot);
    EXPECT_EQ(read(u"queue.json"_qs).toStdString(), R"({
"currentIndex": 1,
"items": [
{"artist":"Somebody","duration":0,"id":"00010000-0001-0002-0304-05060708090a","mediaID":{"kind":"album","rawValue":"5"},"title":"Track \"0\" \\ ü 𝄞"},
{"artist":"Somebody","duration":0.1,"id":"00010001-0001-0002-0304-05060708090a","source":{"kind":"file","path":"/music/50% #1?.flac"},"title":"Track \"1\" \\ ü 𝄞"}
],
"repeat":"all","shuffle":false,"version":1}
)");
}

TEST_F(QueueStoreTest, BadItemsAreDroppedAndTheSameOneStaysCurrent) {
    const struct {
        QByteArray members; // of an item before a good one with the same id
        int current;
        size_t items;
        std::optional<int> expected;
    } rows[] = {
        {R"("id":"%","source":{"kind":"cloud","path":"/a"})", 1, 1, 0},
        {R"("id":"%","source":{"kind":"cloud","path":"/a"})", 0, 1, std::nullopt},
        {R"("id":"%","mediaID":{"kind":"moon","rawValue":"1"})", 1, 1, 0},
        {R"("source":{"kind":"file","path":"/a"})", 1, 1, 0},
        {R"("id":"%","source":{"kind":"file","path":"/b","start":-1})", 1, 1, 0},
        {R"("id":"%","source":{"kind":"file","path":"/b","start":5,"end":5})", 1, 1, 0},
        {R"("id":"%","source":{"kind":"file","path":"/b","end":5})", 1, 1, 0},
        {R"("id":"%","source":{"kind":"file","path":"/b","start":1e300})", 1, 1, 0},
        {R"("id":"%","bitrate":1e99,"channels":-3,"source":{"kind":"file","path":"/b"})", 2, 2, std::nullopt},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.members.toStdString());
        const QByteArray bytes = R"({"version":1,"currentIndex":)" + QByteArray::number(row.current) +
                                 R"(,"items":[{"title":"t",)" + row.members +
                                 R"(},{"title":"t","id":"%","source":{"kind":"file","path":"/a"}}]})";
        write(u"queue.json"_qs, QByteArray(bytes).replace('%', "00000000-0000-0000-0000-00000000000a"));
        const QueueSnapshot loaded = m_store.load().value_or(QueueSnapshot());
        ASSERT_EQ(loaded.items.size(), row.items);
        EXPECT_EQ(loaded.currentIndex, row.expected);
        EXPECT_EQ(loaded.items.front().id == loaded.items.back().id, row.items == 1);
        EXPECT_EQ(loaded.items.front().bitrate, std::nullopt);
    }
}

TEST_F(QueueStoreTest, WhatIsNoQueueFileCountsAsNone) {
    EXPECT_EQ(m_store.load(), std::nullopt);
    m_store.save(test::madeQueue(2));
    const QByteArray whole = read(u"queue.json"_qs);
    const std::pair<const char *, QByteArray> rows[] = {
        {"cut", whole.chopped(4)},
        {"another version", QByteArray(whole).replace("\"version\":1", "\"version\":2")},
        {"deep", QByteArray(100'000, '[')},
        {"too many small values", R"({"version":1,"items":[)" + QByteArray("[0],").repeated(600'000) + "0]}"},
        {"too many items",
         R"({"version":1,"items":[)" + QByteArray("0,").repeated(QueueFile::maxItems) + "0]}"},
    };
    for (const auto &[name, bytes] : rows) {
        write(u"queue.json"_qs, bytes);
        EXPECT_EQ(m_store.load(), std::nullopt) << name;
    }
    write(u"queue.json"_qs, whole);
    EXPECT_TRUE(m_store.load());
}

TEST_F(QueueStoreTest, AFailedSaveLeavesThePreviousFile) {
    const QueueSnapshot before = test::madeQueue(3);
    m_store.save(before);
    QueueSnapshot tooLong = test::madeQueue(1);
    tooLong.items.resize(QueueFile::maxItems + 1, tooLong.items.front());
    EXPECT_THROW(m_store.save(tooLong), LocalPlaybackError);
    EXPECT_EQ(m_store.load(), before);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList{u"queue.json"_qs});

    const QueueStore nowhere(url(u"queue.json/below/a/file"_qs));
    EXPECT_THROW(nowhere.save(before), LocalPlaybackError);
}

TEST_F(QueueStoreTest, KilledWhileSavingItLeavesTheOldOrTheNewQueue) {
    const QueueSnapshot first = test::madeQueue(1500);
    const QueueSnapshot second = test::madeQueue(700);
    int seconds = 0;
    for (int round = 0; round < 100; ++round) {
        QProcess saver;
        saver.start(QStringLiteral(QUEUE_SAVER),
                    {m_folder.filePath(u"queue.json"_qs), u"1500"_qs, u"700"_qs});
        ASSERT_TRUE(saver.waitForReadyRead(20'000));
        const int longest = round < 50 || seconds > 0 ? 30'000 : 1'000'000; // the latter on a busy machine
        std::this_thread::sleep_for(std::chrono::microseconds(QRandomGenerator::global()->bounded(longest)));
        saver.kill();
        ASSERT_TRUE(saver.waitForFinished(20'000));
        const std::optional<QueueSnapshot> found = m_store.load();
        ASSERT_TRUE(found == first || found == second) << "round " << round;
        seconds += found == second ? 1 : 0;
    }
    EXPECT_GT(seconds, 0); // else no save went on when it was killed
    EXPECT_LT(seconds, 100);
}
