#include "SkinMuseum/Model/MuseumListModel.h"

#include "SkinMuseum/Client/MuseumClient.h"

#include <QPointer>

namespace vantor {

namespace {

constexpr int pageSize = MuseumQuery::pageSize;
constexpr int lookAhead = pageSize / 2; // rows beyond those in view that are read too
constexpr std::chrono::seconds patience{2};

} // namespace

MuseumListModel::MuseumListModel(MuseumClient &client, QObject *parent)
    : QAbstractListModel(parent), m_client(client) {
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, &MuseumListModel::blankRows);
}

// Rows

int MuseumListModel::start(int page) const {
    int row = 0;
    for (int i = 0; i < page; ++i)
        row += m_pages[static_cast<std::size_t>(i)].size;
    return row;
}

int MuseumListModel::pageOf(int row) const {
    int page = 0;
    while (row >= m_pages[static_cast<std::size_t>(page)].size)
        row -= m_pages[static_cast<std::size_t>(page++)].size;
    return page;
}

int MuseumListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : start(static_cast<int>(m_pages.size()));
}

const MuseumSkin *MuseumListModel::skin(const QModelIndex &index) const {
    if (!index.isValid())
        return nullptr;
    const int number = pageOf(index.row());
    const Page &page = m_pages[static_cast<std::size_t>(number)];
    return page.skins.isEmpty() ? nullptr : &page.skins[index.row() - start(number)];
}

QStringList MuseumListModel::md5s() const {
    QStringList md5s;
    for (const Page &page : m_pages) {
        for (const MuseumSkin &skin : page.skins)
            md5s.append(skin.md5);
    }
    return md5s;
}

QVariant MuseumListModel::data(const QModelIndex &index, int role) const {
    const MuseumSkin *const shown = skin(index);
    if (!shown || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole))
        return {};
    return role == Qt::AccessibleTextRole && m_spoken ? m_spoken(*shown) : shown->title();
}

// Queries

void MuseumListModel::setQuery(const QString &text, bool includeNSFW) {
    const QString words = text.simplified();
    const MuseumQuery query =
        words.isEmpty() ? MuseumQuery::browse(includeNSFW) : MuseumQuery::search(words, includeNSFW);
    if (query == m_query && (m_hasAnswer || m_isQuerying))
        return;
    m_query = query;
    if (m_pages.empty())
        setPageCount(1, std::nullopt);
    m_patience.start();
    begin();
    setNotice(Notice::none, std::nullopt);
}

void MuseumListModel::begin() {
    ++m_turn;
    m_isQuerying = true;
    m_isHeldUp = false;
    m_isReading = true;
    read(0, m_turn);
}

void MuseumListModel::retry() {
    if (!m_hasAnswer) {
        begin();
        Q_EMIT stateChanged();
        return;
    }
    forgetFailures();
    readOn();
    if (!m_isReading) // nothing that is in view is missing
        setNotice(Notice::none, std::nullopt);
}

void MuseumListModel::takeHeldUp() {
    m_isHeldUp = true;
    blankRows();
    Q_EMIT stateChanged();
}

/// What is there is not what is asked for.
void MuseumListModel::blankRows() {
    if (!m_isQuerying || m_pages.empty())
        return;
    beginResetModel();
    m_pages.assign(1, Page{.skins = {}, .size = pageSize});
    endResetModel();
}

void MuseumListModel::setInView(int first, int last) {
    m_firstInView = first;
    m_lastInView = last;
    readOn();
}

void MuseumListModel::setNotice(Notice notice, const std::optional<MuseumError> &error) {
    m_notice = notice;
    m_error = error;
    Q_EMIT stateChanged();
}

// Reading

/// Of the page, whose first row is `first`, from what is in view.
int MuseumListModel::distance(int first, const Page &page) const {
    const int last = first + std::max(1, page.size) - 1;
    return std::max({0, first - m_lastInView, m_firstInView - last});
}

std::optional<int> MuseumListModel::wanted() const {
    std::optional<int> nearest;
    int least = lookAhead + 1;
    int first = 0;
    for (std::size_t i = 0; i < m_pages.size(); first += m_pages[i++].size) {
        if (first - m_lastInView > lookAhead)
            break;
        const bool isMissing = m_pages[i].state == State::unread || m_pages[i].state == State::provisional;
        if (const int away = distance(first, m_pages[i]); isMissing && away < least) {
            nearest = static_cast<int>(i);
            least = away;
        }
    }
    return nearest;
}

/// They are wanted again.
void MuseumListModel::forgetFailures() {
    for (Page &page : m_pages) {
        if (page.state == State::failed)
            page.state = page.skins.isEmpty() ? State::unread : State::provisional;
    }
}

void MuseumListModel::readOn() {
    if (m_isReading || !m_hasAnswer)
        return;
    if (const std::optional<int> page = wanted()) {
        m_isReading = true;
        read(*page, m_turn);
    }
}

QCoro::Task<> MuseumListModel::read(int page, int turn) {
    const QPointer<MuseumListModel> self(this);
    const MuseumQuery query = m_query.at(page * pageSize);
    const std::optional<MuseumClient::CachedPage> cached = co_await m_client.cachedPage(query);
    if (!self || turn != m_turn)
        co_return;
    const bool isShown = !m_isQuerying && m_pages[static_cast<std::size_t>(page)].state == State::provisional;
    if (cached && !isShown)
        take(page, cached->page, State::provisional);
    const MuseumClient::HeldUp heldUp = [self, turn] {
        if (self && turn == self->m_turn)
            self->takeHeldUp();
    };
    std::optional<MuseumPage> answer;
    std::optional<MuseumError> error;
    try {
        answer = co_await m_client.page(query, heldUp);
    } catch (const MuseumError &thrown) {
        error = thrown;
    }
    if (!self || turn != m_turn)
        co_return;
    m_isReading = false;
    m_isHeldUp = false;
    m_patience.stop();
    if (answer) {
        take(page, std::move(*answer), State::read);
        forgetFailures(); // the museum is there again
    } else if (!m_isQuerying) {
        m_pages[static_cast<std::size_t>(page)].state = State::failed;
    }
    if (m_isQuerying) { // there is nothing to show for it
        beginResetModel();
        m_pages.clear();
        m_isQuerying = false;
        m_hasAnswer = false;
        endResetModel();
    }
    if (!error)
        setNotice(Notice::none, std::nullopt);
    else
        setNotice(cached && *error == MuseumError::offline() ? Notice::cached : Notice::failed, error);
    readOn();
}

void MuseumListModel::take(int page, MuseumPage answer, State state) {
    if (!m_query.includeNSFW()) // whatever the museum thinks of it
        answer.skins.removeIf([](const MuseumSkin &skin) { return skin.nsfw; });
    const bool isFirst = std::exchange(m_isQuerying, false);
    if (isFirst) {
        beginResetModel();
        m_pages.assign(1, {});
        m_firstInView = m_lastInView = 0;
        m_hasAnswer = true;
    }
    const int read = static_cast<int>(answer.skins.size());
    const int before = m_pages[static_cast<std::size_t>(page)].size;
    if (isFirst)
        m_pages[0].size = read;
    else
        setSize(page, read);
    m_pages[static_cast<std::size_t>(page)].skins = std::move(answer.skins);
    m_pages[static_cast<std::size_t>(page)].state = state;
    if (isFirst)
        endResetModel();
    int pages = page + 1;
    if (answer.hasMore && answer.total)
        pages = (*answer.total + pageSize - 1) / pageSize;
    else if (answer.hasMore)
        pages = std::max(page + 2, static_cast<int>(m_pages.size()));
    setPageCount(pages, answer.total);
    if (before > 0)
        tell(page);
    forgetFarPages();
    Q_EMIT pageRead();
    if (isFirst)
        Q_EMIT stateChanged();
}

void MuseumListModel::setSize(int page, int size) {
    Page &changed = m_pages[static_cast<std::size_t>(page)];
    const int first = start(page);
    if (size < changed.size) {
        beginRemoveRows({}, first + size, first + changed.size - 1);
        changed.size = size;
        changed.skins.resize(std::min<qsizetype>(changed.skins.size(), size));
        endRemoveRows();
    } else if (size > changed.size) {
        beginInsertRows({}, first + changed.size, first + size - 1);
        changed.size = size;
        changed.skins.clear();
        endInsertRows();
    }
}

void MuseumListModel::setPageCount(int count, const std::optional<int> &total) {
    const int before = static_cast<int>(m_pages.size());
    if (count < before) {
        const int first = start(count);
        const int end = start(before);
        if (first < end)
            beginRemoveRows({}, first, end - 1);
        m_pages.resize(static_cast<std::size_t>(count));
        if (first < end)
            endRemoveRows();
    } else if (count > before) {
        const int last = total ? *total - (count - 1) * pageSize : pageSize;
        const int first = start(before);
        beginInsertRows({}, first, first + (count - before - 1) * pageSize + last - 1);
        m_pages.resize(static_cast<std::size_t>(count), Page{.skins = {}, .size = pageSize});
        m_pages.back().size = last;
        endInsertRows();
    }
}

void MuseumListModel::forgetFarPages() {
    int kept = 0;
    std::size_t farthest = 0;
    int most = -1;
    int first = 0;
    for (std::size_t i = 0; i < m_pages.size(); first += m_pages[i++].size) {
        if (m_pages[i].skins.isEmpty())
            continue;
        ++kept;
        if (const int away = distance(first, m_pages[i]); away > most) {
            farthest = i;
            most = away;
        }
    }
    if (kept <= maxPages)
        return;
    m_pages[farthest].skins.clear();
    m_pages[farthest].state = State::unread;
    tell(static_cast<int>(farthest));
}

void MuseumListModel::tell(int page) {
    const int first = start(page);
    const int size = m_pages[static_cast<std::size_t>(page)].size;
    if (size > 0)
        Q_EMIT dataChanged(index(first), index(first + size - 1));
}

} // namespace vantor
