#pragma once

#include "SkinLibrary/Index/SkinIndexStore.h"

#include <memory>
#include <shared_mutex>

namespace vantor {

/// The store that a pass and what happens beside it write through, opened when it is first needed. Worker
/// threads: opening and resetting block.
class SharedSkinIndex {
  public:
    explicit SharedSkinIndex(const QUrl &url) : m_url(url) {}

    [[nodiscard]] const QUrl &url() const { return m_url; }

    /// Throws what opening throws; the next use tries again.
    template <class Use>
    auto use(const Use &work) {
        const std::shared_lock lock(m_inUse);
        return work(store());
    }

    /// Deletes the file and makes a fresh one, when nobody uses it any more.
    void reset() {
        const std::unique_lock lock(m_inUse);
        MutexLock opening(m_opening);
        m_store.reset();
        m_store = SkinIndexStore::openAfresh(m_url);
    }

  private:
    [[nodiscard]] SkinIndexStore &store() {
        MutexLock opening(m_opening);
        if (!m_store)
            m_store = SkinIndexStore::open(m_url);
        return *m_store;
    }

    const QUrl m_url;
    std::shared_mutex m_inUse;
    Mutex m_opening;
    std::unique_ptr<SkinIndexStore> m_store VANTOR_GUARDED_BY(m_opening);
};

} // namespace vantor
