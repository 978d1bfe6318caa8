#include "SkinBrowser/SkinIndexReader.h"

#include "SkinLibrary/SkinLibraryError.h"

namespace vantor {

SkinIndexReader::SkinIndexReader(const QUrl &index) : m_index(index) {
    m_pool.setMaxThreadCount(1);
}

SkinIndexReader::~SkinIndexReader() {
    interrupt();
    m_pool.waitForDone(); // the questions that wait run too, and fail at once, so that every future finishes
}

void SkinIndexReader::interrupt() {
    ++m_turn;
    MutexLock lock(m_mutex);
    if (m_store)
        m_store->interrupt();
}

SkinIndexStore &SkinIndexReader::store(int turn) {
    requireTurn(turn);
    {
        MutexLock lock(m_mutex);
        if (m_store)
            return *m_store;
    }
    // Opened without the lock, for which the main thread would wait.
    auto opened = SkinIndexStore::open(m_index);
    MutexLock lock(m_mutex);
    m_store = std::move(opened);
    return *m_store;
}

void SkinIndexReader::requireTurn(int turn) const {
    if (turn != m_turn)
        throw SkinLibraryError::interruption();
}

} // namespace vantor
