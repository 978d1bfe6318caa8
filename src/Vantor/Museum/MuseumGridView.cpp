#include "Vantor/Museum/MuseumGridView.h"

#include "SkinMuseum/Model/MuseumListModel.h"
#include "SkinMuseum/Model/MuseumPictures.h"
#include "Vantor/Museum/MuseumTile.h"

#include <QKeyEvent>

namespace vantor {

MuseumGridView::MuseumGridView(MuseumListModel &list, MuseumPictures &pictures, Mark mark, QWidget *parent)
    : TileGridView(parent), m_list(list), m_pictures(pictures), m_mark(std::move(mark)) {
    connect(&pictures, &MuseumPictures::changed, viewport(), qOverload<>(&QWidget::update));
    setModel(&list);
}

QSize MuseumGridView::leastCell() const {
    return MuseumTile::minimumSize(*this);
}

void MuseumGridView::setInView(int first, int last) {
    m_list.setInView(first, last);
}

void MuseumGridView::forgetView() {
    m_pictures.forgetRequests();
}

QModelIndex MuseumGridView::target() const {
    // Where it is, not where it was: the view may have been scrolled under it.
    const QModelIndex pointed = indexAt(viewport()->mapFromGlobal(QCursor::pos()));
    return m_wasPointed && viewport()->underMouse() && pointed.isValid() ? pointed : currentIndex();
}

void MuseumGridView::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Backspace)
        return Q_EMIT backAsked();
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    m_wasPointed = m_wasPointed && isEnter;
    TileGridView::keyPressEvent(event);
}

void MuseumGridView::mouseMoveEvent(QMouseEvent *event) {
    m_wasPointed = true;
    TileGridView::mouseMoveEvent(event);
}

void MuseumGridView::drawTile(QPainter &painter, const QModelIndex &index, const QRect &cell) {
    MuseumTile tile;
    if (const MuseumSkin *const skin = m_list.skin(index)) {
        tile.name = skin->title();
        tile.picture =
            m_pictures.picture(*skin, qRound(MuseumTile::pictureSize.height() * devicePixelRatioF()));
        tile.hasNoPicture = tile.picture.isNull() && m_pictures.hasFailed(skin->md5);
        m_mark(*skin, tile);
    }
    tile.state.selected = index == currentIndex();
    tile.state.hovered = hovered() == index;
    tile.state.focused = tile.state.selected && hasFocus();
    tile.draw(painter, cell, *this);
}

} // namespace vantor
