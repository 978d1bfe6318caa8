#include "SendspinKit/Session/SendspinSession.h"
#include "tests/Support/FakeSendspin/FakeSendspin.h"
#include "tests/Support/WaitFor.h"

#include <QMutex>
#include <QThread>

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

QStringList logged;
QMutex loggedMutex;

void collectLog(QtMsgType, const QMessageLogContext &, const QString &text) {
    const QMutexLocker lock(&loggedMutex);
    logged.append(text);
}

/// A session in a thread of its own, over sockets, as the program has it.
class SendspinSocketTest : public testing::Test {
  protected:
    SendspinSocketTest() {
        session->moveToThread(&thread);
        QObject::connect(&thread, &QThread::finished, session, &QObject::deleteLater);
        QObject::connect(session, &SendspinSession::occurred, &server,
                         [this](const SendspinEvent &event) { events.push_back(event); });
        thread.start();
        EXPECT_TRUE(server.listen());
        configuration.baseURL = server.url();
    }
    ~SendspinSocketTest() override { end(); }

    void end() {
        thread.quit();
        thread.wait();
    }
    template <typename Event>
    [[nodiscard]] auto count() const {
        return std::count_if(events.begin(), events.end(), [](const SendspinEvent &event) {
            return std::holds_alternative<Event>(event.content);
        });
    }

    RealTimeline time;
    FakeSendspin server{time};
    QtWebSocketTransports transports{SendspinSession::longestFrame};
    SystemScheduler scheduler;
    SendspinSteadyClock clock;
    SendspinSession *session = new SendspinSession(transports, scheduler, clock);
    QThread thread;
    std::vector<SendspinEvent> events;
    SendspinConnectionConfiguration configuration{.baseURL = {},
                                                  .token = MusicAssistantToken(u"secret-token"_s),
                                                  .clientID = u"vantor-1"_s,
                                                  .name = u"Vantor (desk)"_s,
                                                  .deviceInfo = {},
                                                  .format = {.codec = u"flac"_s},
                                                  .bufferCapacity = 200'000};
};

} // namespace

TEST_F(SendspinSocketTest, PlaysAStreamAndLeaves) {
    server.setClock(7'000'000'000, 0);
    session->start(configuration);
    ASSERT_TRUE(waitFor([&] { return count<SendspinEvent::Synchronized>() == 1; }));
    EXPECT_LT(std::abs(session->clock().filter.computeServerTime(time.now()) - server.clock()), 20'000);
    server.play({.codec = u"flac"_s});
    ASSERT_TRUE(waitFor([&] { return count<SendspinEvent::Audio>() > 50; }));
    end();
    EXPECT_TRUE(waitFor([&] { return server.clients().empty(); }));
    EXPECT_EQ(server.received(u"client/goodbye"_s), (QList<QJsonObject>{{{u"reason"_s, u"shutdown"_s}}}));
}

TEST_F(SendspinSocketTest, TakesNoFrameThatIsTooLong) {
    session->start(configuration);
    ASSERT_TRUE(waitFor([&] { return count<SendspinEvent::Synchronized>() == 1; }));
    server.clients().at(0)->sendBinary(QByteArray(SendspinSession::longestFrame, '\4'));
    ASSERT_TRUE(waitFor([&] { return count<SendspinEvent::Audio>() == 1; }));
    server.clients().at(0)->sendBinary(QByteArray(SendspinSession::longestFrame + 1, '\4'));
    EXPECT_TRUE(waitFor([&] { return count<SendspinEvent::Disconnected>() == 1; }));
    EXPECT_EQ(count<SendspinEvent::Audio>(), 1);
}

TEST_F(SendspinSocketTest, ShowsTheTokenToNobody) {
    const auto before = qInstallMessageHandler(&collectLog);
    configuration.token = MusicAssistantToken(u"open-sesame"_s);
    configuration.baseURL.setPath(u"/music"_s); // nothing is there
    session->start(configuration);
    EXPECT_TRUE(waitFor([&] { return count<SendspinEvent::Disconnected>() == 1; }));
    configuration.baseURL.setPath({});
    session->start(configuration);
    EXPECT_TRUE(waitFor([&] { return count<SendspinEvent::Disconnected>() == 3; }));
    qCritical() << configuration;
    end();
    qInstallMessageHandler(before);
    const QString log = logged.join(u'\n');
    EXPECT_FALSE(log.contains(u"sesame"_s)) << qPrintable(log);
    for (const auto &line :
         {u"Sendspin connecting (scheme ws, path prefix true)"_s,
          u"Sendspin connecting (scheme ws, path prefix false)"_s,
          u"Sendspin disconnected: Music Assistant refused the Sendspin connection (token)."_s,
          u"SendspinConnectionConfiguration(token: redacted)"_s})
        EXPECT_TRUE(log.contains(line)) << qPrintable(line) << " in\n" << qPrintable(log);
}
