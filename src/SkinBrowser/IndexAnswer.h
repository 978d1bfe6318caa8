#pragma once

#include "SkinLibrary/SkinLibraryError.h"

#include <QFutureWatcher>
#include <QObject>
#include <QUnhandledException>

#include <exception>
#include <optional>

namespace vantor {

/// What a failed question has thrown, which the future hands on wrapped up.
[[nodiscard]] inline SkinLibraryError indexError(const std::exception_ptr &thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const SkinLibraryError &error) {
        return error;
    } catch (const QUnhandledException &error) {
        if (error.exception())
            return indexError(error.exception());
        return SkinLibraryError::sqlite(0, QString());
    } catch (const std::exception &error) { // no memory
        return SkinLibraryError::sqlite(0, QString::fromUtf8(error.what()));
    }
}

/// Hands what a SkinIndexReader answers to `taken`, or its failure to `failed`, on the thread of `context`;
/// to neither once `context` is gone.
template <typename Answer, typename Taken, typename Failed>
void whenAnswered(QObject &context, const QFuture<Answer> &future, Taken taken, Failed failed) {
    auto *watcher = new QFutureWatcher<Answer>(&context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, &context, [watcher, taken, failed] {
        watcher->deleteLater();
        std::optional<Answer> answer;
        std::exception_ptr thrown;
        try {
            answer = watcher->result();
        } catch (...) {
            thrown = std::current_exception();
        }
        if (answer)
            taken(std::move(*answer));
        else
            failed(indexError(thrown));
    });
    watcher->setFuture(future);
}

} // namespace vantor
