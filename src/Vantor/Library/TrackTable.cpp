#include "Vantor/Library/TrackTable.h"

#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryViewInput.h"
#include "Vantor/Library/TrackHeader.h"
#include "Vantor/Library/TrackLine.h"

#include <QDrag>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSettings>
#include <QWheelEvent>

namespace vantor {

namespace {

using Model = TrackListModel;

constexpr int leastColumn = 48;
constexpr std::array<double, Model::columns> defaultShares{0, 5, 3, 3, 0}; // none: as wide as its texts

} // namespace

TrackTable::TrackTable(TrackListModel &tracks, LibraryActions &actions, QWidget *parent)
    : QTableView(parent), m_tracks(tracks), m_actions(actions), m_shares(defaultShares) {
    setFrameShape(NoFrame);
    setShowGrid(false);
    setWordWrap(false);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setDragEnabled(true);
    setMouseTracking(true);
    setTabKeyNavigation(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new TrackLine(*this));
    setAccessibleName(tr("Tracks"));
    setHorizontalHeader(new TrackHeader(this));
    setModel(&tracks);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(TrackLine::height(*this));
    verticalHeader()->setDefaultSectionSize(TrackLine::height(*this));
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView &header = *horizontalHeader();
    header.setHighlightSections(false);
    header.setSectionsClickable(true);
    header.setMinimumSectionSize(leastColumn / 2);
    header.setContextMenuPolicy(Qt::CustomContextMenu);
    header.setSortIndicatorShown(false);
    header.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(&header, &QHeaderView::sectionClicked, this, &TrackTable::takeSorting);
    connect(&header, &QHeaderView::customContextMenuRequested, this,
            [this](const QPoint &at) { popUpColumns(horizontalHeader()->mapToGlobal(at)); });
    connect(&header, &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (m_isFitting || m_shares[static_cast<std::size_t>(column)] == 0)
            return;
        takeWidths(column, size);
        storeColumns();
    });
    const auto *const input = new LibraryViewInput(*this);
    connect(input, &LibraryViewInput::opened, this, &TrackTable::opened);
    connect(input, &LibraryViewInput::menuAsked, this, &TrackTable::menuAsked);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(&tracks, signal, this, &TrackTable::takeRows);
    connect(&tracks, &QAbstractItemModel::modelReset, this, &TrackTable::takeRows);
    connect(&tracks, &QAbstractItemModel::layoutChanged, this, &TrackTable::takeRows);
    connect(&tracks, &QAbstractItemModel::dataChanged, this, &TrackTable::takeRows);
    connect(&actions.playing(), &LibraryNowPlaying::changed, viewport(), qOverload<>(&QWidget::update));
    takeRows();
    showColumns();
}

const LibraryNowPlaying &TrackTable::playing() const {
    return m_actions.playing();
}

bool TrackTable::offersFavorites() const {
    return m_actions.offersFavorites();
}

QList<LibraryTrack> TrackTable::selected() const {
    QList<LibraryTrack> tracks;
    for (const int row : LibraryViewInput::selectedRows(*this)) {
        if (const LibraryTrack *const track = m_tracks.track(row))
            tracks.append(*track);
    }
    return tracks;
}

// Rows

std::optional<int> TrackTable::discAt(int row) const {
    if (!m_hasDiscs)
        return std::nullopt;
    const auto disc = [this](int of) {
        const LibraryTrack *const track = m_tracks.track(of);
        return track ? track->discNumber.value_or(1) : 1;
    };
    return row == 0 || disc(row) != disc(row - 1) ? std::optional(disc(row)) : std::nullopt;
}

void TrackTable::takeRows() {
    const bool hadDiscs = m_hasDiscs;
    m_hasDiscs = false;
    const int rows = m_tracks.rowCount();
    if (m_tracks.album() && !m_tracks.sortColumn()) {
        for (int row = 1; row < rows && !m_hasDiscs; ++row)
            m_hasDiscs =
                m_tracks.track(row)->discNumber.value_or(1) != m_tracks.track(0)->discNumber.value_or(1);
    }
    if (hadDiscs || m_hasDiscs) {
        const int height = TrackLine::height(*this);
        for (int row = 0; row < rows; ++row)
            setRowHeight(row, discAt(row) ? height * 2 : height);
    }
    if (m_showsAll)
        setFixedHeight(sizeHint().height());
    fitColumns();
}

void TrackTable::setShowsAll() {
    m_showsAll = true;
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    takeRows();
}

QSize TrackTable::sizeHint() const {
    if (!m_showsAll)
        return QTableView::sizeHint();
    return {QTableView::sizeHint().width(),
            horizontalHeader()->sizeHint().height() + verticalHeader()->length() + 2};
}

// Columns

void TrackTable::setUnneeded(const QSet<int> &columns) {
    m_unneeded = columns;
    showColumns();
}

// Those that are hidden keep their share beside the others'.
void TrackTable::takeWidths(int resized, int size) {
    double before = 0;
    double after = 0;
    for (int column = 0; column < Model::columns; ++column) {
        double &share = m_shares[static_cast<std::size_t>(column)];
        if (share == 0 || isColumnHidden(column))
            continue;
        before += share;
        share = column == resized ? size : columnWidth(column);
        after += share;
    }
    for (int column = 0; column < Model::columns; ++column) {
        if (before > 0 && isColumnHidden(column))
            m_shares[static_cast<std::size_t>(column)] *= after / before;
    }
}

void TrackTable::showColumns() {
    const QScopedValueRollback fitting(m_isFitting, true); // the user resizes nothing
    for (int column = 0; column < Model::columns; ++column)
        setColumnHidden(column, column != Model::titleColumn &&
                                    (m_unneeded.contains(column) || m_hidden.contains(column)));
    fitColumns();
}

// The number and the time take what they need, the others share the rest.
void TrackTable::fitColumns() {
    const QFontMetrics metrics = fontMetrics();
    const int numberWidth = metrics.horizontalAdvance(QStringLiteral("0000")) + 2 * textMargin;
    const int timeWidth = metrics.horizontalAdvance(QStringLiteral("000:00")) + 2 * textMargin;
    double shares = 0;
    int room = viewport()->width();
    for (int column = 0; column < Model::columns; ++column) {
        if (isColumnHidden(column))
            continue;
        shares += m_shares[static_cast<std::size_t>(column)];
        if (column == Model::numberColumn || column == Model::timeColumn)
            room -= column == Model::numberColumn ? numberWidth : timeWidth;
    }
    const QScopedValueRollback fitting(m_isFitting, true);
    setColumnWidth(Model::numberColumn, numberWidth);
    setColumnWidth(Model::timeColumn, timeWidth);
    double left = 0;
    for (int column = 0; column < Model::columns; ++column) {
        const double share = m_shares[static_cast<std::size_t>(column)];
        if (isColumnHidden(column) || share == 0)
            continue;
        const double right = left + std::max(0, room) * share / shares;
        setColumnWidth(column, std::max(leastColumn, static_cast<int>(right) - static_cast<int>(left)));
        left = right;
    }
}

void TrackTable::resizeEvent(QResizeEvent *event) {
    QTableView::resizeEvent(event);
    fitColumns();
}

// Up, down, and back to the source's order.
void TrackTable::takeSorting(int column) {
    const bool isSame = m_tracks.sortColumn() == static_cast<Model::Column>(column);
    const bool wasAscending = m_tracks.sortOrder() == Qt::AscendingOrder;
    const Qt::SortOrder order = isSame ? Qt::DescendingOrder : Qt::AscendingOrder;
    const bool ends = isSame && !wasAscending;
    horizontalHeader()->setSortIndicatorShown(!ends);
    horizontalHeader()->setSortIndicator(column, order);
    m_tracks.sort(ends ? -1 : column, order);
    takeRows();
}

void TrackTable::popUpColumns(const QPoint &at) {
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int column = 0; column < Model::columns; ++column) {
        if (column == Model::titleColumn || m_unneeded.contains(column))
            continue;
        const QString name = column == Model::numberColumn
                                 ? tr("Number")
                                 : m_tracks.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        QAction *const action = menu->addAction(name);
        action->setCheckable(true);
        action->setChecked(!m_hidden.contains(column));
        connect(action, &QAction::toggled, this, [this, column](bool shows) {
            if (shows)
                m_hidden.remove(column);
            else
                m_hidden.insert(column);
            showColumns();
            storeColumns();
        });
    }
    menu->popup(at);
}

void TrackTable::restoreColumns(QSettings &settings, const QString &key) {
    m_settings = &settings;
    m_key = key;
    const QVariantList stored = settings.value(key).toList();
    for (int column = 0; column < Model::columns && column < stored.size(); ++column) {
        const double value = stored[column].toDouble(); // negative: hidden
        double &share = m_shares[static_cast<std::size_t>(column)];
        if (value < 0)
            m_hidden.insert(column);
        if (share > 0 && std::isfinite(value) && std::abs(value) >= 1 && std::abs(value) < 10'000)
            share = std::abs(value);
    }
    showColumns();
}

void TrackTable::storeColumns() const {
    if (!m_settings)
        return;
    QVariantList stored;
    for (int column = 0; column < Model::columns; ++column) {
        const double share = std::max(1.0, m_shares[static_cast<std::size_t>(column)]);
        stored.append(m_hidden.contains(column) ? -share : share);
    }
    m_settings->setValue(m_key, stored);
}

// Keys and pointer

void TrackTable::wheelEvent(QWheelEvent *event) {
    if (m_showsAll)
        event->ignore(); // the page's
    else
        QTableView::wheelEvent(event);
}

// A heart is for itself: the row is not selected.
void TrackTable::mousePressEvent(QMouseEvent *event) {
    const QModelIndex index = indexAt(event->pos());
    const LibraryTrack *const track = m_tracks.track(index.row());
    const bool isHeart = event->button() == Qt::LeftButton && index.column() == Model::titleColumn &&
                         offersFavorites() &&
                         TrackLine::heart(visualRect(index), *this).contains(event->pos());
    if (track && isHeart)
        m_actions.toggleFavorite({*track});
    else
        QTableView::mousePressEvent(event);
}

// Home and End are the first and the last line, not the ends of one.
QModelIndex TrackTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    if (action != MoveHome && action != MoveEnd)
        return QTableView::moveCursor(action, modifiers);
    return m_tracks.index(action == MoveHome ? 0 : m_tracks.rowCount() - 1, Model::titleColumn);
}

// Letters find titles, wherever the pointer has clicked.
void TrackTable::keyboardSearch(const QString &letters) {
    const QModelIndex current = currentIndex();
    if (current.isValid() && current.column() != Model::titleColumn)
        selectionModel()->setCurrentIndex(current.siblingAtColumn(Model::titleColumn),
                                          QItemSelectionModel::NoUpdate);
    QTableView::keyboardSearch(letters);
}

void TrackTable::mouseMoveEvent(QMouseEvent *event) {
    QTableView::mouseMoveEvent(event);
    setHovered(rowAt(event->pos().y()));
}

void TrackTable::leaveEvent(QEvent *event) {
    QTableView::leaveEvent(event);
    setHovered(-1);
}

void TrackTable::setHovered(int row) {
    if (row == std::exchange(m_hovered, row))
        return;
    viewport()->update();
}

// What is dragged is seen as its titles, not as all of its cells.
void TrackTable::startDrag(Qt::DropActions) {
    const QList<LibraryTrack> tracks = selected();
    if (tracks.isEmpty())
        return;
    const QString text = tracks.size() == 1 ? tracks.first().title : tr("%L1 tracks").arg(tracks.size());
    const QString shown = fontMetrics().elidedText(text, Qt::ElideRight, 260);
    const QSize size(fontMetrics().horizontalAdvance(shown) + 24, fontMetrics().height() + 12);
    QPixmap pixmap(size * devicePixelRatioF());
    pixmap.setDevicePixelRatio(devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRect(QPoint(), size), 6, 6);
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.setFont(font());
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, shown);
    painter.end();
    auto *const drag = new QDrag(this);
    drag->setMimeData(m_tracks.mimeData(selectionModel()->selectedIndexes()));
    drag->setPixmap(pixmap);
    drag->setHotSpot(QPoint(-8, -8));
    drag->exec(Qt::CopyAction);
}

} // namespace vantor
