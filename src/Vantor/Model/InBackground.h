#pragma once

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrentRun>

namespace vantor {

/// Runs `work` on a thread of the pool and `then` with its result on this one, unless `context` has gone by
/// then. What comes to a pool of one thread is done in its order.
template <class Work, class Then>
void inBackground(QThreadPool &pool, QObject *context, Work work, Then then) {
    using Result = std::invoke_result_t<Work>;
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcher<Result>::finished, context, [watcher, then] {
        watcher->deleteLater();
        then(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(&pool, work));
}

} // namespace vantor
