#pragma once

#include <QString>

class QWidget;

namespace vantor {

class PlayerModel;

/// The dialogs that choose something for the player to open. Each shows itself over `parent`, returns at
/// once, hands the choice to the model and deletes itself. Main thread.
namespace OpenDialogs {

void openFiles(PlayerModel &model, QWidget *parent);
void openFolder(PlayerModel &model, QWidget *parent);
void openAddress(PlayerModel &model, QWidget *parent);
/// `folder`: where to begin; empty for wherever the dialog was last.
void loadSkin(PlayerModel &model, QWidget *parent, const QString &folder);

} // namespace OpenDialogs
} // namespace vantor
