#pragma once

#include "SkinKit/Layout/PlaylistWindowControl.h"
#include "Vantor/Model/PlaylistModel.h"
#include "Vantor/Windows/Commands.h"

#include <QObject>

class QMenu;

namespace vantor {

/// What the playlist's pop-ups and menus offer. The pop-ups of sprites and the menus of text run the same
/// entries. Main thread; borrows everything; `window` is the parent of menus and dialogs.
class PlaylistCommands : public QObject {
    Q_OBJECT

  public:
    PlaylistCommands(PlaylistModel &playlist, PlayerModel &model, Commands &commands, QWidget &window);

    /// `at`: the point of the screen at which an entry that leads to more opens its menu.
    void run(PlaylistMenuEntry entry, QPoint at);
    /// A pop-up as a menu of text.
    void popUp(PlaylistMenu menu, QPoint at);
    /// For the rows that are selected.
    void popUpRowMenu(QPoint at);
    void showFileInfo();

  private:
    [[nodiscard]] QMenu *newMenu();
    void fill(QMenu &menu, PlaylistMenu entries);
    void fillRemoval(QMenu &menu);
    void fillSorting(QMenu &menu);
    void fillOptions(QMenu &menu);
    void saveList();
    void loadList();
    void showInFolder();

    PlaylistModel &m_playlist;
    PlayerModel &m_model;
    Commands &m_commands;
    QWidget &m_window;
};

} // namespace vantor
