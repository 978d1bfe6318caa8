#pragma once

#include "LibraryBrowser/LibraryListModel.h"
#include "LibraryBrowser/TrackListModel.h"
#include "MusicBackendKit/SearchResults.h"

#include <QTimer>

namespace vantor {

/// What the source that is browsed finds for a text, as it is typed. What was found stays until the next
/// answer is there; answers to a text that was changed meanwhile are dropped. Main thread; borrows the
/// browser.
class LibrarySearch : public QObject {
    Q_OBJECT

  public:
    static constexpr std::chrono::milliseconds typingPause{100};
    static constexpr int limit = 50; ///< of each kind

    explicit LibrarySearch(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Searches a moment later; blank: ends the search at once.
    void setText(const QString &text);
    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] bool isActive() const { return !m_text.isEmpty(); }
    /// Whether what is shown was found for the present text.
    [[nodiscard]] bool isSettled() const { return m_found == m_text; }
    /// Whether anything was found for the text before, so that there is something to show meanwhile.
    [[nodiscard]] bool hasResults() const;
    [[nodiscard]] const std::optional<LibraryFailure> &failure() const { return m_failure; }
    void retry();

    [[nodiscard]] LibraryListModel &artists() { return m_artists; }
    [[nodiscard]] LibraryListModel &albums() { return m_albums; }
    [[nodiscard]] TrackListModel &tracks() { return m_tracks; }

  Q_SIGNALS:
    void changed();

  private:
    QCoro::Task<> search();
    void show(const SearchResults &results);

    LibraryBrowser &m_browser;
    QString m_text;
    QString m_found; ///< the text that the results are of
    std::optional<LibraryFailure> m_failure;
    QTimer m_pause;
    LibraryListModel m_artists;
    LibraryListModel m_albums;
    TrackListModel m_tracks;
    std::shared_ptr<char> m_turn = std::make_shared<char>(); ///< whose answer is awaited
};

} // namespace vantor
