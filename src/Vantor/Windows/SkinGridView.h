#pragma once

#include "SkinBrowser/SkinListModel.h"
#include "SkinBrowser/ThumbnailCache.h"

#include <QAbstractItemView>
#include <QCache>
#include <QPixmap>

#include <optional>
#include <utility>

class QElapsedTimer;

namespace vantor {

/// The skins of a model as a grid of pictures. All cells are of one size, so that what is where is reckoned,
/// not kept, and fifty thousand rows cost as much as fifty. Where the view stands is kept by the skin: rows
/// that come or go above move the scroll bar, not the picture, unless the view is at the very top. Main
/// thread; borrows model and thumbnails.
class SkinGridView : public QAbstractItemView {
    Q_OBJECT

  public:
    SkinGridView(SkinListModel &skins, ThumbnailCache &thumbnails, QWidget *parent = nullptr);

    /// The skin that stands out as the one worn.
    void setWorn(std::optional<std::int64_t> id);

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void keyboardSearch(const QString &search) override;

  Q_SIGNALS:
    void chosen(const QModelIndex &index); ///< by a double click or Enter
    void typed(const QString &text);       ///< letters, which the view has no use for

  protected:
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
    [[nodiscard]] int count() const { return m_skins.rowCount(); }
    [[nodiscard]] int columns() const;
    /// Of the cells that a rectangle of the viewport touches, the first and the one after the last.
    [[nodiscard]] std::pair<int, int> rowsIn(const QRect &rect) const;
    void relayout();
    void tellInView();
    void setHovered(const QModelIndex &index);
    [[nodiscard]] QPixmap picture(const SkinRecord &skin, QElapsedTimer &clock);

    SkinListModel &m_skins;
    ThumbnailCache &m_thumbnails;
    QCache<QString, QPixmap> m_pictures; ///< in the size of the cells, by hash
    int m_lineHeight;
    int m_firstInView = 0;
    bool m_showsCurrent = false;
    std::optional<std::int64_t> m_worn;
    QPersistentModelIndex m_hovered;
    QPersistentModelIndex m_anchor; ///< while rows change: the first one in view, and what of it is hidden
    int m_anchorOffset = 0;
};

} // namespace vantor
