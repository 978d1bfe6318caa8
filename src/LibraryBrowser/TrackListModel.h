#pragma once

#include "LibraryBrowser/LibraryModel.h"
#include "LibraryBrowser/PagedModel.h"
#include "MusicBackendKit/LibraryChange.h"

namespace vantor {

class AllTracks;
class LibraryBrowser;

/// Tracks of the source that is browsed, as a table: of an album, a playlist, the favourites, or all. In the
/// source's order, or sorted by a column, for which all rows are read first. Main thread; borrows the
/// browser.
class TrackListModel : public PagedModel<LibraryTrack, LibraryModel> {
    Q_OBJECT

  public:
    enum Column { numberColumn, titleColumn, artistColumn, albumColumn, timeColumn, columns };

    struct Content {
        enum class Kind { nothing, tracks, of, all, favorites };
        Kind kind = Kind::nothing;
        MediaID id{}; ///< of `of`: an album or a playlist

        [[nodiscard]] static Content of(const MediaID &id) { return {Kind::of, id}; }
        [[nodiscard]] static Content all() { return {Kind::all}; }
        [[nodiscard]] static Content favorites() { return {Kind::favorites}; }

        bool operator==(const Content &) const = default;
    };

    explicit TrackListModel(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Asks for it at once when a source is connected, else as soon as one is. The same again does nothing.
    void show(const Content &content);
    /// These, which came from elsewhere.
    void showTracks(const QList<LibraryTrack> &tracks);
    [[nodiscard]] const Content &content() const { return m_content; }

    /// None for a row that is not there yet, which is asked for.
    [[nodiscard]] const LibraryTrack *track(int row) const;
    /// Those that are there, in the order of the rows.
    [[nodiscard]] QList<LibraryTrack> tracks() const;
    /// The album whose tracks these are.
    [[nodiscard]] std::optional<MediaID> album() const;

    /// None: the source's order.
    [[nodiscard]] std::optional<Column> sortColumn() const { return m_sortColumn; }
    [[nodiscard]] Qt::SortOrder sortOrder() const { return m_sortOrder; }
    /// −1 for the source's order. Holds at the latest when all rows are there, and for what follows.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData *mimeData(const QModelIndexList &indexes) const override;

  protected:
    void rowsWillBeRemoved() override;
    void rowsAreReplaced() override;
    void rowsTaken() override;

  private:
    void load();
    void apply(const LibraryChange &change);
    void arrange();
    QCoro::Task<> sortRows();
    void setOrder(const std::vector<int> &order);
    [[nodiscard]] int storedRow(int row) const;
    [[nodiscard]] QString text(const LibraryTrack &track, int column) const;

    LibraryBrowser &m_browser;
    Content m_content;
    std::shared_ptr<AllTracks> m_all; ///< of `all`
    std::optional<Column> m_sortColumn;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    std::vector<int> m_order;        ///< by row, the place in the source's order; empty: the same
    std::shared_ptr<char> m_sorting; ///< whose order is awaited
};

} // namespace vantor
