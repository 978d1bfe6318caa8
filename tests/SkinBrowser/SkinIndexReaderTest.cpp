#include "SkinBrowser/SkinIndexReader.h"

#include "tests/SkinLibrary/LibraryFixture.h"

#include <QFile>

#include <gtest/gtest.h>

#include <latch>

using namespace vantor;
using namespace vantor::test;

namespace {

struct SkinIndexReaderTest : testing::Test, LibraryFixture {
    SkinIndexReaderTest() {
        store->apply({parsedSkin("/skins/b.wsz", "b"), parsedSkin("/skins/a.wsz", "a")}, 1);
    }

    SkinIndexReader reader{url};
};

/// Reads for half a minute unless it is interrupted.
int readForLong(SkinIndexStore &store) {
    for (int i = 0; i < 1'000'000; ++i)
        (void)store.skins({.limit = 10});
    return 1;
}

template <class Answer>
bool isInterrupted(QFuture<Answer> future) {
    const auto error = errorOf([&] { future.waitForFinished(); });
    return error && error->isInterruption();
}

} // namespace

TEST_F(SkinIndexReaderTest, AnswersInOrderAndSeesWhatAPassWrites) {
    std::vector<int> order;
    std::vector<QFuture<std::size_t>> answers;
    for (int i = 0; i < 20; ++i) {
        answers.push_back(reader.ask<std::size_t>([&order, i](SkinIndexStore &index) {
            order.push_back(i);
            return index.skins({.limit = 10}).size();
        }));
    }
    answers.back().waitForFinished();
    EXPECT_TRUE(std::ranges::is_sorted(order));
    EXPECT_EQ(order.size(), 20U);
    EXPECT_EQ(answers.front().result(), 2U);
    store->removeFile(QStringLiteral("/skins/a.wsz"));
    EXPECT_EQ(reader.ask<QString>([](SkinIndexStore &index) { return index.skins({.limit = 9}).at(0).name; })
                  .result(),
              QStringLiteral("b"));
}

TEST_F(SkinIndexReaderTest, InterruptionEndsWhatRunsAndWhatWaits) {
    std::latch begun(1);
    auto running = reader.ask<int>([&](SkinIndexStore &index) {
        begun.count_down();
        return readForLong(index);
    });
    auto waiting = reader.ask<void>([](SkinIndexStore &) { FAIL() << "began"; });
    begun.wait();
    reader.interrupt();
    EXPECT_TRUE(isInterrupted(running));
    EXPECT_TRUE(isInterrupted(waiting));
    EXPECT_EQ(reader.ask<std::int64_t>([](SkinIndexStore &index) { return index.counts().skins; }).result(),
              2);
}

TEST_F(SkinIndexReaderTest, TheDestructorFinishesEveryFuture) {
    std::vector<QFuture<int>> answers;
    {
        SkinIndexReader ending(url);
        for (int i = 0; i < 3; ++i)
            answers.push_back(ending.ask<int>(readForLong));
    }
    for (const QFuture<int> &answer : answers)
        EXPECT_TRUE(isInterrupted(answer));
}

TEST_F(SkinIndexReaderTest, AFileThatCannotBeOpenedIsTriedAgain) {
    const QUrl newer = QUrl::fromLocalFile(folder.path("newer.sqlite"));
    SQLiteDatabase(newer).execute("PRAGMA user_version = 3");
    SkinIndexReader other(newer);
    const std::function<std::int64_t(SkinIndexStore &)> question = [](SkinIndexStore &index) {
        return index.counts().files;
    };
    EXPECT_EQ(errorOf([&] { other.ask(question).waitForFinished(); }),
              SkinLibraryError::incompatibleDatabase(3, 2));
    QFile::remove(newer.toLocalFile());
    EXPECT_EQ(other.ask(question).result(), 0);
}
