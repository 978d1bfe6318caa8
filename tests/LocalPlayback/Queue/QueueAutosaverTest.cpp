#include "LocalPlayback/Queue/QueueAutosaver.h"

#include "AudioCore/Output/NullAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

class QueueAutosaverTest : public testing::Test {
  protected:
    template <class Condition>
    [[nodiscard]] static bool waitFor(Condition condition) {
        const QDeadlineTimer deadline(5000);
        while (!condition() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        return condition();
    }

    QTemporaryDir m_folder;
    QueueStore m_store{QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("new/folder/queue.json")))};
    Player m_player{std::make_unique<FileTrackResolver>(),
                    [] { return std::make_unique<NullAudioOutput>(); }};
    std::vector<Track> m_tracks = test::madeQueue(4).items;
};

} // namespace

TEST_F(QueueAutosaverTest, SavesEveryKindOfChangeAfterTheDelay) {
    QueueAutosaver saver(m_player, m_store, 1ms);
    saver.start();
    const struct {
        const char *name;
        std::function<void()> change;
    } rows[] = {
        {"tracks", [&] { m_player.enqueue(m_tracks); }},
        {"repeat", [&] { m_player.setRepeatMode(RepeatMode::one); }},
        {"order", [&] { m_player.reverseQueue(); }},
        {"shuffle", [&] { m_player.setShuffled(true); }},
        {"current",
         [&] { m_player.restoreQueue(m_tracks, 2, m_player.repeatMode(), m_player.isShuffled()); }},
    };
    int saves = 0;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        row.change();
        ++saves;
        ASSERT_TRUE(waitFor([&] { return saver.saveCount() == saves; }));
        EXPECT_EQ(m_store.load(), QueueSnapshot::fromQueue(m_player.queue()));
    }
}

TEST_F(QueueAutosaverTest, ABurstIsOneSaveThatItCannotPutOff) {
    QueueAutosaver saver(m_player, m_store, 200ms);
    saver.start();
    QElapsedTimer time;
    time.start();
    while (saver.saveCount() == 0 && time.elapsed() < 5000) {
        m_player.setShuffled(!m_player.isShuffled());
        m_player.enqueue({});
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    EXPECT_EQ(saver.saveCount(), 1);
    EXPECT_GE(time.elapsed(), 190);
}

TEST_F(QueueAutosaverTest, FlushWritesWhatIsPendingAndNothingElse) {
    m_player.enqueue(m_tracks);
    QueueAutosaver saver(m_player, m_store, 1h);
    m_player.removeTrack(0);
    saver.start();
    saver.flush(); // nothing has changed since the start
    EXPECT_EQ(saver.saveCount(), 0);
    m_player.removeTrack(0);
    saver.flush();
    EXPECT_EQ(saver.saveCount(), 1);
    EXPECT_EQ(m_store.load(), QueueSnapshot::fromQueue(m_player.queue()));
    m_player.reverseQueue();
    m_player.reverseQueue();
    saver.flush(); // the file holds just this
    saver.saveNow();
    EXPECT_EQ(saver.saveCount(), 1);
}

TEST_F(QueueAutosaverTest, WhatCouldNotBeSavedIsTriedAgain) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("new/folder/queue.json"))); // in the way
    QueueAutosaver saver(m_player, m_store, 1h);
    saver.start();
    m_player.enqueue(m_tracks);
    saver.flush();
    EXPECT_EQ(saver.saveCount(), 0);
    ASSERT_TRUE(QDir(m_folder.path()).rmdir(QStringLiteral("new/folder/queue.json")));
    saver.flush();
    EXPECT_EQ(m_store.load(), QueueSnapshot::fromQueue(m_player.queue()));
}
