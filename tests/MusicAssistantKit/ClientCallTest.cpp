#include "tests/MusicAssistantKit/ClientFixture.h"

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

QJsonArray numbers(int first, int count) {
    QJsonArray made;
    for (int i = 0; i < count; ++i)
        made.append(first + i);
    return made;
}

class MusicAssistantCallTest : public ClientFixture {
  protected:
    void SetUp() override {
        ClientFixture::SetUp();
        ASSERT_TRUE(connectClient().value);
        // Answers are given by hand.
        server.onCommand(u"held"_s,
                         [this](const QJsonObject &, const FakeAnswer &answer) { held.append(answer); });
    }
    auto heldCall() {
        const auto before = held.size();
        const auto made = call(u"held"_s);
        waitUntil([&] { return held.size() > before; });
        return made;
    }

    QList<FakeAnswer> held;
};

} // namespace

TEST_F(MusicAssistantCallTest, AnswersMayOvertakeOneAnother) {
    const auto first = heldCall();
    const auto second = heldCall();
    EXPECT_EQ(client->pendingCallCount(), 2);
    held[1].result(u"second"_s);
    held[0].result(u"first"_s);
    held[0].result(u"again"_s);
    ASSERT_TRUE(waitUntil([&] { return first->ends && second->ends; }));
    runEvents();
    EXPECT_EQ(first->value, MAJSON(u"first"_s));
    EXPECT_EQ(second->value, MAJSON(u"second"_s));
    EXPECT_EQ(first->ends, 1);
    EXPECT_EQ(client->pendingCallCount(), 0);
}

TEST_F(MusicAssistantCallTest, PiecesBecomeOneResult) {
    struct Row {
        const char *name;
        QList<QJsonValue> pieces; ///< all but the last are partial
        QJsonValue expected;
    };
    const Row rows[] = {
        {"three pieces and a rest",
         {numbers(0, 500), numbers(500, 500), numbers(1000, 500), numbers(1500, 7)},
         numbers(0, 1507)},
        {"an empty rest", {numbers(0, 500), QJsonArray()}, numbers(0, 500)},
        {"a null in place of the rest", {numbers(0, 2), QJsonValue()}, numbers(0, 2)},
        {"no pieces", {u"whole"_s}, u"whole"_s},
        {"null", {QJsonValue()}, QJsonValue()},
        {"pieces that are no arrays: the last", {1, 2, 3}, 3},
        {"a change of kind", {u"x"_s, numbers(0, 2), numbers(2, 1)}, numbers(0, 3)},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const auto made = heldCall();
        for (qsizetype i = 0; i < row.pieces.size(); ++i)
            held.last().result(row.pieces[i], i + 1 < row.pieces.size());
        ASSERT_TRUE(waitUntil([&] { return made->ends > 0; }));
        EXPECT_EQ(made->value, MAJSON(row.expected));
    }
}

TEST_F(MusicAssistantCallTest, AnswersOfLargePagesKeepTheirOrder) {
    // Long frames are decoded elsewhere; a short one behind them must not overtake, nor may the end.
    QJsonArray page;
    for (int i = 0; i < 20'000; ++i)
        page.append(QJsonObject{{u"name"_s, u"a rather long name of an item"_s}, {u"position"_s, i}});
    const auto large = heldCall();
    held[0].stream(page);
    held[0].result(u"too late"_s);
    server.dropClients();
    ASSERT_TRUE(waitUntil([&] { return large->ends > 0; }));
    EXPECT_TRUE(large->error || large->value->size() == page.size()) << "neither the loss nor the whole page";
    ASSERT_TRUE(waitFor(Phase::reconnecting));

    clock.advance(2s);
    ASSERT_TRUE(waitFor(Phase::connected));
    const auto second = heldCall();
    held[1].stream(page);
    ASSERT_TRUE(waitUntil([&] { return second->ends > 0; }));
    ASSERT_TRUE(second->value);
    EXPECT_EQ(second->value->value().toArray(), page);
}

TEST_F(MusicAssistantCallTest, ErrorsCarryTheServersNumber) {
    server.onCommand(u"refused"_s, [](const QJsonObject &args, const FakeAnswer &answer) {
        answer.error(args.value("code"_L1).toInt(), u"in any language"_s);
    });
    const auto codeOf = [&](int code) {
        const auto made = call(u"refused"_s, {{u"code"_s, code}});
        waitUntil([&] { return made->ends > 0; });
        return *made->error;
    };
    EXPECT_EQ(codeOf(999), MusicAssistantError::server(999, u"in any language"_s));
    EXPECT_EQ(codeOf(20), MusicAssistantError::unauthenticated());
    const auto unknown = ended(client->call({.command = u"no/such"_s, .args = {}, .timeout = {}}));
    EXPECT_EQ(unknown.error->code(), 12);
    EXPECT_EQ(unknown.error->description(), u"The Music Assistant server reported an error."_s);
}

TEST_F(MusicAssistantCallTest, ALateAnswerReachesNobody) {
    const auto shorter = started(client->call({.command = u"held"_s, .args = {}, .timeout = 2s}, 1s));
    const auto own = started(client->call({.command = u"held"_s, .args = {}, .timeout = 2s}));
    const auto usual = call(u"held"_s);
    ASSERT_TRUE(waitUntil([&] { return held.size() == 3; }));
    clock.advance(1s);
    ASSERT_TRUE(waitUntil([&] { return shorter->ends > 0; }));
    EXPECT_EQ(shorter->error, MusicAssistantError::timeout(u"held"_s));
    EXPECT_EQ(own->ends, 0);
    clock.advance(1s);
    ASSERT_TRUE(waitUntil([&] { return own->ends > 0; }));
    for (const FakeAnswer &answer : held)
        answer.result(u"late"_s);
    ASSERT_TRUE(waitUntil([&] { return usual->ends > 0; }));
    runEvents();
    EXPECT_EQ(usual->value, MAJSON(u"late"_s));
    EXPECT_EQ(shorter->ends, 1);
    EXPECT_EQ(own->ends, 1);
    EXPECT_EQ(client->state().phase, Phase::connected);
}

TEST_F(MusicAssistantCallTest, IgnoresWhatMeansNothing) {
    const auto made = heldCall();
    for (const auto &text :
         {u"garbage"_s, u"{\"message_id\":\"99\",\"result\":1}"_s, u"{\"message_id\":2.5,\"result\":1}"_s,
          u"{\"message_id\":\"2\"}"_s, u"[]"_s, u"{\"server_id\":\"other\"}"_s})
        server.sendRaw(text);
    held[0].result(true);
    ASSERT_TRUE(waitUntil([&] { return made->ends > 0; }));
    EXPECT_EQ(made->value, MAJSON(true));
}

TEST_F(MusicAssistantCallTest, ANumericMessageIDMatches) {
    const auto made = heldCall(); // 1 was the sign-in
    server.sendRaw(u"{\"message_id\":2,\"result\":\"by number\"}"_s);
    ASSERT_TRUE(waitUntil([&] { return made->ends > 0; }));
    EXPECT_EQ(made->value, MAJSON(u"by number"_s));
}

TEST_F(MusicAssistantCallTest, EveryStreamGetsEveryEvent) {
    const auto first = client->events();
    auto second = std::optional(client->events());
    server.sendEvent(u"queue_updated"_s, u"q1"_s, QJsonObject{{u"items"_s, 3}});
    server.sendEvent(u"of_tomorrow"_s, QJsonValue(), 7);
    const auto take = [](const AsyncStream<MAServerEvent> &stream) -> QCoro::Task<MAServerEvent> {
        auto event = co_await stream.next();
        co_return event.value_or(MAServerEvent());
    };
    const MAServerEvent known{
        .event = u"queue_updated"_s, .objectID = u"q1"_s, .data = MAJSON(QJsonObject{{u"items"_s, 3}})};
    EXPECT_EQ(ended(take(first)).value, known);
    EXPECT_EQ(ended(take(*second)).value, known);
    second.reset();
    EXPECT_EQ(ended(take(first)).value,
              (MAServerEvent{.event = u"of_tomorrow"_s, .objectID = {}, .data = MAJSON(7)}));
    client.reset();
    EXPECT_EQ(ended(take(first)).value, MAServerEvent()) << "the stream goes on without its client";
}

TEST_F(MusicAssistantCallTest, TheLossOfTheConnectionEndsEveryCall) {
    const auto first = heldCall();
    const auto second = heldCall();
    server.dropClients();
    ASSERT_TRUE(waitUntil([&] { return first->ends && second->ends; }));
    EXPECT_EQ(first->error, MusicAssistantError::disconnected());
    EXPECT_EQ(second->error, MusicAssistantError::disconnected());
    EXPECT_EQ(ended(client->call({.command = u"held"_s, .args = {}, .timeout = {}})).error,
              MusicAssistantError::notConnected());

    clock.advance(2s);
    ASSERT_TRUE(waitFor(Phase::connected));
    const auto third = heldCall();
    client->disconnect();
    ASSERT_TRUE(waitUntil([&] { return third->ends > 0; }));
    EXPECT_EQ(third->error, MusicAssistantError::disconnected());
    EXPECT_EQ(first->ends, 1);
}

TEST_F(MusicAssistantCallTest, AHugeFrameEndsTheConnectionAndNotTheProgram) {
    const auto made = heldCall();
    server.sendRaw(u"\""_s + QString(maxFrameBytes, u'x') + u"\""_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return made->ends > 0; }, 30'000));
    EXPECT_EQ(made->error, MusicAssistantError::disconnected());
    clock.advance(2s);
    EXPECT_TRUE(waitFor(Phase::connected));
}
