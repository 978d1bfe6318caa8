#include "SkinBrowser/SkinListModel.h"

#include "SkinBrowser/IndexAnswer.h"

#include <QTimer>

#include <algorithm>
#include <limits>

namespace vantor {

namespace {

constexpr std::size_t maxWanted = 8; // pages; more than any screen shows

int pageOf(int row) {
    return row / SkinListModel::pageSize;
}

std::vector<SkinRecord> rowsOf(SkinIndexStore &store, SkinQuery query, int page) {
    query.limit = SkinListModel::pageSize;
    query.offset = page * SkinListModel::pageSize;
    std::vector<SkinRecord> rows = store.skins(query);
    for (SkinRecord &row : rows) { // of which only one skin's are seen at a time, and they may be long
        row.readme.reset();
        row.warnings.clear();
    }
    return rows;
}

int countOf(SkinIndexStore &store, const SkinQuery &query) {
    return static_cast<int>(std::min<std::int64_t>(store.count(query), std::numeric_limits<int>::max()));
}

} // namespace

SkinListModel::SkinListModel(const QUrl &index, QObject *parent)
    : QAbstractListModel(parent), m_index(index), m_readSoon(new QTimer(this)) {
    m_readSoon->setSingleShot(true);
    m_readSoon->setInterval(0);
    connect(m_readSoon, &QTimer::timeout, this, &SkinListModel::readOn);
}

SkinListModel::~SkinListModel() = default;

// What is asked for

void SkinListModel::setQuery(const SkinQuery &query) {
    m_query = query;
    ++m_turn;
    m_isReading = false;
    if (m_reader)
        m_reader->interrupt();
    m_querying = true;
    m_renewing = false;
    m_places.clear();
    m_wanted.clear();
    readOn();
}

void SkinListModel::refresh() {
    m_renewing = !m_querying;
    m_readSoon->start();
}

void SkinListModel::setInView(int first, int last) {
    m_firstInView = first;
    m_lastInView = last;
}

void SkinListModel::locate(std::int64_t id) {
    m_places.push_back(id);
    m_readSoon->start();
}

void SkinListModel::closeIndex() {
    ++m_turn;
    m_isReading = false;
    m_reader.reset();
    m_readSoon->stop();
    m_wanted.clear();
    m_places.clear();
}

void SkinListModel::want(int page) const {
    // Rows of the query before are as good as gone.
    if (m_querying || !m_reader || !m_wanted.insert(page).second)
        return;
    if (m_wanted.size() > maxWanted)
        m_wanted.erase(farthest(m_wanted));
    m_readSoon->start();
}

// Reading

void SkinListModel::readOn() {
    if (m_isReading)
        return;
    if (!m_reader)
        m_reader = std::make_unique<SkinIndexReader>(m_index);
    if (m_querying) {
        readQuery();
    } else if (m_renewing) {
        readRenewal();
    } else if (!m_places.empty()) {
        readPlace(m_places.front());
    } else if (!m_wanted.empty()) {
        readPage(*std::ranges::min_element(m_wanted, {}, [this](int page) { return distance(page); }));
    }
}

template <typename Answer>
void SkinListModel::ask(std::function<Answer(SkinIndexStore &)> question,
                        std::function<void(Answer &)> taken) {
    m_isReading = true;
    const auto answered = [this, turn = m_turn, taken](Answer answer) {
        if (turn != m_turn)
            return;
        m_isReading = false;
        taken(answer);
        readOn();
    };
    const auto failed = [this, turn = m_turn](const SkinLibraryError &error) {
        if (turn == m_turn)
            fail(error);
    };
    whenAnswered(*this, m_reader->ask<Answer>(std::move(question)), answered, failed);
}

void SkinListModel::fail(const SkinLibraryError &error) {
    m_isReading = false;
    m_problem = error.description();
    m_renewing = false;
    m_places.clear();
    m_wanted.clear();
    if (std::exchange(m_querying, false))
        reset(0);
    Q_EMIT queried();
}

void SkinListModel::readQuery() {
    using Beginning = std::pair<int, Page>;
    ask<Beginning>(
        [query = m_query](SkinIndexStore &store) {
            Page rows = rowsOf(store, query, 0);
            return Beginning(countOf(store, query), std::move(rows));
        },
        [this](Beginning &beginning) {
            m_querying = false;
            m_problem.clear();
            reset(beginning.first);
            keep(0, std::move(beginning.second));
            Q_EMIT queried();
        });
}

SkinListModel::Held SkinListModel::held() const {
    Held held;
    held.firstRow = m_firstInView;
    held.lastRow = m_lastInView;
    const auto hold = [&](int row) {
        const std::int64_t id = row < m_count ? m_ids[static_cast<std::size_t>(row)] : 0;
        if (id != 0)
            held.ids.push_back(id);
        return id;
    };
    held.first = hold(m_firstInView);
    const QModelIndexList indexes = persistentIndexList();
    for (const QModelIndex &index : indexes)
        hold(index.row());
    return held;
}

SkinListModel::Renewal SkinListModel::readAgain(SkinIndexStore &store, const SkinQuery &query,
                                                const Held &held) {
    Renewal renewal;
    renewal.count = countOf(store, query);
    for (const std::int64_t id : held.ids) {
        const auto place = renewal.rows.contains(id) ? std::nullopt : store.position(id, query);
        if (!renewal.rows.contains(id))
            renewal.rows.insert(id, static_cast<int>(place.value_or(-1)));
    }
    if (const int row = renewal.rows.value(held.first, -1); row >= 0)
        renewal.shift = row - held.firstRow;
    const int last = std::min(held.lastRow + renewal.shift, renewal.count - 1);
    for (int page = pageOf(std::max(0, held.firstRow + renewal.shift)); page <= pageOf(last); ++page)
        renewal.pages.emplace(page, rowsOf(store, query, page));
    return renewal;
}

void SkinListModel::readRenewal() {
    m_renewing = false;
    ask<Renewal>(
        [query = m_query, held = held()](SkinIndexStore &store) { return readAgain(store, query, held); },
        [this](Renewal &renewal) {
            m_problem.clear();
            take(std::move(renewal));
            Q_EMIT renewed();
        });
}

void SkinListModel::readPlace(std::int64_t id) {
    using Place = std::optional<std::int64_t>;
    ask<Place>([query = m_query, id](SkinIndexStore &store) { return store.position(id, query); },
               [this, id](Place &place) {
                   m_places.pop_front();
                   const bool isThere = place && *place < m_count;
                   Q_EMIT located(id, isThere ? std::optional(static_cast<int>(*place)) : std::nullopt);
               });
}

void SkinListModel::readPage(int page) {
    ask<Page>([query = m_query, page](SkinIndexStore &store) { return rowsOf(store, query, page); },
              [this, page](Page &rows) { keep(page, std::move(rows)); });
}

// The rows

void SkinListModel::reset(int count) {
    beginResetModel();
    m_count = count;
    m_pages.clear();
    m_ids.assign(static_cast<std::size_t>(count), 0);
    m_firstInView = 0;
    m_lastInView = 0;
    endResetModel();
}

void SkinListModel::keep(int page, Page rows) {
    m_wanted.erase(page);
    const int first = page * pageSize;
    const int count = std::min(pageSize, m_count - first); // by now there may be fewer in the index
    if (count <= 0)
        return;
    rows.resize(static_cast<std::size_t>(count));
    std::ranges::transform(rows, m_ids.begin() + first, &SkinRecord::id);
    m_pages.insert_or_assign(page, std::move(rows));
    if (m_pages.size() > maxPages) {
        std::set<int> pages;
        for (const auto &[number, kept] : m_pages) {
            if (number != page) // or who asked for it would ask for ever
                pages.insert(number);
        }
        m_pages.erase(farthest(pages));
    }
    Q_EMIT dataChanged(index(first), index(first + count - 1));
}

// Rows come and go at the end, and what is held on to moves: so each call says no more than what is true.
void SkinListModel::take(Renewal renewal) {
    const int before = m_count;
    if (renewal.count > before) {
        beginInsertRows({}, before, renewal.count - 1);
        m_count = renewal.count;
        m_ids.resize(static_cast<std::size_t>(m_count));
        endInsertRows();
    }
    Q_EMIT layoutAboutToBeChanged();
    movePersistentIndexes(renewal);
    m_firstInView = std::clamp(m_firstInView + renewal.shift, 0, m_count);
    m_lastInView = std::clamp(m_lastInView + renewal.shift, 0, m_count);
    m_pages.clear();
    m_wanted.clear();
    m_ids.assign(m_ids.size(), 0);
    for (auto [id, row] : renewal.rows.asKeyValueRange()) {
        if (row >= 0 && row < m_count)
            m_ids[static_cast<std::size_t>(row)] = id;
    }
    Q_EMIT layoutChanged();
    if (renewal.count < before) {
        beginRemoveRows({}, renewal.count, before - 1);
        m_count = renewal.count;
        m_ids.resize(static_cast<std::size_t>(m_count));
        endRemoveRows();
    }
    for (auto &[page, rows] : renewal.pages)
        keep(page, std::move(rows));
}

void SkinListModel::movePersistentIndexes(const Renewal &renewal) {
    const QModelIndexList indexes = persistentIndexList();
    QModelIndexList moved;
    for (const QModelIndex &index : indexes) {
        const std::int64_t id = m_ids[static_cast<std::size_t>(index.row())];
        // One that has come into view since the question was asked goes along with its neighbours.
        const int row = renewal.rows.value(id, index.row() + renewal.shift);
        const bool isThere = row >= 0 && row < renewal.count;
        moved.append(isThere ? createIndex(row, 0) : QModelIndex());
    }
    changePersistentIndexList(indexes, moved);
}

int SkinListModel::distance(int page) const {
    const int first = page * pageSize;
    return std::max({0, first - m_lastInView, m_firstInView - (first + pageSize - 1)});
}

int SkinListModel::farthest(const std::set<int> &pages) const {
    return *std::ranges::max_element(pages, {}, [this](int page) { return distance(page); });
}

const SkinRecord *SkinListModel::record(const QModelIndex &index) const {
    if (!index.isValid() || index.row() >= m_count)
        return nullptr;
    const auto page = m_pages.find(pageOf(index.row()));
    if (page == m_pages.end()) {
        want(pageOf(index.row()));
        return nullptr;
    }
    const SkinRecord &row = page->second[static_cast<std::size_t>(index.row() % pageSize)];
    return row.id != 0 ? &row : nullptr;
}

int SkinListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_count;
}

QVariant SkinListModel::data(const QModelIndex &index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole)
        return {};
    const SkinRecord *const skin = record(index);
    if (!skin)
        return {};
    if (role == Qt::ToolTipRole)
        return skin->name + QLatin1Char('\n') + skin->primaryPath;
    if (role == Qt::DisplayRole || skin->status == SkinStatus::ok)
        return skin->name;
    return skin->status == SkinStatus::partial ? tr("%1, partial").arg(skin->name)
                                               : tr("%1, cannot be read").arg(skin->name);
}

} // namespace vantor
