#pragma once

class QMenu;

namespace vantor {

class Commands;
class PlayerModel;

/// The menus that are made of the commands. They are filled afresh each time they open. Main thread; the
/// menus borrow both.
namespace MainMenu {

/// Every command of the program.
void fill(QMenu &menu, Commands &commands, PlayerModel &model);
/// Modes and looks of the visualizer.
void fillVisualisation(QMenu &menu, Commands &commands);

} // namespace MainMenu
} // namespace vantor
