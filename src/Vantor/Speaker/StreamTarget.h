#pragma once

#include "SkinKit/Layout/MainWindowStatus.h"
#include "Vantor/Model/LocalTarget.h"

#include <QPointer>

namespace vantor {

class NetworkSpeaker;

/// What a server streams to this computer, as far as this computer alone can command it: how loud it is.
/// Every other command is one to the player, which takes its output back. Main thread; borrows the player's
/// target.
class StreamTarget : public PlaybackTarget {
  public:
    explicit StreamTarget(LocalTarget &local);
    ~StreamTarget() override;

    /// None at first.
    void setSpeaker(NetworkSpeaker *speaker);
    [[nodiscard]] bool isStreaming() const;

    [[nodiscard]] PlaybackView view() const override;
    void transport(const TransportCommand &command) override;

    [[nodiscard]] bool isMuted() const;
    void setMuted(bool muted);

    /// What streams, as far as the connection tells.
    [[nodiscard]] QString name() const;
    /// Rates and channels, as far as they are known.
    void showFormat(MainWindowStatus &status) const;

  private:
    LocalTarget &m_local;
    QPointer<NetworkSpeaker> m_speaker;
};

} // namespace vantor
