#pragma once

#include "SkinBrowser/SkinIndexReader.h"

#include <QAbstractListModel>

#include <deque>
#include <map>
#include <set>
#include <vector>

class QTimer;

namespace vantor {

class SkinLibraryError;

/// What a search and a status filter find in the skin index, in the index's order, one skin a row.
///
/// Rows are read by the page as they are asked for; until its page has come, a row has no data. A page is
/// asked for once, one at a time, and those nearest to what is seen are read first and kept longest. A new
/// query leaves the rows as they are until its own have come. Main thread; nothing blocks.
class SkinListModel : public QAbstractListModel {
    Q_OBJECT

  public:
    static constexpr int pageSize = 100;
    static constexpr int maxPages = 24;

    explicit SkinListModel(const QUrl &index, QObject *parent = nullptr);
    ~SkinListModel() override;

    /// Ends what is being read for the query before. Limit and offset are the model's own.
    void setQuery(const SkinQuery &query);
    [[nodiscard]] const SkinQuery &query() const { return m_query; }
    /// Whether the rows are not yet those of the query.
    [[nodiscard]] bool isQuerying() const { return m_querying; }
    /// Why the index could not be read, as a sentence for the user; empty when it could.
    [[nodiscard]] const QString &problem() const { return m_problem; }

    /// The rows may have changed: reads those in view again. Persistent indexes follow their skins, also to
    /// other rows, and become invalid when these have gone.
    void refresh();
    /// The rows that are seen, which refresh() brings back at once.
    void setInView(int first, int last);
    /// Asks in which row a skin stands; located() tells.
    void locate(std::int64_t id);
    /// Lets go of the index's file. refresh() and setQuery() open it again.
    void closeIndex();

    /// Without read-me and warnings. None for a row that is not read yet, which is asked for.
    [[nodiscard]] const SkinRecord *record(const QModelIndex &index) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    /// The name, with the file for a tool tip, and for assistive tools with what is wrong with the skin.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

  Q_SIGNALS:
    /// The rows are those of the query now, or reading them has failed.
    void queried();
    void renewed(); ///< what refresh() asked for is there
    void located(std::int64_t id, std::optional<int> row);

  private:
    using Page = std::vector<SkinRecord>;
    /// What refresh() reads.
    struct Renewal {
        int count = 0;
        std::map<int, Page> pages;
        QHash<std::int64_t, int> rows; ///< of the skins that are held on to; −1 for one that has gone
        int shift = 0;                 ///< by which the first row in view has moved
    };

    /// What a renewal has to find again.
    struct Held {
        std::vector<std::int64_t> ids;
        std::int64_t first = 0; ///< in view; 0 when it is not known
        int firstRow = 0;
        int lastRow = 0;
    };

    [[nodiscard]] static Renewal readAgain(SkinIndexStore &store, const SkinQuery &query, const Held &held);
    [[nodiscard]] Held held() const;
    /// Reads what is wanted next, if nothing is being read.
    void readOn();
    void readQuery();
    void readRenewal();
    void readPlace(std::int64_t id);
    void readPage(int page);
    template <typename Answer>
    void ask(std::function<Answer(SkinIndexStore &)> question, std::function<void(Answer &)> taken);
    void fail(const SkinLibraryError &error);

    void reset(int count);
    void take(Renewal renewal);
    void movePersistentIndexes(const Renewal &renewal);
    void want(int page) const;
    void keep(int page, Page rows);
    /// From the page to the nearest row that is seen, in rows.
    [[nodiscard]] int distance(int page) const;
    [[nodiscard]] int farthest(const std::set<int> &pages) const;

    const QUrl m_index;
    std::unique_ptr<SkinIndexReader> m_reader; ///< none while the file is let go
    SkinQuery m_query;
    QString m_problem;
    int m_count = 0;
    std::map<int, Page> m_pages;
    std::vector<std::int64_t> m_ids; ///< by row, also of pages that are not kept; 0 for a row never read
    int m_firstInView = 0;
    int m_lastInView = 0;

    // What is to be read, in this order.
    bool m_querying = false;
    bool m_renewing = false;
    std::deque<std::int64_t> m_places;
    mutable std::set<int> m_wanted; ///< pages
    QTimer *const m_readSoon;
    bool m_isReading = false;
    int m_turn = 0; ///< answers to older ones are not taken any more
};

} // namespace vantor
