#pragma once

#include <QAbstractItemView>

#include <utility>

namespace vantor {

/// A model's rows as a grid of tiles. All cells are of one size, so that what is where is reckoned, not kept,
/// and fifty thousand rows cost as much as fifty. Where the view stands is kept by the row: rows that change
/// their places move the scroll bar, not the picture, unless the view is at the very top. Main thread;
/// borrows the model.
class TileGridView : public QAbstractItemView {
    Q_OBJECT

  public:
    explicit TileGridView(QWidget *parent = nullptr);

    /// By the most derived class, once it is made.
    void setModel(QAbstractItemModel *model) override;

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void keyboardSearch(const QString &search) override;

  Q_SIGNALS:
    void chosen(const QModelIndex &index); ///< by a double click or Enter
    void typed(const QString &text);       ///< letters, which the view has no use for

  protected:
    /// The least room that a tile needs.
    [[nodiscard]] virtual QSize leastCell() const = 0;
    /// Before the tiles of one event are drawn.
    virtual void beginDrawing() {}
    virtual void drawTile(QPainter &painter, const QModelIndex &index, const QRect &cell) = 0;
    /// These rows are seen now.
    virtual void setInView(int first, int last) = 0;
    /// The view is about to show other rows; what is still in view is drawn again.
    virtual void forgetView() = 0;

    [[nodiscard]] QModelIndex hovered() const { return m_hovered; }
    /// What Enter is about.
    [[nodiscard]] virtual QModelIndex target() const { return currentIndex(); }

    [[nodiscard]] QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    [[nodiscard]] int horizontalOffset() const override { return 0; }
    [[nodiscard]] int verticalOffset() const override;
    [[nodiscard]] bool isIndexHidden(const QModelIndex &) const override { return false; }
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;

  private:
    [[nodiscard]] int count() const;
    [[nodiscard]] QModelIndex at(int row) const;
    [[nodiscard]] int columns() const;
    /// Of the cells that a rectangle of the viewport touches, the first and the one after the last.
    [[nodiscard]] std::pair<int, int> rowsIn(const QRect &rect) const;
    void relayout();
    void tellInView();
    void setHovered(const QModelIndex &index);

    int m_lineHeight = 1;
    int m_firstInView = 0;
    bool m_showsCurrent = false;
    QPersistentModelIndex m_hovered;
    QPersistentModelIndex m_anchor; ///< while rows change: the first one in view, and what of it is hidden
    int m_anchorOffset = 0;
};

} // namespace vantor
