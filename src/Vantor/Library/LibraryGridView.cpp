#include "Vantor/Library/LibraryGridView.h"

#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryIcons.h"
#include "Vantor/Library/LibraryViewInput.h"

#include <QDrag>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace vantor {

namespace {

constexpr int padding = 9;
constexpr int textGap = 7;
constexpr int leastCell = 164;
constexpr int largeCell = 208; // in wide windows
constexpr int commonColumns = 9;
constexpr int lineCell = 150;
constexpr int badgeSide = 26;

QColor faint(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QRect coverIn(const QRect &cell) {
    const int side = cell.width() - 2 * padding;
    return {cell.topLeft() + QPoint(padding, padding), QSize(side, side)};
}

QRect heartIn(const QRect &cover, Qt::LayoutDirection direction) {
    return QStyle::alignedRect(direction, Qt::AlignRight | Qt::AlignTop, {badgeSide, badgeSide},
                               cover.adjusted(5, 5, -5, -5));
}

QRect speakerIn(const QRect &cover, Qt::LayoutDirection direction) {
    return QStyle::alignedRect(direction, Qt::AlignRight | Qt::AlignBottom, {badgeSide, badgeSide},
                               cover.adjusted(5, 5, -5, -5));
}

} // namespace

class LibraryGridView::Tile : public QStyledItemDelegate {
  public:
    explicit Tile(LibraryGridView &view) : QStyledItemDelegate(&view), m_view(view) {}

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override { return m_view.cell(); }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override {
        const LibraryItem *const item = m_view.items().item(index.row());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        drawBack(*painter, option);
        const QRect cover = coverIn(option.rect);
        m_view.m_covers.draw(*painter, cover, item ? item->artwork() : std::nullopt,
                             item ? item->kind() : std::optional(MediaKind::album), option.palette);
        if (item) {
            drawTexts(*painter, QRect(cover.left() + 1, cover.bottom() + textGap, cover.width() - 2, 0),
                      *item, option);
            drawBadges(*painter, cover, *item, option);
        }
        painter->restore();
    }

  private:
    static void drawBack(QPainter &painter, const QStyleOptionViewItem &option) {
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
        const QColor accent = option.palette.color(QPalette::Highlight);
        const QRectF frame = QRectF(option.rect).adjusted(2, 2, -2, -2);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(Qt::NoPen);
        if (isSelected)
            painter.setBrush(faint(accent, option.state.testFlag(QStyle::State_Active) ? 0.28 : 0.16));
        else if (option.state.testFlag(QStyle::State_MouseOver))
            painter.setBrush(faint(option.palette.color(QPalette::Text), 0.055));
        if (hasFocus)
            painter.setPen(QPen(accent, 1.5));
        painter.drawRoundedRect(frame, 8, 8);
    }

    void drawTexts(QPainter &painter, QRect line, const LibraryItem &item,
                   const QStyleOptionViewItem &option) const {
        const Qt::Alignment across = item.kind() == MediaKind::artist
                                         ? Qt::AlignHCenter
                                         : QStyle::visualAlignment(option.direction, Qt::AlignLeft);
        QFont font = option.font;
        font.setWeight(QFont::Medium);
        const auto write = [&](const QString &text, const QColor &color) {
            const QFontMetrics metrics(font);
            line.setHeight(metrics.height());
            painter.setFont(font);
            painter.setPen(color);
            painter.drawText(line, static_cast<int>(across | Qt::AlignVCenter) | Qt::TextSingleLine,
                             metrics.elidedText(text, Qt::ElideRight, line.width()));
            line.translate(0, metrics.height() + 1);
        };
        const bool isOn = m_view.m_actions.playing().isOn(item);
        write(item.title(), option.palette.color(isOn ? QPalette::Highlight : QPalette::Text));
        font = option.font;
        write(secondLine(item), option.palette.color(QPalette::PlaceholderText));
    }

    [[nodiscard]] QString secondLine(const LibraryItem &item) const {
        const auto *const album = std::get_if<LibraryAlbum>(&item.record);
        if (album && m_view.m_showsYears)
            return album->year ? QString::number(*album->year) : QString();
        return item.subtitle();
    }

    void drawBadges(QPainter &painter, const QRect &cover, const LibraryItem &item,
                    const QStyleOptionViewItem &option) const {
        const bool isFavorite = item.isFavorite() == true;
        const bool isUnderPointer = option.state.testFlag(QStyle::State_MouseOver);
        if (m_view.m_actions.offersFavorites() && item.kind() && (isFavorite || isUnderPointer))
            LibraryIcons::drawHeart(painter, badge(painter, heartIn(cover, option.direction)), Qt::white,
                                    isFavorite);
        if (m_view.m_actions.playing().isOn(item))
            LibraryIcons::drawSpeaker(painter, badge(painter, speakerIn(cover, option.direction)), Qt::white,
                                      m_view.m_actions.playing().sounds());
    }

    // Dark, so that what is white on it is seen on every cover.
    static QRectF badge(QPainter &painter, const QRect &place) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 140));
        painter.drawEllipse(place);
        return QRectF(place).adjusted(5, 5, -5, -5);
    }

    LibraryGridView &m_view;
};

LibraryGridView::LibraryGridView(LibraryItemModel &items, ArtworkCache &artwork, LibraryActions &actions,
                                 Shape shape, QWidget *parent)
    : QListView(parent), m_items(items), m_actions(actions), m_shape(shape), m_covers(artwork, nullptr) {
    setFrameShape(NoFrame);
    setFlow(LeftToRight);
    setWrapping(shape == Shape::grid);
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setDragEnabled(true);
    setMouseTracking(true); // what is under the pointer stands out
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    if (shape == Shape::grid) {
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // or the columns would jump when it comes
    } else {
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }
    setItemDelegate(new Tile(*this));
    setModel(&items);
    const auto *const input = new LibraryViewInput(*this);
    connect(input, &LibraryViewInput::opened, this, &LibraryGridView::opened);
    connect(input, &LibraryViewInput::menuAsked, this, &LibraryGridView::menuAsked);
    connect(&m_covers, &CoverPainter::changed, viewport(), qOverload<>(&QWidget::update));
    connect(&actions.playing(), &LibraryNowPlaying::changed, viewport(), qOverload<>(&QWidget::update));
    arrange();
}

QList<LibraryItem> LibraryGridView::selected() const {
    QList<LibraryItem> items;
    for (const int row : LibraryViewInput::selectedRows(*this)) {
        if (const LibraryItem *const item = m_items.item(row))
            items.append(*item);
    }
    return items;
}

void LibraryGridView::setShowsYears(bool shows) {
    m_showsYears = shows;
    viewport()->update();
}

QSize LibraryGridView::cell() const {
    const int width = viewport()->width();
    const int columns = std::max(1, width / std::clamp(width / commonColumns, leastCell, largeCell));
    const int across = m_shape == Shape::line ? lineCell : std::max(leastCell / 2, (width - 1) / columns);
    return {across, across + textGap + 2 * (fontMetrics().height() + 1) + 2};
}

void LibraryGridView::arrange() {
    const QSize size = cell();
    if (size == gridSize())
        return;
    // What is at the top stays there, however many cells a line has now.
    const QModelIndex top = indexAt({padding + 4, padding + 4});
    const bool wasAtTop = verticalScrollBar()->value() == 0;
    setGridSize(size);
    verticalScrollBar()->setSingleStep(size.height() / 3);
    if (m_shape == Shape::line)
        setFixedHeight(size.height() + horizontalScrollBar()->sizeHint().height() + 2);
    else if (top.isValid() && !wasAtTop)
        scrollTo(top, PositionAtTop);
}

void LibraryGridView::resizeEvent(QResizeEvent *event) {
    arrange();
    QListView::resizeEvent(event);
}

void LibraryGridView::changeEvent(QEvent *event) {
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        arrange();
}

// A heart is for itself: the item is not selected.
void LibraryGridView::mousePressEvent(QMouseEvent *event) {
    const QModelIndex index = indexAt(event->pos());
    const LibraryItem *const item = index.isValid() ? m_items.item(index.row()) : nullptr;
    const bool isHeart = event->button() == Qt::LeftButton && item && item->kind() &&
                         m_actions.offersFavorites() &&
                         heartIn(coverIn(visualRect(index)), layoutDirection()).contains(event->pos());
    if (isHeart)
        m_actions.toggleFavorite(*item);
    else
        QListView::mousePressEvent(event);
}

// A line leaves the wheel to the page that it is on.
void LibraryGridView::wheelEvent(QWheelEvent *event) {
    const bool isSideways = std::abs(event->angleDelta().x()) > std::abs(event->angleDelta().y());
    if (m_shape == Shape::line && !isSideways)
        event->ignore();
    else
        QListView::wheelEvent(event);
}

// What is dragged is seen as its cover, not as all of its cells.
void LibraryGridView::startDrag(Qt::DropActions) {
    const QModelIndexList indexes = selectionModel()->selectedIndexes();
    if (indexes.isEmpty())
        return;
    constexpr int shownSide = 72;
    const int side = cell().width() - 2 * padding; // in which the cover is there already
    QPixmap pixmap(QSize(side, side) * devicePixelRatioF());
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    const LibraryItem *const item = m_items.item(indexes.first().row());
    QPainter painter(&pixmap);
    if (item)
        m_covers.draw(painter, QRect(0, 0, side, side), item->artwork(), item->kind(), palette());
    painter.end();
    pixmap = pixmap.scaledToWidth(qRound(shownSide * devicePixelRatioF()), Qt::SmoothTransformation);
    auto *const drag = new QDrag(this);
    drag->setMimeData(m_items.mimeData(indexes));
    drag->setPixmap(pixmap);
    drag->setHotSpot(QPoint(-8, -8));
    drag->exec(Qt::CopyAction);
}

} // namespace vantor
