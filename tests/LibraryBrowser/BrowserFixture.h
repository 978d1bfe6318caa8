#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "tests/Support/MadeBackend.h"
#include "tests/Support/WaitFor.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace vantor {

/// A browser and a source that is not connected yet.
class BrowserFixture : public testing::Test {
  protected:
    /// Long enough for every answer that is on its way without a delay.
    static void settle(std::chrono::milliseconds time = std::chrono::milliseconds(60)) {
        const QDeadlineTimer deadline(time);
        while (!deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    [[nodiscard]] bool connectTo(const std::shared_ptr<MadeBackend> &backend) {
        m_browser.setBackend(backend);
        return waitFor([&] { return m_browser.state() == LibraryBrowser::State::connected; });
    }
    [[nodiscard]] int countRequests(const QString &beginning) const {
        return static_cast<int>(m_made->requests.filter(QRegularExpression(u"^"_qs + beginning)).size());
    }

    std::shared_ptr<MadeBackend> m_made = std::make_shared<MadeBackend>();
    LibraryBrowser m_browser;
};

} // namespace vantor
