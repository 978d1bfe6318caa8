#include "Vantor/App/SavedQueue.h"

#include "PlayerFixture.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"

#include <QSignalSpy>

using namespace vantor;

namespace {

class SavedQueueTest : public PlayerFixture {
  protected:
    SavedQueueTest() {
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
        m_saved = test::madeQueue(3);
        m_saved.currentIndex = 1;
        m_saved.repeatMode = RepeatMode::one;
        QueueStore(QueueStore::defaultURL()).save(m_saved);
    }
    ~SavedQueueTest() override { qunsetenv("XDG_DATA_HOME"); }

    [[nodiscard]] static std::optional<QueueSnapshot> inFile() {
        return QueueStore(QueueStore::defaultURL()).load();
    }

    QueueSnapshot m_saved;
    QUrl m_demo = file("demo.flac");
};

} // namespace

TEST_F(SavedQueueTest, WhatIsEnqueuedMeanwhileComesBehindAndBothAreKept) {
    {
        SavedQueue queue(m_model, m_demo);
        m_model.enqueue({writeTone("new.wav", 5)});
        EXPECT_TRUE(m_model.imports().isImporting());
        ASSERT_TRUE(waitFor([&] { return m_player.queue().count() == 4; }));
    }
    const QueueSnapshot kept = inFile().value_or(QueueSnapshot());
    ASSERT_EQ(kept.items.size(), 4U);
    EXPECT_TRUE(std::equal(m_saved.items.begin(), m_saved.items.end(), kept.items.begin()));
    EXPECT_EQ(kept.items.back().title, QStringLiteral("new"));
}

TEST_F(SavedQueueTest, WhatIsOpenedMeanwhileReplacesIt) {
    const SavedQueue queue(m_model, m_demo);
    m_model.open({writeTone("new.wav", 5)});
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    EXPECT_EQ(m_player.queue().count(), 1);
    EXPECT_EQ(m_player.repeatMode(), RepeatMode::one);
}

TEST_F(SavedQueueTest, QuittingBeforeItIsBackLosesNothing) {
    {
        SavedQueue queue(m_model, m_demo);
        m_player.setRepeatMode(RepeatMode::all);
    }
    EXPECT_EQ(inFile(), m_saved);
    SavedQueue queue(m_model, m_demo);
    m_player.setShuffled(true); // switched while it is read
    QSignalSpy restored(&queue, &SavedQueue::restored);
    ASSERT_TRUE(waitFor([&] { return restored.count() == 1; }));
    EXPECT_EQ(restored.front().front(), true);
    m_saved.isShuffled = true;
    EXPECT_EQ(QueueSnapshot::fromQueue(m_player.queue()), m_saved);
}

TEST_F(SavedQueueTest, TheDemoAloneIsNotBroughtBack) {
    m_saved.items.resize(1);
    m_saved.items.front().source = m_demo;
    QueueStore(QueueStore::defaultURL()).save(m_saved);
    SavedQueue queue(m_model, m_demo);
    QSignalSpy restored(&queue, &SavedQueue::restored);
    ASSERT_TRUE(waitFor([&] { return restored.count() == 1; }));
    EXPECT_EQ(restored.front().front(), false);
    EXPECT_EQ(m_player.queue().count(), 0);
}
