#pragma once

#include <QString>

#include <optional>
#include <vector>

class QSettings;

namespace vantor {

class Player;

/// On which device the user wants to hear the player, remembered by the device's key and name so that one
/// that is not plugged in now can still be told. Main thread. Borrows both.
class OutputChoice {
  public:
    /// Chooses what was chosen last.
    OutputChoice(Player &player, QSettings &settings);

    struct Item {
        QString label;              ///< for people
        std::optional<QString> key; ///< none: the system's default
        bool chosen = false;

        bool operator==(const Item &) const = default;
    };
    /// The system's default, then the devices, then the chosen one if it is missing. Devices of one name have
    /// their keys behind it.
    [[nodiscard]] std::vector<Item> items() const;
    /// Why the user does not hear what was asked for, in a sentence; none as long as the chosen device, or
    /// any device, is there.
    [[nodiscard]] std::optional<QString> problem() const;
    void choose(const std::optional<QString> &key);

  private:
    Player &m_player;
    QSettings &m_settings;
};

} // namespace vantor
