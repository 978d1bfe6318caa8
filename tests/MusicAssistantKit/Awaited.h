#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantError.h"

#include <QCoroTask>
#include <QTest>

#include <memory>
#include <optional>

namespace vantor {

/// What became of a coroutine that a test started.
template <typename T>
struct Awaited {
    std::optional<T> value;
    std::optional<MusicAssistantError> error;
    int ends = 0;
};

template <typename T>
QCoro::Task<> observe(QCoro::Task<T> task, std::shared_ptr<Awaited<T>> awaited) {
    try {
        awaited->value = co_await task;
    } catch (const MusicAssistantError &error) {
        awaited->error = error;
    }
    ++awaited->ends;
}

template <typename T>
std::shared_ptr<Awaited<T>> started(QCoro::Task<T> task) {
    auto awaited = std::make_shared<Awaited<T>>();
    observe(std::move(task), awaited);
    return awaited;
}

template <typename Condition>
bool waitUntil(Condition condition) {
    return QTest::qWaitFor(condition, 20'000);
}

/// Runs the event loop until the coroutine ends.
template <typename T>
Awaited<T> ended(QCoro::Task<T> task) {
    const auto awaited = started(std::move(task));
    waitUntil([&] { return awaited->ends > 0; });
    return *awaited;
}

/// Several turns of the event loop, for what must not happen.
inline void runEvents() {
    QTest::qWait(30);
}

} // namespace vantor
