#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "PlayerFixture.h"
#include "tests/Support/MadeSpeakers.h"

namespace vantor {

/// A player's model with a connected source that has the speakers "kitchen" and "bath".
class RemoteFixture : public PlayerFixture {
  protected:
    ~RemoteFixture() override { m_remote.setBrowser(nullptr); }

    void SetUp() override {
        m_made->addSpeaker(u"kitchen"_qs, u"Kitchen"_qs, 5);
        m_made->addSpeaker(u"bath"_qs, u"Bath"_qs, 0);
        QObject::connect(&m_remote, &RemoteOutput::failed, &m_browser,
                         [this](const QString &sentence) { m_told.append(sentence); });
        m_remote.setBrowser(&m_browser);
        m_browser.setBackend(m_made);
        ASSERT_TRUE(waitFor([&] { return m_browser.outputs().size() == 3; }))
            << int(m_browser.state()) << m_made->requests.join(u" "_qs).toStdString()
            << m_browser.outputs().size();
    }
    [[nodiscard]] OutputDevice output(const QString &id) const {
        const auto found = std::ranges::find(m_browser.outputs(), OutputDevice::ID{id}, &OutputDevice::id);
        return found != m_browser.outputs().end() ? *found : OutputDevice();
    }
    /// Selects it and waits for what it tells of itself.
    void select(const QString &id) {
        m_remote.select(output(id));
        ASSERT_TRUE(waitFor([&] {
            return m_remote.queue().output.rawValue == id &&
                   m_remote.nowPlaying().volume == m_made->speaker(id).playing.volume;
        }));
    }
    void letPlay(const QString &id) {
        m_made->speaker(id).playing.state = NowPlaying::State::playing;
        m_made->tell(id);
        ASSERT_TRUE(waitFor([&] { return m_remote.view().state == PlaybackState::playing; }));
    }

    std::shared_ptr<MadeSpeakers> m_made = std::make_shared<MadeSpeakers>();
    LibraryBrowser m_browser;
    RemoteOutput &m_remote = m_model.remote();
    QStringList m_told; ///< sentences
};

} // namespace vantor
