#pragma once

#include "LibraryBrowser/LibraryFailure.h"
#include "MusicBackendKit/Page.h"

#include <QCoroTask>
#include <QModelIndex>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace vantor {

/// The rows of a list that its source gives by the page. `Base` is a LibraryModel.
///
/// When the source knows how many there are, all rows are there at once and those that are looked at are
/// asked for; otherwise the pages follow one another as the end comes into view (fetchMore()). An answer to
/// what was asked before the source changed is dropped. Main thread.
template <typename Item, typename Base>
class PagedModel : public Base {
  public:
    using Source = std::function<QCoro::Task<Page<Item>>(PageRequest)>;
    static constexpr int pageSize = PageRequest::first().limit;
    static constexpr std::size_t mostRequests = 2; ///< at the same time

    explicit PagedModel(QObject *parent) : Base(parent) {
        m_askSoon.setSingleShot(true);
        QObject::connect(&m_askSoon, &QTimer::timeout, this, [this] { ask(); });
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : size();
    }
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override {
        return !parent.isValid() && m_next && !isLoading() && !Base::failure();
    }
    void fetchMore(const QModelIndex & /*parent*/) override {
        if (canFetchMore({}))
            load({*m_next, pageSize});
    }

    [[nodiscard]] bool isLoading() const override { return !m_running.empty(); }
    [[nodiscard]] bool hasAnswer() const override { return m_hasAnswer; }
    /// Whether every row is there and no more follow.
    [[nodiscard]] bool isComplete() const { return m_hasAnswer && !m_next && m_missing == 0; }

    void retry() override {
        if (!Base::failure())
            return;
        Base::setFailure(std::nullopt);
        if (m_replaces || !m_hasAnswer)
            load({0, pageSize});
        else if (m_next)
            load({*m_next, pageSize});
        else if (m_stale.contains(0))
            want(0);
        tellAllChanged(); // what is in view asks again
        ask();
        Q_EMIT this->stateChanged();
    }

    /// Reads all that is missing, too.
    void loadAll() {
        m_loadsAll = true;
        ask();
    }

    /// Whatever the rows show may have changed: they stay until what is looked at has come anew.
    void refresh() {
        if (!m_source)
            return;
        beginTurn();
        if (!m_hasAnswer || m_next || !m_hasTotal) {
            m_replaces = true;
            load({0, pageSize});
            return;
        }
        for (int page = 0; page * pageSize < size(); ++page)
            m_stale.insert(page);
        m_stale.insert(0); // an empty list, too
        want(0);
        tellAllChanged();
    }

  protected:
    /// Forgets all rows and asks for the first ones.
    void setSource(const Source &source) {
        beginTurn();
        m_source = source;
        m_replaces = false;
        m_loadsAll = false;
        reset({});
        m_hasAnswer = false;
        if (m_source)
            load({0, pageSize});
        else
            Q_EMIT this->stateChanged();
    }

    /// These rows and no source.
    void setRows(const QList<Item> &items) {
        beginTurn();
        m_source = nullptr;
        m_loadsAll = false;
        reset(Page<Item>::last(items));
        m_hasAnswer = true;
        Q_EMIT this->stateChanged();
    }

    /// None for a row that is not there yet. `asks` for it, or for a newer one.
    [[nodiscard]] const Item *stored(int row, bool asks = true) const {
        if (row < 0 || row >= size())
            return nullptr;
        const std::optional<Item> &found = m_rows[static_cast<std::size_t>(row)];
        if (asks && (!found || m_stale.contains(row / pageSize)))
            want(row / pageSize);
        return found ? &*found : nullptr;
    }

    /// Changes the rows that are there: `change` returns whether it did. Returns whether any was.
    bool changeRows(const std::function<bool(Item &)> &change) {
        bool any = false;
        for (std::optional<Item> &row : m_rows)
            any = (row && change(*row)) || any;
        if (any)
            tellAllChanged();
        return any;
    }

    virtual void rowsWillBeRemoved() {}
    /// Rows came, went or changed.
    virtual void rowsTaken() {}

  private:
    [[nodiscard]] int size() const { return static_cast<int>(m_rows.size()); }

    void beginTurn() {
        m_turn = std::make_shared<char>();
        m_running.clear();
        m_wanted.clear();
        m_stale.clear();
        Base::setFailure(std::nullopt);
    }

    void tellAllChanged() {
        if (size() > 0)
            Q_EMIT this->dataChanged(this->index(0, 0), this->index(size() - 1, this->columnCount() - 1));
    }

    void want(int page) const {
        if (m_running.contains(page * pageSize) || (!m_wanted.empty() && m_wanted.front() == page))
            return;
        std::erase(m_wanted, page);
        m_wanted.push_front(page); // what was looked at last comes first
        constexpr std::size_t mostWanted = 8;
        if (m_wanted.size() > mostWanted) // has been scrolled away
            m_wanted.pop_back();
        m_askSoon.start(0);
    }

    void ask() {
        if (!m_source)
            return;
        while (m_running.size() < mostRequests && !Base::failure() && !m_wanted.empty()) {
            const int page = m_wanted.front();
            m_wanted.pop_front();
            if (const auto request = missingIn(page))
                load(*request);
        }
        if (m_loadsAll && !isLoading() && !Base::failure() && !isComplete() && m_hasAnswer)
            loadMissing();
    }

    void loadMissing() {
        if (m_next) {
            load({*m_next, pageSize});
            return;
        }
        const auto hole = std::find(m_rows.begin(), m_rows.end(), std::nullopt);
        if (const auto request = missingIn(static_cast<int>(hole - m_rows.begin()) / pageSize))
            load(*request);
    }

    /// What has to be asked for of a page; none when nothing is missing or it is being asked for.
    [[nodiscard]] std::optional<PageRequest> missingIn(int page) const {
        int first = page * pageSize;
        const int end = std::min(first + pageSize, size());
        if (m_running.contains(first))
            return std::nullopt;
        if (m_stale.contains(page))
            return PageRequest{first, pageSize};
        while (first < end && m_rows[static_cast<std::size_t>(first)])
            ++first; // a source may have given less than a page
        return first < end ? std::optional(PageRequest{first, end - first}) : std::nullopt;
    }

    QCoro::Task<> load(PageRequest request) {
        const std::weak_ptr<char> turn = m_turn;
        m_running.insert(request.offset / pageSize * pageSize);
        if (m_running.size() == 1)
            Q_EMIT this->stateChanged();
        Page<Item> page;
        std::optional<LibraryFailure> failure;
        try {
            const Source source = m_source;
            page = co_await source(request);
        } catch (...) {
            failure = LibraryFailure::of(std::current_exception());
        }
        if (turn.expired()) // other rows are asked for now, or none
            co_return;
        m_running.erase(request.offset / pageSize * pageSize);
        if (failure)
            Base::setFailure(failure);
        else
            take(request, page);
        Q_EMIT this->stateChanged();
        if (!turn.expired())
            ask();
    }

    void take(PageRequest request, const Page<Item> &page) {
        if (std::exchange(m_replaces, false) || !m_hasAnswer) {
            m_hasAnswer = true;
            reset(page);
            return;
        }
        m_stale.erase(request.offset / pageSize);
        const int end = request.offset + static_cast<int>(page.items.size());
        if (m_hasTotal)
            // A page that is empty is the end, whatever total the source tells.
            resize(page.items.isEmpty() ? std::min(size(), request.offset)
                                        : std::max(page.total.value_or(size()), end));
        const int first = m_hasTotal ? request.offset : size();
        if (!m_hasTotal)
            resize(first + static_cast<int>(page.items.size()));
        fill(first, page.items);
        m_next = m_hasTotal ? std::nullopt : following(request, page);
        rowsTaken();
    }

    void reset(const Page<Item> &page) {
        this->beginResetModel();
        m_hasTotal = page.total.has_value();
        const qsizetype count =
            std::max<qsizetype>(page.items.size(), page.items.isEmpty() ? 0 : page.total.value_or(0));
        m_rows.assign(static_cast<std::size_t>(count), std::nullopt);
        m_missing = count - page.items.size();
        for (qsizetype i = 0; i < page.items.size(); ++i)
            m_rows[static_cast<std::size_t>(i)] = page.items[i];
        m_next = m_hasTotal ? std::nullopt : following({0, pageSize}, page);
        this->endResetModel();
        rowsTaken();
    }

    // A source that does not get on would never end.
    [[nodiscard]] static std::optional<int> following(PageRequest request, const Page<Item> &page) {
        return page.nextOffset && *page.nextOffset > request.offset ? page.nextOffset : std::nullopt;
    }

    void resize(int count) {
        if (count > size()) {
            this->beginInsertRows({}, size(), count - 1);
            m_missing += count - size();
            m_rows.resize(static_cast<std::size_t>(count));
            this->endInsertRows();
        } else if (count < size()) {
            rowsWillBeRemoved();
            this->beginRemoveRows({}, count, size() - 1);
            m_missing -= std::count(m_rows.begin() + count, m_rows.end(), std::nullopt);
            m_rows.resize(static_cast<std::size_t>(count));
            this->endRemoveRows();
        }
    }

    void fill(int first, const QList<Item> &items) {
        if (items.isEmpty())
            return;
        for (qsizetype i = 0; i < items.size(); ++i) {
            std::optional<Item> &row = m_rows[static_cast<std::size_t>(first + i)];
            if (!row)
                --m_missing;
            row = items[i];
        }
        Q_EMIT this->dataChanged(
            this->index(first, 0),
            this->index(first + static_cast<int>(items.size()) - 1, this->columnCount() - 1));
    }

    Source m_source;
    std::vector<std::optional<Item>> m_rows;
    qsizetype m_missing = 0;   ///< of the rows
    std::optional<int> m_next; ///< where the next page begins, when the source does not know the total
    bool m_hasTotal = false;
    bool m_hasAnswer = false;
    bool m_replaces = false; ///< the next answer takes the place of all rows
    bool m_loadsAll = false;
    std::set<int> m_running;          ///< the first rows of the pages that are asked for
    std::set<int> m_stale;            ///< pages
    mutable std::deque<int> m_wanted; ///< pages
    mutable QTimer m_askSoon;
    /// Whose answers are awaited: those that come in another turn, or none, are dropped.
    std::shared_ptr<char> m_turn = std::make_shared<char>();
};

} // namespace vantor
