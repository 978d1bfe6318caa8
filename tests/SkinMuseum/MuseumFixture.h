#pragma once

#include "SkinMuseum/Client/MuseumClient.h"
#include "SkinMuseum/Client/MuseumResultCache.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/Client/MuseumUserAgent.h"
#include "SkinMuseum/MuseumError.h"
#include "tests/Support/FakeMuseum/FakeMuseum.h"
#include "tests/Support/TestCertificate.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/WaitFor.h"

#include <QDir>

#include <gtest/gtest.h>

#include <ostream>

namespace vantor {

inline void PrintTo(const MuseumError &error, std::ostream *out) {
    *out << error.what();
}

namespace test {

/// What a task has come to.
template <typename T>
struct Outcome {
    std::optional<T> value;
    std::optional<MuseumError> error;
    [[nodiscard]] bool isThere() const { return value || error; }
};

template <typename T>
QCoro::Task<> follow(QCoro::Task<T> task, std::shared_ptr<Outcome<T>> outcome) {
    try {
        outcome->value = co_await task;
    } catch (const MuseumError &error) {
        outcome->error = error;
    }
}

template <typename T>
std::shared_ptr<Outcome<T>> started(QCoro::Task<T> task) {
    auto outcome = std::make_shared<Outcome<T>>();
    follow(std::move(task), outcome);
    return outcome;
}

/// Waits until it has come to something.
template <typename T>
Outcome<T> outcomeOf(QCoro::Task<T> task) {
    const auto outcome = started(std::move(task));
    EXPECT_TRUE(waitFor([&] { return outcome->isThere(); }, std::chrono::seconds(20)));
    return *outcome;
}

/// A museum on this machine, which the transport trusts, and a client of it whose waits take no time.
class MuseumFixture : public testing::Test {
  protected:
    MuseumFixture() {
        m_museum.tls = m_certificate.serverConfiguration();
        EXPECT_TRUE(m_museum.open());
    }
    ~MuseumFixture() override { m_transport->close(); }

    [[nodiscard]] static FakeMuseum::Content content() {
        return {.count = 130,
                .name = [](int number) { return QStringLiteral("Skin %1").arg(number); },
                .archive = [](int number) { return "archive " + QByteArray::number(number); }};
    }
    [[nodiscard]] MuseumSkin skin(int number) {
        return {.md5 = m_museum.md5(number),
                .filename = QStringLiteral("Skin %1.wsz").arg(number),
                .screenshotURL = m_museum.url(QStringLiteral("/screenshots/%1.png").arg(number)),
                .downloadURL = m_museum.url(QStringLiteral("/skins/%1.wsz").arg(number)),
                .museumURL = m_museum.url(QStringLiteral("/skin/%1").arg(number))};
    }
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::milliseconds time) {
        m_waits.append(time);
        co_return;
    }
    [[nodiscard]] MuseumClient client(std::shared_ptr<MuseumResultCache> cache = {}) {
        return {m_transport, std::move(cache), m_agent, m_museum.url(),
                [this](std::chrono::milliseconds time) { return sleep(time); }};
    }

    const TestCertificate m_certificate{QStringLiteral("localhost")};
    FakeMuseum m_museum{content()};
    const QByteArray m_agent = MuseumUserAgent::make(QStringLiteral("1.2"));
    std::shared_ptr<QtMuseumTransport> m_transport = std::make_shared<QtMuseumTransport>(
        QList<QSslCertificate>{m_certificate.certificate()},
        QtMuseumTransport::Limits{.timeout = std::chrono::seconds(30), .silence = std::chrono::seconds(1)});
    QList<std::chrono::milliseconds> m_waits;
    TestFolder m_folder;
};

} // namespace test
} // namespace vantor
