#pragma once

#include "LibraryBrowser/ArtistListModel.h"
#include "LibraryBrowser/LibrarySearch.h"
#include "Vantor/Library/LibraryPageContext.h"
#include "Vantor/Library/LibraryPlace.h"

#include <QStackedWidget>

namespace vantor {

class ArtistPage;
class FavoritesPage;
class LibraryBarPage;
class MessagePage;
class RecommendationsPage;
class SearchPage;
class TrackListPage;

/// The pages of the Library window, one of which is seen. Main thread; borrows what it is given.
class LibraryContent : public QStackedWidget {
    Q_OBJECT

  public:
    LibraryContent(LibraryActions &actions, ArtworkCache &artwork, QSettings &settings,
                   QWidget *parent = nullptr);

    void show(const LibraryPlace &place);
    /// Said instead of any page; see MessagePage.
    void say(const QString &heading, const QString &text, const QString &button = {},
             const std::function<void()> &action = {});
    /// To the first of what a search has found.
    void focusResults();

    /// The whole group of an artist who may be only one of those that are one to the user, once they are
    /// read.
    [[nodiscard]] std::optional<ArtistGroup> group(const MediaID &artist) const {
        return m_artists.group(artist);
    }
    /// How many there are at the place that is shown, as a text; empty when that is not known.
    [[nodiscard]] QString countOf(const LibraryPlace &place) const;

  Q_SIGNALS:
    void artistAsked(const vantor::LibraryAlbum &album);
    void countChanged();

  private:
    void add(LibrarySection section, QWidget *page);
    void addLists();
    void addPlaylists();
    void addRadios();
    [[nodiscard]] QWidget *pageOf(const LibraryPlace &place);
    [[nodiscard]] QString sectionCount(LibrarySection section) const;
    [[nodiscard]] QWidget *sectionPage(LibrarySection section);

    LibraryPageContext m_context;
    LibrarySearch m_search;
    ArtistListModel m_artists;
    LibraryListModel m_albums;
    TrackListModel m_tracks;
    LibraryListModel m_playlists;
    LibraryListModel m_radios;
    std::map<LibrarySection, QWidget *> m_sections;
    LibraryBarPage *m_playlistsPage = nullptr;
    MessagePage *m_message; ///< about the source as a whole
    ArtistPage *m_artistPage;
    TrackListPage *m_trackListPage;
    FavoritesPage *m_favoritesPage;
    RecommendationsPage *m_recommendationsPage;
    SearchPage *m_searchPage;
};

} // namespace vantor
