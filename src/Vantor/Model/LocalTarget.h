#pragma once

#include "Vantor/Model/PlaybackTarget.h"

class QSettings;

namespace vantor {

class Player;

/// The program's own player, with its volume, balance, shuffling and repeating kept in the settings. Main
/// thread; borrows both.
class LocalTarget : public PlaybackTarget {
  public:
    /// Gives the player what was kept.
    LocalTarget(Player &player, QSettings &settings);

    [[nodiscard]] PlaybackView view() const override;
    void transport(const TransportCommand &command) override;
    /// Which TransportCommand cannot tell from repeating everything.
    void setRepeatMode(RepeatMode mode);

  private:
    void store(const char *key, const QVariant &value);

    Player &m_player;
    QSettings &m_settings;
};

} // namespace vantor
