#pragma once

#include "SkinMuseum/MuseumError.h"
#include "SkinMuseum/Wire/MuseumPage.h"

#include <QAbstractListModel>
#include <QCoroTask>
#include <QTimer>

#include <functional>
#include <vector>

namespace vantor {

class MuseumClient;

/// What the museum shows, or finds for a text, one skin a row.
///
/// Pages are read one at a time as their rows come into view, those in view first; until then their rows have
/// no data. Where the museum tells how many skins there are, all rows are there from the beginning; otherwise
/// they grow by a page. What was seen before is shown at once and then brought up to date. A new
/// query leaves the rows as they are until its own have come, or until that takes long: then rows without
/// data stand in. Main thread; borrows the client.
class MuseumListModel : public QAbstractListModel {
    Q_OBJECT

  public:
    static constexpr int maxPages = 32; ///< that are kept; those farthest from the view are read again

    /// What there is to say beside the rows.
    enum class Notice {
        none,
        cached, ///< the museum is out of reach, and these are rows that were seen before
        failed, ///< error() tells
    };

    explicit MuseumListModel(MuseumClient &client, QObject *parent = nullptr);

    /// An empty text: everything there is. Nothing happens when that is what is shown.
    void setQuery(const QString &text, bool includeNSFW);
    [[nodiscard]] const MuseumQuery &query() const { return m_query; }
    /// Whether the rows are not yet those of the query.
    [[nodiscard]] bool isQuerying() const { return m_isQuerying; }
    /// Whether the museum has asked for patience and is asked again in a few seconds.
    [[nodiscard]] bool isHeldUp() const { return m_isHeldUp; }
    [[nodiscard]] Notice notice() const { return m_notice; }
    [[nodiscard]] const std::optional<MuseumError> &error() const { return m_error; }
    /// Asks again for what could not be read. What there was to say stays until there is an answer.
    void retry();
    /// How a skin is called by who reads the screen aloud; without it, by its name.
    void setSpokenText(const std::function<QString(const MuseumSkin &)> &spoken) { m_spoken = spoken; }

    /// The rows that are seen.
    void setInView(int first, int last);
    /// None for a row that is not read.
    [[nodiscard]] const MuseumSkin *skin(const QModelIndex &index) const;
    /// Of all rows that are read.
    [[nodiscard]] QStringList md5s() const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    /// The name, and what is spoken.
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

  Q_SIGNALS:
    void stateChanged(); ///< query, notice, error, or whether it is held up
    void pageRead();

  private:
    enum class State {
        unread,
        provisional, ///< shown as it was seen before
        read,
        failed, ///< there may be what was seen before
    };
    struct Page {
        QList<MuseumSkin> skins;
        int size = 0; ///< rows, also while there are no skins
        State state = State::unread;
    };

    void begin();
    void takeHeldUp();
    void blankRows();
    void readOn();
    QCoro::Task<> read(int page, int turn);
    [[nodiscard]] std::optional<int> wanted() const;
    void forgetFailures();
    void take(int page, MuseumPage answer, State state);
    void setSize(int page, int size);
    void setPageCount(int count, const std::optional<int> &total);
    void forgetFarPages();
    void tell(int page);
    void setNotice(Notice notice, const std::optional<MuseumError> &error);

    [[nodiscard]] int start(int page) const;
    [[nodiscard]] int pageOf(int row) const;
    [[nodiscard]] int distance(int first, const Page &page) const;

    MuseumClient &m_client;
    MuseumQuery m_query = MuseumQuery::browse(false);
    std::vector<Page> m_pages;
    bool m_isQuerying = false;
    bool m_hasAnswer = false; ///< to any query
    bool m_isReading = false;
    bool m_isHeldUp = false;
    QTimer m_patience; ///< with the rows of the query before
    std::function<QString(const MuseumSkin &)> m_spoken;
    int m_turn = 0; ///< raised by every query, so that answers to earlier ones are known
    int m_firstInView = 0;
    int m_lastInView = 0;
    Notice m_notice = Notice::none;
    std::optional<MuseumError> m_error;
};

} // namespace vantor
