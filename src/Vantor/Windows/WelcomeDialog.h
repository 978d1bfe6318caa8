#pragma once

#include <QDialog>

namespace vantor {

class FolderField;
class PlayerModel;

/// Greets a new user and asks where skins and music are, neither of which has to be answered; the music may
/// be on a server, too. Does not hold up the player. Deletes itself when closed. Main thread; borrows the
/// model.
class WelcomeDialog : public QDialog {
    Q_OBJECT

  public:
    WelcomeDialog(PlayerModel &model, QWidget *parent);

    /// Stays open at a folder that is none.
    void accept() override;

  Q_SIGNALS:
    /// The dialog is done, and a music server is to be set up.
    void serverAsked();

  private:
    FolderField *m_skins;
    FolderField *m_music;
};

} // namespace vantor
