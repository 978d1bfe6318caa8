#pragma once

class QWidget;

namespace vantor {

class PlayerModel;

/// The dialogs that choose something for the player to open. Each shows itself over `parent`, returns at
/// once, hands the choice to the model and deletes itself. Those for files begin in the user's folder for
/// such files. Main thread.
namespace OpenDialogs {

/// Whether what is chosen replaces the queue and plays, or goes to its end.
enum class Use { open, add };

void openFiles(PlayerModel &model, QWidget *parent, Use use = Use::open);
void openFolder(PlayerModel &model, QWidget *parent, Use use = Use::open);
void openAddress(PlayerModel &model, QWidget *parent, Use use = Use::open);
void loadSkin(PlayerModel &model, QWidget *parent);

} // namespace OpenDialogs
} // namespace vantor
