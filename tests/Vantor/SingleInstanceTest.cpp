#include "Vantor/App/SingleInstance.h"

#include "tests/Support/TestFolder.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>

#include <gtest/gtest.h>

#include <thread>

using namespace vantor;

namespace {

class SingleInstanceTest : public testing::Test {
  protected:
    void SetUp() override {
        QObject::connect(&m_first, &SingleInstance::requested, &m_first,
                         [this](const LaunchOptions &options) { m_requests.append(options); });
    }
    /// Another start, while the first one's events run or not.
    SingleInstance::Outcome startAgain(const LaunchOptions &options, bool firstAnswers = true) {
        std::atomic<bool> ended = false;
        SingleInstance::Outcome outcome{};
        std::thread other([&] {
            outcome = SingleInstance(m_path).claim(options);
            ended = true;
        });
        while (!ended) {
            if (firstAnswers)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        other.join();
        return outcome;
    }
    void runFor(int milliseconds) {
        for (const QDeadlineTimer end(milliseconds); !end.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    TestFolder m_folder;
    QString m_path = m_folder.path("player");
    SingleInstance m_first{m_path};
    QList<LaunchOptions> m_requests;
};

using Outcome = SingleInstance::Outcome;

} // namespace

TEST_F(SingleInstanceTest, LaterStartsHandOverAllTheyWereAskedFor) {
    QFile stale(m_path); // of a player that crashed
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    ASSERT_EQ(m_first.claim({}), Outcome::first);
    LaunchOptions options;
    options.command = LaunchCommand::enqueue;
    options.skin = QUrl::fromLocalFile(u"/skins/a #1 %41.wsz"_qs);
    for (int i = 0; i < 5000; ++i)
        options.files.append(QUrl::fromLocalFile(u"/music/Ä ? %1.flac"_qs.arg(i)));
    EXPECT_EQ(startAgain(options), Outcome::handedOver);
    EXPECT_EQ(startAgain({}), Outcome::handedOver);
    EXPECT_EQ(m_requests, QList({options, LaunchOptions()}));
}

TEST_F(SingleInstanceTest, AHangingPlayerDoesNotHoldUpAStartForLong) {
    ASSERT_EQ(m_first.claim({}), Outcome::first);
    const QDeadlineTimer limit(3000);
    EXPECT_EQ(startAgain({}, false), Outcome::unanswered);
    EXPECT_FALSE(limit.hasExpired());
}

TEST_F(SingleInstanceTest, ThePlaceIsFreeAgainAfterwards) {
    {
        SingleInstance earlier(m_path);
        ASSERT_EQ(earlier.claim({}), Outcome::first);
    }
    EXPECT_EQ(m_first.claim({}), Outcome::first);
}

TEST_F(SingleInstanceTest, RubbishIsNotAnswered) {
    ASSERT_EQ(m_first.claim({}), Outcome::first);
    for (const QByteArray &message :
         {QByteArray("nonsense\n"), QByteArray("[]\n"), QByteArray(9 << 20, 'x')}) {
        QLocalSocket socket;
        socket.connectToServer(m_path);
        socket.write(message);
        runFor(200);
        EXPECT_EQ(socket.state(), QLocalSocket::UnconnectedState) << message.left(10).toStdString();
        EXPECT_EQ(socket.bytesAvailable(), 0);
    }
    EXPECT_TRUE(m_requests.isEmpty());
    EXPECT_EQ(startAgain({}), Outcome::handedOver);
}
