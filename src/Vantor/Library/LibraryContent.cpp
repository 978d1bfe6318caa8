#include "Vantor/Library/LibraryContent.h"

#include "Vantor/Library/ArtistPage.h"
#include "Vantor/Library/FavoritesPage.h"
#include "Vantor/Library/LibraryBarPage.h"
#include "Vantor/Library/LibraryPane.h"
#include "Vantor/Library/LibraryTexts.h"
#include "Vantor/Library/RecommendationsPage.h"
#include "Vantor/Library/SearchPage.h"
#include "Vantor/Library/TrackListPage.h"
#include "Vantor/Windows/MessagePage.h"

namespace vantor {

LibraryContent::LibraryContent(LibraryActions &actions, ArtworkCache &artwork, QSettings &settings,
                               QWidget *parent)
    : QStackedWidget(parent), m_context{actions, artwork, settings}, m_search(actions.browser()),
      m_artists(actions.browser()), m_albums(actions.browser()), m_tracks(actions.browser()),
      m_playlists(actions.browser()), m_radios(actions.browser()), m_message(new MessagePage),
      m_artistPage(new ArtistPage(m_context)), m_trackListPage(new TrackListPage(m_context)),
      m_favoritesPage(new FavoritesPage(m_context)),
      m_recommendationsPage(new RecommendationsPage(m_context)),
      m_searchPage(new SearchPage(m_context, m_search)) {
    addLists();
    addPlaylists();
    addRadios();
    add(LibrarySection::favorites, m_favoritesPage);
    add(LibrarySection::recommendations, m_recommendationsPage);
    for (QWidget *const page :
         std::initializer_list<QWidget *>{m_artistPage, m_trackListPage, m_searchPage, m_message})
        addWidget(page);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    connect(m_trackListPage, &TrackListPage::artistAsked, this, &LibraryContent::artistAsked);
    connect(m_trackListPage, &TrackListPage::countChanged, this, &LibraryContent::countChanged);
    connect(&m_search, &LibrarySearch::changed, this, &LibraryContent::countChanged);
    for (LibraryModel *const model :
         std::initializer_list<LibraryModel *>{&m_artists, &m_albums, &m_tracks, &m_playlists, &m_radios}) {
        connect(model, &LibraryModel::stateChanged, this, &LibraryContent::countChanged);
        connect(model, &QAbstractItemModel::rowsInserted, this, &LibraryContent::countChanged);
    }
}

void LibraryContent::add(LibrarySection section, QWidget *page) {
    m_sections.emplace(section, page);
    addWidget(page);
}

void LibraryContent::addLists() {
    const LibraryPane::EmptyText noMusic{tr("No music yet"),
                                         tr("What is put into the library shows up here.")};
    add(LibrarySection::artists,
        new LibraryPane(m_context.makeGrid(m_artists, tr("Artists")), m_artists, noMusic));
    add(LibrarySection::albums,
        new LibraryPane(m_context.makeGrid(m_albums, tr("Albums")), m_albums, noMusic));
    auto *const tracks = m_context.makeTable(m_tracks, QStringLiteral("library/trackColumns"));
    tracks->setUnneeded({TrackListModel::numberColumn});
    add(LibrarySection::tracks, new LibraryPane(tracks, m_tracks, noMusic));
}

void LibraryContent::addPlaylists() {
    PlaylistActions &playlists = m_context.actions.playlists();
    auto *const pane =
        new LibraryPane(m_context.makeGrid(m_playlists, tr("Playlists")), m_playlists,
                        {tr("No playlists yet"), tr("The playlists of the library show up here.")});
    m_playlistsPage = new LibraryBarPage(pane);
    m_playlistsPage->addButton(tr("New Playlist…"), [this, &playlists] { playlists.create(window()); });
    m_playlistsPage->addButton(tr("Import…"), [this, &playlists] { playlists.import(window()); });
    add(LibrarySection::playlists, m_playlistsPage);
}

void LibraryContent::addRadios() {
    PlaylistActions &playlists = m_context.actions.playlists();
    auto *const pane =
        new LibraryPane(m_context.makeGrid(m_radios, tr("Radios")), m_radios,
                        {tr("No radio stations yet"), tr("Add one by the address of its stream.")});
    auto *const page = new LibraryBarPage(pane);
    page->addButton(tr("Add Radio Station…"), [this, &playlists] { playlists.addRadio(window()); });
    add(LibrarySection::radios, page);
}

void LibraryContent::show(const LibraryPlace &place) {
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    QWidget *const page = pageOf(place);
    setCurrentWidget(page);
    setFocusProxy(page);
    if (hadFocus && page != m_searchPage)
        page->setFocus();
}

void LibraryContent::say(const QString &heading, const QString &text, const QString &button,
                         const std::function<void()> &action) {
    m_message->say(heading, text, button, action);
    setCurrentWidget(m_message);
    setFocusProxy(m_message);
}

void LibraryContent::focusResults() {
    m_searchPage->setFocus();
    m_searchPage->focusResults();
}

QWidget *LibraryContent::sectionPage(LibrarySection section) {
    using Content = LibraryListModel::Content;
    switch (section) {
    case LibrarySection::artists:
        m_artists.open();
        break;
    case LibrarySection::albums:
        m_albums.show(Content::albums());
        break;
    case LibrarySection::tracks:
        m_tracks.show(TrackListModel::Content::all());
        break;
    case LibrarySection::playlists:
        m_playlists.show(Content::playlists());
        m_playlistsPage->showBar(m_context.actions.playlists().areOffered());
        break;
    case LibrarySection::radios:
        m_radios.show(Content::radios());
        break;
    case LibrarySection::favorites:
        m_favoritesPage->open();
        break;
    case LibrarySection::recommendations:
        m_recommendationsPage->open();
        break;
    }
    return m_sections.at(section);
}

QWidget *LibraryContent::pageOf(const LibraryPlace &place) {
    if (const auto *const artist = std::get_if<ArtistGroup>(&place.what)) {
        m_artists.open(); // so that going to an artist finds all who are one with it
        m_artistPage->show(*artist);
        return m_artistPage;
    }
    if (const auto *const album = std::get_if<LibraryAlbum>(&place.what)) {
        m_trackListPage->show(*album);
        return m_trackListPage;
    }
    if (const auto *const playlist = std::get_if<LibraryPlaylist>(&place.what)) {
        m_trackListPage->show(*playlist);
        return m_trackListPage;
    }
    if (const auto *const search = std::get_if<LibraryPlace::Search>(&place.what)) {
        m_search.setText(search->text);
        return m_searchPage;
    }
    return sectionPage(place.section);
}

QString LibraryContent::countOf(const LibraryPlace &place) const {
    if (std::holds_alternative<LibraryPlace::Section>(place.what))
        return sectionCount(place.section);
    if (std::holds_alternative<LibraryPlace::Search>(place.what))
        return m_searchPage->count();
    return std::holds_alternative<ArtistGroup>(place.what) ? QString() : m_trackListPage->count();
}

QString LibraryContent::sectionCount(LibrarySection section) const {
    const auto count = [](const LibraryModel &model, MediaKind kind) {
        return model.hasAnswer() ? LibraryTexts::count(kind, model.rowCount({})) : QString();
    };
    switch (section) {
    case LibrarySection::artists:
        return count(m_artists, MediaKind::artist);
    case LibrarySection::albums:
        return count(m_albums, MediaKind::album);
    case LibrarySection::tracks: {
        const QString text = count(m_tracks, MediaKind::track);
        return text.isEmpty() || m_tracks.isComplete() ? text : tr("%1 so far").arg(text);
    }
    case LibrarySection::playlists:
        return count(m_playlists, MediaKind::playlist);
    case LibrarySection::radios:
        return count(m_radios, MediaKind::radio);
    case LibrarySection::favorites:
    case LibrarySection::recommendations:
        break;
    }
    return {};
}

} // namespace vantor
