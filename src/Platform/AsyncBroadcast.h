#pragma once

#include "Platform/AsyncStream.h"

#include <algorithm>
#include <vector>

namespace vantor {

/// One producer, any number of streams: every value goes to each of them. Destroying it finishes them all.
/// Main thread.
template <typename T>
class AsyncBroadcast {
  public:
    /// A stream of what is sent from now on. `capacity`: see AsyncStream::make().
    [[nodiscard]] AsyncStream<T> subscribe(std::size_t capacity) {
        std::erase_if(m_producers,
                      [](const AsyncStreamProducer<T> &producer) { return !producer.isWanted(); });
        auto [producer, stream] = AsyncStream<T>::make(capacity);
        m_producers.push_back(std::move(producer));
        return std::move(stream);
    }

    /// The same, which begins with this value.
    [[nodiscard]] AsyncStream<T> subscribe(std::size_t capacity, const T &first) {
        auto stream = subscribe(capacity);
        m_producers.back().yield(first);
        return stream;
    }

    void send(const T &value) {
        for (auto &producer : m_producers)
            producer.yield(value);
    }

    /// See AsyncStreamProducer::skip().
    void skip() {
        for (auto &producer : m_producers)
            producer.skip();
    }

    /// Whether anybody takes what is sent.
    [[nodiscard]] bool isWanted() const {
        return std::any_of(m_producers.begin(), m_producers.end(),
                           [](const AsyncStreamProducer<T> &producer) { return producer.isWanted(); });
    }

  private:
    std::vector<AsyncStreamProducer<T>> m_producers;
};

} // namespace vantor
