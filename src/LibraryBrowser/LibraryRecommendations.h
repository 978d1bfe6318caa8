#pragma once

#include "LibraryBrowser/LibraryListModel.h"

#include <memory>
#include <vector>

namespace vantor {

/// The rows of recommendations of the source that is browsed, each with its items. Main thread; borrows the
/// browser.
class LibraryRecommendations : public QObject {
    Q_OBJECT

  public:
    struct Shelf {
        RecommendationRow row;
        QList<RecommendationItem> references; ///< of the items, one each
        std::unique_ptr<LibraryListModel> items;
    };

    explicit LibraryRecommendations(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Asks for them, now or as soon as a source is connected.
    void open();
    /// Those that have something to show, in the source's order. They live until changed().
    [[nodiscard]] const std::vector<Shelf> &shelves() const { return m_shelves; }
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] const std::optional<LibraryFailure> &failure() const { return m_failure; }
    void retry();

    /// Finds the record behind an item; resolved() or LibraryBrowser::failed() tells.
    void resolve(const RecommendationItem &item);

  Q_SIGNALS:
    void changed();
    void resolved(const vantor::RecommendationItem &item);

  private:
    void load();
    QCoro::Task<> read();
    QCoro::Task<> ask(RecommendationItem item);

    LibraryBrowser &m_browser;
    bool m_isOpen = false;
    bool m_isLoading = false;
    std::vector<Shelf> m_shelves;
    std::optional<LibraryFailure> m_failure;
    std::shared_ptr<char> m_turn = std::make_shared<char>(); ///< whose answers are awaited
};

} // namespace vantor
