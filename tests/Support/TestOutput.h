#pragma once

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Output/AudioOutput.h"

#include <vector>

namespace vantor {

/// An output that renders when the test says so, and remembers what it heard.
class TestOutput final : public AudioOutput {
  public:
    /// What the test sees of its outputs, which belong to the player.
    struct Shared {
        TestOutput *current = nullptr;
        int made = 0;
        int sampleRate = 44100;
        double latency = 0;
        bool refusesToStart = false;
        std::vector<StereoFrame> heard;
    };

    explicit TestOutput(Shared &shared) : m_shared(shared), m_sampleRate(shared.sampleRate) {
        ++shared.made;
        shared.current = this;
    }
    ~TestOutput() override {
        if (m_shared.current == this)
            m_shared.current = nullptr;
    }

    void start(Render render, std::function<void(const QString &)> onLost) override {
        if (m_shared.refusesToStart)
            throw AudioCoreError::engineStart(QStringLiteral("refused"));
        m_render = std::move(render);
        m_onLost = std::move(onLost);
    }
    void stop() override { m_render = nullptr; }
    void setSuspended(bool suspended) override { m_suspended = suspended; }
    [[nodiscard]] int sampleRate() const override { return m_sampleRate; }
    [[nodiscard]] double latency() const override { return m_shared.latency; }
    [[nodiscard]] QString name() const override { return QStringLiteral("test"); }

    void render(int frames) {
        if (!m_render || m_suspended)
            return;
        const std::size_t before = m_shared.heard.size();
        m_shared.heard.resize(before + static_cast<std::size_t>(frames));
        m_render(&m_shared.heard[before].left, frames);
    }
    void lose() { m_onLost(QStringLiteral("pulled out")); }

  private:
    Shared &m_shared;
    const int m_sampleRate;
    Render m_render;
    std::function<void(const QString &)> m_onLost;
    bool m_suspended = true;
};

} // namespace vantor
