#pragma once

#include "Vantor/Docking/WindowDockingCoordinator.h"
#include "Vantor/Model/EqualizerModel.h"
#include "Vantor/Model/PlaylistModel.h"
#include "Vantor/Windows/Commands.h"
#include "Vantor/Windows/EqualizerWindow.h"
#include "Vantor/Windows/MainWindow.h"
#include "Vantor/Windows/PlaylistWindow.h"

namespace vantor {

/// The skinned windows of one player, with the commands that they share and the docking that moves them. Main
/// thread. Borrows the model and the settings.
class SkinnedWindows {
  public:
    SkinnedWindows(PlayerModel &model, QSettings &settings);
    ~SkinnedWindows() { m_state.setTransition({}); }
    Q_DISABLE_COPY_MOVE(SkinnedWindows)

    [[nodiscard]] MainWindow &mainWindow() { return m_main; }
    [[nodiscard]] Commands &commands() { return m_commands; }

    /// Puts the windows where they were left and shows those that were open.
    void show();
    /// Shows the main window alone, wherever it comes to stand, and keeps no place: nobody is at the
    /// controls.
    void showUndocked() { m_main.show(); }
    /// Brings the player before the user's eyes, wherever it was.
    void bringToFront();

  private:
    WindowState &m_state;
    EqualizerModel m_equalizerModel;
    PlaylistModel m_playlistModel;
    Commands m_commands;
    WindowDockingCoordinator m_docking;
    MainWindow m_main;
    EqualizerWindow m_equalizer;
    PlaylistWindow m_playlist;
};

} // namespace vantor
