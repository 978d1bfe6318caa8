#include "Vantor/Windows/SkinGridView.h"

#include "Vantor/Windows/SkinTile.h"

namespace vantor {

namespace {

constexpr int keptPictures = 600;
constexpr int scalingTime = 6; // milliseconds of a paint event; what is left over follows in the next one

} // namespace

SkinGridView::SkinGridView(SkinListModel &skins, ThumbnailCache &thumbnails, QWidget *parent)
    : TileGridView(parent), m_skins(skins), m_thumbnails(thumbnails), m_pictures(keptPictures) {
    connect(&thumbnails, &ThumbnailCache::ready, viewport(), qOverload<>(&QWidget::update));
    setModel(&skins);
}

void SkinGridView::setWorn(std::optional<std::int64_t> id) {
    m_worn = id;
    viewport()->update();
}

QSize SkinGridView::leastCell() const {
    return SkinTile::minimumSize(*this);
}

void SkinGridView::setInView(int first, int last) {
    m_skins.setInView(first, last);
}

void SkinGridView::forgetView() {
    m_thumbnails.forgetRequests();
}

QPixmap SkinGridView::picture(const SkinRecord &skin) {
    const double ratio = devicePixelRatioF();
    if (const QPixmap *kept = m_pictures.object(skin.hash); kept && kept->devicePixelRatio() == ratio)
        return *kept;
    const std::optional<QImage> image = m_thumbnails.picture(skin.hash, skin.primaryPath);
    if (!image)
        return {};
    if (m_drawing.hasExpired(scalingTime)) {
        viewport()->update(); // once this one is painted
        return {};
    }
    QPixmap scaled = QPixmap::fromImage(
        image->scaled(SkinTile::pictureSize * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    scaled.setDevicePixelRatio(ratio);
    m_pictures.insert(skin.hash, new QPixmap(scaled));
    return scaled;
}

void SkinGridView::drawTile(QPainter &painter, const QModelIndex &index, const QRect &cell) {
    SkinTile tile;
    tile.skin = m_skins.record(index);
    if (tile.skin && tile.skin->status != SkinStatus::failed)
        tile.picture = picture(*tile.skin);
    tile.selected = index == currentIndex(); // which is what is selected
    tile.hovered = hovered() == index;
    tile.worn = tile.skin && m_worn == tile.skin->id;
    tile.focused = tile.selected && hasFocus();
    tile.draw(painter, cell, *this);
}

} // namespace vantor
