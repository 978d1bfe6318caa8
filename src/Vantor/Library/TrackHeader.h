#pragma once

#include <QHeaderView>

namespace vantor {

/// The titles of a track table's columns, which stand exactly above what they name. Main thread.
class TrackHeader : public QHeaderView {
    Q_OBJECT

  public:
    explicit TrackHeader(QWidget *parent = nullptr);

  protected:
    void initStyleOptionForIndex(QStyleOptionHeader *option, int section) const override;
    void paintSection(QPainter *painter, const QRect &place, int section) const override;
};

} // namespace vantor
