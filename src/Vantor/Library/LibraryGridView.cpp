#include "Vantor/Library/LibraryGridView.h"

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
constexpr int lineCell = 150;
constexpr int heartSide = 18;

QColor faint(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
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
        const int side = option.rect.width() - 2 * padding;
        const QRect cover(option.rect.topLeft() + QPoint(padding, padding), QSize(side, side));
        m_view.m_covers.draw(*painter, cover, item ? item->artwork() : std::nullopt,
                             item ? item->kind() : std::optional(MediaKind::album), option.palette);
        if (item) {
            drawTexts(*painter, QRect(cover.left() + 1, cover.bottom() + textGap, side - 2, 0), *item,
                      option);
            if (item->isFavorite() == true)
                drawFavorite(*painter, cover, option.palette);
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
        const Qt::Alignment across = item.kind() == MediaKind::artist ? Qt::AlignHCenter : Qt::AlignLeft;
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
        write(item.title(), option.palette.color(QPalette::Text));
        font = option.font;
        write(secondLine(item), option.palette.color(QPalette::PlaceholderText));
    }

    [[nodiscard]] QString secondLine(const LibraryItem &item) const {
        const auto *const album = std::get_if<LibraryAlbum>(&item.record);
        if (album && m_view.m_showsYears)
            return album->year ? QString::number(*album->year) : QString();
        return item.subtitle();
    }

    static void drawFavorite(QPainter &painter, const QRect &cover, const QPalette &palette) {
        const QRectF place(cover.right() - heartSide - 6, cover.top() + 7, heartSide, heartSide);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 110));
        painter.drawEllipse(place.adjusted(-4, -4, 4, 4));
        LibraryIcons::drawHeart(painter, place.adjusted(2, 2, -2, -2), palette.color(QPalette::BrightText));
    }

    LibraryGridView &m_view;
};

LibraryGridView::LibraryGridView(LibraryItemModel &items, ArtworkCache &artwork, Shape shape, QWidget *parent)
    : QListView(parent), m_items(items), m_shape(shape), m_covers(artwork, nullptr) {
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
    const int columns = std::max(1, width / leastCell);
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
