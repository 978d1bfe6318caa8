#pragma once

#include <QLineEdit>

namespace vantor {

class TileGridView;

/// The field above a grid in which one searches it: the arrows lead on to the tiles, letters typed there come
/// back. Main thread.
class GridSearchField : public QLineEdit {
    Q_OBJECT

  public:
    /// `prompt`: what it says while it is empty.
    explicit GridSearchField(const QString &prompt, QWidget *parent = nullptr);

    /// Which is borrowed.
    void setGrid(TileGridView &grid);
    /// For typing; what is there is selected.
    void begin();

  Q_SIGNALS:
    void entered(); ///< what was typed, by Enter

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    TileGridView *m_grid = nullptr;
};

} // namespace vantor
