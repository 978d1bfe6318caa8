#include "Vantor/Library/TrackHeader.h"

#include "Vantor/Library/TrackTable.h"

#include <QPainter>

namespace vantor {

TrackHeader::TrackHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent) {}

// Every style has a margin of its own for the text.
void TrackHeader::initStyleOptionForIndex(QStyleOptionHeader *option, int section) const {
    QHeaderView::initStyleOptionForIndex(option, section);
    option->text.clear();
}

void TrackHeader::paintSection(QPainter *painter, const QRect &place, int section) const {
    painter->save();
    QHeaderView::paintSection(painter, place, section);
    painter->restore();
    const QString text = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    const auto across =
        Qt::Alignment(model()->headerData(section, orientation(), Qt::TextAlignmentRole).toInt());
    const QRect line = place.adjusted(TrackTable::textMargin, 0, -TrackTable::textMargin, 0);
    painter->setPen(palette().color(QPalette::ButtonText));
    painter->drawText(
        line, static_cast<int>(QStyle::visualAlignment(layoutDirection(), across)) | Qt::TextSingleLine,
        fontMetrics().elidedText(text, Qt::ElideRight, line.width()));
}

} // namespace vantor
