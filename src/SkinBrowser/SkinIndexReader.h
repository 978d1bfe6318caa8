#pragma once

#include "SkinLibrary/Index/SkinIndexStore.h"

#include <QFuture>
#include <QPromise>
#include <QThreadPool>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <type_traits>

namespace vantor {

/// Asks the skin index on a thread of its own, through a connection of its own, so that the window never
/// waits: neither for a pass that is writing nor for a long search.
///
/// Main thread. Answers come as futures, in the order of the questions; a failure is the future's exception
/// (SkinLibraryError). The file is opened for the first question, and again after a failure to open it. The
/// destructor ends what is running and waits for it.
class SkinIndexReader {
  public:
    explicit SkinIndexReader(const QUrl &index);
    ~SkinIndexReader();
    Q_DISABLE_COPY_MOVE(SkinIndexReader)

    template <typename Answer>
    [[nodiscard]] QFuture<Answer> ask(std::function<Answer(SkinIndexStore &)> question) {
        auto promise = std::make_shared<QPromise<Answer>>();
        promise->start();
        // Not QtConcurrent, which would wrap the error.
        m_pool.start([this, promise, question = std::move(question), turn = m_turn.load()] {
            try {
                answer(*promise, question, turn);
            } catch (...) {
                promise->setException(std::current_exception());
            }
            promise->finish();
        });
        return promise->future();
    }

    /// Ends the reading that runs or waits: its futures fail with an error that isInterruption().
    void interrupt();

  private:
    // On the reader's thread.
    template <typename Answer>
    void answer(QPromise<Answer> &promise, const std::function<Answer(SkinIndexStore &)> &question,
                int turn) {
        SkinIndexStore &opened = store(turn);
        const SkinIndexStore::Question readings(opened);
        requireTurn(turn); // from here on, an interruption shows in the store too
        if constexpr (std::is_void_v<Answer>) {
            question(opened);
            requireTurn(turn);
        } else {
            Answer result = question(opened);
            requireTurn(turn);
            promise.addResult(std::move(result));
        }
    }
    [[nodiscard]] SkinIndexStore &store(int turn);
    /// Throws when interrupt() was called since the question was asked.
    void requireTurn(int turn) const;

    const QUrl m_index;
    std::atomic_int m_turn = 0; ///< how often there was an interruption
    Mutex m_mutex;
    /// Only the reader's thread sets it, and only once.
    std::unique_ptr<SkinIndexStore> m_store VANTOR_GUARDED_BY(m_mutex);
    QThreadPool m_pool; ///< one thread, so that the answers keep the questions' order
};

} // namespace vantor
