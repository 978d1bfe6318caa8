#include "Vantor/Library/TrackLine.h"

#include "LibraryBrowser/LibraryNowPlaying.h"
#include "Vantor/Library/LibraryIcons.h"
#include "Vantor/Library/TrackTable.h"

#include <QPainter>

namespace vantor {

namespace {

using Model = TrackListModel;

constexpr int iconSide = 16;

QColor faint(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QRect lineOf(const QRect &cell, const QWidget &table) {
    const int height = std::min(cell.height(), TrackLine::height(table));
    return {cell.left(), cell.bottom() + 1 - height, cell.width(), height};
}

/// The icon at the cell's right end, or its left one.
QRect iconAt(const QRect &line, const QWidget &table, Qt::Alignment end) {
    return QStyle::alignedRect(table.layoutDirection(), end | Qt::AlignVCenter, {iconSide, iconSide},
                               line.adjusted(TrackTable::textMargin, 0, -TrackTable::textMargin, 0));
}

} // namespace

TrackLine::TrackLine(TrackTable &table) : QStyledItemDelegate(&table), m_table(table) {}

int TrackLine::height(const QWidget &table) {
    return table.fontMetrics().height() + 12;
}

QRect TrackLine::heart(const QRect &cell, const QWidget &table) {
    return iconAt(lineOf(cell, table), table, Qt::AlignRight);
}

void TrackLine::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const {
    const QRect line = lineOf(option.rect, m_table);
    if (line.height() < option.rect.height())
        drawDisc(*painter, option.rect.adjusted(0, 0, 0, -line.height()), option, index.row());
    drawBack(*painter, line, option, index.row());
    drawContent(*painter, line, option, index);
}

void TrackLine::drawBack(QPainter &painter, const QRect &cell, const QStyleOptionViewItem &option,
                         int row) const {
    if (option.state.testFlag(QStyle::State_Selected)) // which the style has painted
        return;
    if (row == m_table.hoveredRow())
        painter.fillRect(cell, faint(option.palette.color(QPalette::Text), 0.05));
    if (m_table.hasFocus() && row == m_table.currentIndex().row())
        painter.fillRect(cell, faint(option.palette.color(QPalette::Highlight), 0.18));
}

void TrackLine::drawContent(QPainter &painter, QRect cell, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const {
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const bool isActive = option.state.testFlag(QStyle::State_Active);
    const bool isTitle = index.column() == Model::titleColumn;
    const QColor strong = option.palette.color(isActive ? QPalette::Active : QPalette::Inactive,
                                               isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QColor weak = faint(strong, isSelected ? 0.85 : 0.66);
    const LibraryTrack *const track = m_table.tracks().track(index.row());
    const bool isOn = track && m_table.playing().isOn(track->id);
    const QColor accent = isSelected ? strong : option.palette.color(QPalette::Highlight);
    const bool isLeftToRight = m_table.layoutDirection() == Qt::LeftToRight;
    if (isOn && index.column() == m_table.markedColumn()) {
        LibraryIcons::drawSpeaker(painter, iconAt(cell, m_table, isTitle ? Qt::AlignLeft : Qt::AlignRight),
                                  accent, m_table.playing().sounds());
        if (!isTitle)
            return; // instead of the number
        cell.adjust(isLeftToRight ? iconSide + 6 : 0, 0, isLeftToRight ? 0 : -iconSide - 6, 0);
    }
    const bool isFavorite = track && track->isFavorite == true;
    const bool hasHeart =
        isTitle && m_table.offersFavorites() && (isFavorite || index.row() == m_table.hoveredRow());
    if (hasHeart) {
        LibraryIcons::drawHeart(painter, heart(option.rect, m_table), isFavorite ? accent : weak, isFavorite);
        cell.adjust(isLeftToRight ? 0 : iconSide + 6, 0, isLeftToRight ? -iconSide - 6 : 0, 0);
    }
    QFont font = option.font;
    font.setBold(isOn && isTitle);
    painter.setFont(font);
    painter.setPen(isOn && isTitle ? accent : isTitle ? strong : weak);
    const QRect place = cell.adjusted(TrackTable::textMargin, 0, -TrackTable::textMargin, 0);
    const Qt::Alignment across = QStyle::visualAlignment(
        m_table.layoutDirection(), Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt()));
    painter.drawText(place, static_cast<int>(across) | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideRight, place.width()));
}

// Each cell draws its part of the heading, which goes across them.
void TrackLine::drawDisc(QPainter &painter, const QRect &cell, const QStyleOptionViewItem &option,
                         int row) const {
    painter.save();
    painter.fillRect(cell, option.palette.color(QPalette::Base)); // no part of what is selected
    painter.setClipRect(cell);
    QFont font = option.font;
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(option.palette.color(QPalette::PlaceholderText));
    const QRect across(TrackTable::textMargin, cell.top(),
                       m_table.viewport()->width() - 2 * TrackTable::textMargin, cell.height() - 5);
    const Qt::Alignment start =
        QStyle::visualAlignment(m_table.layoutDirection(), Qt::AlignLeft | Qt::AlignBottom);
    painter.drawText(across, static_cast<int>(start), tr("Disc %1").arg(m_table.discAt(row).value_or(1)));
    painter.restore();
}

} // namespace vantor
