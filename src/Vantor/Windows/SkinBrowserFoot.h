#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace vantor {

class PlayerModel;
class SkinLibraryModel;

/// The line below the skin browser: which folder, how many skins, how far a pass is. Main thread. Borrows
/// both.
class SkinBrowserFoot : public QWidget {
    Q_OBJECT

  public:
    SkinBrowserFoot(PlayerModel &model, SkinLibraryModel &library, QWidget *parent = nullptr);

    void setFound(int skins);
    /// Opens a dialog that sets the skins folder.
    void chooseFolder();

  private:
    void showFolder();
    void showPass();
    [[nodiscard]] QString passText() const;
    [[nodiscard]] QString restText() const;

    PlayerModel &m_model;
    SkinLibraryModel &m_library;
    QLabel *m_folder;
    QLabel *m_text;
    QProgressBar *m_progress;
    QPushButton *m_pass; ///< starts one or cancels it
    int m_found = 0;
};

} // namespace vantor
