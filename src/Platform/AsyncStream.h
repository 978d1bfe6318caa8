#pragma once

#include <QtGlobal>

#include <coroutine>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace vantor {

namespace detail {

/// What both ends of a stream share, whatever its values are.
class AsyncStreamLink : public std::enable_shared_from_this<AsyncStreamLink> {
  public:
    /// Whether a wait for the next value would be over at once.
    [[nodiscard]] bool isReady() const { return buffered > 0 || finished || dropped; }
    /// Lets the event loop resume the waiting coroutine, if there is one and it still has a reason then.
    void wakeLater();
    void drop();

    std::coroutine_handle<> waiter; ///< the consumer's coroutine while it is suspended
    std::function<void()> whenDropped;
    std::size_t buffered = 0;
    bool finished = false; ///< by the producer
    bool dropped = false;  ///< by the consumer

  private:
    bool m_wakes = false; ///< a wake-up is on its way
};

template <typename T>
struct AsyncStreamChannel : AsyncStreamLink {
    std::deque<T> values;
    std::size_t capacity = 1;
    std::size_t missed = 0;

    [[nodiscard]] std::optional<T> take() {
        if (values.empty())
            return std::nullopt;
        std::optional<T> first(std::move(values.front()));
        values.pop_front();
        buffered = values.size();
        return first;
    }
};

} // namespace detail

template <typename T>
class AsyncStream;

/// Enough for a stream of states, of which only the latest counts.
inline constexpr std::size_t latestValueOnly = 1;
/// For a stream of events: more than a server sends in one turn of the event loop.
inline constexpr std::size_t eventBuffer = 256;

/// The end of a stream that gives the values. Made by AsyncStream::make(); movable. Main thread.
///
/// No call runs the consumer's code: it is resumed later by the event loop. Destroying the producer finishes
/// the stream.
template <typename T>
class AsyncStreamProducer {
  public:
    AsyncStreamProducer() = default; ///< of no stream
    AsyncStreamProducer(AsyncStreamProducer &&) noexcept = default;
    AsyncStreamProducer &operator=(AsyncStreamProducer &&other) noexcept {
        if (this != &other) {
            finish();
            m_channel = std::move(other.m_channel);
        }
        return *this;
    }
    ~AsyncStreamProducer() { finish(); }

    /// Into the buffer; when it is full, the oldest value goes. Without effect once finished or dropped.
    void yield(T value) {
        if (!isWanted())
            return;
        if (m_channel->values.size() >= m_channel->capacity) {
            m_channel->values.pop_front();
            ++m_channel->missed;
        }
        m_channel->values.push_back(std::move(value));
        m_channel->buffered = m_channel->values.size();
        m_channel->wakeLater();
    }

    /// Counts a value that is not given at all as missed, for a consumer that then has to take stock anew.
    void skip() {
        if (isWanted())
            ++m_channel->missed;
    }

    /// The consumer gets what is buffered and then the end.
    void finish() {
        if (!m_channel)
            return;
        m_channel->finished = true;
        m_channel->whenDropped = nullptr;
        m_channel->wakeLater();
    }

    /// Whether anybody is there to take further values.
    [[nodiscard]] bool isWanted() const { return m_channel && !m_channel->finished && !m_channel->dropped; }

    /// `action` runs once, in the destructor of the stream, unless the stream was finished before. It may
    /// destroy the producer.
    void whenDropped(std::function<void()> action) {
        if (isWanted())
            m_channel->whenDropped = std::move(action);
    }

  private:
    friend class AsyncStream<T>;
    explicit AsyncStreamProducer(std::shared_ptr<detail::AsyncStreamChannel<T>> channel)
        : m_channel(std::move(channel)) {}

    std::shared_ptr<detail::AsyncStreamChannel<T>> m_channel;
};

/// Values that come one after another, awaited by one coroutine at a time. Movable. Main thread.
///
///     while (true) {
///         const auto change = co_await m_changes.next();
///         if (!change || !self)
///             co_return;
///         …
///     }
///
/// A coroutine that waits is resumed by the event loop, never from inside a call of the producer. Destroying
/// the stream unsubscribes: a coroutine that still waits on it is resumed with none, so that keeping the
/// stream as a member ends the loops of an object with it.
template <typename T>
class AsyncStream {
  public:
    class Next;

    AsyncStream() = default; ///< finished and empty
    AsyncStream(AsyncStream &&) noexcept = default;
    AsyncStream &operator=(AsyncStream &&other) noexcept {
        if (this != &other) {
            drop();
            m_channel = std::move(other.m_channel);
        }
        return *this;
    }
    ~AsyncStream() { drop(); }

    /// `capacity`: how many values wait for the consumer at most, at least 1; the oldest ones give way.
    [[nodiscard]] static std::pair<AsyncStreamProducer<T>, AsyncStream> make(std::size_t capacity) {
        auto channel = std::make_shared<detail::AsyncStreamChannel<T>>();
        channel->capacity = capacity;
        return {AsyncStreamProducer<T>(channel), AsyncStream(channel)};
    }

    /// To be awaited: the next value, or none when the stream has ended or was destroyed meanwhile.
    [[nodiscard]] Next next() const { return Next(m_channel); }

    /// How many values gave way so far because the buffer was full.
    [[nodiscard]] std::size_t missed() const { return m_channel ? m_channel->missed : 0; }

  private:
    explicit AsyncStream(std::shared_ptr<detail::AsyncStreamChannel<T>> channel)
        : m_channel(std::move(channel)) {}

    void drop() {
        const auto channel = std::exchange(m_channel, nullptr);
        if (!channel)
            return;
        channel->values.clear();
        channel->drop();
    }

    std::shared_ptr<detail::AsyncStreamChannel<T>> m_channel;
};

/// The wait for one value; lives in the waiting coroutine, and may go with it while it is suspended.
template <typename T>
class AsyncStream<T>::Next {
  public:
    Next(const Next &) = delete;
    Next &operator=(const Next &) = delete;
    ~Next() {
        if (m_self && m_channel->waiter == m_self)
            m_channel->waiter = nullptr;
    }

    [[nodiscard]] bool await_ready() const { return !m_channel || m_channel->isReady(); }
    void await_suspend(std::coroutine_handle<> self) {
        Q_ASSERT(!m_channel->waiter); // one coroutine at a time
        m_self = self;
        m_channel->waiter = self;
    }
    [[nodiscard]] std::optional<T> await_resume() {
        m_self = nullptr;
        return m_channel ? m_channel->take() : std::nullopt;
    }

  private:
    friend class AsyncStream;
    explicit Next(std::shared_ptr<detail::AsyncStreamChannel<T>> channel) : m_channel(std::move(channel)) {}

    std::shared_ptr<detail::AsyncStreamChannel<T>> m_channel;
    std::coroutine_handle<> m_self;
};

} // namespace vantor
