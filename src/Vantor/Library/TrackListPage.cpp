#include "Vantor/Library/TrackListPage.h"

#include "MusicBackendKit/ArtistName.h"
#include "Vantor/Library/LibraryPane.h"
#include "Vantor/Library/LibraryTexts.h"
#include "Vantor/Library/PlaylistOrder.h"

#include <QHeaderView>
#include <QMenu>
#include <QVBoxLayout>

namespace vantor {

TrackListPage::TrackListPage(const LibraryPageContext &context)
    : m_context(context), m_tracks(context.browser()), m_header(new LibraryHeader(context.artwork)),
      m_table(context.makeTable(m_tracks, QStringLiteral("library/albumColumns"),
                                [this](QMenu &menu) { addRemoval(menu); })),
      m_order(new PlaylistOrder(*m_table)) {
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(new LibraryPane(m_table, m_tracks, {tr("No tracks"), {}}), 1);
    setFocusProxy(m_table);
    followHeader();
    connect(&m_tracks, &LibraryModel::stateChanged, this, &TrackListPage::showDetails);
    connect(m_order, &PlaylistOrder::removeAsked, this, &TrackListPage::removeSelected);
    connect(m_order, &PlaylistOrder::moveAsked, this, &TrackListPage::move);
    connect(&context.browser(), &LibraryBrowser::changed, this, [this](const LibraryChange &change) {
        if (change.kind == LibraryChange::Kind::favoriteChanged &&
            m_item.setFavorite(change.id, change.isFavorite))
            showHeader();
    });
}

void TrackListPage::followHeader() {
    const auto play = [this](PlayMode::Kind how) { m_context.actions.play({m_item}, how); };
    connect(m_header, &LibraryHeader::playAsked, this, [play] { play(PlayMode::Kind::replace); });
    connect(m_header, &LibraryHeader::appendAsked, this, [play] { play(PlayMode::Kind::append); });
    connect(m_header, &LibraryHeader::favoriteAsked, this,
            [this](bool on) { m_context.browser().setFavorite(m_item.ids(), on); });
    connect(m_header, &LibraryHeader::menuAsked, this,
            [this](const QPoint &at) { m_context.popUpMenu(*this, m_item, at); });
    connect(m_header, &LibraryHeader::artistAsked, this, [this] {
        if (const auto *const album = std::get_if<LibraryAlbum>(&m_item.record))
            Q_EMIT artistAsked(*album);
    });
}

void TrackListPage::show(const LibraryAlbum &album) {
    open({album});
    m_order->allow({});
}

void TrackListPage::show(const LibraryPlaylist &playlist) {
    open({playlist});
    m_order->allow(m_context.actions.playlists().areOffered() ? playlist.editing : PlaylistEditing());
}

void TrackListPage::open(const LibraryItem &item) {
    m_item = item;
    showHeader();
    m_tracks.sort(-1);
    m_table->horizontalHeader()->setSortIndicatorShown(false);
    m_tracks.show(TrackListModel::Content::of(item.ids().first()));
    showDetails();
}

void TrackListPage::showHeader() {
    const auto *const album = std::get_if<LibraryAlbum>(&m_item.record);
    const QString artist = album ? ArtistName::display(album->artistName.value_or(QString())) : QString();
    const auto isFavorite = m_context.actions.offersFavorites()
                                ? std::optional(m_item.isFavorite().value_or(false))
                                : std::nullopt;
    m_header->show(
        {m_item.kind().value_or(MediaKind::album), m_item.title(), artist, m_item.artwork(), isFavorite});
}

// What is done to a playlist

void TrackListPage::addRemoval(QMenu &menu) {
    const auto *const playlist = std::get_if<LibraryPlaylist>(&m_item.record);
    const bool isAllowed = playlist && m_context.actions.playlists().areOffered() &&
                           playlist->editing.testFlag(PlaylistEditingOption::addRemove);
    if (!isAllowed || menu.isEmpty())
        return;
    menu.addSeparator();
    menu.addAction(tr("Remove from Playlist"), this, &TrackListPage::removeSelected)
        ->setShortcut(Qt::Key_Delete);
}

void TrackListPage::removeSelected() {
    QList<int> positions;
    for (const LibraryTrack &track : m_table->selected()) {
        if (track.playlistPosition)
            positions.append(*track.playlistPosition);
    }
    LibraryEdits &edits = m_context.actions.playlists().edits();
    if (!positions.isEmpty() && !edits.isBusy()) // or the positions are not what they were
        edits.remove(positions, m_item.ids().first(), [] {});
}

void TrackListPage::move(int row, int to) {
    const LibraryTrack *const track = m_tracks.track(row);
    const LibraryTrack *const place = m_tracks.track(to);
    LibraryEdits &edits = m_context.actions.playlists().edits();
    const bool isKnown = track && place && track->playlistPosition && place->playlistPosition;
    if (!isKnown || edits.isBusy() || m_tracks.isLoading()) // as above
        return;
    edits.move(m_item.ids().first(), *track->playlistPosition, *place->playlistPosition,
               [this, to] { m_table->selectRow(to); });
}

// What there is to say

QString TrackListPage::count() const {
    return m_tracks.isComplete() ? LibraryTexts::count(MediaKind::track, m_tracks.rowCount()) : QString();
}

void TrackListPage::showDetails() {
    const auto *const album = std::get_if<LibraryAlbum>(&m_item.record);
    QStringList facts{album && album->year ? QString::number(*album->year) : QString()};
    if (m_tracks.isComplete()) {
        const QList<LibraryTrack> tracks = m_tracks.tracks();
        double seconds = 0;
        bool isOfOthers = false;
        for (const LibraryTrack &track : tracks) {
            seconds += std::max(0.0, track.duration.value_or(0));
            isOfOthers = isOfOthers || (album && ArtistName::key(track.artistName) !=
                                                     ArtistName::key(album->artistName.value_or(QString())));
        }
        facts.append(count());
        facts.append(seconds > 0 ? LibraryTexts::runningTime(seconds) : QString());
        // On the page of an album that says who it is by, every line needs not say it again.
        QSet<int> unneeded{TrackListModel::numberColumn}; // which in a playlist is one of many albums
        if (album)
            unneeded = isOfOthers ? QSet<int>{TrackListModel::albumColumn}
                                  : QSet<int>{TrackListModel::albumColumn, TrackListModel::artistColumn};
        m_table->setUnneeded(unneeded);
    }
    m_header->setDetails(LibraryTexts::joined(facts));
    Q_EMIT countChanged();
}

} // namespace vantor
