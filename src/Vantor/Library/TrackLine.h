#pragma once

#include <QStyledItemDelegate>

namespace vantor {

class TrackTable;

/// Draws the cells of a track table: the texts, what plays, the heart of a favourite, and above the first
/// track of a disc its heading. Main thread; the table's.
class TrackLine : public QStyledItemDelegate {
    Q_OBJECT

  public:
    explicit TrackLine(TrackTable &table);

    /// Without a heading.
    [[nodiscard]] static int height(const QWidget &table);
    /// Where the heart is in the cell of a title.
    [[nodiscard]] static QRect heart(const QRect &cell, const QWidget &table);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

  private:
    void drawBack(QPainter &painter, const QRect &cell, const QStyleOptionViewItem &option, int row) const;
    void drawContent(QPainter &painter, QRect cell, const QStyleOptionViewItem &option,
                     const QModelIndex &index) const;
    void drawDisc(QPainter &painter, const QRect &cell, const QStyleOptionViewItem &option, int row) const;

    TrackTable &m_table;
};

} // namespace vantor
