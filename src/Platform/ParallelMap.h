#pragma once

#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace vantor {

/// `function` of every item, in the items' order, worked out by at most `concurrency` threads. This one is
/// among them and does `meanwhile` before it joins in. The first exception is thrown again when all have
/// stopped. Its own threads instead of a pool's, because the thread sanitizer can see through these.
template <class Item, class Function, class Meanwhile>
[[nodiscard]] auto parallelMap(const std::vector<Item> &items, int concurrency, const Function &function,
                               const Meanwhile &meanwhile) {
    std::vector<decltype(function(items.front()))> results(items.size());
    std::atomic_size_t next = 0;
    std::exception_ptr failure;
    std::once_flag failed;
    const auto work = [&](bool isCaller) {
        try {
            if (isCaller)
                meanwhile();
            for (std::size_t at = next++; at < items.size(); at = next++)
                results[at] = function(items[at]);
        } catch (...) {
            next = items.size();
            std::call_once(failed, [&] { failure = std::current_exception(); });
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (std::size_t i = 1; i < std::min(items.size(), static_cast<std::size_t>(concurrency)); ++i)
            helpers.emplace_back(work, false);
        work(true);
    }
    if (failure)
        std::rethrow_exception(failure);
    return results;
}

} // namespace vantor
