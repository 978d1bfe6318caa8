#pragma once

#include "LibraryBrowser/LibraryModel.h"
#include "Vantor/Library/CoverPainter.h"

#include <QListView>

namespace vantor {

class LibraryActions;

/// The items of a model as covers with their names below, in as many columns as fit, or in a single line that
/// is scrolled sideways. Main thread; borrows what it is given.
class LibraryGridView : public QListView {
    Q_OBJECT

  public:
    enum class Shape { grid, line };

    LibraryGridView(LibraryItemModel &items, ArtworkCache &artwork, LibraryActions &actions,
                    Shape shape = Shape::grid, QWidget *parent = nullptr);

    [[nodiscard]] LibraryItemModel &items() const { return m_items; }
    /// Those that are selected, in the order of the rows.
    [[nodiscard]] QList<LibraryItem> selected() const;
    /// Whether albums show their year instead of their artist.
    void setShowsYears(bool shows);

  Q_SIGNALS:
    void opened(const QModelIndex &index); ///< by a double click or Enter
    void menuAsked(const QPoint &global);  ///< about what is selected

  protected:
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void startDrag(Qt::DropActions actions) override;

  private:
    class Tile;

    void arrange();
    [[nodiscard]] QSize cell() const;

    LibraryItemModel &m_items;
    LibraryActions &m_actions;
    const Shape m_shape;
    CoverPainter m_covers;
    bool m_showsYears = false;
};

} // namespace vantor
