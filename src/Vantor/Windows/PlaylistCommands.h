#pragma once

#include "SkinKit/Layout/PlaylistWindowControl.h"
#include "Vantor/Model/PlaylistModel.h"
#include "Vantor/Windows/Commands.h"

#include <QObject>

class QAction;
class QKeySequence;
class QMenu;

namespace vantor {

/// What the playlist's pop-ups and menus offer. The pop-ups of sprites and the menus of text run the same
/// entries. Main thread; borrows everything; `window` is the parent of the menus that pop up.
class PlaylistCommands : public QObject {
    Q_OBJECT

  public:
    PlaylistCommands(PlaylistModel &playlist, PlayerModel &model, Commands &commands, QWidget &window);

    /// `at`: the point of the screen at which an entry that leads to more opens its menu.
    void run(PlaylistMenuEntry entry, QPoint at);
    /// A pop-up as a menu of text.
    void popUp(PlaylistMenu menu, QPoint at);
    /// For the rows that are selected, and all else.
    void popUpRowMenu(QPoint at);
    /// With what that menu offers.
    void fillMenu(QMenu &menu);
    void showFileInfo();

  private:
    [[nodiscard]] QMenu *newMenu();
    void showKey(QAction &action, const QKeySequence &key) const;
    void fill(QMenu &menu, PlaylistMenu entries);
    void fillRemoval(QMenu &menu);
    void fillSorting(QMenu &menu);
    void fillOptions(QMenu &menu);
    /// Of a speaker's queue fewer are.
    [[nodiscard]] bool offers(PlaylistMenuEntry entry) const;
    void saveList();
    void saveRemoteList();
    void loadList();
    void showInFolder();

    PlaylistModel &m_playlist;
    PlayerModel &m_model;
    Commands &m_commands;
    QWidget &m_window;
};

} // namespace vantor
