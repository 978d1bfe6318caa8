#include "LibraryBrowser/TrackListModel.h"

#include "LibraryBrowser/AllTracks_p.h"
#include "LibraryBrowser/LibraryBrowser.h"
#include "LibraryBrowser/LibrarySources_p.h"
#include "LibraryBrowser/TrackOrder_p.h"
#include "MusicBackendKit/ArtistName.h"
#include "MusicBackendKit/MarqueeText.h"
#include "MusicBackendKit/MediaIDTransfer.h"

#include <QCoroFuture>
#include <QMimeData>
#include <QtConcurrentRun>

#include <numeric>

namespace vantor {

TrackListModel::TrackListModel(LibraryBrowser &browser, QObject *parent)
    : PagedModel(parent), m_browser(browser) {
    connect(&browser, &LibraryBrowser::stateChanged, this, [this] { load(); });
    connect(&browser, &LibraryBrowser::refreshed, this, [this] {
        if (m_all)
            m_all->renew();
        refresh();
    });
    connect(&browser, &LibraryBrowser::changed, this, &TrackListModel::apply);
    // What belongs to another source means nothing to this one.
    connect(&browser, &LibraryBrowser::sourceChanged, this, [this] {
        if (m_content.kind == Content::Kind::of || m_content.kind == Content::Kind::tracks)
            m_content = {};
    });
}

void TrackListModel::show(const Content &content) {
    if (content == m_content)
        return;
    m_content = content;
    load();
}

void TrackListModel::showTracks(const QList<LibraryTrack> &tracks) {
    m_content = {Content::Kind::tracks};
    setRows(tracks);
}

void TrackListModel::load() {
    using namespace LibrarySources;
    const Backend backend = m_browser.connected();
    m_all.reset();
    switch (backend ? m_content.kind : Content::Kind::nothing) {
    case Content::Kind::nothing:
        return setSource({});
    case Content::Kind::tracks:
        return;
    case Content::Kind::of:
        return setSource(LibrarySources::tracks(backend, m_content.id));
    case Content::Kind::all:
        m_all = std::make_shared<AllTracks>(backend);
        return setSource([all = m_all](PageRequest page) { return all->page(page); });
    case Content::Kind::favorites:
        return setSource(favoriteTracks(backend));
    }
}

void TrackListModel::apply(const LibraryChange &change) {
    if (change.kind == LibraryChange::Kind::favoriteChanged) {
        changeRows([&](LibraryTrack &track) {
            const bool changes = track.id == change.id && track.isFavorite != change.isFavorite;
            if (changes)
                track.isFavorite = change.isFavorite;
            return changes;
        });
        if (m_content.kind == Content::Kind::favorites && change.id.kind == MediaKind::track)
            refresh();
    } else if (change.kind == LibraryChange::Kind::playlistUpdated && m_content == Content::of(change.id)) {
        refresh();
    }
}

// Rows

int TrackListModel::storedRow(int row) const {
    const bool isSorted = row >= 0 && static_cast<std::size_t>(row) < m_order.size();
    return isSorted ? m_order[static_cast<std::size_t>(row)] : row;
}

const LibraryTrack *TrackListModel::track(int row) const {
    return stored(storedRow(row));
}

QList<LibraryTrack> TrackListModel::tracks() const {
    QList<LibraryTrack> all;
    all.reserve(rowCount());
    for (int row = 0; row < rowCount(); ++row) {
        if (const LibraryTrack *const found = stored(storedRow(row), false))
            all.append(*found);
    }
    return all;
}

std::optional<MediaID> TrackListModel::album() const {
    const bool isAlbum = m_content.kind == Content::Kind::of && m_content.id.kind == MediaKind::album;
    return isAlbum ? std::optional(m_content.id) : std::nullopt;
}

int TrackListModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : columns;
}

QString TrackListModel::text(const LibraryTrack &track, int column) const {
    switch (column) {
    case numberColumn:
        return track.trackNumber ? QString::number(*track.trackNumber) : QString();
    case titleColumn:
        return track.title;
    case artistColumn:
        return ArtistName::display(track.artistName);
    case albumColumn:
        return track.albumName.value_or(QString());
    default:
        return track.duration ? MarqueeText::time(*track.duration) : QString();
    }
}

QVariant TrackListModel::data(const QModelIndex &index, int role) const {
    const LibraryTrack *const found = index.isValid() ? track(index.row()) : nullptr;
    if (role == Qt::TextAlignmentRole) {
        const bool isNumber = index.column() == numberColumn || index.column() == timeColumn;
        return QVariant(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft));
    }
    if (!found)
        return {};
    if (role == Qt::DisplayRole)
        return text(*found, index.column());
    if (role == Qt::ToolTipRole && index.column() != numberColumn && index.column() != timeColumn)
        return text(*found, index.column());
    return {};
}

QVariant TrackListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return data(index(0, section), role);
    if (role == Qt::AccessibleTextRole && section == numberColumn)
        return tr("Number");
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case numberColumn:
        return tr("#");
    case titleColumn:
        return tr("Title");
    case artistColumn:
        return tr("Artist");
    case albumColumn:
        return tr("Album");
    default:
        return tr("Time");
    }
}

Qt::ItemFlags TrackListModel::flags(const QModelIndex &index) const {
    const Qt::ItemFlags flags = PagedModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList TrackListModel::mimeTypes() const {
    return {QLatin1String(MediaIDTransfer::contentType)};
}

QMimeData *TrackListModel::mimeData(const QModelIndexList &indexes) const {
    std::set<int> rows;
    for (const QModelIndex &index : indexes)
        rows.insert(index.row());
    MediaIDTransfer transfer;
    for (const int row : rows) {
        if (const LibraryTrack *const found = track(row))
            transfer.ids.append(found->id);
    }
    auto *const data = new QMimeData;
    transfer.write(*data);
    return data;
}

// Order

void TrackListModel::sort(int column, Qt::SortOrder order) {
    const std::optional<Column> wanted =
        column >= 0 && column < columns ? std::optional(static_cast<Column>(column)) : std::nullopt;
    if (wanted == m_sortColumn && order == m_sortOrder)
        return;
    m_sortColumn = wanted;
    m_sortOrder = order;
    arrange();
}

void TrackListModel::rowsWillBeRemoved() {
    setOrder({});
}

void TrackListModel::rowsAreReplaced() {
    m_order.clear();
}

void TrackListModel::rowsTaken() {
    arrange();
}

void TrackListModel::arrange() {
    m_sorting.reset();
    if (!m_sortColumn || rowCount() == 0) {
        setOrder({});
        return;
    }
    loadAll();
    if (isComplete() && !isOutdated())
        sortRows();
}

QCoro::Task<> TrackListModel::sortRows() {
    m_sorting = std::make_shared<char>();
    const std::weak_ptr<char> turn = m_sorting;
    TrackOrder::Keys keys;
    for (int row = 0; row < rowCount(); ++row) {
        const LibraryTrack &found = *stored(row, false);
        if (*m_sortColumn == timeColumn)
            keys.numbers.push_back(found.duration.value_or(0));
        else if (*m_sortColumn == numberColumn)
            keys.numbers.push_back(found.discNumber.value_or(1) * 1e6 + found.trackNumber.value_or(0));
        else
            keys.words.append(text(found, *m_sortColumn));
    }
    const bool ascending = m_sortOrder == Qt::AscendingOrder;
    const auto sorting = QtConcurrent::run(&TrackOrder::sorted, keys, ascending);
    const std::vector<int> order = co_await sorting;
    if (!turn.expired())
        setOrder(order);
}

void TrackListModel::setOrder(const std::vector<int> &order) {
    if (order == m_order)
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<int> rowOf(static_cast<std::size_t>(rowCount())); // by place in the source's order
    std::iota(rowOf.begin(), rowOf.end(), 0);
    for (std::size_t row = 0; row < order.size(); ++row)
        rowOf[static_cast<std::size_t>(order[row])] = static_cast<int>(row);
    QModelIndexList moved;
    const QModelIndexList kept = persistentIndexList();
    for (const QModelIndex &old : kept)
        moved.append(index(rowOf[static_cast<std::size_t>(storedRow(old.row()))], old.column()));
    m_order = order;
    changePersistentIndexList(kept, moved);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

} // namespace vantor
