#include "Vantor/App/SavedQueue.h"

#include "Vantor/Model/PlayerModel.h"

namespace vantor {

static constexpr std::chrono::seconds autosaveDelay{1};

SavedQueue::SavedQueue(PlayerModel &model, const QUrl &demo)
    : m_model(model), m_demo(demo), m_store(QueueStore::defaultURL()),
      m_autosaver(model.player(), m_store, autosaveDelay), m_repeatAtStart(model.player().repeatMode()),
      m_shuffledAtStart(model.player().isShuffled()) {
    model.imports().hold();
    m_pool.start([this] {
        auto saved = std::make_shared<std::optional<QueueSnapshot>>(m_store.load());
        QMetaObject::invokeMethod(this, [this, saved] { take(std::move(*saved)); }, Qt::QueuedConnection);
    });
}

SavedQueue::~SavedQueue() {
    m_pool.waitForDone();
    m_autosaver.flush();
}

void SavedQueue::take(std::optional<QueueSnapshot> saved) {
    Player &player = m_model.player();
    const bool onlyTheDemo =
        saved && saved->items.size() == 1 && saved->items.front().source == Track::Source(m_demo);
    const bool hasTracks = saved && !onlyTheDemo && !saved->items.empty();
    if (saved && !onlyTheDemo) {
        // What was switched meanwhile stays as the user wants it.
        const bool repeatSwitched = player.repeatMode() != m_repeatAtStart;
        const bool shuffleSwitched = player.isShuffled() != m_shuffledAtStart;
        player.restoreQueue(std::move(saved->items), saved->currentIndex,
                            repeatSwitched ? player.repeatMode() : saved->repeatMode,
                            shuffleSwitched ? player.isShuffled() : saved->isShuffled);
    }
    m_autosaver.start();
    m_model.imports().release();
    Q_EMIT restored(hasTracks);
}

} // namespace vantor
