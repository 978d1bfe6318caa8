#include "LibraryBrowser/LibraryRecommendations.h"

#include "LibraryBrowser/LibraryBrowser.h"

namespace vantor {

LibraryRecommendations::LibraryRecommendations(LibraryBrowser &browser, QObject *parent)
    : QObject(parent), m_browser(browser) {
    connect(&browser, &LibraryBrowser::sourceChanged, this, [this] {
        m_shelves.clear();
        Q_EMIT changed();
    });
    connect(&browser, &LibraryBrowser::stateChanged, this, &LibraryRecommendations::load);
    connect(&browser, &LibraryBrowser::refreshed, this, &LibraryRecommendations::load);
    connect(&browser, &LibraryBrowser::changed, this, [this](const LibraryChange &change) {
        if (change.kind == LibraryChange::Kind::played)
            load(); // what was played lately is among them
    });
}

void LibraryRecommendations::open() {
    if (!std::exchange(m_isOpen, true))
        load();
}

void LibraryRecommendations::retry() {
    if (m_failure)
        load();
}

void LibraryRecommendations::load() {
    m_turn = std::make_shared<char>();
    m_isLoading = false;
    m_failure.reset();
    if (m_isOpen && m_browser.connected() &&
        m_browser.capabilities().testFlag(MusicBackendCapability::recommendations))
        read();
}

QCoro::Task<> LibraryRecommendations::read() {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_browser.connected();
    m_isLoading = true;
    Q_EMIT changed();
    std::vector<Shelf> shelves;
    std::optional<LibraryFailure> failure;
    try {
        const QList<RecommendationRow> rows = co_await backend->recommendationRows();
        std::vector<std::pair<RecommendationRow, QCoro::Task<QList<RecommendationItem>>>> answers;
        for (const RecommendationRow &row : rows) {
            if (row.isEnabledByDefault) // all are asked for from now on
                answers.emplace_back(row, backend->recommendationItems(row));
        }
        for (auto &[row, answer] : answers) {
            const QList<RecommendationItem> items = co_await answer;
            if (!items.isEmpty())
                shelves.push_back({row, items, nullptr});
        }
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (turn.expired())
        co_return;
    for (Shelf &shelf : shelves) {
        QList<LibraryItem> items;
        for (const RecommendationItem &item : shelf.references)
            items.append(LibraryItem::recommended(item));
        shelf.items = std::make_unique<LibraryListModel>(m_browser);
        shelf.items->showItems(items);
    }
    m_isLoading = false;
    m_failure = failure;
    std::swap(m_shelves, shelves); // the old ones go after changed()
    Q_EMIT changed();
}

void LibraryRecommendations::resolve(const RecommendationItem &item) {
    if (m_browser.connected())
        ask(item);
}

QCoro::Task<> LibraryRecommendations::ask(RecommendationItem item) {
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_browser.connected();
    RecommendationItem found;
    std::optional<LibraryFailure> failure;
    try {
        found = co_await backend->resolve(item);
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (turn.expired())
        co_return;
    if (failure)
        Q_EMIT m_browser.failed(failure->sentence);
    else
        Q_EMIT resolved(found);
}

} // namespace vantor
