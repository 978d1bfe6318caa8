#include "Vantor/Windows/TileGridView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vantor {

namespace {

constexpr int margin = 6; // above the first and below the last line

} // namespace

TileGridView::TileGridView(QWidget *parent) : QAbstractItemView(parent) {
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // or the columns would jump when it comes
    setVerticalScrollMode(ScrollPerPixel);
    setFrameShape(NoFrame);
    setMouseTracking(true);
    connect(this, &QAbstractItemView::entered, this, &TileGridView::setHovered);
    connect(this, &QAbstractItemView::viewportEntered, this, [this] { setHovered({}); });
    connect(this, &QAbstractItemView::doubleClicked, this, &TileGridView::chosen);
}

void TileGridView::setModel(QAbstractItemModel *shown) {
    QAbstractItemView::setModel(shown);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &TileGridView::tellInView);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(shown, signal, this, &TileGridView::relayout);
    connect(shown, &QAbstractItemModel::modelReset, this, [this] {
        relayout();
        verticalScrollBar()->setValue(0);
    });
    connect(shown, &QAbstractItemModel::layoutAboutToBeChanged, this, [this] {
        const int first = rowsIn(viewport()->rect()).first;
        m_anchor = at(first);
        m_anchorOffset = visualRect(m_anchor).top();
    });
    connect(shown, &QAbstractItemModel::layoutChanged, this, [this] {
        updateGeometries();
        if (m_anchor.isValid() && verticalOffset() > 0)
            verticalScrollBar()->setValue(verticalOffset() + visualRect(m_anchor).top() - m_anchorOffset);
        m_anchor = QModelIndex();
        relayout();
    });
    relayout();
}

int TileGridView::count() const {
    return model() ? model()->rowCount() : 0;
}

QModelIndex TileGridView::at(int row) const {
    return model()->index(row, 0);
}

// Where what is

int TileGridView::columns() const {
    return model() ? std::max(1, viewport()->width() / leastCell().width()) : 1;
}

int TileGridView::verticalOffset() const {
    return verticalScrollBar()->value();
}

QRect TileGridView::visualRect(const QModelIndex &index) const {
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

std::pair<int, int> TileGridView::rowsIn(const QRect &rect) const {
    const int across = columns();
    const int top = rect.top() + verticalOffset() - margin;
    const int first = std::max(0, top) / m_lineHeight * across;
    const int end = (std::max(0, top + rect.height() - 1) / m_lineHeight + 1) * across;
    return {std::min(first, count()), std::min(end, count())};
}

QModelIndex TileGridView::indexAt(const QPoint &point) const {
    const auto [first, end] = rowsIn(QRect(point, QSize(1, 1)));
    for (int row = first; row < end; ++row) {
        if (const QModelIndex index = at(row); visualRect(index).contains(point))
            return index;
    }
    return {};
}

QRegion TileGridView::visualRegionForSelection(const QItemSelection &selection) const {
    QRegion region;
    for (const QModelIndex &index : selection.indexes())
        region += visualRect(index);
    return region;
}

void TileGridView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) {
    selectionModel()->select(indexAt(rect.center()), command);
}

// Scrolling

void TileGridView::updateGeometries() {
    if (!model()) // as long as the base classes are made, and when the model has gone
        return QAbstractItemView::updateGeometries();
    m_lineHeight = leastCell().height();
    const int lines = (count() + columns() - 1) / columns();
    QScrollBar &bar = *verticalScrollBar();
    bar.setRange(0, std::max(0, lines * m_lineHeight + 2 * margin - viewport()->height()));
    bar.setPageStep(viewport()->height());
    bar.setSingleStep(m_lineHeight / 3);
    QAbstractItemView::updateGeometries();
}

void TileGridView::relayout() {
    if (!model())
        return;
    updateGeometries();
    tellInView();
    viewport()->update();
}

void TileGridView::tellInView() {
    const auto [first, end] = rowsIn(viewport()->rect());
    m_firstInView = first;
    m_showsCurrent = currentIndex().row() >= first && currentIndex().row() < end;
    setInView(first, std::max(first, end - 1));
}

void TileGridView::scrollContentsBy(int dx, int dy) {
    forgetView();
    scrollDirtyRegion(dx, dy);
    viewport()->scroll(dx, dy);
    viewport()->update();
    tellInView();
}

// The line at the top stays there, however many cells a line has now, and what is selected stays in view.
void TileGridView::resizeEvent(QResizeEvent *event) {
    const int before = m_firstInView;
    const bool followsCurrent = m_showsCurrent;
    QAbstractItemView::resizeEvent(event);
    relayout();
    if (verticalOffset() > 0)
        verticalScrollBar()->setValue(before / columns() * m_lineHeight + margin);
    if (followsCurrent)
        scrollTo(currentIndex());
}

void TileGridView::scrollTo(const QModelIndex &index, ScrollHint hint) {
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

QModelIndex TileGridView::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/) {
    if (count() == 0)
        return {};
    if (!currentIndex().isValid())
        return at(rowsIn(viewport()->rect()).first);
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
        return at(std::clamp(row - forward, 0, count() - 1));
    case MoveRight:
        return at(std::clamp(row + forward, 0, count() - 1));
    case MovePrevious:
        return at(std::max(0, row - 1));
    case MoveNext:
        return at(std::min(count() - 1, row + 1));
    case MoveUp:
        return at(within(row - across));
    case MoveDown:
        return at(within(row + across));
    case MovePageUp:
        return at(within(row - page));
    case MovePageDown:
        return at(within(row + page));
    case MoveHome:
        return at(0);
    case MoveEnd:
        return at(count() - 1);
    }
    return currentIndex();
}

void TileGridView::keyboardSearch(const QString &search) {
    Q_EMIT typed(search);
}

void TileGridView::keyPressEvent(QKeyEvent *event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && target().isValid())
        Q_EMIT chosen(target());
    else
        QAbstractItemView::keyPressEvent(event);
}

bool TileGridView::viewportEvent(QEvent *event) {
    if (event->type() == QEvent::Leave)
        setHovered({});
    return QAbstractItemView::viewportEvent(event);
}

void TileGridView::setHovered(const QModelIndex &index) {
    if (m_hovered == index)
        return;
    viewport()->update(visualRect(m_hovered));
    m_hovered = index;
    viewport()->update(visualRect(m_hovered));
}

void TileGridView::changeEvent(QEvent *event) {
    QAbstractItemView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        relayout();
}

void TileGridView::paintEvent(QPaintEvent *event) {
    QPainter painter(viewport());
    painter.setFont(font());
    beginDrawing();
    const auto [first, end] = rowsIn(event->rect());
    // Backwards, since the picture asked for last is made first.
    for (int row = end - 1; row >= first; --row) {
        const QModelIndex index = at(row);
        const QRect cell = visualRect(index);
        if (event->region().intersects(cell))
            drawTile(painter, index, cell);
    }
}

} // namespace vantor
