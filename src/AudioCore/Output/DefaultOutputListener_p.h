#pragma once

#include "AudioCore/Output/OutputDeviceProvider.h"
#include "AudioCore/Output/PulseServer_p.h"

struct pa_operation;

namespace vantor {

/// Watches which outputs a sound server has and which is its default. It listens on the connection's thread
/// and tells on the main thread.
class DefaultOutputListener {
  public:
    /// What there is at a moment.
    struct Outputs {
        bool hasServer = false;
        std::vector<OutputDeviceDescription> devices;
        std::optional<quint32> defaultDevice;

        bool operator==(const Outputs &) const = default;
    };

    /// `onOutputs` is called on the main thread, first when it is known whether there is a server, and then
    /// whenever something may be different.
    explicit DefaultOutputListener(std::function<void(const Outputs &)> onOutputs);
    ~DefaultOutputListener();

    /// What is listened to, for those that play there.
    [[nodiscard]] const std::shared_ptr<PulseServer> &server() const { return m_server; }

  private:
    struct Callbacks;

    void connectionChanged(bool connected);
    void ask();
    void answered();
    void dropQuestions();
    void tell(const Outputs &outputs);

    const std::function<void(const Outputs &)> m_onOutputs;
    QObject m_mainThread; ///< receives what is told; its end drops what is on the way
    const std::shared_ptr<PulseServer> m_server;

    // With the server's lock.
    std::array<pa_operation *, 2> m_questions{};
    bool m_asksAgain = false;
    Outputs m_answers; ///< as far as they have come
    QString m_defaultKey;
};

} // namespace vantor
