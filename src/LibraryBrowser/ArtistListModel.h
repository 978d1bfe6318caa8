#pragma once

#include "LibraryBrowser/LibraryModel.h"
#include "MusicBackendKit/MusicBackend.h"

namespace vantor {

class LibraryBrowser;

/// All artists of the source that is browsed, those that are one to the user on one row. They are read to the
/// end, a page after another, since the members of a group may stand anywhere. Main thread; borrows the
/// browser.
class ArtistListModel : public LibraryItemModel {
    Q_OBJECT

  public:
    explicit ArtistListModel(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Begins to read, now or as soon as a source is connected.
    void open();

    [[nodiscard]] std::optional<ArtistGroup> group(const MediaID &artist) const {
        return m_reading.group(artist);
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] const LibraryItem *item(int row) const override;
    [[nodiscard]] bool isLoading() const override { return m_isReading; }
    [[nodiscard]] bool hasAnswer() const override { return m_hasAnswer; }
    void retry() override;

  private:
    void restart();
    void refresh();
    QCoro::Task<> readOn();
    void take(const Page<LibraryArtist> &page);
    void showMore(const QSet<QString> &changed);
    void show(const QList<LibraryItem> &items);
    void apply(const LibraryChange &change);

    LibraryBrowser &m_browser;
    bool m_isOpen = false;
    QList<LibraryItem> m_items; ///< as shown
    ArtistGrouper m_reading;    ///< which they become once it is read to the end, or at once
    std::optional<PageRequest> m_next;
    bool m_isReading = false;
    bool m_hasAnswer = false;
    bool m_replaces = false;                                 ///< what is shown stays until all is read
    std::shared_ptr<char> m_turn = std::make_shared<char>(); ///< whose answers are awaited
};

} // namespace vantor
