#pragma once

#include "LibraryBrowser/LibraryFailure.h"
#include "MusicBackendKit/Page.h"

#include <QCoroTask>
#include <QModelIndex>
#include <QTimer>

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

namespace vantor {

/// The rows of a list that its source gives by the page. `Base` is a LibraryModel.
///
/// When the source knows how many there are, all rows are there at once and those that are looked at are
/// asked for; otherwise the pages follow one another as the end comes into view (fetchMore()). An answer to
/// what was asked before the source changed is dropped. Main thread.
///
/// A view may call anything from within any signal: what is to be asked next follows from the state alone
/// (nextRequest()), is never asked for by the model in the midst of a change, and rows are filled before they
/// are announced.
template <typename Item, typename Base>
class PagedModel : public Base {
  public:
    using Source = std::function<QCoro::Task<Page<Item>>(PageRequest)>;
    static constexpr int pageSize = PageRequest::first().limit;
    static constexpr std::size_t mostRequests = 2; ///< at the same time
    static constexpr int maxRows = 1'000'000;      ///< whatever a source tells

    explicit PagedModel(QObject *parent) : Base(parent) {
        m_askSoon.setSingleShot(true);
        QObject::connect(&m_askSoon, &QTimer::timeout, this, [this] { ask(); });
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : m_count;
    }
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override {
        return !parent.isValid() && m_next && !m_wantsMore && !isLoading() && !Base::failure();
    }
    void fetchMore(const QModelIndex &parent) override {
        if (!canFetchMore(parent))
            return;
        m_wantsMore = true;
        m_askSoon.start(0);
    }

    [[nodiscard]] bool isLoading() const override { return !m_running.empty(); }
    [[nodiscard]] bool hasAnswer() const override { return m_hasAnswer; }
    /// Whether every row is there and no more follow.
    [[nodiscard]] bool isComplete() const { return m_hasAnswer && !m_next && missing() == 0; }

    void retry() override {
        if (!Base::failure())
            return;
        Base::setFailure(std::nullopt);
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
        m_replaces = !m_hasAnswer || !m_hasTotal;
        if (!m_replaces) {
            for (int page = 0; page == 0 || page * pageSize < m_count; ++page) // of an empty list, too
                m_stale.insert(page);
            m_wanted.push_front(0);
            tellAllChanged();
        }
        ask();
    }

  protected:
    /// Forgets all rows and asks for the first ones.
    void setSource(const Source &source) {
        beginTurn();
        m_source = source;
        m_loadsAll = false;
        m_hasAnswer = false;
        reset({});
        if (m_source)
            ask();
        else
            Q_EMIT this->stateChanged();
    }

    /// These rows and no source.
    void setRows(const QList<Item> &items) {
        beginTurn();
        m_source = nullptr;
        m_loadsAll = false;
        m_hasAnswer = true;
        reset(Page<Item>::last(items));
        Q_EMIT this->stateChanged();
    }

    /// None for a row that is not there yet. `asks` for it, or for a newer one. Holds until rows change.
    [[nodiscard]] const Item *stored(int row, bool asks = true) const {
        if (row < 0 || row >= m_count)
            return nullptr;
        const auto found = m_rows.find(row);
        if (asks && (found == m_rows.end() || m_stale.contains(row / pageSize)))
            want(row / pageSize);
        return found == m_rows.end() ? nullptr : &found->second;
    }

    /// Changes the rows that are there: `change` returns whether it did. Returns whether any was.
    bool changeRows(const std::function<bool(Item &)> &change) {
        bool any = false;
        for (auto &[row, item] : m_rows)
            any = change(item) || any;
        if (any)
            tellAllChanged();
        return any;
    }

    /// Whether rows that are there are still to come anew.
    [[nodiscard]] bool isOutdated() const { return m_replaces || !m_stale.empty(); }

    virtual void rowsWillBeRemoved() {} ///< from the end
    virtual void rowsAreReplaced() {}   ///< all of them, in the midst of a reset
    /// Rows came, went or changed.
    virtual void rowsTaken() {}

  private:
    [[nodiscard]] int missing() const { return m_count - static_cast<int>(m_rows.size()); }

    void beginTurn() {
        m_turn = std::make_shared<char>();
        m_running.clear();
        m_wanted.clear();
        m_hasForgotten = false;
        m_wantsMore = false;
        m_replaces = false;
        m_stale.clear();
        Base::setFailure(std::nullopt);
    }

    void tellChanged(int first, int end) {
        if (first < end)
            Q_EMIT this->dataChanged(this->index(first, 0), this->index(end - 1, this->columnCount() - 1));
    }
    void tellAllChanged() { tellChanged(0, m_count); }

    void want(int page) const {
        if (m_running.contains(page) || (!m_wanted.empty() && m_wanted.front() == page))
            return;
        std::erase(m_wanted, page);
        m_wanted.push_front(page); // what was looked at last comes first
        constexpr std::size_t mostWanted = 8;
        if (m_wanted.size() > mostWanted) { // has been scrolled away, most likely
            m_wanted.pop_back();
            m_hasForgotten = true;
        }
        m_askSoon.start(0);
    }

    /// Asks for what is to be asked for now. Called again while it does so, it goes on where it is.
    void ask() {
        if (std::exchange(m_isAsking, true))
            return;
        std::size_t asked = 0;
        while (const auto request = nextRequest()) {
            load(*request);
            if (++asked == mostRequests) { // others have their turn when a source answers at once
                m_askSoon.start(0);
                break;
            }
        }
        m_isAsking = false;
        // Who still looks at what was forgotten wants it again.
        if (m_wanted.empty() && !isLoading() && std::exchange(m_hasForgotten, false))
            tellAllChanged();
    }

    [[nodiscard]] std::optional<PageRequest> nextRequest() {
        if (!m_source || Base::failure() || m_running.size() >= mostRequests)
            return std::nullopt;
        if (m_replaces || !m_hasAnswer)
            return isLoading() ? std::nullopt : std::optional(PageRequest::first());
        while (!m_wanted.empty()) {
            const int page = m_wanted.front();
            m_wanted.pop_front();
            if (const auto request = missingIn(page))
                return request;
        }
        if (isLoading() || !(m_loadsAll || m_wantsMore))
            return std::nullopt;
        if (m_next)
            return PageRequest{*m_next, pageSize};
        return m_loadsAll ? firstMissing() : std::nullopt;
    }

    /// What has to be asked for of a page; none when nothing is missing or it is being asked for.
    [[nodiscard]] std::optional<PageRequest> missingIn(int page) const {
        int first = page * pageSize;
        const int end = std::min(first + pageSize, m_count);
        if (m_running.contains(page))
            return std::nullopt;
        if (m_stale.contains(page))
            return PageRequest{first, pageSize};
        while (first < end && m_rows.contains(first))
            ++first; // a source may have given less than a page
        return first < end ? std::optional(PageRequest{first, end - first}) : std::nullopt;
    }

    [[nodiscard]] std::optional<PageRequest> firstMissing() {
        if (!m_stale.empty())
            return missingIn(*m_stale.begin());
        while (m_rows.contains(m_firstMissing))
            ++m_firstMissing;
        return missingIn(m_firstMissing / pageSize);
    }

    QCoro::Task<> load(PageRequest request) {
        const std::weak_ptr<char> turn = m_turn;
        const Source source = m_source;
        const int number = request.offset / pageSize;
        m_running.insert(number);
        if (m_running.size() == 1)
            Q_EMIT this->stateChanged();
        if (turn.expired()) // other rows are asked for now, or none
            co_return;
        Page<Item> page;
        std::optional<LibraryFailure> failure;
        try {
            page = co_await source(request);
        } catch (...) {
            failure = LibraryFailure::of(std::current_exception());
        }
        if (turn.expired())
            co_return;
        m_running.erase(number);
        if (failure) {
            m_wanted.push_front(number); // for another try
            Base::setFailure(failure);
        } else {
            take(request, page);
        }
        if (!turn.expired())
            Q_EMIT this->stateChanged();
        if (!turn.expired())
            ask();
    }

    void take(PageRequest request, const Page<Item> &page) {
        if (m_replaces || !m_hasAnswer) {
            m_replaces = false;
            m_hasAnswer = true;
            reset(page);
            return;
        }
        if (m_hasTotal && !page.total) { // a source that knows no more how many there are: from the beginning
            beginTurn();
            m_replaces = true;
            m_askSoon.start(0);
            return;
        }
        m_next = m_hasTotal ? std::nullopt : following(request, page);
        m_wantsMore = false;
        m_stale.erase(request.offset / pageSize);
        if (!m_hasTotal)
            request.offset = m_count;
        const int first = placeOf(page, request);
        const int end = lastPlace(first + page.items.size());
        // A page that is empty is the end, whatever total the source tells.
        const int count = page.items.isEmpty() ? std::min(m_count, request.offset)
                          : m_hasTotal         ? std::max(lastPlace(page.total.value_or(m_count)), end)
                                               : end;
        removeFrom(count);
        fill(first, page.items);
        // All that was asked for: who looks at what has not come asks once more.
        tellChanged(std::min(first, request.offset),
                    std::min(m_count, std::max(end, request.offset + request.limit)));
        if (count > m_count) {
            this->beginInsertRows({}, m_count, count - 1);
            m_count = count;
            fill(first, page.items);
            this->endInsertRows();
        }
        rowsTaken();
    }

    /// A source may give the whole list, whatever page it was asked for.
    [[nodiscard]] int placeOf(const Page<Item> &page, const PageRequest &request) const {
        const bool holdsWhatWasAskedFor = page.offset >= 0 && page.offset <= request.offset &&
                                          request.offset - page.offset < static_cast<int>(page.items.size());
        return m_hasTotal && holdsWhatWasAskedFor ? page.offset : request.offset;
    }

    [[nodiscard]] static int lastPlace(qsizetype place) {
        return static_cast<int>(std::clamp<qsizetype>(place, 0, maxRows));
    }

    void reset(const Page<Item> &page) {
        this->beginResetModel();
        rowsAreReplaced();
        m_hasTotal = page.total.has_value();
        m_next = m_hasTotal ? std::nullopt : following(PageRequest::first(), page);
        m_rows.clear();
        m_firstMissing = 0;
        m_count = page.items.isEmpty()
                      ? 0
                      : std::max(lastPlace(page.items.size()), lastPlace(page.total.value_or(0)));
        fill(0, page.items);
        this->endResetModel();
        rowsTaken();
    }

    // A source that does not get on would never end.
    [[nodiscard]] std::optional<int> following(PageRequest request, const Page<Item> &page) const {
        const bool getsOn = page.nextOffset && *page.nextOffset > request.offset && !page.items.isEmpty() &&
                            m_count < maxRows;
        return getsOn ? page.nextOffset : std::nullopt;
    }

    void removeFrom(int count) {
        if (count >= m_count)
            return;
        rowsWillBeRemoved();
        this->beginRemoveRows({}, count, m_count - 1);
        for (int row = count; row < m_count; ++row)
            m_rows.erase(row);
        m_count = count;
        m_firstMissing = std::min(m_firstMissing, count);
        std::erase_if(m_stale, [&](int page) { return page * pageSize >= count; });
        this->endRemoveRows();
    }

    void fill(int first, const QList<Item> &items) {
        const int end = std::min(lastPlace(first + items.size()), m_count);
        for (int row = first; row < end; ++row)
            m_rows.insert_or_assign(row, items[row - first]);
        for (int page = (first + pageSize - 1) / pageSize; page * pageSize < end; ++page) {
            if ((page + 1) * pageSize <= end || end == m_count)
                m_stale.erase(page);
        }
    }

    Source m_source;
    int m_count = 0;
    std::unordered_map<int, Item> m_rows;
    int m_firstMissing = 0;    ///< of the rows, or one before it
    std::optional<int> m_next; ///< where the next page begins, when the source does not know the total
    bool m_hasTotal = false;
    bool m_hasAnswer = false;
    bool m_replaces = false; ///< the next answer takes the place of all rows
    bool m_loadsAll = false;
    bool m_wantsMore = false;            ///< the next page
    bool m_isAsking = false;             ///< ask() is at work
    mutable bool m_hasForgotten = false; ///< something that was wanted
    std::set<int> m_running;             ///< pages that are asked for
    std::set<int> m_stale;               ///< pages
    mutable std::deque<int> m_wanted;    ///< pages
    mutable QTimer m_askSoon;
    /// Whose answers are awaited: those that come in another turn, or none, are dropped.
    std::shared_ptr<char> m_turn = std::make_shared<char>();
};

} // namespace vantor
