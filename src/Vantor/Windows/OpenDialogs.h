#pragma once

class QWidget;

namespace vantor {

class PlayerModel;

/// The dialogs that choose something for the player to open. Each shows itself over `parent`, returns at
/// once, hands the choice to the model and deletes itself. Those for files begin in the user's folder for
/// such files. Main thread.
namespace OpenDialogs {

void openFiles(PlayerModel &model, QWidget *parent);
void openFolder(PlayerModel &model, QWidget *parent);
void openAddress(PlayerModel &model, QWidget *parent);
void loadSkin(PlayerModel &model, QWidget *parent);

} // namespace OpenDialogs
} // namespace vantor
