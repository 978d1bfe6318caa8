#pragma once

#include "Vantor/Windows/TileGridView.h"

#include <functional>

namespace vantor {

struct MuseumTile;
class MuseumListModel;
class MuseumPictures;
struct MuseumSkin;

/// The museum's skins as a grid of screenshots. Enter is about the skin under the pointer when that was moved
/// last, and about the selected one when the keys were. Main thread; borrows list and pictures.
class MuseumGridView : public TileGridView {
    Q_OBJECT

  public:
    /// Adds to a tile what is known of the skin beside its name and picture.
    using Mark = std::function<void(const MuseumSkin &, MuseumTile &)>;

    MuseumGridView(MuseumListModel &list, MuseumPictures &pictures, Mark mark, QWidget *parent = nullptr);

  Q_SIGNALS:
    void backAsked(); ///< to the skin before

  protected:
    [[nodiscard]] QSize leastCell() const override;
    void drawTile(QPainter &painter, const QModelIndex &index, const QRect &cell) override;
    void setInView(int first, int last) override;
    void forgetView() override;
    [[nodiscard]] QModelIndex target() const override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

  private:
    MuseumListModel &m_list;
    MuseumPictures &m_pictures;
    const Mark m_mark;
    bool m_wasPointed = false; ///< rather than moved by keys
};

} // namespace vantor
