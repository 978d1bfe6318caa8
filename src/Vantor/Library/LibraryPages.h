#pragma once

#include "LibraryBrowser/ArtistListModel.h"
#include "LibraryBrowser/LibraryRecommendations.h"
#include "LibraryBrowser/LibrarySearch.h"
#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryGridView.h"
#include "Vantor/Library/LibraryHeader.h"
#include "Vantor/Library/LibraryPane.h"
#include "Vantor/Library/TrackTable.h"

#include <QScrollArea>

class QButtonGroup;
class QStackedWidget;
class QVBoxLayout;

namespace vantor {

/// What all pages share. Main thread; outlives its pages.
struct LibraryPageContext {
    LibraryActions &actions;
    ArtworkCache &artwork;
    QSettings &settings;

    [[nodiscard]] LibraryBrowser &browser() const { return actions.browser(); }
    /// A grid or a line of items that opens, plays and asks as everywhere in the window.
    [[nodiscard]] LibraryGridView *
    makeGrid(LibraryItemModel &items, const QString &name,
             LibraryGridView::Shape shape = LibraryGridView::Shape::grid) const;
    [[nodiscard]] TrackTable *makeTable(TrackListModel &tracks, const QString &columnsKey) const;
};

/// An artist with all albums.
class ArtistPage : public QWidget {
    Q_OBJECT

  public:
    explicit ArtistPage(const LibraryPageContext &context);
    void show(const ArtistGroup &artist);

  private:
    void showDetails();

    LibraryPageContext m_context;
    ArtistGroup m_artist;
    LibraryListModel m_albums;
    LibraryHeader *m_header;
};

/// An album or a playlist with all tracks.
class TrackListPage : public QWidget {
    Q_OBJECT

  public:
    explicit TrackListPage(const LibraryPageContext &context);
    void show(const LibraryAlbum &album);
    void show(const LibraryPlaylist &playlist);

  Q_SIGNALS:
    void artistAsked(const vantor::LibraryAlbum &album);

  private:
    void open(const LibraryItem &item, const QString &artist);
    void showHeader();
    void showDetails();

    LibraryPageContext m_context;
    LibraryItem m_item;
    TrackListModel m_tracks;
    LibraryHeader *m_header;
    TrackTable *m_table;
};

/// The favourites of each kind.
class FavoritesPage : public QWidget {
    Q_OBJECT

  public:
    explicit FavoritesPage(const LibraryPageContext &context);
    /// Asks for what the page shows.
    void open();

  private:
    void showKind(MediaKind kind);

    LibraryPageContext m_context;
    QButtonGroup *m_kinds;
    QStackedWidget *m_lists;
    std::map<MediaKind, std::unique_ptr<LibraryListModel>> m_items;
    TrackListModel m_tracks;
};

/// Parts under one another, each with a title, that scroll together.
class LibraryScrollPage : public QScrollArea {
    Q_OBJECT

  public:
    explicit LibraryScrollPage(QWidget *parent = nullptr);

  protected:
    /// Adds a part and returns it.
    QWidget *addPart(const QString &title, QWidget *content);
    void removeParts();

  private:
    QVBoxLayout *m_layout;
};

/// What a search finds.
class SearchPage : public LibraryScrollPage {
    Q_OBJECT

  public:
    SearchPage(const LibraryPageContext &context, LibrarySearch &search);

  private:
    void showResults();

    LibrarySearch &m_search;
    LibraryMessage *m_message;
    std::map<QWidget *, LibraryModel *> m_parts;
};

class RecommendationsPage : public LibraryScrollPage {
    Q_OBJECT

  public:
    explicit RecommendationsPage(const LibraryPageContext &context);
    void open() { m_recommendations.open(); }

  private:
    void showShelves();

    LibraryPageContext m_context;
    LibraryRecommendations m_recommendations;
};

} // namespace vantor
