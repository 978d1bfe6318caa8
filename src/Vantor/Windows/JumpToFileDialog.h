#pragma once

#include "Vantor/Model/PlayerModel.h"

#include <QDialog>
#include <QTimer>

class QLabel;
class QLineEdit;
class QListView;

namespace vantor {

/// Finds a track of the queue by what is typed and plays it. Deletes itself when closed. Borrows the model.
class JumpToFileDialog : public QDialog {
    Q_OBJECT

  public:
    JumpToFileDialog(PlayerModel &model, QWidget *parent);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    class FoundTracks;

    void search();
    void takeQueue();
    void playChosen();

    PlayerModel &m_model;
    FoundTracks *m_tracks;
    QLineEdit *m_query;
    QListView *m_list;
    QLabel *m_summary;
    QTimer m_takeQueue; ///< runs from a change of the queue until it is looked at again
};

} // namespace vantor
