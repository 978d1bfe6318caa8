#pragma once

#include "SkinLibrary/Index/SkinIndexStore.h"

#include <QFuture>
#include <QThreadPool>
#include <QUrl>

#include <functional>
#include <memory>

namespace vantor {

/// Asks the skin index on a thread of its own, through a connection of its own, so that the window never
/// waits: neither for a pass that is writing nor for a long search.
///
/// Main thread. Answers come as futures, in the order of the questions; a failure is the future's exception
/// (SkinLibraryError). The destructor ends what is running and waits for it.
class SkinIndexReader {
  public:
    explicit SkinIndexReader(const QUrl &index);
    ~SkinIndexReader();
    Q_DISABLE_COPY_MOVE(SkinIndexReader)

    template <typename Answer>
    [[nodiscard]] QFuture<Answer> ask(std::function<Answer(SkinIndexStore &)> question);

    /// Ends the reading that runs or waits: its futures fail with an error that isInterruption().
    void interrupt();

  private:
    // One thread, the store opened on it at the first question.
};

} // namespace vantor
