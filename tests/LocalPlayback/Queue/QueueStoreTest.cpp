#include "LocalPlayback/Queue/QueueStore.h"

#include "LocalPlayback/LocalPlaybackError.h"
#include "LocalPlayback/Queue/QueueFile.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace vantor;

namespace {

class QueueStoreTest : public testing::Test {
  protected:
    void write(const QByteArray &bytes) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    [[nodiscard]] QByteArray read() const {
        QFile file(m_path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("queue.json"));
    QueueStore m_store{QUrl::fromLocalFile(m_path)};
};

QByteArray item(const char *members) {
    return QByteArray(
               R"({"id":"00000000-0000-0000-0000-00000000000a","title":"t","artist":"","duration":1)") +
           members + '}';
}

} // namespace

TEST_F(QueueStoreTest, EveryFieldSurvives) {
    QueueSnapshot snapshot = test::madeQueue(3);
    snapshot.items[0].album = QStringLiteral("Line\nbreak");
    snapshot.items[0].bitrate = 320;
    snapshot.items[0].sampleRate = 44100.5;
    snapshot.items[0].channels = 2;
    snapshot.items[1].source = MediaID{MediaKind::radio, QStringLiteral("library://radio/7")};
    snapshot.items[2].title.clear();
    snapshot.repeatMode = RepeatMode::one;
    snapshot.isShuffled = true;
    for (const std::optional<int> current : {std::optional<int>(), std::optional(0), std::optional(2)}) {
        snapshot.currentIndex = current;
        m_store.save(snapshot);
        EXPECT_EQ(m_store.load(), snapshot);
    }
}

TEST_F(QueueStoreTest, TheFileHasTheDocumentedKeysInOrder) {
    QueueSnapshot snapshot = test::madeQueue(1);
    snapshot.items[0].source = MediaID{MediaKind::album, QStringLiteral("5")};
    snapshot.items.push_back(test::madeQueue(2).items[1]);
    snapshot.currentIndex = 1;
    snapshot.repeatMode = RepeatMode::all;
    m_store.save(snapshot);
    EXPECT_EQ(read().toStdString(), R"({
"currentIndex": 1,
"items": [
{"artist":"Somebody","duration":0,"id":"00010000-0001-0002-0304-05060708090a","mediaID":{"kind":"album","rawValue":"5"},"title":"Track \"0\" \\ ü 𝄞"},
{"artist":"Somebody","duration":0.1,"id":"00010001-0001-0002-0304-05060708090a","source":{"kind":"file","path":"/music/50% #1?.flac"},"title":"Track \"1\" \\ ü 𝄞"}
],
"repeat":"all","shuffle":false,"version":1}
)");
}

TEST_F(QueueStoreTest, BadItemsAreDroppedAndTheSameOneStaysCurrent) {
    const QByteArray good = item(R"(,"source":{"kind":"file","path":"/a"})");
    const struct {
        const char *name;
        QByteArray other;
        int current;
        int items;
        std::optional<int> expected;
    } rows[] = {
        {"unknown kind before", item(R"(,"source":{"kind":"cloud","path":"/a"})"), 1, 1, 0},
        {"the current one", item(R"(,"source":{"kind":"cloud","path":"/a"})"), 0, 1, std::nullopt},
        {"no path", item(R"(,"source":{"kind":"file"})"), 1, 1, 0},
        {"no source", item(""), 1, 1, 0},
        {"unknown library kind", item(R"(,"mediaID":{"kind":"moon","rawValue":"1"})"), 1, 1, 0},
        {"no object", "17", 1, 1, 0},
        {"no id", R"({"title":"t","source":{"kind":"file","path":"/a"}})", 1, 1, 0},
        {"index outside", good, 2, 2, std::nullopt},
        {"index below", good, -1, 2, std::nullopt},
        {"numbers out of range",
         item(R"(,"bitrate":1e99,"channels":-3,"source":{"kind":"file","path":"/b"})"), 1, 2, 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        write(R"({"version":1,"currentIndex":)" + QByteArray::number(row.current) + R"(,"items":[)" +
              row.other + "," + good + "]}");
        const std::optional<QueueSnapshot> loaded = m_store.load();
        ASSERT_TRUE(loaded);
        ASSERT_EQ(loaded->items.size(), static_cast<size_t>(row.items));
        EXPECT_EQ(loaded->currentIndex, row.expected);
        EXPECT_NE(loaded->items.front().id, row.items == 2 ? loaded->items.back().id : QUuid());
        EXPECT_EQ(loaded->items.front().bitrate, std::nullopt);
    }
}

TEST_F(QueueStoreTest, WhatIsNoQueueFileCountsAsNone) {
    EXPECT_EQ(m_store.load(), std::nullopt);
    m_store.save(test::madeQueue(2));
    const QByteArray whole = read();
    const struct {
        const char *name;
        QByteArray bytes;
    } rows[] = {
        {"empty", ""},
        {"rubbish", QByteArray(1000, '\xff')},
        {"cut", whole.chopped(4)},
        {"another version", QByteArray(whole).replace("\"version\":1", "\"version\":2")},
        {"no version", R"({"items":[]})"},
        {"items of another kind", R"({"version":1,"items":{}})"},
        {"deep", QByteArray(100'000, '[')},
        {"too many small values", R"({"version":1,"items":[)" + QByteArray("[0],").repeated(600'000) + "0]}"},
        {"too many items",
         R"({"version":1,"items":[)" + QByteArray("0,").repeated(QueueFile::maxItems) + "0]}"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        write(row.bytes);
        EXPECT_EQ(m_store.load(), std::nullopt);
    }
    write(whole);
    EXPECT_TRUE(m_store.load());
}

TEST_F(QueueStoreTest, AFailedSaveLeavesThePreviousFile) {
    const QueueSnapshot before = test::madeQueue(3);
    m_store.save(before);
    QueueSnapshot tooLong = test::madeQueue(1);
    tooLong.items.resize(QueueFile::maxItems + 1, tooLong.items.front());
    EXPECT_THROW(m_store.save(tooLong), LocalPlaybackError);
    EXPECT_EQ(m_store.load(), before);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("queue.json")});

    const QueueStore nowhere(QUrl::fromLocalFile(m_path + QStringLiteral("/below/a/file/queue.json")));
    EXPECT_THROW(nowhere.save(before), LocalPlaybackError);
}

TEST_F(QueueStoreTest, ItemsWithoutAFormAreLeftOut) {
    QueueSnapshot snapshot = test::madeQueue(3);
    snapshot.items[0].source = QUrl(QStringLiteral("https://example.org/stream"));
    snapshot.currentIndex = 2;
    QueueSnapshot expected = snapshot;
    expected.items.erase(expected.items.begin());
    expected.currentIndex = 1;
    m_store.save(snapshot);
    EXPECT_EQ(m_store.load(), expected);
}

TEST_F(QueueStoreTest, KilledWhileSavingItLeavesTheOldOrTheNewQueue) {
    const QueueSnapshot first = test::madeQueue(1500);
    const QueueSnapshot second = test::madeQueue(700);
    int seconds = 0;
    for (int round = 0; round < 100; ++round) {
        QProcess saver;
        saver.start(QStringLiteral(QUEUE_SAVER), {m_path, QStringLiteral("1500"), QStringLiteral("700")});
        ASSERT_TRUE(saver.waitForReadyRead(20'000));
        std::this_thread::sleep_for(std::chrono::microseconds(QRandomGenerator::global()->bounded(30'000)));
        saver.kill();
        ASSERT_TRUE(saver.waitForFinished(20'000));
        const std::optional<QueueSnapshot> found = m_store.load();
        ASSERT_TRUE(found == first || found == second) << "round " << round;
        seconds += found == second ? 1 : 0;
    }
    EXPECT_GT(seconds, 0); // else no save went on when it was killed
    EXPECT_LT(seconds, 100);
}
