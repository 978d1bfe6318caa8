#include "Vantor/Library/TrackListPage.h"

#include "MusicBackendKit/ArtistName.h"
#include "Vantor/Library/LibraryPane.h"
#include "Vantor/Library/LibraryTexts.h"

#include <QHeaderView>
#include <QVBoxLayout>

namespace vantor {

TrackListPage::TrackListPage(const LibraryPageContext &context)
    : m_context(context), m_tracks(context.browser()), m_header(new LibraryHeader(context.artwork)),
      m_table(context.makeTable(m_tracks, QStringLiteral("library/albumColumns"))) {
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(new LibraryPane(m_table, m_tracks, {tr("No tracks"), {}}), 1);
    setFocusProxy(m_table);
    const auto play = [this](PlayMode::Kind how) { m_context.actions.play({m_item}, how); };
    connect(m_header, &LibraryHeader::playAsked, this, [play] { play(PlayMode::Kind::replace); });
    connect(m_header, &LibraryHeader::appendAsked, this, [play] { play(PlayMode::Kind::append); });
    connect(m_header, &LibraryHeader::favoriteAsked, this,
            [this](bool on) { m_context.browser().setFavorite(m_item.ids(), on); });
    connect(m_header, &LibraryHeader::artistAsked, this, [this] {
        if (const auto *const album = std::get_if<LibraryAlbum>(&m_item.record))
            Q_EMIT artistAsked(*album);
    });
    connect(&m_tracks, &LibraryModel::stateChanged, this, &TrackListPage::showDetails);
}

void TrackListPage::show(const LibraryAlbum &album) {
    open({album}, ArtistName::display(album.artistName.value_or(QString())));
}

void TrackListPage::show(const LibraryPlaylist &playlist) {
    open({playlist}, {});
}

void TrackListPage::open(const LibraryItem &item, const QString &artist) {
    m_item = item;
    const bool canBeFavorite = m_context.browser().capabilities().testFlag(MusicBackendCapability::favorites);
    m_header->show({item.kind().value_or(MediaKind::album), item.title(), artist, item.artwork(),
                    canBeFavorite ? std::optional(item.isFavorite().value_or(false)) : std::nullopt});
    m_tracks.sort(-1);
    m_table->horizontalHeader()->setSortIndicatorShown(false);
    m_tracks.show(TrackListModel::Content::of(item.ids().first()));
    showDetails();
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
        facts.append(LibraryTexts::count(MediaKind::track, static_cast<int>(tracks.size())));
        facts.append(seconds > 0 ? LibraryTexts::runningTime(seconds) : QString());
        // On the page of an album that says who it is by, every line needs not say it again.
        QSet<int> unneeded;
        if (album)
            unneeded = isOfOthers ? QSet<int>{TrackListModel::albumColumn}
                                  : QSet<int>{TrackListModel::albumColumn, TrackListModel::artistColumn};
        m_table->setUnneeded(unneeded);
    }
    m_header->setDetails(LibraryTexts::joined(facts));
}

} // namespace vantor
