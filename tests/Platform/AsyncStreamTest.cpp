#include "Platform/AsyncStream.h"

#include <QCoreApplication>
#include <QCoroTask>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

using Stream = AsyncStream<std::shared_ptr<int>>; // a value whose loss and leak are seen
using Producer = AsyncStreamProducer<std::shared_ptr<int>>;

struct Taken {
    std::vector<int> values;
    bool ended = false;
};

QCoro::Task<> takeAll(const Stream *stream, Taken *taken) {
    while (true) {
        const auto value = co_await stream->next();
        if (!value)
            break;
        taken->values.push_back(**value);
    }
    taken->ended = true;
}

QCoro::Task<> takeAllOwned(Stream stream, Taken *taken) {
    co_await takeAll(&stream, taken);
}

void yieldAll(Producer &producer, std::initializer_list<int> values) {
    for (const int value : values)
        producer.yield(std::make_shared<int>(value));
}

void runEvents() {
    QCoreApplication::processEvents();
}

/// A coroutine whose frame can be destroyed while it is suspended, which a task's cannot.
struct Destructible {
    struct promise_type {
        Destructible get_return_object() {
            return {std::coroutine_handle<promise_type>::from_promise(*this)};
        }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };
    std::coroutine_handle<promise_type> handle;
};

Destructible takeOne(const Stream *stream, Taken *taken) {
    const auto value = co_await stream->next();
    taken->ended = !value;
    if (value)
        taken->values.push_back(**value);
}

} // namespace

TEST(AsyncStreamTest, WhatIsBufferedComesBeforeTheEnd) {
    auto [producer, stream] = Stream::make(3);
    yieldAll(producer, {1, 2, 3});
    producer.finish();
    yieldAll(producer, {4});
    Taken taken;
    takeAll(&stream, &taken);
    EXPECT_EQ(taken.values, (std::vector{1, 2, 3}));
    EXPECT_TRUE(taken.ended);

    Taken nothing;
    takeAllOwned(Stream(), &nothing);
    EXPECT_TRUE(nothing.ended);
}

TEST(AsyncStreamTest, TheOldestGiveWayWhenTheConsumerIsSlow) {
    auto [producer, stream] = Stream::make(latestValueOnly);
    Taken taken;
    takeAll(&stream, &taken);
    yieldAll(producer, {1, 2, 3});
    EXPECT_TRUE(taken.values.empty()) << "the consumer ran inside the producer's call";
    runEvents();
    yieldAll(producer, {4});
    runEvents();
    EXPECT_EQ(taken.values, (std::vector{3, 4}));
    EXPECT_EQ(stream.missed(), 2U);
    EXPECT_FALSE(taken.ended);
    producer.finish();
    runEvents();
    EXPECT_TRUE(taken.ended);
}

TEST(AsyncStreamTest, DestroyingTheProducerEndsTheWait) {
    Taken taken;
    {
        auto [producer, stream] = Stream::make(2);
        takeAllOwned(std::move(stream), &taken);
        yieldAll(producer, {7});
        Producer other = std::move(producer);
        other = Producer();
    }
    runEvents();
    EXPECT_EQ(taken.values, std::vector{7});
    EXPECT_TRUE(taken.ended);
}

TEST(AsyncStreamTest, DestroyingTheStreamEndsTheWaitAndTellsTheProducer) {
    auto made = Stream::make(2);
    auto producer = std::make_unique<Producer>(std::move(made.first));
    auto stream = std::make_unique<Stream>(std::move(made.second));
    int drops = 0;
    producer->whenDropped([&] {
        ++drops;
        producer.reset(); // what a list of subscribers does
    });
    Taken taken;
    takeAll(stream.get(), &taken);
    yieldAll(*producer, {1});
    stream.reset();
    EXPECT_EQ(drops, 1);
    EXPECT_FALSE(producer);
    runEvents();
    EXPECT_TRUE(taken.values.empty()) << "a value for an object that has gone";
    EXPECT_TRUE(taken.ended);
}

TEST(AsyncStreamTest, ADroppedStreamTakesNoMore) {
    auto [producer, stream] = Stream::make(2);
    const auto value = std::make_shared<int>(1);
    producer.yield(value);
    stream = Stream();
    producer.yield(value);
    EXPECT_FALSE(producer.isWanted());
    EXPECT_EQ(value.use_count(), 1);
}

TEST(AsyncStreamTest, NobodyIsToldOfADropAfterTheEnd) {
    auto [producer, stream] = Stream::make(2);
    producer.whenDropped([] { FAIL(); });
    producer.finish();
    stream = Stream();
}

TEST(AsyncStreamTest, ACoroutineThatGoesWhileItWaitsIsNotResumed) {
    auto [producer, stream] = Stream::make(2);
    Taken first;
    const Destructible waiting = takeOne(&stream, &first);
    yieldAll(producer, {1});
    waiting.handle.destroy(); // its wake-up is on its way
    Taken second;
    const Destructible next = takeOne(&stream, &second);
    EXPECT_EQ(second.values, std::vector{1});
    next.handle.destroy();
    Taken third;
    const Destructible last = takeOne(&stream, &third);
    runEvents(); // the wake-up finds one that waits for what has not come yet
    EXPECT_FALSE(third.ended);
    yieldAll(producer, {2});
    runEvents();
    EXPECT_EQ(third.values, std::vector{2});
    last.handle.destroy();
}

TEST(AsyncStreamTest, AConsumerMayDestroyTheProducerAndItself) {
    struct Owner {
        Producer producer;
        Stream stream;
        int seen = 0;
        QCoro::Task<> follow(std::unique_ptr<Owner> *owner) {
            while (true) {
                const auto value = co_await stream.next();
                if (!value)
                    co_return;
                if (**value == 2) {
                    owner->reset();
                    co_return;
                }
                seen = **value;
                yieldAll(producer, {*value.value() + 1});
            }
        }
    };
    auto owner = std::make_unique<Owner>();
    std::tie(owner->producer, owner->stream) = Stream::make(1);
    owner->follow(&owner);
    yieldAll(owner->producer, {1});
    runEvents();
    EXPECT_FALSE(owner);
}
