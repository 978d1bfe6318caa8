#include "Vantor/Windows/SkinGridView.h"

#include "Vantor/Windows/SkinTile.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vantor {

namespace {

constexpr int margin = 6; // above the first and below the last line
constexpr int keptPictures = 600;
constexpr int scalingTime = 6; // milliseconds of a paint event; what is left over follows in the next one

} // namespace

SkinGridView::SkinGridView(SkinListModel &skins, ThumbnailCache &thumbnails, QWidget *parent)
    : QAbstractItemView(parent), m_skins(skins), m_thumbnails(thumbnails), m_pictures(keptPictures),
      m_lineHeight(SkinTile::minimumSize(*this).height()) {
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // or the columns would jump when it comes
    setVerticalScrollMode(ScrollPerPixel);
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setModel(&skins);
    connect(this, &QAbstractItemView::entered, this, &SkinGridView::setHovered);
    connect(this, &QAbstractItemView::viewportEntered, this, [this] { setHovered({}); });
    connect(this, &QAbstractItemView::doubleClicked, this, &SkinGridView::chosen);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &SkinGridView::tellInView);
    connect(&thumbnails, &ThumbnailCache::ready, viewport(), qOverload<>(&QWidget::update));
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&skins, signal, this, &SkinGridView::relayout);
    connect(&skins, &QAbstractItemModel::modelReset, this, [this] {
        relayout();
        verticalScrollBar()->setValue(0);
    });
    connect(&skins, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] {
        const int first = rowsIn(viewport()->rect()).first;
        m_anchor = m_skins.index(first);
        m_anchorOffset = visualRect(m_anchor).top();
    });
    connect(&skins, &QAbstractItemModel::layoutChanged, this, [this] {
        updateGeometries();
        if (m_anchor.isValid() && verticalOffset() > 0)
            verticalScrollBar()->setValue(verticalOffset() + visualRect(m_anchor).top() - m_anchorOffset);
        m_anchor = QModelIndex();
        relayout();
    });
}

void SkinGridView::setWorn(std::optional<std::int64_t> id) {
    m_worn = id;
    viewport()->update();
}

// Where what is

int SkinGridView::columns() const {
    return std::max(1, viewport()->width() / SkinTile::minimumSize(*this).width());
}

int SkinGridView::verticalOffset() const {
    return verticalScrollBar()->value();
}

QRect SkinGridView::visualRect(const QModelIndex &index) const {
    if (!index.isValid())
        return {};
    const int across = columns();
    const int column = index.row() % across;
    const int left = viewport()->width() * column / across;
    const int right = viewport()->width() * (column + 1) / across;
    const int top = margin + index.row() / across * m_lineHeight - verticalOffset();
    const QRect rect(left, top, right - left, m_lineHeight);
    return QStyle::visualRect(layoutDirection(), viewport()->rect(), rect);
}

std::pair<int, int> SkinGridView::rowsIn(const QRect &rect) const {
    const int across = columns();
    const int top = rect.top() + verticalOffset() - margin;
    const int first = std::max(0, top) / m_lineHeight * across;
    const int end = (std::max(0, top + rect.height() - 1) / m_lineHeight + 1) * across;
    return {std::min(first, count()), std::min(end, count())};
}

QModelIndex SkinGridView::indexAt(const QPoint &point) const {
    const auto [first, end] = rowsIn(QRect(point, QSize(1, 1)));
    for (int row = first; row < end; ++row) {
        if (const QModelIndex index = m_skins.index(row); visualRect(index).contains(point))
            return index;
    }
    return {};
}

QRegion SkinGridView::visualRegionForSelection(const QItemSelection &selection) const {
    QRegion region;
    for (const QModelIndex &index : selection.indexes())
        region += visualRect(index);
    return region;
}

void SkinGridView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) {
    selectionModel()->select(indexAt(rect.center()), command);
}

// Scrolling

void SkinGridView::updateGeometries() {
    m_lineHeight = SkinTile::minimumSize(*this).height();
    const int lines = (count() + columns() - 1) / columns();
    QScrollBar &bar = *verticalScrollBar();
    bar.setRange(0, std::max(0, lines * m_lineHeight + 2 * margin - viewport()->height()));
    bar.setPageStep(viewport()->height());
    bar.setSingleStep(m_lineHeight / 3);
    QAbstractItemView::updateGeometries();
}

void SkinGridView::relayout() {
    updateGeometries();
    tellInView();
    viewport()->update();
}

void SkinGridView::tellInView() {
    const auto [first, end] = rowsIn(viewport()->rect());
    m_firstInView = first;
    m_showsCurrent = currentIndex().row() >= first && currentIndex().row() < end;
    m_skins.setInView(first, std::max(first, end - 1));
}

void SkinGridView::scrollContentsBy(int dx, int dy) {
    m_thumbnails.forgetRequests(); // what is still in view asks again when it is painted
    scrollDirtyRegion(dx, dy);
    viewport()->scroll(dx, dy);
    viewport()->update();
    tellInView();
}

// The line at the top stays there, however many cells a line has now, and what is selected stays in view.
void SkinGridView::resizeEvent(QResizeEvent *event) {
    const int before = m_firstInView;
    const bool followsCurrent = m_showsCurrent;
    QAbstractItemView::resizeEvent(event);
    relayout();
    if (verticalOffset() > 0)
        verticalScrollBar()->setValue(before / columns() * m_lineHeight + margin);
    if (followsCurrent)
        scrollTo(currentIndex());
}

void SkinGridView::scrollTo(const QModelIndex &index, ScrollHint hint) {
    const QRect rect = visualRect(index);
    const int height = viewport()->height();
    int by = 0;
    if (hint == PositionAtCenter)
        by = rect.center().y() - height / 2;
    else if (rect.top() < 0 || hint == PositionAtTop)
        by = rect.top() - margin;
    else if (rect.bottom() >= height || hint == PositionAtBottom)
        by = std::min(rect.bottom() + margin - height + 1, rect.top());
    if (index.isValid() && by != 0)
        verticalScrollBar()->setValue(verticalOffset() + by);
}

// Keys and pointer

QModelIndex SkinGridView::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/) {
    if (count() == 0)
        return {};
    if (!currentIndex().isValid())
        return m_skins.index(rowsIn(viewport()->rect()).first);
    const int row = currentIndex().row();
    const int across = columns();
    const int page = std::max(1, viewport()->height() / m_lineHeight) * across;
    const int forward = isRightToLeft() ? -1 : 1;
    const auto within = [&](int target) { // the same column, or the last skin when its line has no such
        if (target < 0)
            return row % across;
        return target < count() ? target : std::max(row, count() - 1);
    };
    switch (action) {
    case MoveLeft:
        return m_skins.index(std::clamp(row - forward, 0, count() - 1));
    case MoveRight:
        return m_skins.index(std::clamp(row + forward, 0, count() - 1));
    case MovePrevious:
        return m_skins.index(std::max(0, row - 1));
    case MoveNext:
        return m_skins.index(std::min(count() - 1, row + 1));
    case MoveUp:
        return m_skins.index(within(row - across));
    case MoveDown:
        return m_skins.index(within(row + across));
    case MovePageUp:
        return m_skins.index(within(row - page));
    case MovePageDown:
        return m_skins.index(within(row + page));
    case MoveHome:
        return m_skins.index(0);
    case MoveEnd:
        return m_skins.index(count() - 1);
    }
    return currentIndex();
}

void SkinGridView::keyboardSearch(const QString &search) {
    Q_EMIT typed(search);
}

void SkinGridView::keyPressEvent(QKeyEvent *event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && currentIndex().isValid())
        Q_EMIT chosen(currentIndex());
    else
        QAbstractItemView::keyPressEvent(event);
}

bool SkinGridView::viewportEvent(QEvent *event) {
    if (event->type() == QEvent::Leave)
        setHovered({});
    return QAbstractItemView::viewportEvent(event);
}

void SkinGridView::setHovered(const QModelIndex &index) {
    if (m_hovered == index)
        return;
    viewport()->update(visualRect(m_hovered));
    m_hovered = index;
    viewport()->update(visualRect(m_hovered));
}

void SkinGridView::changeEvent(QEvent *event) {
    QAbstractItemView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        relayout();
}

// The picture

QPixmap SkinGridView::picture(const SkinRecord &skin, QElapsedTimer &clock) {
    const double ratio = devicePixelRatioF();
    if (const QPixmap *kept = m_pictures.object(skin.hash); kept && kept->devicePixelRatio() == ratio)
        return *kept;
    const std::optional<QImage> image = m_thumbnails.picture(skin.hash, skin.primaryPath);
    if (!image)
        return {};
    if (clock.hasExpired(scalingTime)) {
        viewport()->update(); // once this one is painted
        return {};
    }
    QPixmap scaled = QPixmap::fromImage(
        image->scaled(SkinTile::pictureSize * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    scaled.setDevicePixelRatio(ratio);
    m_pictures.insert(skin.hash, new QPixmap(scaled));
    return scaled;
}

void SkinGridView::paintEvent(QPaintEvent *event) {
    QPainter painter(viewport());
    painter.setFont(font());
    QElapsedTimer clock;
    clock.start();
    const auto [first, end] = rowsIn(event->rect());
    // Backwards, since the picture asked for last is made first.
    for (int row = end - 1; row >= first; --row) {
        const QModelIndex index = m_skins.index(row);
        const QRect cell = visualRect(index);
        if (!event->region().intersects(cell))
            continue;
        SkinTile tile;
        tile.skin = m_skins.record(index);
        if (tile.skin && tile.skin->status != SkinStatus::failed)
            tile.picture = picture(*tile.skin, clock);
        tile.selected = index == currentIndex(); // which is what is selected
        tile.hovered = m_hovered == index;
        tile.worn = tile.skin && m_worn == tile.skin->id;
        tile.focused = tile.selected && hasFocus();
        tile.draw(painter, cell, *this);
    }
}

} // namespace vantor
