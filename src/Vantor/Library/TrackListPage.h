#pragma once

#include "Vantor/Library/LibraryHeader.h"
#include "Vantor/Library/LibraryPageContext.h"

namespace vantor {

class PlaylistOrder;

/// An album or a playlist with all tracks.
class TrackListPage : public QWidget {
    Q_OBJECT

  public:
    explicit TrackListPage(const LibraryPageContext &context);
    void show(const LibraryAlbum &album);
    void show(const LibraryPlaylist &playlist);

    /// As a text; empty until all are there.
    [[nodiscard]] QString count() const;

  Q_SIGNALS:
    void countChanged();
    void artistAsked(const vantor::LibraryAlbum &album);

  private:
    void followHeader();
    void addRemoval(QMenu &menu);
    void removeSelected();
    void move(int row, int to);
    void open(const LibraryItem &item);
    void showHeader();
    void showDetails();

    LibraryPageContext m_context;
    LibraryItem m_item;
    TrackListModel m_tracks;
    LibraryHeader *m_header;
    TrackTable *m_table;
    PlaylistOrder *m_order;
};

} // namespace vantor
