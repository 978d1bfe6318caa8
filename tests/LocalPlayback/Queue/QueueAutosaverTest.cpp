#include "LocalPlayback/Queue/QueueAutosaver.h"

#include "AudioCore/Playback/Player.h"
#include "tests/LocalPlayback/FolderFixture.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"
#include "tests/Support/TestOutput.h"

#include <QCoreApplication>
#include <QElapsedTimer>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

class QueueAutosaverTest : public test::FolderFixture {
  protected:
    QueueStore m_store{url(u"new/folder/queue.json"_qs)};
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>()};
    std::vector<Track> m_tracks = test::madeQueue(4).items;
};

} // namespace

TEST_F(QueueAutosaverTest, EveryKindOfChangeIsSaved) {
    QueueAutosaver saver(m_player, m_store, 1h);
    saver.start();
    const std::function<void()> changes[] = {
        [&] { m_player.enqueue(m_tracks); }, [&] { m_player.setRepeatMode(RepeatMode::one); },
        [&] { m_player.reverseQueue(); },    [&] { m_player.setShuffled(true); },
        [&] { m_player.play(2); },
    };
    for (int saves = 0; const auto &change : changes) {
        change();
        saver.flush();
        EXPECT_EQ(saver.saveCount(), ++saves);
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
    makeFolder(u"new/folder/queue.json"_qs); // in the way
    QueueAutosaver saver(m_player, m_store, 1h);
    saver.start();
    m_player.enqueue(m_tracks);
    saver.flush();
    EXPECT_EQ(saver.saveCount(), 0);
    ASSERT_TRUE(QDir(m_folder.path()).rmdir(u"new/folder/queue.json"_qs));
    saver.flush();
    EXPECT_EQ(m_store.load(), QueueSnapshot::fromQueue(m_player.queue()));
}
