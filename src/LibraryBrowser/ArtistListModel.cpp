#include "LibraryBrowser/ArtistListModel.h"

#include "LibraryBrowser/LibraryBrowser.h"

#include <QCoroTimer>
#include <QElapsedTimer>

namespace vantor {

namespace {

constexpr qint64 longestTurn = 6; // milliseconds

}

ArtistListModel::ArtistListModel(LibraryBrowser &browser, QObject *parent)
    : LibraryItemModel(parent), m_browser(browser) {
    connect(&browser, &LibraryBrowser::stateChanged, this, &ArtistListModel::restart);
    connect(&browser, &LibraryBrowser::refreshed, this, &ArtistListModel::refresh);
    connect(&browser, &LibraryBrowser::changed, this, &ArtistListModel::apply);
}

void ArtistListModel::open() {
    if (std::exchange(m_isOpen, true))
        return;
    restart();
}

int ArtistListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

const LibraryItem *ArtistListModel::item(int row) const {
    return row >= 0 && row < m_items.size() ? &m_items[row] : nullptr;
}

void ArtistListModel::restart() {
    show({});
    m_hasAnswer = false;
    refresh();
    m_replaces = false;
}

void ArtistListModel::refresh() {
    m_turn = std::make_shared<char>();
    m_reading.removeAll();
    m_replaces = m_hasAnswer;
    m_next = PageRequest::first();
    m_isReading = false;
    setFailure(std::nullopt);
    if (m_isOpen && m_browser.connected())
        readOn();
    else
        Q_EMIT stateChanged();
}

void ArtistListModel::retry() {
    if (!failure() || !m_browser.connected())
        return;
    setFailure(std::nullopt);
    readOn();
}

QCoro::Task<> ArtistListModel::readOn() {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_browser.connected();
    m_isReading = true;
    Q_EMIT stateChanged();
    QElapsedTimer busy;
    busy.start();
    while (!turn.expired() && m_next) {
        const PageRequest request = *m_next;
        Page<LibraryArtist> page;
        std::optional<LibraryFailure> failure;
        try {
            page = co_await backend->artists(request);
        } catch (...) {
            failure = LibraryFailure::of(std::current_exception());
        }
        if (turn.expired())
            co_return;
        if (failure) {
            setFailure(failure);
            break;
        }
        // A source that does not get on would never end.
        const bool advances = page.nextOffset && *page.nextOffset > request.offset;
        m_next = advances ? page.next(request.limit) : std::nullopt;
        take(page);
        // A source that answers at once leaves the event loop no turn.
        if (busy.hasExpired(longestTurn)) {
            co_await QCoro::sleepFor(std::chrono::milliseconds(0));
            busy.start();
        }
    }
    if (turn.expired())
        co_return;
    m_isReading = false;
    Q_EMIT stateChanged();
}

void ArtistListModel::take(const Page<LibraryArtist> &page) {
    const QSet<QString> changed = m_reading.add(page.items);
    const bool isFirst = !std::exchange(m_hasAnswer, true);
    if (!m_replaces) {
        showMore(changed);
    } else if (!m_next) {
        QList<LibraryItem> items;
        items.reserve(m_reading.groups().size());
        for (const ArtistGroup &group : m_reading.groups())
            items.append({group});
        show(items);
    }
    if (isFirst)
        Q_EMIT stateChanged();
}

// What is there is what was read before: only these groups differ.
void ArtistListModel::showMore(const QSet<QString> &changed) {
    const QList<ArtistGroup> groups = m_reading.groups();
    const auto before = static_cast<int>(m_items.size());
    int first = before;
    int last = -1;
    for (const QString &id : changed) {
        const auto row = static_cast<int>(m_reading.position(id));
        if (row >= before)
            continue;
        m_items[row] = {groups[row]};
        first = std::min(first, row);
        last = std::max(last, row);
    }
    if (groups.size() > before) {
        beginInsertRows({}, before, static_cast<int>(groups.size()) - 1);
        for (qsizetype row = before; row < groups.size(); ++row)
            m_items.append({groups[row]});
        endInsertRows();
    }
    if (last >= 0)
        Q_EMIT dataChanged(index(first, 0), index(last, 0));
}

// Rows that stay the same at either end stay what they are to the views.
void ArtistListModel::show(const QList<LibraryItem> &items) {
    const qsizetype shorter = std::min(items.size(), m_items.size());
    qsizetype head = 0;
    while (head < shorter && items[head] == m_items[head])
        ++head;
    qsizetype tail = 0;
    while (tail < shorter - head && items[items.size() - 1 - tail] == m_items[m_items.size() - 1 - tail])
        ++tail;
    const int first = static_cast<int>(head);
    const int gone = static_cast<int>(m_items.size() - head - tail);
    const int come = static_cast<int>(items.size() - head - tail);
    if (gone > come) {
        beginRemoveRows({}, first + come, first + gone - 1);
        m_items.remove(first + come, gone - come);
        endRemoveRows();
    } else if (come > gone) {
        beginInsertRows({}, first + gone, first + come - 1);
        m_items = items;
        endInsertRows();
    }
    m_items = items;
    if (const int kept = std::min(gone, come); kept > 0)
        Q_EMIT dataChanged(index(first, 0), index(first + kept - 1, 0));
}

void ArtistListModel::apply(const LibraryChange &change) {
    if (change.kind != LibraryChange::Kind::favoriteChanged || change.id.kind != MediaKind::artist)
        return;
    for (int row = 0; row < m_items.size(); ++row) {
        if (m_items[row].setFavorite(change.id, change.isFavorite))
            Q_EMIT dataChanged(index(row, 0), index(row, 0));
    }
}

} // namespace vantor
